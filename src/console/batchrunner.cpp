#include "console/batchrunner.h"

#include "app/batchtally.h"
#include "base/filesizes.h"
#include "base/format.h"
#include "base/runloopgate.h"
#include "console/consoletext.h"
#include "encode/outputname.h"

#include <algorithm>

namespace tavrix
{

BatchRunner::BatchRunner(appDelegate* controller, ConsoleFace* face, Reporter* reporter, QObject* parent)
    : QObject(parent), controller_(controller), face_(face), reporter_(reporter)
{
    connectController();
}

void BatchRunner::connectController()
{
    const BatchList& rows = controller_->model().encBatchArrayController;
    connect(controller_, &appDelegate::sourcesQueued, this, [this](int count) { reporter_->queued(count); });
    connect(controller_, &appDelegate::leftOverDropped, this, [this](const QStringList& sources) {
        reporter_->message(formatText(consoleText("Con_leftOver"), {qint64(sources.size()), sources.first()}),
                           QString(), QString());
    });
    connect(controller_, &appDelegate::analysisStarted, this,
            [this](const QString& path, int number, int total) { reporter_->analysing(path, number, total); });
    connect(controller_, &appDelegate::sourceAccepted, this,
            [this, &rows](int row) { reporter_->accepted(rows.row(row).source(), rows.row(row).dico); });
    connect(controller_, &appDelegate::sourceRejected, this, [this](const QString& path, const QString& reason) {
        ++leftOut_;
        reporter_->rejected(path, reason);
    });
    connect(controller_, &appDelegate::nothingToAnalyse, this, [this] {
        reporter_->message(consoleText("Con_nothing"), QString(), QString());
        finish(exitNothingAccepted);
    });
    connect(controller_, &appDelegate::analysisStalled, this, [this](const QString& path) {
        reporter_->message(consoleText("Con_stalled"), path, QString());
        finish(exitSomeFailed);
    });
    connect(controller_, &appDelegate::analysisEnded, this, &BatchRunner::analysisOver);
    connect(controller_, &appDelegate::rowStarted, this, [this, &rows](int row) {
        batchBegan_ = true;
        reporter_->rowStarted(row + 1, rows.count(), rows.row(row).src);
    });
    connect(controller_, &appDelegate::rowProgress, this,
            [this](int /*row*/, float value, float maximum) { reporter_->rowProgress(value, maximum); });
    connect(controller_, &appDelegate::rowFinished, this, &BatchRunner::noteRow);
    connect(controller_, &appDelegate::rowVanished, this, [this](const QString& path) {
        rows_ << RowReport{path, {}, consoleText("Con_vanished"), 0, false};
    });
    connect(controller_, &appDelegate::batchEnded, this, [this](bool stopped) {
        const bool failed = std::any_of(rows_.cbegin(), rows_.cend(),
                                        [](const RowReport& row) { return !row.success || row.incomplete; });
        finish(stopped || failed ? exitSomeFailed : exitAllDone);
    });
}

void BatchRunner::start(const QStringList& sources)
{
    controller_->applicationOpenFiles(sources);
}

void BatchRunner::analysisOver()
{
    const int accepted = controller_->model().encBatchArrayController.count();
    if (interrupted_) {
        finish(exitSomeFailed);
    } else if (accepted == 0) {
        reporter_->message(consoleText("Con_noClip"), QString(), QString());
        finish(exitNothingAccepted);
    } else {
        RunLoopGate::instance().deliverLater([this] {
            if (!finished_) {
                controller_->iba_batchEncGoBt();
            }
        });
    }
}

void BatchRunner::noteRow(int row, bool success)
{
    const BatchList& rows = controller_->model().encBatchArrayController;
    const BatchRow& finished = rows.row(row);
    RowReport report{finished.source(), finished.output, finished.reason, 0, success};
    if (success) {
        report.bytes = static_cast<qint64>(std::max(0.0, poidsFile(finished.output, QStringLiteral("O"))));
    }
    report.warning = finished.warning;
    report.incomplete = finished.incomplete;
    report.kept = finished.kept;
    rows_ << report;
    reporter_->rowFinished(row + 1, rows.count(), report);
}

void BatchRunner::finish(int exitCode)
{
    if (finished_) {
        return;
    }
    finished_ = true;
    face_->setExitCode(exitCode);
    const QString folder = eventsFolder(controller_->model().mainEncDstPathStr.stringValue());
    // Before a batch has begun no row is kept waiting by its end.
    const int notBegun = batchBegan_ ? tallyOf(controller_->model().encBatchArrayController).notBegun : 0;
    reporter_->summary(rows_, {leftOut_, notBegun}, folder, exitCode);
    // The controller is in the middle of a step: it is asked to quit from the event loop.
    RunLoopGate::instance().deliverLater([this] { controller_->quitWithoutQuestion(); });
}

void BatchRunner::interrupt()
{
    if (interrupted_ || finished_) {
        terminate();
        return;
    }
    interrupted_ = true;
    WindowModel& model = controller_->model();
    if (controller_->isEncoding()) {
        model.encStopBt.setSelectedSegment(encStopSegmentStop);
        controller_->iba_encStopBt(&model.encStopBt);
    } else if (controller_->isAnalysing()) {
        controller_->iba_analysisStopBt();
        reporter_->message(consoleText("Con_stopping"), QString(), QString());
    } else {
        terminate();
    }
}

void BatchRunner::terminate()
{
    finished_ = true;
    face_->setExitCode(exitSomeFailed);
    controller_->quitWithoutQuestion();
}

void BatchRunner::suspend()
{
    SegmentedControl& control = controller_->model().encStopBt;
    if (controller_->isEncoding() && control.imageName(encStopSegmentPause) == controlImage::pause) {
        pausedHere_ = true;
        control.setSelectedSegment(encStopSegmentPause);
        controller_->iba_encStopBt(&control);
    }
}

void BatchRunner::resume()
{
    SegmentedControl& control = controller_->model().encStopBt;
    if (pausedHere_ && control.imageName(encStopSegmentPause) == controlImage::play) {
        control.setSelectedSegment(encStopSegmentPause);
        controller_->iba_encStopBt(&control);
    }
    pausedHere_ = false;
}

} // namespace tavrix
