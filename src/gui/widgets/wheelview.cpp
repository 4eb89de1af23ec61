// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/wheelview.h"

#include <QPainter>

namespace tavrix
{

namespace
{

constexpr int spokes = 12;
constexpr int stepMilliseconds = 80;

} // namespace

WheelView::WheelView(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    timer_.setInterval(stepMilliseconds);
    connect(&timer_, &QTimer::timeout, this, [this] {
        step_ = (step_ + 1) % spokes;
        update();
    });
}

void WheelView::setSpinning(bool spinning)
{
    if (spinning != timer_.isActive()) {
        spinning ? timer_.start() : timer_.stop();
        update();
    }
}

void WheelView::paintEvent(QPaintEvent* /*event*/)
{
    if (!timer_.isActive()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(QRectF(rect()).center());
    const qreal radius = qMin(width(), height()) / 2.0 - 1;
    for (int i = 0; i < spokes; ++i) {
        QColor color = palette().color(QPalette::WindowText);
        color.setAlphaF(0.15F + 0.85F * static_cast<float>((i - step_ + spokes) % spokes) / spokes);
        painter.setPen(QPen(color, 2.2, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(i * 360.0 / spokes);
        painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius));
        painter.restore();
    }
}

} // namespace tavrix
