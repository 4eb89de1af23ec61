// SPDX-License-Identifier: GPL-3.0-or-later
// Pause, resume and stop as somebody outside of the window asks for them.
#pragma once

#include <QObject>

namespace tavrix
{

class appDelegate;

// Presses the window's own control, so that it shows what has happened. What makes no sense at the moment does nothing.
// An order that comes while an alert is open waits until it is answered, as everything does that drives the controller.
class RunCommands : public QObject
{
    Q_OBJECT
public:
    explicit RunCommands(appDelegate& controller, QObject* parent = nullptr);

    [[nodiscard]] bool isPaused() const;
    // True while the encoder works and can be paused.
    [[nodiscard]] bool canPause() const;
    void pause();
    void resume();
    void stop();

private:
    void press(int segment, const QString& image);
    [[nodiscard]] bool shows(int segment, const QString& image) const;

    appDelegate& controller_;
};

} // namespace tavrix
