// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/windowprogram.h"

#include "app/appdelegate.h"
#include "base/dialogue/runloopgate.h"
#include "base/store/preferences.h"
#include "gui/desktop/buscontrol.h"
#include "gui/desktop/desktopscheme.h"
#include "gui/desktop/encodingpresence.h"
#include "gui/desktop/sleeppause.h"
#include "gui/dialogs/pickers.h"
#include "gui/widgets/windowtext.h"
#include "gui/window/mainwindow.h"

#include <QPointer>
#include <QTimer>

namespace tavrix
{

WindowProgram::WindowProgram(std::function<void()> end)
    : face_([this, end = std::move(end)] {
          ended_ = true;
          end();
      })
{
    setAlertPresenter(&presenter_);
    controller_ = std::make_unique<appDelegate>(&face_);
    window_ = std::make_unique<MainWindow>(*controller_);
    presenter_.setWindow(window_.get());
    face_.setWindow(window_.get());
    setPickerWindow(window_.get());
    setUnopenedListener([this](const QUrl& url) {
        const QString what = url.isLocalFile() ? url.toLocalFile() : url.toString(QUrl::RemoveQuery);
        window_->showNotice(windowText("Win_notOpened", {what}));
    });
}

WindowProgram::~WindowProgram()
{
    controller_->applicationWillTerminate();
    face_.closeWindows();
    sleepPause_.reset();
    busControl_.reset();
    presence_.reset();
    commands_.reset();
    presenter_.setWindow(nullptr);
    face_.setWindow(nullptr);
    setPickerWindow(nullptr);
    setUnopenedListener({});
    window_.reset();
    controller_.reset();
    if (desktop_) {
        setDesktopServices(nullptr);
    }
    setAlertPresenter(nullptr);
}

bool WindowProgram::start()
{
    // An alert of the start stands alone: its window is not shown yet.
    presenter_.setWindow(nullptr);
    const bool ready = controller_->awakeFromNib();
    presenter_.setWindow(window_.get());
    if (!ready) {
        return false;
    }
    controller_->applicationDidFinishLaunching();
    connect(&handover_, &Handover::arrived, this, &WindowProgram::takeOver);
    (void)handover_.listen(); // where it cannot, another start says that this copy runs
    window_->takeDrops();
    window_->show();
    if (!prefSynchronize()) {
        window_->showNotice(windowText("Win_nothingKept", {preferencesPath()}));
    }
    // Connecting to the message bus can take a moment; the window is shown first.
    QTimer::singleShot(0, this, &WindowProgram::connectDesktop);
    return true;
}

void WindowProgram::connectDesktop()
{
    commands_ = std::make_unique<RunCommands>(*controller_);
    sleepPause_ = std::make_unique<SleepPause>(*controller_, *commands_, QDBusConnection::systemBus());
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    scheme_ = std::make_unique<DesktopScheme>(bus);
    desktop_ = std::make_unique<BusDesktopServices>(bus);
    setDesktopServices(desktop_.get());
    presence_ = std::make_unique<EncodingPresence>(*controller_, *window_, *commands_, bus);
    busControl_ = std::make_unique<BusControl>(*controller_, bus);
}

// The files of another start, which has brought its user here.
void WindowProgram::takeOver(const QStringList& paths)
{
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    window_->activateWindow();
    openFiles(paths);
}

void WindowProgram::openFiles(const QStringList& paths)
{
    if (!paths.isEmpty()) {
        controller_->applicationOpenFiles(paths);
    }
}

void WindowProgram::endNow()
{
    // An open alert or chooser, or one that follows it, would keep the end waiting behind it.
    presenter_.answerAllFromNowOn();
    cancelPickers();
    RunLoopGate::instance().deliver([controller = QPointer(controller_.get())] {
        if (controller) {
            controller->quitWithoutQuestion();
        }
    });
}

} // namespace tavrix
