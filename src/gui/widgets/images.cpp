// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/images.h"

#include "base/bundle/bundle.h"
#include "gui/widgets/theme.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QSvgRenderer>

#include <map>
#include <tuple>
#include <utility>

namespace tavrix
{

namespace
{

// Qt's own engine for such files is a plugin, and some distributions put it into a package of its own.
class DrawnIcon : public QIconEngine
{
public:
    explicit DrawnIcon(QString path) : path_(std::move(path)) {}

    void paint(QPainter* painter, const QRect& place, QIcon::Mode /*mode*/, QIcon::State /*state*/) override
    {
        QSvgRenderer renderer(path_);
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        renderer.render(painter, place);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, drawn.rect(), mode, state);
        painter.end();
        const QStyleOption option;
        return mode == QIcon::Normal ? drawn : QApplication::style()->generatedIconPixmap(mode, drawn, &option);
    }
    [[nodiscard]] QIconEngine* clone() const override { return new DrawnIcon(path_); }

private:
    QString path_;
};

} // namespace

QString imagePath(const QString& name)
{
    if (name.isEmpty()) {
        return {};
    }
    const auto path = [](const QString& of) {
        return pathForResource(QStringLiteral("images/") + of, QStringLiteral("svg"));
    };
    const QString light = currentTheme().light ? path(name + QStringLiteral("Light")) : QString();
    return light.isEmpty() ? path(name) : light;
}

QIcon imageNamed(const QString& name)
{
    const QString path = imagePath(name);
    return path.isEmpty() ? QIcon() : QIcon(new DrawnIcon(path));
}

QPixmap imagePixmap(const QString& name, int side, qreal scale)
{
    static std::map<std::tuple<QString, int, int>, QPixmap> drawn;
    const std::tuple<QString, int, int> key{imagePath(name), side, qRound(scale * 100)};
    const auto known = drawn.find(key);
    if (known != drawn.end()) {
        return known->second;
    }
    if (std::get<0>(key).isEmpty()) {
        return {};
    }
    QSvgRenderer renderer(std::get<0>(key));
    const QSizeF shape = QSizeF(renderer.defaultSize()).scaled(side * scale, side * scale, Qt::KeepAspectRatio);
    QPixmap pixmap(shape.toSize());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    painter.end();
    pixmap.setDevicePixelRatio(scale);
    drawn.emplace(key, pixmap);
    return pixmap;
}

} // namespace tavrix
