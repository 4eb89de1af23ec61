// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/ecran.h"

#include "base/dialogue/alerts.h"
#include "base/store/settings.h"
#include "base/text/format.h"
#include "base/text/log.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace tavrix
{

namespace
{

constexpr float extraPoints = 50;

void logFrame(const QString& format, const QRect& frame)
{
    logLine(format, {double(frame.width()), double(frame.height()), double(frame.x()), double(frame.y())});
}

std::optional<QRect> grown(const QRect& frame, const QString& side, int amount)
{
    if (side == QLatin1String("l")) {
        return frame.adjusted(-amount, 0, 0, 0);
    }
    if (side == QLatin1String("b")) {
        return frame.adjusted(0, 0, 0, amount);
    }
    if (side == QLatin1String("r")) {
        return frame.adjusted(0, 0, amount, 0);
    }
    if (side == QLatin1String("t")) {
        return frame.adjusted(0, -amount, 0, 0);
    }
    return std::nullopt;
}

// Index of the screen that holds most of the frame; -1 when none holds any of it.
int screenOf(const QRect& frame, const QList<QRect>& screens)
{
    int best = -1;
    qint64 bestArea = 0;
    for (int i = 0; i < screens.size(); ++i) {
        const QRect& screen = screens.at(i);
        logLine(QStringLiteral("screen #%d      size: %.0fx%.0f, x=%.0f, y=%.0f"),
                {i, double(screen.width()), double(screen.height()), double(screen.x()), double(screen.y())});
        const QRect common = screen.intersected(frame);
        const qint64 area = qint64(common.width()) * common.height();
        if (area > bestArea) {
            best = i;
            bestArea = area;
        }
    }
    return best;
}

QRect movedInside(const QRect& frame, const QRect& screen)
{
    const QSize size = frame.size().boundedTo(screen.size());
    const int x = qBound(screen.left(), frame.left(), screen.right() + 1 - size.width());
    const int y = qBound(screen.top(), frame.top(), screen.bottom() + 1 - size.height());
    return {QPoint(x, y), size};
}

} // namespace

std::optional<QRect> ecranFrame(const QRect& frame, const QString& side, float delta, const QList<QRect>& screens)
{
    if (side.isNull() || delta == 0) {
        return std::nullopt;
    }
    const int amount = qRound(delta + extraPoints);
    logFrame(QStringLiteral("window current size:  %.0fx %.0f, x=%.0f, y=%.0f"), frame);
    const std::optional<QRect> desired = grown(frame, side.toLower(), amount);
    if (!desired) {
        return std::nullopt;
    }
    logFrame(QStringLiteral("window desired size:  %.0fx %.0f, x=%.0f, y=%.0f"), *desired);
    const int screen = screenOf(frame, screens);
    if (getDEBUGDEV() != 0) {
        displayAlert(formatText(QStringLiteral("la fenêtre est dans l'écran: %d"), {screen}), QString(), 0, nullptr);
    }
    if (screen < 0) {
        return std::nullopt;
    }
    const QRect result = movedInside(*desired, screens.at(screen));
    if (result != *desired) {
        logLine(QStringLiteral("ecran() > recalage"));
    }
    return result;
}

void ecran(QWidget* window, const QString& side, float delta)
{
    if (window == nullptr) {
        return;
    }
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens << screen->availableGeometry();
    }
    const std::optional<QRect> frame = ecranFrame(window->frameGeometry(), side, delta, screens);
    if (!frame) {
        return;
    }
    // The window manager's borders are part of the frame but not of the geometry that is set.
    const QRect inner = window->geometry();
    const QRect outer = window->frameGeometry();
    window->setGeometry(frame->adjusted(inner.left() - outer.left(), inner.top() - outer.top(),
                                        inner.right() - outer.right(), inner.bottom() - outer.bottom()));
}

} // namespace tavrix
