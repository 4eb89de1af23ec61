// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/mainwindow.h"

#include "app/appdelegate.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/dialogue/localisation.h"
#include "base/dialogue/runloopgate.h"
#include "gui/dialogs/pickers.h"
#include "gui/dialogs/preferencessheet.h"
#include "gui/dialogs/reportwindow.h"
#include "gui/dialogs/toolwindow.h"
#include "gui/widgets/binding.h"
#include "gui/widgets/dragndropview.h"
#include "gui/widgets/dropmanners.h"
#include "gui/widgets/ecran.h"
#include "gui/widgets/images.h"
#include "gui/widgets/noticelabel.h"
#include "gui/widgets/theme.h"
#include "gui/widgets/treelocaliser.h"
#include "gui/widgets/windowtext.h"
#include "gui/window/batchdrawer.h"
#include "gui/window/batchview.h"
#include "gui/window/droppanel.h"
#include "gui/window/encodepanel.h"
#include "gui/window/mainmenu.h"
#include "gui/window/runpanel.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFrame>
#include <QLabel>
#include <QLibraryInfo>
#include <QLocale>
#include <QMenuBar>
#include <QPointer>
#include <QVBoxLayout>

namespace tavrix
{

namespace
{

constexpr QSize startSize(880, 400);

} // namespace

MainWindow::MainWindow(appDelegate& controller) : controller_(controller)
{
    setObjectName(controller.model().objectName());
    setWindowTitle(QStringLiteral("@@Win_title"));
    setWindowIcon(imageNamed(QStringLiteral("tavrix")));
    DropManners::allow(this);
    build();
    auto* menu = new MainMenu(controller_, *this);
    menu->setObjectName(QStringLiteral("mainMenu"));
    preferences_ = new PreferencesSheet(controller_, this);
    watchTheme();
    watchDrawer();
    setOrder();
    resize(startSize);
}

void MainWindow::build()
{
    auto* middle = new QWidget(this);
    layout_ = new QVBoxLayout(middle);
    layout_->setContentsMargins(14, 10, 14, 10);
    layout_->setSpacing(8);
    drop_ = new DropPanel(controller_, middle);
    connect(drop_, &DropPanel::chooseFiles, this, &MainWindow::chooseFiles);
    connect(drop_, &DropPanel::chooseFolder, this, &MainWindow::chooseFolder);
    layout_->addWidget(drop_, 1);
    drawer_ = new BatchDrawer(controller_, middle);
    layout_->addWidget(drawer_, 1);
    auto* line = new QFrame(middle);
    line->setObjectName(QStringLiteral("barLine"));
    line->setFrameShape(QFrame::HLine);
    layout_->addWidget(line);
    encode_ = new EncodePanel(controller_, middle);
    connect(&encode_->run(), &RunPanel::pauseLeaves, this, [this] { drawer_->view().setFocus(Qt::OtherFocusReason); });
    layout_->addWidget(encode_);
    setCentralWidget(middle);

    auto* version = new QLabel(this);
    version->setProperty("role", QStringLiteral("caption"));
    version->setContentsMargins(0, 4, 12, 0);
    bindText(version, controller_.model().versionStr);
    menuBar()->setCornerWidget(version);
}

// The list is the window, and the drop area a line of it; without the list the drop area is the window.
void MainWindow::showDrawer(bool open)
{
    layout_->setStretchFactor(drop_, open ? 0 : 1);
    drop_->setCompact(open);
    encode_->setClipsShown(open);
}

// Opening makes room below (the controller asks for it); closing gives that room back.
void MainWindow::watchDrawer()
{
    Drawer& drawer = controller_.model().drawer;
    drawerWasOpen_ = drawer.isOpen();
    showDrawer(drawer.isOpen());
    connect(&drawer, &Control::changed, this, [this, &drawer] {
        showDrawer(drawer.isOpen());
        if (!drawerWasOpen_ && drawer.isOpen()) {
            heightOpen_ = height();
        } else if (drawerWasOpen_ && !drawer.isOpen() && !isMaximized() && !isFullScreen()) {
            // The drawer's room counts as the smallest size until both layouts know that it has gone.
            centralWidget()->layout()->activate();
            layout()->activate();
            resize(width(), height() - qMax(0, heightOpen_ - heightBefore_));
        }
        drawerWasOpen_ = drawer.isOpen();
    });
}

void MainWindow::growToward(const QString& side, float delta)
{
    heightBefore_ = height();
    if (!isMaximized() && !isFullScreen()) {
        ecran(this, side, delta);
    }
}

void MainWindow::watchTheme()
{
    ImageView& image = controller_.model().prefColorImgView;
    follow(image, this, [this, &image] {
        applyTheme(themeIndexOfImage(image.imageName()));
        update();
    });
}

void MainWindow::setOrder()
{
    const QList<QWidget*> order = drop_->tabOrder() + drawer_->tabOrder() + encode_->tabOrder();
    for (qsizetype i = 1; i < order.size(); ++i) {
        setTabOrder(order.at(i - 1), order.at(i));
    }
    drop_->dropView()->setFocus();
}

BatchList& MainWindow::rows() const
{
    return controller_.model().encBatchArrayController;
}

void MainWindow::showInformation()
{
    drawer_->selectAny();
    const BatchList& rows = controller_.model().encBatchArrayController;
    const int selected = rows.selectedRow();
    if (selected < 0 || selected >= rows.count()) {
        return;
    }
    const QString name = QStringLiteral("informationWindow");
    auto* information = findChild<ToolWindow*>(name);
    if (information == nullptr) {
        information = new ToolWindow(name, this);
    }
    information->setWindowTitle(windowText("Win_informationTitle", {rows.row(selected).src}));
    information->showOutput(QStringLiteral("tavrix-inspect"), {QStringLiteral("--"), rows.row(selected).source()});
}

void MainWindow::showReport()
{
    auto* report = findChild<ReportWindow*>();
    if (report == nullptr) {
        report = new ReportWindow([this] { controller_.iba_mail(&controller_.model().menuBugreport); }, this);
    }
    report->showReport();
}

void MainWindow::takeDrops()
{
    drop_->dropView()->setDelegate(&controller_);
}

bool MainWindow::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop: {
        // Not sent: what the drop area refuses would come back to its window, and so on without an end.
        QObject* const view = drop_->dropView();
        return view->event(event);
    }
    default:
        return QMainWindow::event(event);
    }
}

