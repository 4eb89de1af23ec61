#pragma once

#include "app/appdelegate.h"
#include "console/consoleface.h"
#include "console/reporter.h"

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
    // Nothing is owned.
    BatchRunner(appDelegate* controller, ConsoleFace* face, Reporter* reporter, QObject* parent = nullptr);

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
    void analysisOver();
    void finish(int exitCode);
    void noteRow(int row, bool success);

    appDelegate* controller_;
    ConsoleFace* face_;
    Reporter* reporter_;
    QList<RowReport> rows_;
    int leftOut_ = 0;
    bool batchBegan_ = false;
    bool interrupted_ = false;
    bool finished_ = false;
    bool pausedHere_ = false;
};

} // namespace tavrix
