// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The analysis: one source after the other becomes a row.

#include "app/analysisahead.h"
#include "app/analysisqueue.h"
#include "app/toolchild.h"
#include "probe/mediainforecord.h"

#include <QObject>
#include <QStringList>

namespace tavrix
{

class DropArea;
class Session;

// What is known of the source that is being analysed.
struct CurrentSource {
    QString incoming;  // what the running tool has said; nothing = no text is collected
    QString retained;  // text of the decoding, kept for the final step; nothing = none
    QString rejection; // why it makes no row; nothing so far
};

// Every step takes its flag from the preferences store and either starts a child or goes on. What happens is told up by
// signals.
class AnalysisMachine : public QObject
{
    Q_OBJECT
public:
    // Nothing is owned.
    AnalysisMachine(Session& session, DropArea& dropArea, const LauncherMaker& maker);

    // Fills the queue; step() then begins with its first source.
    void begin(const QStringList& sources);
    void step();
    // False when the child does not run.
    bool launch(const QStringList& arguments);
    void childWrote(const QString& text);
    // The child was killed, by this machine for its silence or by somebody else.
    void interrupted();
    // Time has passed, in milliseconds: a child that has been silent for too long is ended, and its source is left out.
    void passTime(qint64 milliseconds);
    // The child was interrupted or cannot run. Queue, current source and flags stay, so that the next drop takes the
    // batch up again; that drop needs an open intake.
    void stall();
    // The stop control: obeyed at the next step.
    void stop();
    // What an earlier run of the program has queued and not looked at, in order: it is not read unasked.
    [[nodiscard]] QStringList leftOver() const;
    // Forgets it.
    void dropLeftOver();
    // The program ends: the child goes without a word.
    void abandon();

    // From a filled queue to its end or a stall.
    [[nodiscard]] bool isRunning() const { return running_; }
    [[nodiscard]] const ToolChild& child() const { return child_; }

Q_SIGNALS:
    void started(const QString& path, int number, int total);
    void leftOverDropped(const QStringList& sources);
    void accepted(int row);
    void rejected(const QString& path, const QString& reason);
    // The intake is open again, before ended() or stalled().
    void panelReset();
    void ended();
    void stalled(const QString& path);
    // The child could not be started.
    void childGone(taskLauncher* launcher);

private:
    void honourStop();
    [[nodiscard]] bool takeNext();
    void showCaption();
    void decode();
    void parse();
    void reject(const QString& reason);
    // Why the tool could say nothing of the source; nothing when it could.
    [[nodiscard]] QString toolTrouble(const QString& text) const;
    void makeThumbnail(const MediaInfoRecord& infos);
    void finishSource();
    void addRow(MediaInfoRecord infos);
    void resetPanel();
    void releaseChild();
    void lookAhead();

    Session& session_;
    DropArea& dropArea_;
    const LauncherMaker& maker_;
    ToolChild child_;
    AnalysisAhead ahead_;
    AnalysisQueue queue_;
    CurrentSource source_;
    bool running_ = false;
    bool queueIsOwn_ = false; // filled by this run of the program
    bool silenced_ = false;   // the child is ended for its silence
};

} // namespace tavrix
