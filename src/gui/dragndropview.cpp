#include "gui/dragndropview.h"

#include "app/appdelegate.h"
#include "gui/images.h"
#include "gui/theme.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

namespace tavrix
{

dragNDropView::dragNDropView(QWidget* parent) : QWidget(parent)
{
    setAcceptDrops(true);
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
    update();
}

QStringList dragNDropView::localFiles(const QMimeData* data)
{
    QStringList paths;
    for (const QUrl& url : data->urls()) {
        const bool here = url.host().isEmpty() || url.host() == QLatin1String("localhost");
        if (!url.isLocalFile() || !here) {
            continue;
        }
        QString path = url.path(QUrl::FullyDecoded);
        while (path.size() > 1 && path.endsWith(QLatin1Char('/'))) {
            path.chop(1);
        }
        paths << path;
    }
    return paths;
}

// A "move" would make the file manager delete the user's clips after the drop.
bool dragNDropView::acceptCopy(QDropEvent* event)
{
    if (!event->possibleActions().testFlag(Qt::CopyAction) || localFiles(event->mimeData()).isEmpty()) {
        event->ignore();
        return false;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    return true;
}

void dragNDropView::dragEnterEvent(QDragEnterEvent* event)
{
    setHovered(acceptCopy(event));
}

void dragNDropView::dragMoveEvent(QDragMoveEvent* event)
{
    acceptCopy(event);
}

void dragNDropView::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    setHovered(false);
}

void dragNDropView::dropEvent(QDropEvent* event)
{
    setHovered(false);
    const QStringList paths = localFiles(event->mimeData());
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (!paths.isEmpty() && delegate_ != nullptr) {
        delegate_->dragNDropPerformDrag(this, paths);
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
    constexpr int side = 84;
    const QPixmap image = imagePixmap(imageName_, side, devicePixelRatioF());
    painter.drawPixmap((width() - side) / 2, qMax(8, height() / 2 - side), image);
}

void dragNDropView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        Q_EMIT activated();
    }
}

void dragNDropView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        Q_EMIT activated();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace tavrix
