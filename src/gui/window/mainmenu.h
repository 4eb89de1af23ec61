// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QKeySequence>
#include <QObject>

class QAction;
class QMenu;
class QMenuBar;

namespace tavrix
{

class appDelegate;
class MainWindow;
class StateButton;

// The menu bar and what its items do. Items that the controller tells apart carry the name of their control.
class MainMenu : public QObject
{
    Q_OBJECT
public:
    MainMenu(appDelegate& controller, MainWindow& window);

private:
    void buildApplicationMenu(QMenuBar* bar);
    void buildFileMenu(QMenuBar* bar);
    void buildEditMenu(QMenuBar* bar);
    void buildBatchMenu(QMenuBar* bar);
    void buildRowItems(QMenu* menu);
    void buildWindowMenu(QMenuBar* bar);
    void buildHelpMenu(QMenuBar* bar);
    void buildLogItems(QMenu* menu);
    template <class Function>
    QAction* add(QMenu* menu, const char* name, const char* text, const QKeySequence& shortcut, Function function);
    template <class Function>
    QAction* addBound(QMenu* menu, StateButton& control, const char* text, const QKeySequence& shortcut,
                      Function function);
    // Sends an edit command to the text field that has the focus.
    void sendToField(const char* slot);
    // Of the field that has the focus, else of the list.
    void selectAll();

    appDelegate& controller_;
    MainWindow& window_;
};

} // namespace tavrix
