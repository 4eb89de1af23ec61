// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QBoxLayout;
class QLabel;
class QPushButton;

namespace tavrix
{

class appDelegate;
class dragNDropView;
class LeftOutButton;
class SegmentedView;

// What comes in: the drop area with its captions, the buttons that choose files, the running analysis, what was left
// out. Without clips it is the window, with clips one line of it.
class DropPanel : public QWidget
{
    Q_OBJECT
public:
    explicit DropPanel(appDelegate& controller, QWidget* parent = nullptr);

    [[nodiscard]] dragNDropView* dropView() const { return view_; }
    // The widgets that take the focus, in the order of the Tab key.
    [[nodiscard]] QList<QWidget*> tabOrder() const;
    // As one line.
    void setCompact(bool compact);
    // The texts that depend on the shape, in the language in force.
    void showTexts();

Q_SIGNALS:
    void chooseFiles();
    void chooseFolder();

protected:
    void changeEvent(QEvent* event) override;

private:
    void buildWords();
    void buildButtons();
    void buildAnalysisLine();
    void showImage();
    void askWhat();

    appDelegate& controller_;
    dragNDropView* view_;
    QBoxLayout* layout_;
    QLabel* image_;
    QLabel* caption_ = nullptr;
    QLabel* action_ = nullptr;
    QLabel* hint_ = nullptr;
    QPushButton* addClips_ = nullptr;
    QPushButton* addFolder_ = nullptr;
    LeftOutButton* leftOut_ = nullptr;
    SegmentedView* stop_ = nullptr;
    bool compact_ = false;
};

} // namespace tavrix
