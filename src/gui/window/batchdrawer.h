// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QMenu;
class QPushButton;

namespace tavrix
{

class appDelegate;
class BatchView;
class RowDetails;

// The drawer, which takes the window while it is open: the batch list and what can be done with its rows.
class BatchDrawer : public QWidget
{
    Q_OBJECT
public:
    explicit BatchDrawer(appDelegate& controller, QWidget* parent = nullptr);

    ~BatchDrawer() override;

    [[nodiscard]] RowDetails& details() const { return *details_; }
    [[nodiscard]] BatchView& view() const { return *list_; }
    // The widgets that take the focus, in the order of the Tab key.
    [[nodiscard]] QList<QWidget*> tabOrder() const;
    // Selects the first row where none is selected.
    void selectAny();
    void previewSelected(); // of any, where none is selected
    // These do nothing when no row is selected.
    void removeSelected();
    void showOutputOfSelected();
    // The texts that are not marked, in the language in force.
    void showTexts();

private:
    void buildHead(QHBoxLayout* line);
    void buildList();
    void buildButtons(QHBoxLayout* line);
    QPushButton* addButton(QHBoxLayout* line, const char* name, const char* text, const char* tip);
    void setFormat(int out);
    void convertWhole();
    void followRow(int row);
    void refreshHead();
    void refreshButtons();
    [[nodiscard]] QString countWords() const;
    void showMenu(const QPoint& place);
    void addFormats(QMenu* menu);

    appDelegate& controller_;
    RowDetails* details_;
    BatchView* list_;
    QLabel* count_ = nullptr;
    QComboBox* format_ = nullptr;
    QPushButton* preview_ = nullptr;
    QPushButton* show_ = nullptr;
    QPushButton* remove_ = nullptr;
    QPushButton* removeConverted_ = nullptr;
    QPushButton* removeAll_ = nullptr;
};

} // namespace tavrix
