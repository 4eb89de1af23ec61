#pragma once

#include <QWidget>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QListView;
class QPushButton;

namespace tavrix
{

class appDelegate;
class RowDetails;

// The drawer below the main part of the window: the batch list and what can be done with its rows.
class BatchDrawer : public QWidget
{
    Q_OBJECT
public:
    explicit BatchDrawer(appDelegate& controller, QWidget* parent = nullptr);

    [[nodiscard]] RowDetails& details() const { return *details_; }
    // The widgets that take the focus, in the order of the Tab key.
    [[nodiscard]] QList<QWidget*> tabOrder() const;
    // Both do nothing when no row is selected.
    void removeSelected();
    void previewSelected();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildHead(QHBoxLayout* line);
    void buildList();
    void buildButtons(QHBoxLayout* line);
    void showSelection();
    void followRow(int row);
    void takeSelection();
    void refreshHead();
    void showMenu(const QPoint& place);

    appDelegate& controller_;
    RowDetails* details_;
    QListView* list_;
    QLabel* count_ = nullptr;
    QComboBox* format_ = nullptr;
    QPushButton* preview_ = nullptr;
    QPushButton* remove_ = nullptr;
    QPushButton* removeAll_ = nullptr;
};

} // namespace tavrix
