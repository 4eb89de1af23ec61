// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/elidedlabel.h"

#include <QPainter>

namespace tavrix
{

QSize ElidedLabel::minimumSizeHint() const
{
    return {40, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine, shown);
}

} // namespace tavrix
