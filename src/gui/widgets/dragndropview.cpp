// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/dragndropview.h"

#include "app/appdelegate.h"
#include "gui/widgets/dropmanners.h"
#include "gui/widgets/theme.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>

namespace tavrix
{

dragNDropView::dragNDropView(QWidget* parent) : QAbstractButton(parent)
{
    DropManners::allow(this);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

appDelegate* dragNDropView::delegate() const
{
    return delegate_;
}

void dragNDropView::setDelegate(appDelegate* delegate)
{
    delegate_ = delegate;
}

void dragNDropView::setImageName(const QString& imageName)
{
    imageName_ = imageName;
    Q_EMIT imageChanged();
}

bool dragNDropView::acceptClips(QDropEvent* event)
{
    if (localFilesOf(event->mimeData()).isEmpty()) {
        event->ignore();
        return false;
    }
    return acceptAsCopy(event);
}

void dragNDropView::dragEnterEvent(QDragEnterEvent* event)
{
    setHovered(acceptClips(event));
}

void dragNDropView::dragMoveEvent(QDragMoveEvent* event)
{
    acceptClips(event);
}

void dragNDropView::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    setHovered(false);
}

void dragNDropView::dropEvent(QDropEvent* event)
{
    setHovered(false);
    if (acceptClips(event) && delegate_ != nullptr) {
        delegate_->dragNDropPerformDrag(this, localFilesOf(event->mimeData()));
    }
}

void dragNDropView::setHovered(bool hovered)
{
    hovered_ = hovered;
    update();
}

void dragNDropView::paintEvent(QPaintEvent* /*event*/)
{
    const Theme& theme = currentTheme();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool marked = hovered_ || hasFocus();
    QPen pen(marked ? theme.accent : theme.border, marked ? 2.5 : 1.6);
    if (!hasFocus()) {
        pen.setStyle(Qt::CustomDashLine);
        pen.setDashPattern({5, 4});
    }
    painter.setPen(pen);
    painter.setBrush(hovered_ ? theme.border : theme.panel);
    painter.drawRoundedRect(QRectF(rect()).adjusted(2, 2, -2, -2), 12, 12);
}

void dragNDropView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

} // namespace tavrix
