// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/text/cliptime.h"
#include "probe/mediainforecord.h"

#include <QAbstractListModel>
#include <QList>

#include <functional>
#include <optional>

namespace tavrix
{

// Status icons of a row; the machine reads the name back to know a row's state.
namespace rowIcon
{
inline const QString pending = QStringLiteral("puce");
inline const QString current = QStringLiteral("puceCurrent");
inline const QString success = QStringLiteral("puceSuccess");
inline const QString failure = QStringLiteral("puceFailure");
} // namespace rowIcon

// One row of the batch.
struct BatchRow {
    int order = 0;        // 1-based position given at insertion
    QString src;          // last path component of the source
    int out = 0;          // output format
    QString resultat;     // status icon's name
    MediaInfoRecord dico; // the source's record
    QString img;          // path of the thumbnail; nothing when there is no valid image
    QString reason;       // why the row failed; nothing unless it did
    QString output;       // path of the finished output; nothing until then
    QString warning;      // what the finished output lacks, or what is odd about it; nothing when it is as it should be
    bool kept = false;    // failed only because what stood under its output's name was to be kept
    std::optional<ClipPart> part = {}; // only this of the source is converted; nothing: all of it
    bool incomplete = false;           // the output holds all that could be read of a damaged source

    // Full path of the source; "" for a row without a record.
    [[nodiscard]] QString source() const { return dico.value(record::mainEncSrcPathStr).toString(); }
    // Being encoded; failed, skipped or stopped; done; not begun. The icon's name is where a row's state is kept.
    [[nodiscard]] bool isCurrent() const { return resultat == rowIcon::current; }
    [[nodiscard]] bool hasFailed() const { return resultat == rowIcon::failure; }
    [[nodiscard]] bool isConverted() const { return resultat == rowIcon::success; }
    [[nodiscard]] bool isWaiting() const { return resultat == rowIcon::pending; }
};

// The batch list, in encoding order. Indices out of range are ignored by the setters.
class BatchList : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Role {
        OrderRole = Qt::UserRole + 1,
        SrcRole,
        OutRole,
        ResultatRole,
        DicoRole,
        ImgRole,
        ReasonRole,
        OutputRole,
        WarningRole
    };

    explicit BatchList(QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return static_cast<int>(rows_.size()); }
    [[nodiscard]] const BatchRow& row(int index) const { return rows_.at(index); }
    // Index of the first row whose record names that source; -1 when none does.
    [[nodiscard]] int indexOfSource(const QString& path) const;

    void append(const BatchRow& row);
    void removeRow(int index); // renumbers the rows after it
    void removeRange(int first, int last);
    void clear();
    void keepOnly(int index); // removes every other row
    void setResultat(int index, const QString& iconName);
    void setReason(int index, const QString& reason);
    void setKept(int index, bool kept);
    void setOutput(int index, const QString& path);
    void setWarning(int index, const QString& warning, bool incomplete);
    void setOut(int index, int out);
    void setPart(int index, const std::optional<ClipPart>& part);

    // Rows are dragged to another place. Only those behind the one being encoded can be moved, and stay behind it: what
    // runs next is found by its place.
    [[nodiscard]] int firstMovableRow() const;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    // As in QAbstractItemModel: the rows go before row `before` as it is counted now. False where they cannot.
    bool moveRows(const QModelIndex& from, int first, int count, const QModelIndex& to, int before) override;

    // What assistive technology says of a row; a face knows the words. Without it that is the clip's name.
    void setRowWords(std::function<QString(int row)> words) { rowWords_ = std::move(words); }

    // Row that the user has selected, of many the one that was met first; -1 when none.
    [[nodiscard]] int selectedRow() const { return selected_.value(0, -1); }
    void setSelectedRow(int index);
    // All of them, in the order in which they were given.
    [[nodiscard]] const QList<int>& selectedRows() const { return selected_; }
    void setSelectedRows(const QList<int>& rows);

Q_SIGNALS:
    void selectionChanged();

private:
    void noteChange(int index);
    void noteOrder(int first);
    void reindex();
    void deselectRemoved(int first, int last);

    QList<BatchRow> rows_;
    QHash<QString, int> sources_; // source path to index of its first row
    QList<int> selected_;
    std::function<QString(int)> rowWords_;
};

} // namespace tavrix
