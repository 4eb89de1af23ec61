#include "gui/images.h"

#include "base/bundle.h"
#include "gui/theme.h"

#include <QPainter>
#include <QSvgRenderer>

#include <map>
#include <tuple>

namespace tavrix
{

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
    return path.isEmpty() ? QIcon() : QIcon(path);
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
