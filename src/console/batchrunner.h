// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/appdelegate.h"
#include "app/runestimate.h"
#include "console/consoleface.h"
#include "console/reporter.h"

#include <QElapsedTimer>
#include <QObject>

namespace tavrix
{

// Exit statuses of the console program.
inline constexpr int exitAllDone = 0;
inline constexpr int exitSomeFailed = 1;
inline constexpr int exitWrongUsage = 2;
inline constexpr int exitNothingAccepted = 3;

// Takes the sources of a command line through the controller: intake, analysis, batch, summary, quit.
class BatchRunner : public QObject
{
    Q_OBJECT
public:
    struct Wishes {
        bool dryRun = false;      // analyse, tell what would be made, end
        bool keptIsFailed = true; // whether a row whose output existed already spoils the exit status
    };

    // Nothing is owned.
    BatchRunner(appDelegate* controller, ConsoleFace* face, Reporter* reporter, const Wishes& wishes,
                QObject* parent = nullptr);

    // Only this part of each clip is converted.
    void setPart(const std::optional<ClipPart>& part) { part_ = part; }
    // Sources are absolute paths.
    void start(const QStringList& sources);

    // The stop button; a second time quits at once.
    void interrupt();
    void terminate();
    // Pauses the encoder before the program is stopped, and lets it go on afterwards.
    void suspend();
    void resume();

private:
    void connectController();
    void connectRows();
    void analysisOver();
    void finish(int exitCode);
    void noteRow(int row, bool success);
    void noteStep(int row, int pass, int passes, double fraction);
    [[nodiscard]] QList<PlannedRow> plannedRows() const;
    [[nodiscard]] bool isTrouble(const RowReport& row) const;

    appDelegate* controller_;
    ConsoleFace* face_;
    Reporter* reporter_;
    Wishes wishes_;
    RowProgress progress_;
    RunEstimate estimate_;
    QElapsedTimer clock_;
    std::optional<ClipPart> part_;
    QList<RowReport> rows_;
    int leftOut_ = 0;
    bool batchBegan_ = false;
    bool interrupted_ = false;
    bool finished_ = false;
    bool pausedHere_ = false;
};

} // namespace tavrix
