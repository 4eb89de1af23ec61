// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace tavrix
{

class BatchList;
class RowDetails;
class WindowModel;
struct BatchRow;

// Draws a row of the batch: thumbnail, name, what the clip is, what will be made of it, and its state.
class BatchDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    BatchDelegate(const WindowModel& model, RowDetails& details, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

private:
    void paintThumbnail(QPainter* painter, const QRect& place, const BatchRow& row) const;
    void paintWords(QPainter* painter, const QRect& place, int row) const;
    [[nodiscard]] QString thirdLine(const BatchRow& row) const;

    [[nodiscard]] bool isPaused(const BatchRow& row) const;
    [[nodiscard]] QString mark(const BatchRow& row) const;
    [[nodiscard]] QString state(int row) const;

    const WindowModel& model_;
    const BatchList& rows_;
    RowDetails& details_;
};

} // namespace tavrix
