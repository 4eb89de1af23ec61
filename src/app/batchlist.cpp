#include "app/batchlist.h"

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
    if (index < 0 || index >= count()) {
        return;
    }
    beginRemoveRows({}, index, index);
    rows_.removeAt(index);
    reindex();
    endRemoveRows();
    if (count() > index) {
        Q_EMIT dataChanged(this->index(index), this->index(count() - 1), {OrderRole});
    }
    if (selected_ >= count()) {
        setSelectedRow(-1);
    }
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

void BatchList::setSelectedRow(int index)
{
    const int wanted = index >= 0 && index < count() ? index : -1;
    if (wanted != selected_) {
        selected_ = wanted;
        Q_EMIT selectionChanged();
    }
}

void BatchList::noteChange(int index)
{
    Q_EMIT dataChanged(this->index(index), this->index(index));
}

} // namespace tavrix
