#include "gui/encodingpresence.h"

#include "app/appdelegate.h"
#include "gui/windowtext.h"

#include <QWidget>

namespace tavrix
{

EncodingPresence::EncodingPresence(appDelegate& controller, QWidget& window, const QDBusConnection& bus,
                                   QObject* parent)
    : QObject(parent), controller_(controller), window_(window), inhibitor_(bus), notifier_(bus), taskbar_(bus)
{
    connect(&controller, &appDelegate::rowStarted, this, &EncodingPresence::begin);
    connect(&controller, &appDelegate::rowProgress, this, &EncodingPresence::showProgress);
    connect(&controller, &appDelegate::rowFinished, this,
            [this](int row) { tally_.count(controller_.model().encBatchArrayController.row(row)); });
    connect(&controller, &appDelegate::batchEnded, this, &EncodingPresence::end);
}

void EncodingPresence::begin(int row)
{
    inhibitor_.setInhibited(true, windowText("Win_inhibitReason"));
    showProgress(row, 0, 1);
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
    taskbar_.show(0, false);
    if (!stopped && !window_.isActiveWindow()) {
        notifier_.notify(windowText("Win_batchDoneTitle"), tallyWords(tally_));
    }
    tally_ = {};
}

} // namespace tavrix
