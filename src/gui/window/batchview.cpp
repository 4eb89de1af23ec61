// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/batchview.h"

#include "app/batchlist.h"
#include "gui/widgets/dropmanners.h"

#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace tavrix
{

BatchView::BatchView(BatchList& rows, QWidget* parent) : QListView(parent), rows_(rows)
{
    setModel(&rows);
    // Without these every row would be measured whenever one is added.
    setUniformItemSizes(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setMinimumHeight(90);
    // Only its own rows are moved here: what comes from elsewhere goes on to the window.
    setDragDropMode(QAbstractItemView::InternalMove);
    DropManners::allow(viewport());
    connect(&rows, &BatchList::selectionChanged, this, &BatchView::showSelection);
}

void BatchView::setEmptyWords(const QString& words)
{
    emptyWords_ = words;
    viewport()->update();
}

void BatchView::moveSelection(int step)
{
    QList<int> chosen = rows_.selectedRows();
    std::sort(chosen.begin(), chosen.end());
    if (chosen.isEmpty()) {
        return;
    }
    const bool room = step < 0 ? chosen.first() > rows_.firstMovableRow()
                               : chosen.first() >= rows_.firstMovableRow() && chosen.last() < rows_.count() - 1;
    if (!room) {
        return;
    }
    if (step > 0) {
        std::reverse(chosen.begin(), chosen.end());
    }
    for (const int row : chosen) {
        rows_.moveRows({}, row, 1, {}, step < 0 ? row - 1 : row + 2);
    }
    scrollTo(rows_.index(rows_.selectedRow()));
}

void BatchView::showSelection()
{
    if (showing_) {
        return;
    }
    QList<int> shown;
    for (const QModelIndex& index : selectionModel()->selectedIndexes()) {
        shown << index.row();
    }
    QList<int> wanted = rows_.selectedRows();
    const int first = rows_.selectedRow();
    std::sort(shown.begin(), shown.end());
    std::sort(wanted.begin(), wanted.end());
    if (shown == wanted) {
        return;
    }
    showing_ = true;
    QItemSelection selection;
    for (const int row : wanted) {
        selection.select(rows_.index(row), rows_.index(row));
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (first >= 0) {
        selectionModel()->setCurrentIndex(rows_.index(first), QItemSelectionModel::NoUpdate);
    }
    showing_ = false;
}

void BatchView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QListView::selectionChanged(selected, deselected);
    if (showing_) {
        return;
    }
    QList<int> chosen;
    for (const QModelIndex& index : selectionModel()->selectedIndexes()) {
        chosen << index.row();
    }
    std::sort(chosen.begin(), chosen.end());
    // What a person has gone to last is what a preview shows.
    const qsizetype current = chosen.indexOf(currentIndex().row());
    if (current > 0) {
        chosen.move(current, 0);
    }
    showing_ = true;
    rows_.setSelectedRows(chosen);
    showing_ = false;
}

void BatchView::focusInEvent(QFocusEvent* event)
{
    QListView::focusInEvent(event);
    const bool byKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason ||
                       event->reason() == Qt::ShortcutFocusReason;
    if (byKey && rows_.selectedRow() < 0 && rows_.count() > 0) {
        const QModelIndex seen = currentIndex().isValid() ? currentIndex() : indexAt(viewport()->rect().center());
        rows_.setSelectedRow(qMax(0, seen.row()));
    }
}

void BatchView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        // The arrow keys cannot select the only row of a list: there is no way to move to it.
        if (rows_.selectedRow() < 0 && rows_.count() > 0) {
            rows_.setSelectedRow(qMax(0, currentIndex().row()));
            return;
        }
        break;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::KeypadModifier) {
            Q_EMIT previewWished();
            return;
        }
        break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        Q_EMIT removalWished();
        return;
    default:
        break;
    }
    QListView::keyPressEvent(event);
}

void BatchView::paintEvent(QPaintEvent* event)
{
    QListView::paintEvent(event);
    if (rows_.count() == 0 && !emptyWords_.isEmpty()) {
        QPainter painter(viewport());
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect(), static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap, emptyWords_);
    }
}

} // namespace tavrix
