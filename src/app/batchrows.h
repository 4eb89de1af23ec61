// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Takes rows off the batch list, with their thumbnails.

#include <QList>

namespace tavrix
{

class Control;
class Session;

class BatchRows
{
public:
    explicit BatchRows(Session& session) : session_(session) {}

    // Removes the selected rows. The sender is the remove button, which spares the row being encoded; without a sender
    // the first row stands in for a selection.
    void remove(const Control* sender);
    // Removes one row, whatever is selected; an index out of range is ignored.
    void removeRow(int row);
    // Removes the rows whose clips have been converted.
    void removeConverted();
    // Removes every row but the one being encoded, after a question when a button asks for it.
    void removeAll(const Control* sender);

private:
    void removeRows(const QList<int>& descending);
    void removeThumbnail(int row);

    Session& session_;
};

} // namespace tavrix
