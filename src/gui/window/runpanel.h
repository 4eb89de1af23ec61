// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/runestimate.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

class QHBoxLayout;
class QLabel;

namespace tavrix
{

class appDelegate;
class NoticeLabel;
class SegmentedView;

// The running encode: which clip of how many, how far it is, how long it will take, pause and stop; below it the bar,
// and the line that tells what has just happened.
class RunPanel : public QWidget
{
    Q_OBJECT
public:
    explicit RunPanel(appDelegate& controller, QWidget* parent = nullptr);

    // Buttons that belong at the end of the line.
    void addButton(QWidget* button);
    void removeButton(QWidget* button);
    // Without clips there is no line, only what has just happened.
    void setLineShown(bool shown);
    // The widgets that take the focus, in the order of the Tab key.
    [[nodiscard]] QList<QWidget*> tabOrder() const;
    // Moves the focus to the pause control.
    void focusPause();

Q_SIGNALS:
    // The pause control has the focus and is about to go.
    void pauseLeaves();

private:
    void buildLine();
    void buildBar();
    void bindControls();
    void listen();
    void beginRow(int row);
    void takeStep(int row, int pass, int passes, double fraction);
    void refresh();
    [[nodiscard]] QString leftWords() const;
    [[nodiscard]] bool isRunning() const;
    [[nodiscard]] bool isPaused() const;

    appDelegate& controller_;
    QWidget* line_;
    QHBoxLayout* lineLayout_ = nullptr;
    QLabel* place_ = nullptr;
    QLabel* percent_ = nullptr;
    QLabel* step_ = nullptr;
    QLabel* left_ = nullptr;
    SegmentedView* control_ = nullptr;
    NoticeLabel* notice_ = nullptr;
    RunEstimate estimate_;
    QElapsedTimer clock_;
    QTimer ticker_; // the time left goes on between two lines of the tool
    int row_ = -1;
    int pass_ = 1;
    int passes_ = 1;
    double fraction_ = 0;
};

} // namespace tavrix
