// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/slideview.h"

#include <QPainter>

namespace tavrix
{

SlideView::SlideView(QWidget* parent) : QWidget(parent)
{
    setMinimumSize(480, 270);
}

void SlideView::setSlide(const QByteArray& drawing)
{
    renderer_.load(drawing);
    update();
}

void SlideView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (renderer_.isValid()) {
        const QSizeF fitted = QSizeF(renderer_.defaultSize()).scaled(size(), Qt::KeepAspectRatio);
        const QPointF corner((width() - fitted.width()) / 2, (height() - fitted.height()) / 2);
        renderer_.render(&painter, QRectF(corner, fitted));
    }
}

} // namespace tavrix
