// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/mainmenu.h"

#include "app/appdelegate.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/runloopgate.h"
#include "base/text/format.h"
#include "gui/widgets/binding.h"
#include "gui/window/batchdrawer.h"
#include "gui/window/batchview.h"
#include "gui/window/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenuBar>
#include <QPointer>

namespace tavrix
{

namespace
{

// A name that is reserved for examples leads nowhere.
bool isReachable(const char* addressKey)
{
    return !textOf(infoValue(QLatin1String(addressKey))).contains(QLatin1String(".example"));
}

} // namespace

template <class Function>
QAction* MainMenu::add(QMenu* menu, const char* name, const char* text, const QKeySequence& shortcut, Function function)
{
    auto* action = new QAction(QLatin1String(text), &window_);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this, function);
    menu->addAction(action);
    return action;
}

template <class Function>
QAction* MainMenu::addBound(QMenu* menu, StateButton& control, const char* text, const QKeySequence& shortcut,
                            Function function)
{
    const QByteArray name = control.objectName().toLatin1();
    QAction* action = add(menu, name.constData(), text, shortcut, function);
    follow(control, action, [action, &control] {
        action->setEnabled(control.isEnabled());
        action->setVisible(!control.isHidden());
        if (!control.title().isEmpty()) {
            action->setText(control.title());
        }
    });
    return action;
}

MainMenu::MainMenu(appDelegate& controller, MainWindow& window)
    : QObject(&window), controller_(controller), window_(window)
{
    QMenuBar* bar = window_.menuBar();
    buildApplicationMenu(bar);
    buildFileMenu(bar);
    buildEditMenu(bar);
    buildBatchMenu(bar);
    buildWindowMenu(bar);
    buildHelpMenu(bar);
}

void MainMenu::buildApplicationMenu(QMenuBar* bar)
{
    QMenu* menu = bar->addMenu(QStringLiteral("@@Win_menuApplication"));
    add(menu, "menuAbout", "@@Win_menuAbout", {}, [this] { window_.showAbout(); })->setMenuRole(QAction::AboutRole);
    menu->addSeparator();
    add(menu, "menuPref", "@@Win_menuPreferences", QKeySequence(Qt::CTRL | Qt::Key_Comma),
        [this] { controller_.iba_menuPref(); });
    menu->addSeparator();
    add(menu, "menuQuit", "@@Win_menuQuit", QKeySequence(Qt::CTRL | Qt::Key_Q), [this] {
        RunLoopGate::instance().deliver([controller = QPointer(&controller_)] {
            if (controller) {
                controller->iba_menuQuit();
            }
        });
    })->setShortcutContext(Qt::ApplicationShortcut);
}

void MainMenu::buildFileMenu(QMenuBar* bar)
{
    QMenu* menu = bar->addMenu(QStringLiteral("@@Win_menuFile"));
    add(menu, "menuOpenFiles", "@@Win_menuOpenFiles", QKeySequence(Qt::CTRL | Qt::Key_O),
        [this] { window_.chooseFiles(); });
    add(menu, "menuOpenFolder", "@@Win_menuOpenFolder", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O),
        [this] { window_.chooseFolder(); });
    menu->addSeparator();
    StateButton& select = controller_.model().mainEncDstSelectBt;
    add(menu, "menuDestination", "@@Win_menuDestination", QKeySequence(Qt::CTRL | Qt::Key_D),
        [this, &select] { controller_.iba_selectFolderBt(&select); });
    StateButton& reveal = controller_.model().mainEncDstRevealBt;
    add(menu, "menuReveal", "@@Win_menuReveal", QKeySequence(Qt::CTRL | Qt::Key_E),
        [this, &reveal] { controller_.iba_OpenFolder(&reveal); });
    menu->addSeparator();
    add(menu, "menuClose", "@@Win_menuClose", QKeySequence(Qt::CTRL | Qt::Key_W), [] {
        if (QWidget* active = QApplication::activeWindow()) {
            active->close();
        }
    })->setShortcutContext(Qt::ApplicationShortcut);
}

void MainMenu::sendToField(const char* slot)
{
    if (auto* field = qobject_cast<QLineEdit*>(QApplication::focusWidget())) {
        QMetaObject::invokeMethod(field, slot);
    }
}

