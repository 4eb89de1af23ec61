// SPDX-License-Identifier: GPL-3.0-or-later
// A line for the path of a folder.
#pragma once

#include <QLineEdit>

namespace tavrix
{

// Takes a drop of exactly one folder of this machine, as a copy; everything else that is dropped is refused.
class FolderEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit FolderEdit(QWidget* parent = nullptr);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
};

} // namespace tavrix
