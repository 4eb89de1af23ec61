// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batchlist.h"

#include <QSet>

#include <algorithm>

namespace tavrix
{

BatchList::BatchList(QObject* parent) : QAbstractListModel(parent)
{
    setObjectName(QStringLiteral("encBatchArrayController"));
}

int BatchList::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant BatchList::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= count()) {
        return {};
    }
    const BatchRow& row = rows_.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case SrcRole:
        return row.src;
    case Qt::AccessibleTextRole:
        return rowWords_ ? rowWords_(index.row()) : row.src;
    case OrderRole:
        return row.order;
    case OutRole:
        return row.out;
    case ResultatRole:
        return row.resultat;
    case DicoRole:
        return row.dico;
    case ImgRole:
        return row.img;
    case ReasonRole:
        return row.reason;
    case OutputRole:
        return row.output;
    case WarningRole:
        return row.warning;
    default:
        return {};
    }
}

QHash<int, QByteArray> BatchList::roleNames() const
{
    return {{OrderRole, "order"},       {SrcRole, "src"},       {OutRole, "out"},
            {ResultatRole, "resultat"}, {DicoRole, "dico"},     {ImgRole, "img"},
            {ReasonRole, "reason"},     {OutputRole, "output"}, {WarningRole, "warning"}};
}

int BatchList::indexOfSource(const QString& path) const
{
    return sources_.value(path, -1);
}

void BatchList::append(const BatchRow& row)
{
    beginInsertRows({}, count(), count());
    rows_.append(row);
    const QString source = row.source();
    if (!sources_.contains(source)) {
        sources_.insert(source, count() - 1);
    }
    endInsertRows();
}

void BatchList::removeRow(int index)
{
    removeRange(index, index);
}

void BatchList::removeRange(int first, int last)
{
    if (first < 0 || last < first || last >= count()) {
        return;
    }
    beginRemoveRows({}, first, last);
    rows_.remove(first, last - first + 1);
    reindex();
    endRemoveRows();
    noteOrder(first);
    deselectRemoved(first, last);
}

// Of selected rows that have all gone, the one that takes their place is selected; else the others stay.
void BatchList::deselectRemoved(int first, int last)
{
    QList<int> left;
    for (const int row : selected_) {
        if (row < first || row > last) {
            left << (row > last ? row - (last - first + 1) : row);
        }
    }
    if (left.isEmpty() && !selected_.isEmpty()) {
        left << first;
    }
    setSelectedRows(left);
}

void BatchList::clear()
{
    beginResetModel();
    rows_.clear();
    sources_.clear();
    endResetModel();
    setSelectedRow(-1);
}

void BatchList::keepOnly(int index)
{
    if (index < 0 || index >= count()) {
        return;
    }
    const BatchRow kept = rows_.at(index);
    beginResetModel();
    rows_ = {kept};
    reindex();
    endResetModel();
    setSelectedRow(-1);
}

void BatchList::reindex()
{
    sources_.clear();
    for (int i = 0; i < count(); ++i) {
        rows_[i].order = i + 1;
        const QString source = rows_.at(i).source();
        if (!sources_.contains(source)) {
            sources_.insert(source, i);
        }
    }
}

void BatchList::setResultat(int index, const QString& iconName)
{
    if (index >= 0 && index < count()) {
        rows_[index].resultat = iconName;
        noteChange(index);
    }
}

void BatchList::setReason(int index, const QString& reason)
{
    if (index >= 0 && index < count()) {
        rows_[index].reason = reason;
        noteChange(index);
    }
}

void BatchList::setKept(int index, bool kept)
{
    if (index >= 0 && index < count()) {
        rows_[index].kept = kept;
        noteChange(index);
    }
}

void BatchList::setOutput(int index, const QString& path)
{
    if (index >= 0 && index < count()) {
        rows_[index].output = path;
        noteChange(index);
    }
}

void BatchList::setWarning(int index, const QString& warning, bool incomplete)
{
    if (index >= 0 && index < count()) {
        rows_[index].warning = warning;
        rows_[index].incomplete = incomplete;
        noteChange(index);
    }
}

void BatchList::setOut(int index, int out)
{
    if (index >= 0 && index < count()) {
        rows_[index].out = out;
        noteChange(index);
    }
}

void BatchList::setPart(int index, const std::optional<ClipPart>& part)
{
    if (index >= 0 && index < count()) {
        rows_[index].part = part;
        noteChange(index);
    }
}

int BatchList::firstMovableRow() const
{
    const auto running =
        std::find_if(rows_.cbegin(), rows_.cend(), [](const BatchRow& row) { return row.isCurrent(); });
    return running == rows_.cend() ? 0 : static_cast<int>(running - rows_.cbegin()) + 1;
}

Qt::ItemFlags BatchList::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractListModel::flags(index);
    if (!index.isValid()) {
        return flags | Qt::ItemIsDropEnabled;
    }
    return index.row() >= firstMovableRow() ? flags | Qt::ItemIsDragEnabled : flags;
}

bool BatchList::moveRows(const QModelIndex& from, int first, int count, const QModelIndex& to, int before)
{
    const int movable = firstMovableRow();
    if (first < movable || before < movable || count <= 0 || first > this->count() - count || before > this->count() ||
        !beginMoveRows(from, first, first + count - 1, to, before)) {
        return false;
    }
    const int target = before > first ? before - count : before;
    const auto begin = rows_.begin();
    if (before > first) {
        std::rotate(begin + first, begin + first + count, begin + before);
    } else {
        std::rotate(begin + before, begin + first, begin + first + count);
    }
    for (int& row : selected_) {
        if (row >= first && row < first + count) {
            row += target - first;
        } else if (row >= qMin(first, before) && row < qMax(first + count, before)) {
            row += before > first ? -count : count;
        }
    }
    reindex();
    endMoveRows();
    noteOrder(qMin(first, before));
    Q_EMIT selectionChanged();
    return true;
}

void BatchList::setSelectedRow(int index)
{
    setSelectedRows({index});
}

void BatchList::setSelectedRows(const QList<int>& rows)
{
    QList<int> wanted;
    QSet<int> met;
    for (const int row : rows) {
        if (row >= 0 && row < count() && !met.contains(row)) {
            met << row;
            wanted << row;
        }
    }
    if (wanted != selected_) {
        selected_ = wanted;
        Q_EMIT selectionChanged();
    }
}

void BatchList::noteOrder(int first)
{
    if (first < count()) {
        Q_EMIT dataChanged(index(first), index(count() - 1), {OrderRole});
    }
}

void BatchList::noteChange(int index)
{
    Q_EMIT dataChanged(this->index(index), this->index(index));
}

} // namespace tavrix