void MainMenu::selectAll()
{
    if (qobject_cast<QLineEdit*>(QApplication::focusWidget()) != nullptr) {
        sendToField("selectAll");
    } else {
        window_.batchDrawer().view().selectAll();
    }
}

void MainMenu::buildEditMenu(QMenuBar* bar)
{
    QMenu* menu = bar->addMenu(QStringLiteral("@@Win_menuEdit"));
    add(menu, "menuUndo", "@@Win_menuUndo", QKeySequence(Qt::CTRL | Qt::Key_Z), [this] { sendToField("undo"); });
    menu->addSeparator();
    add(menu, "menuCut", "@@Win_menuCut", QKeySequence(Qt::CTRL | Qt::Key_X), [this] { sendToField("cut"); });
    add(menu, "menuCopy", "@@Win_menuCopy", QKeySequence(Qt::CTRL | Qt::Key_C), [this] { sendToField("copy"); });
    add(menu, "menuPaste", "@@Win_menuPaste", QKeySequence(Qt::CTRL | Qt::Key_V), [this] { sendToField("paste"); });
    add(menu, "menuSelectAll", "@@Win_menuSelectAll", QKeySequence(Qt::CTRL | Qt::Key_A), [this] { selectAll(); });
}

void MainMenu::buildBatchMenu(QMenuBar* bar)
{
    WindowModel& model = controller_.model();
    QMenu* menu = bar->addMenu(QStringLiteral("@@Win_menuBatch"));
    QAction* start = add(menu, "menuStart", "@@Win_menuStart", QKeySequence(Qt::CTRL | Qt::Key_Return),
                         [this] { controller_.iba_batchEncGoBt(); });
    follow(model.batchEncGoBt, start, [start, &model] { start->setEnabled(model.batchEncGoBt.isEnabled()); });
    const auto press = [this, &model](int segment) {
        model.encStopBt.setSelectedSegment(segment);
        controller_.iba_encStopBt(&model.encStopBt);
    };
    QAction* pause = add(menu, "menuPause", "@@Win_menuPause", QKeySequence(Qt::CTRL | Qt::Key_P),
                         [press] { press(encStopSegmentPause); });
    QAction* stop = add(menu, "menuStop", "@@Win_menuStop", QKeySequence(Qt::CTRL | Qt::Key_Period),
                        [press] { press(encStopSegmentStop); });
    follow(model.encStopBt, this, [pause, stop, &model] {
        const bool usable = model.encStopBt.isEnabled() && !model.encStopBt.isHidden();
        pause->setEnabled(usable);
        stop->setEnabled(usable);
    });
    QAction* stopReading =
        add(menu, "menuStopAnalysis", "@@Win_menuStopAnalysis", {}, [this] { controller_.iba_analysisStopBt(); });
    follow(model.analyseStopBt, stopReading,
           [stopReading, &model] { stopReading->setEnabled(!model.analyseStopBt.isHidden()); });
    menu->addSeparator();
    buildRowItems(menu);
}

