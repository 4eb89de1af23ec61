#pragma once

#include "app/batchtally.h"
#include "gui/desktopbus.h"

class QWidget;

namespace tavrix
{

class appDelegate;

// Tells the desktop about a running batch: no sleep meanwhile, progress on the task bar, one notification at its end
// when the window is not in front.
class EncodingPresence : public QObject
{
    Q_OBJECT
public:
    EncodingPresence(appDelegate& controller, QWidget& window, const QDBusConnection& bus, QObject* parent = nullptr);

private:
    void begin(int row);
    void showProgress(int row, float value, float maximum);
    void end(bool stopped);

    appDelegate& controller_;
    QWidget& window_;
    SleepInhibitor inhibitor_;
    DesktopNotifier notifier_;
    TaskbarProgress taskbar_;
    BatchTally tally_;
};

} // namespace tavrix
