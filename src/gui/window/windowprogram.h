// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/desktop/handover.h"
#include "gui/dialogs/dialogpresenter.h"
#include "gui/widgets/dropmanners.h"
#include "gui/window/windowface.h"

#include <QObject>

#include <functional>
#include <memory>

namespace tavrix
{

class appDelegate;
class BusControl;
class BusDesktopServices;
class DesktopScheme;
class EncodingPresence;
class MainWindow;
class RunCommands;
class SleepPause;

// The desktop program put together: face, alerts, controller, window, desktop services. The application object must
// exist.
class WindowProgram : public QObject
{
    Q_OBJECT
public:
    // `end` leaves the event loop.
    explicit WindowProgram(std::function<void()> end);
    ~WindowProgram() override;

    // False when a check of the start failed: its alert has been shown.
    [[nodiscard]] bool start();
    // The system's open request; absolute paths.
    void openFiles(const QStringList& paths);
    // A termination signal or the end of the session: no question is asked.
    void endNow();
    // True once the controller has asked for the end.
    [[nodiscard]] bool hasEnded() const { return ended_; }

    [[nodiscard]] appDelegate& controller() const { return *controller_; }
    [[nodiscard]] MainWindow& window() const { return *window_; }
    [[nodiscard]] DialogPresenter& presenter() { return presenter_; }
    [[nodiscard]] WindowFace& face() { return face_; }

private:
    void connectDesktop();
    void takeOver(const QStringList& paths);

    bool ended_ = false;
    DropManners dropManners_; // before the first window
    DialogPresenter presenter_;
    WindowFace face_;
    std::unique_ptr<appDelegate> controller_;
    std::unique_ptr<MainWindow> window_;
    Handover handover_;
    std::unique_ptr<DesktopScheme> scheme_;
    std::unique_ptr<BusDesktopServices> desktop_;
    std::unique_ptr<RunCommands> commands_;
    std::unique_ptr<EncodingPresence> presence_;
    std::unique_ptr<BusControl> busControl_;
    std::unique_ptr<SleepPause> sleepPause_;
};

} // namespace tavrix
