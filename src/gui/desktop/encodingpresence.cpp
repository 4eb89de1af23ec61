// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/desktop/encodingpresence.h"

#include "app/appdelegate.h"
#include "app/batchtally.h"
#include "gui/desktop/runcommands.h"
#include "gui/widgets/windowtext.h"

#include <QWidget>

#include <utility>

namespace tavrix
{

EncodingPresence::EncodingPresence(appDelegate& controller, QWidget& window, RunCommands& commands,
                                   const QDBusConnection& bus, QObject* parent)
    : QObject(parent), controller_(controller), window_(window), commands_(commands), inhibitor_(bus), notifier_(bus),
      taskbar_(bus)
{
    connect(&controller, &appDelegate::rowStarted, this, &EncodingPresence::begin);
    connect(&controller, &appDelegate::rowProgress, this, &EncodingPresence::showProgress);
    connect(&controller, &appDelegate::batchEnded, this, &EncodingPresence::end);
    connect(&notifier_, &DesktopNotifier::pressed, this, &EncodingPresence::obey);
    connect(&controller.model().encStopBt, &Control::changed, this, [this] {
        if (hasButtons_ && commands_.isPaused() != shownPaused_) {
            showButtons();
        }
    });
}

void EncodingPresence::begin(int row)
{
    inhibitor_.setInhibited(true, windowText("Win_inhibitReason"));
    showProgress(row, 0, 1);
    if (!std::exchange(runs_, true) && !window_.isActiveWindow()) {
        showButtons();
    }
}

void EncodingPresence::showButtons()
{
    hasButtons_ = true;
    shownPaused_ = commands_.isPaused();
    const QString toggle = windowText(shownPaused_ ? "Win_image_btPlay" : "Win_image_btPause");
    notifier_.notify(windowText(shownPaused_ ? "Win_notePaused" : "Win_noteRunning"),
                     windowText("Win_clips", {controller_.model().encBatchArrayController.count()}),
                     {{shownPaused_ ? QStringLiteral("resume") : QStringLiteral("pause"), toggle},
                      {QStringLiteral("stop"), windowText("Win_image_btStop")}});
}

void EncodingPresence::obey(const QString& word)
{
    if (word == QLatin1String("pause")) {
        commands_.pause();
    } else if (word == QLatin1String("resume")) {
        commands_.resume();
    } else if (word == QLatin1String("stop")) {
        commands_.stop();
    }
}

void EncodingPresence::showProgress(int row, float value, float maximum)
{
    const int rows = controller_.model().encBatchArrayController.count();
    const double part = maximum > 0 ? qBound(0.0, static_cast<double>(value / maximum), 1.0) : 0;
    taskbar_.show(rows > 0 ? (row + part) / rows : 0, true);
}

void EncodingPresence::end(bool stopped)
{
    inhibitor_.setInhibited(false);
    runs_ = false;
    hasButtons_ = false;
    taskbar_.show(0, false);
    if (!stopped && !window_.isActiveWindow()) {
        notifier_.notify(windowText("Win_batchDoneTitle"),
                         tallyText(tallyOf(controller_.model().encBatchArrayController)));
    }
}

} // namespace tavrix
