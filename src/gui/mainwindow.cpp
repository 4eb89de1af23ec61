#include "gui/mainwindow.h"

#include "app/appdelegate.h"
#include "base/alerts.h"
#include "base/bundle.h"
#include "base/localisation.h"
#include "base/runloopgate.h"
#include "gui/batchdrawer.h"
#include "gui/binding.h"
#include "gui/dragndropview.h"
#include "gui/dropmanners.h"
#include "gui/droppanel.h"
#include "gui/ecran.h"
#include "gui/encodepanel.h"
#include "gui/images.h"
#include "gui/leftoutbar.h"
#include "gui/mainmenu.h"
#include "gui/pickers.h"
#include "gui/preferencessheet.h"
#include "gui/reportwindow.h"
#include "gui/theme.h"
#include "gui/toolwindow.h"
#include "gui/treelocaliser.h"
#include "gui/windowtext.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QHBoxLayout>
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

constexpr QSize startSize(760, 350);

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
    auto* layout = new QVBoxLayout(middle);
    layout->setContentsMargins(16, 10, 16, 10);
    layout->setSpacing(8);
    layout->addLayout(buildUpper(), 1);
    drawer_ = new BatchDrawer(controller_, middle);
    layout->addWidget(drawer_, 2);
    layout->addLayout(buildFoot());
    setCentralWidget(middle);
}

QHBoxLayout* MainWindow::buildUpper()
{
    auto* upper = new QHBoxLayout;
    upper->setSpacing(18);
    drop_ = new DropPanel(controller_, this);
    connect(drop_, &DropPanel::chooseFiles, this, &MainWindow::chooseFiles);
    connect(drop_, &DropPanel::chooseFolder, this, &MainWindow::chooseFolder);
    upper->addWidget(drop_, 4);
    encode_ = new EncodePanel(controller_, this);
    upper->addWidget(encode_, 5);
    return upper;
}

QHBoxLayout* MainWindow::buildFoot()
{
    auto* line = new QHBoxLayout;
    foot_ = new LeftOutBar(controller_, this);
    line->addWidget(foot_, 1);
    auto* version = new QLabel(this);
    version->setProperty("role", QStringLiteral("caption"));
    version->setAccessibleName(QStringLiteral("@@Win_acc_version"));
    bindText(version, controller_.model().versionStr);
    line->addWidget(version);
    return line;
}

// Opening makes room below (the controller asks for it); closing gives that room back.
void MainWindow::watchDrawer()
{
    Drawer& drawer = controller_.model().drawer;
    drawerWasOpen_ = drawer.isOpen();
    connect(&drawer, &Control::changed, this, [this, &drawer] {
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
    const QList<QWidget*> order = drop_->tabOrder() + encode_->tabOrder() + drawer_->tabOrder() + foot_->tabOrder();
    for (qsizetype i = 1; i < order.size(); ++i) {
        setTabOrder(order.at(i - 1), order.at(i));
    }
    drop_->dropView()->setFocus();
}

void MainWindow::showInformation()
{
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
    // The toolkit's own texts, such as those of the file choosers.
    if (toolkitTexts_.load(QLocale(currentLanguage()), QStringLiteral("qtbase"), QStringLiteral("_"),
                           QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&toolkitTexts_);
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
