// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The batch: rows one after the other.

#include "app/encodeprogress.h"
#include "app/rowencode.h"
#include "app/runcontrol.h"
#include "app/toolchild.h"

#include <QObject>
#include <QStringList>

namespace tavrix
{

class BatchRows;
class Destination;
class DropArea;
class Session;

// Chooses row after row, launches the children of its life, and reacts to the start and the stop control. It tells up
// what happens by signals.
class BatchMachine : public QObject
{
    Q_OBJECT
public:
    // Nothing is owned.
    BatchMachine(Session& session, DropArea& dropArea, Destination& destination, BatchRows& batchRows,
                 const LauncherMaker& maker);

    // The start button.
    void start();
    // Queues a step and runs the queue, unless it runs already: a chain of failing rows must not grow the stack.
    void send(const QString& stepName);
    void step(const QString& stepName);
    // The child of a pass; see EncodeProgress::begin. False when it does not run.
    bool launch(const QStringList& arguments, float maximum, int parser,
                const taskLauncher::Environment& environment = {});

    // Callbacks of the child. While an analysis runs the encode is paused for it: what still arrives is no progress,
    // and the child's end waits, because the machine must not open the intake under the analysis.
    void childWrote(const QString& text, bool analysing);
    void childDone(const taskLauncher* launcher, bool analysing);
    void deliverWaitingEnd();
    // Time has passed, in milliseconds: a child that has been silent for too long is ended, and its row fails.
    void passTime(qint64 milliseconds);

    // The program ends: the child goes, and what the row has made so far.
    void abandon();

    [[nodiscard]] const ToolChild& child() const { return child_; }
    [[nodiscard]] RunControl& control() { return control_; }
    [[nodiscard]] RowEncode& row() { return row_; }

Q_SIGNALS:
    void rowStarted(int row);
    void rowProgress(int row, float value, float maximum);
    // How much of a pass is done, 0 to 1, by what its tool says of itself; passes count from 1.
    void rowStep(int row, int pass, int passes, double fraction);
    void rowFinished(int row, bool success);
    void rowVanished(const QString& path);
    void batchEnded(bool stopped);
    // The child's end as this machine knows it (null: it could not be started); it has to come back by childDone().
    void childGone(taskLauncher* launcher);

private:
    struct Steps {
        QStringList waiting;
        bool running = false;
    };

    void honourStop();
    void chooseRow();
    void skipVanishedRow(int index);
    void takeRowStep();
    void launchPass();
    void tellStep(double fraction);
    void finishRow();
    void tellRowOver(int row, bool success);
    void end();
    void endStopped();
    void tellEnd(bool stopped);
    void stop();

    Session& session_;
    DropArea& dropArea_;
    Destination& destination_;
    BatchRows& batchRows_;
    ToolChild child_;
    EncodeProgress progress_;
    RowEncode row_;
    RunControl control_;
    Steps steps_;
    bool endWaits_ = false; // the child has ended during an analysis
};

} // namespace tavrix
