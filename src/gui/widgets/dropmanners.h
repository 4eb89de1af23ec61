// SPDX-License-Identifier: GPL-3.0-or-later
// Which parts of the windows take what is dropped on them.
#pragma once

#include <QObject>
#include <QStringList>

class QDropEvent;
class QMimeData;
class QWidget;

namespace tavrix
{

// Only parts that say so take drops. The toolkit's own fields accept a "move" of files as text, after which the file
// manager may delete the user's clips; while this object lives, no field of any window does.
class DropManners : public QObject
{
public:
    DropManners();
    // Marks a part that takes drops by handling their events itself.
    static void allow(QWidget* widget);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

// Local files of a drag, in its order; files of other machines and web addresses are left out.
[[nodiscard]] QStringList localFilesOf(const QMimeData* data);
// Accepts what is dragged as a copy, where the other side offers one; otherwise refuses it and answers false.
bool acceptAsCopy(QDropEvent* event);

} // namespace tavrix
