// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/folderedit.h"

#include "gui/widgets/dropmanners.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>

namespace tavrix
{

namespace
{

// Empty for anything but one folder.
QString droppedFolder(const QMimeData* data)
{
    const QStringList paths = localFilesOf(data);
    const bool one = paths.size() == 1 && data->urls().size() == 1;
    return one && QFileInfo(paths.first()).isDir() ? paths.first() : QString();
}

QString takenFolder(QDropEvent* event)
{
    const QString folder = droppedFolder(event->mimeData());
    if (folder.isEmpty()) {
        event->ignore();
        return {};
    }
    return acceptAsCopy(event) ? folder : QString();
}

} // namespace

FolderEdit::FolderEdit(QWidget* parent) : QLineEdit(parent)
{
    DropManners::allow(this);
}

void FolderEdit::dragEnterEvent(QDragEnterEvent* event)
{
    (void)takenFolder(event);
}

void FolderEdit::dragMoveEvent(QDragMoveEvent* event)
{
    (void)takenFolder(event);
}

void FolderEdit::dropEvent(QDropEvent* event)
{
    const QString folder = takenFolder(event);
    if (!folder.isEmpty()) {
        setText(folder);
        Q_EMIT textEdited(folder);
    }
}

} // namespace tavrix