void MainWindow::localise()
{
    FVAutoLocalizeSetName(QStringLiteral("Window"));
    FVAutoLocalizeWindow(this);
    FVAutoLocalizeMenu(menuBar());
    wrapTips();
    drop_->showTexts();
    drawer_->showTexts();
    // The toolkit's own texts, such as those of the file choosers.
    if (toolkitTexts_.load(QLocale(currentLanguage()), QStringLiteral("qtbase"), QStringLiteral("_"),
                           QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&toolkitTexts_);
    }
}

// The toolkit breaks only what is markup into lines.
void MainWindow::wrapTips()
{
    for (auto* widget : findChildren<QWidget*>()) {
        if (!widget->toolTip().startsWith(QLatin1Char('<'))) {
            setTip(widget, widget->toolTip());
        }
    }
}

void MainWindow::openPaths(const QStringList& paths)
{
    if (!paths.isEmpty()) {
        controller_.applicationOpenFiles(paths);
    }
}

void MainWindow::chooseFiles()
{
    openPaths(selectSources(windowText("Win_chooseClips")));
}

void MainWindow::chooseFolder()
{
    const QString folder = selectSourceFolder(windowText("Win_chooseFolder"));
    openPaths(folder.isEmpty() ? QStringList() : QStringList{folder});
}

void MainWindow::showNotice(const QString& text)
{
    findChild<NoticeLabel*>()->showNotice(text);
}

void MainWindow::showAbout()
{
    displayAlertSheet(bundleName() + QLatin1Char(' ') + bundleVersion(), windowText("Win_about_text"), this);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (controller_.isQuitting()) {
        event->accept();
        return;
    }
    // The window stays until the quit is certain; the question must not be asked inside this event.
    event->ignore();
    RunLoopGate::instance().deliverLater([controller = QPointer(&controller_)] {
        if (controller) {
            controller->windowWillClose();
            (void)controller->applicationShouldTerminateAfterLastWindowClosed();
        }
    });
}

} // namespace tavrix
