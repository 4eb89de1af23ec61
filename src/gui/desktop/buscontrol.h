// SPDX-License-Identifier: GPL-3.0-or-later
// What other programs of the session can see and order: the service org.tavrix.Tavrix on the session's message bus.
#pragma once

#include "gui/desktop/runcommands.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>

namespace tavrix
{

class appDelegate;

inline const QString busService = QStringLiteral("org.tavrix.Tavrix"); // the name of the interface too
inline const QString busPath = QStringLiteral("/org/tavrix/Tavrix");

// The names and values here are a promise to scripts: docs/window.md describes them.
class BusControl : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.tavrix.Tavrix")
    Q_PROPERTY(QString State READ state)
    Q_PROPERTY(double Progress READ progress)
    Q_PROPERTY(int Clip READ clip)
    Q_PROPERTY(int Clips READ clips)
public:
    BusControl(appDelegate& controller, const QDBusConnection& bus, QObject* parent = nullptr);
    ~BusControl() override;

    // "idle", "analysing", "encoding" or "paused".
    [[nodiscard]] QString state() const;
    // Of the whole batch, between 0 and 1.
    [[nodiscard]] double progress() const { return progress_; }
    // Number of the clip being encoded, from 1; 0 when none is.
    [[nodiscard]] int clip() const { return clip_; }
    [[nodiscard]] int clips() const;

public Q_SLOTS:
    Q_SCRIPTABLE void Pause() { commands_.pause(); }
    Q_SCRIPTABLE void Resume() { commands_.resume(); }
    Q_SCRIPTABLE void Stop() { commands_.stop(); }
    // Absolute paths or "file:" addresses, taken in like a drop. Anything else is an error, and nothing is taken in.
    Q_SCRIPTABLE void AddFiles(const QStringList& files);

private:
    void follow();
    void showProgress(int row, float value, float maximum);
    // Tells the listeners what has changed.
    void announce();

    appDelegate& controller_;
    RunCommands commands_;
    QDBusConnection bus_;
    bool batchRuns_ = false;
    int clip_ = 0;
    double progress_ = 0;
    QVariantMap told_;
};

} // namespace tavrix