void MainMenu::buildRowItems(QMenu* menu)
{
    WindowModel& model = controller_.model();
    BatchList& rows = model.encBatchArrayController;
    QAction* preview = add(menu, "menuPreview", "@@Win_menuPreview", QKeySequence(Qt::CTRL | Qt::Key_Y),
                           [this] { window_.batchDrawer().previewSelected(); });
    QAction* information = add(menu, "menuInformation", "@@Win_menuInformation", QKeySequence(Qt::CTRL | Qt::Key_I),
                               [this] { window_.showInformation(); });
    QAction* remove = add(menu, "menuRemove", "@@Win_menuRemove", QKeySequence(Qt::CTRL | Qt::Key_Delete),
                          [this, &model] { controller_.encBatchRemove(&model.batchEncRemoveBt); });
    QAction* show = add(menu, "menuShowOutput", "@@Win_menuShowOutput", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E),
                        [this] { window_.batchDrawer().showOutputOfSelected(); });
    add(menu, "menuMoveUp", "@@Win_menuMoveUp", QKeySequence(Qt::ALT | Qt::Key_Up),
        [this] { window_.batchDrawer().view().moveSelection(-1); });
    add(menu, "menuMoveDown", "@@Win_menuMoveDown", QKeySequence(Qt::ALT | Qt::Key_Down),
        [this] { window_.batchDrawer().view().moveSelection(1); });
    menu->addSeparator();
    QAction* removeConverted =
        add(menu, "menuRemoveConverted", "@@Win_menuRemoveConverted", {}, [this] { controller_.removeConverted(); });
    QAction* removeAll =
        add(menu, "menuRemoveAll", "@@Win_menuRemoveAll", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Delete),
            [this, &model] { controller_.encBatchRemoveAll(&model.batchEncRemoveAllBt); });
    const auto bindEnabled = [](QAction* action, StateButton& control) {
        follow(control, action, [action, &control] { action->setEnabled(control.isEnabled()); });
    };
    bindEnabled(preview, model.previewBt);
    bindEnabled(information, model.previewBt);
    bindEnabled(remove, model.batchEncRemoveBt);
    bindEnabled(removeAll, model.batchEncRemoveAllBt);
    const auto follows = [show, removeConverted, &rows] {
        const int selected = rows.selectedRow();
        show->setEnabled(selected >= 0 && selected < rows.count() && !rows.row(selected).output.isEmpty());
        bool converted = false;
        for (int i = 0; i < rows.count() && !converted; ++i) {
            converted = rows.row(i).isConverted();
        }
        removeConverted->setEnabled(converted);
    };
    followRows(rows, this, follows);
    connect(&rows, &BatchList::selectionChanged, show, follows);
}

void MainMenu::buildWindowMenu(QMenuBar* bar)
{
    QMenu* menu = bar->addMenu(QStringLiteral("@@Win_menuWindow"));
    add(menu, "menuMinimize", "@@Win_menuMinimize", QKeySequence(Qt::CTRL | Qt::Key_M),
        [this] { window_.showMinimized(); });
    QAction* drawer = add(menu, "menuDrawer", "@@Win_menuDrawer", QKeySequence(Qt::CTRL | Qt::Key_B),
                          [this] { controller_.iba_drawerToggle(); });
    drawer->setCheckable(true);
    Drawer& control = controller_.model().drawer;
    follow(control, drawer, [drawer, &control] { drawer->setChecked(control.isOpen()); });
}

void MainMenu::buildHelpMenu(QMenuBar* bar)
{
    WindowModel& model = controller_.model();
    QMenu* menu = bar->addMenu(QStringLiteral("@@Win_menuHelp"));
    add(menu, "menuHelp", "@@Win_menuShowHelp", QKeySequence(Qt::Key_F1),
        [this, &model] { controller_.iba_menuHelp(&model.versionStr); });
    add(menu, "menuWebSite", "@@Win_menuWebSite", {}, [this] {
        controller_.iba_openUrl();
    })->setVisible(isReachable("TVXWebSite"));
    menu->addSeparator();
    buildLogItems(menu);
    menu->addSeparator();
    addBound(menu, model.menuBugreport, "@@Win_menuBugreport", {}, [this] { window_.showReport(); });
    addBound(menu, model.menuContact, "@@Win_menuContact", {},
             [this, &model] { controller_.iba_mail(&model.menuContact); });
    model.menuContact.setHidden(!isReachable("TVXMailDomain"));
}

void MainMenu::buildLogItems(QMenu* menu)
{
    WindowModel& model = controller_.model();
    addBound(menu, model.menuResumeLog, "@@Win_menuResumeLog", QKeySequence(Qt::CTRL | Qt::Key_L),
             [this, &model] { controller_.iba_OpenFile(&model.menuResumeLog); });
    addBound(menu, model.menuDetailsLog, "@@Win_menuDetailsLog", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_L),
             [this, &model] { controller_.iba_OpenFile(&model.menuDetailsLog); });
    QAction* debug =
        addBound(menu, model.menuDebug, "@@Win_menuDebug", {}, [this] { controller_.iba_menuDebugToggle(); });
    debug->setCheckable(true);
    follow(model.menuDebug, debug, [debug, &model] { debug->setChecked(model.menuDebug.state() == 1); });
}

} // namespace tavrix
