// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/dropmanners.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

namespace tavrix
{

namespace
{

constexpr const char* takesDrops = "takesDrops";

} // namespace

DropManners::DropManners()
{
    qApp->installEventFilter(this);
}

void DropManners::allow(QWidget* widget)
{
    widget->setProperty(takesDrops, true);
    widget->setAcceptDrops(true);
}

bool DropManners::eventFilter(QObject* watched, QEvent* event)
{
    auto* widget = qobject_cast<QWidget*>(watched);
    if (widget == nullptr || widget->property(takesDrops).toBool()) {
        return false;
    }
    switch (event->type()) {
    case QEvent::Polish:
        // A part that takes no drops leaves them to the window behind it.
        widget->setAcceptDrops(false);
        return false;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        event->ignore();
        return true;
    default:
        return false;
    }
}

QStringList localFilesOf(const QMimeData* data)
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

bool acceptAsCopy(QDropEvent* event)
{
    if (!event->possibleActions().testFlag(Qt::CopyAction)) {
        event->ignore();
        return false;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    return true;
}

} // namespace tavrix
