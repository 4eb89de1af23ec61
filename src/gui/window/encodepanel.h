// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace tavrix
{

class appDelegate;
class RunPanel;

// The bar at the bottom of the window, in the order in which things are done: destination, format of new clips, start,
// the running encode.
class EncodePanel : public QWidget
{
    Q_OBJECT
public:
    explicit EncodePanel(appDelegate& controller, QWidget* parent = nullptr);

    // The widgets that take the focus, in the order of the Tab key.
    [[nodiscard]] QList<QWidget*> tabOrder() const;
    // With clips there is a line for the run, at whose end Start stands; without, Start stands beside the format.
    void setClipsShown(bool shown);
    [[nodiscard]] RunPanel& run() const { return *run_; }

private:
    void buildDestination(QVBoxLayout* layout);
    void buildEveryTime(QHBoxLayout* line);
    void buildFormat(QVBoxLayout* layout);
    void buildWaiting();
    void buildStart();
    void showWaiting();
    void useFormatForWaiting();
    void showGoOn();

    appDelegate& controller_;
    QHBoxLayout* formatLine_ = nullptr;
    QComboBox* format_ = nullptr;
    QLabel* waiting_ = nullptr;
    QPushButton* useForWaiting_ = nullptr;
    QPushButton* goOn_ = nullptr;
    QPushButton* start_ = nullptr;
    RunPanel* run_ = nullptr;
    QList<QWidget*> order_; // as they are built, from top to bottom
    bool clipsShown_ = false;
};

} // namespace tavrix
