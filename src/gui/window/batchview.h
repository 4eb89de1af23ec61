// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListView>

namespace tavrix
{

class BatchList;

// The batch list on the screen: many rows can be selected, rows are dragged to another place, and the selection is that
// of the model.
class BatchView : public QListView
{
    Q_OBJECT
public:
    explicit BatchView(BatchList& rows, QWidget* parent = nullptr);

    // Moves the selected rows one place up (-1) or down (1); nothing where there is no place to go.
    void moveSelection(int step);
    void setEmptyWords(const QString& words);

Q_SIGNALS:
    // Space or Return; Delete.
    void previewWished();
    void removalWished();

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    void showSelection();

    BatchList& rows_;
    QString emptyWords_;
    bool showing_ = false; // the model's selection is being taken over
};

} // namespace tavrix
