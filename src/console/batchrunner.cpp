// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/batchrunner.h"

#include "app/batchtally.h"
#include "app/partfile.h"
#include "base/dialogue/plurals.h"
#include "base/dialogue/runloopgate.h"
#include "base/files/fileinfo.h"
#include "base/text/format.h"
#include "console/consoletext.h"
#include "encode/outputname.h"
#include "encode/rowforecast.h"
#include "probe/recordersources.h"

#include <QFileInfo>
#include <QPointer>
#include <QSet>

#include <algorithm>

namespace tavrix
{

BatchRunner::BatchRunner(appDelegate* controller, ConsoleFace* face, Reporter* reporter, const Wishes& wishes,
                         QObject* parent)
    : QObject(parent), controller_(controller), face_(face), reporter_(reporter), wishes_(wishes)
{
    clock_.start();
    connectController();
    connectRows();
}

void BatchRunner::connectController()
{
    const BatchList& rows = controller_->model().encBatchArrayController;
    connect(controller_, &appDelegate::sourcesQueued, this, [this](int count) { reporter_->queued(count); });
    connect(controller_, &appDelegate::leftOverDropped, this, [this](const QStringList& sources) {
        reporter_->message(formatText(countedText("Con_leftOver", sources.size(), QStringLiteral("Console")),
                                      {qint64(sources.size()), sources.first()}),
                           QString(), QString());
    });
    connect(controller_, &appDelegate::analysisStarted, this,
            [this](const QString& path, int number, int total) { reporter_->analysing(path, number, total); });
    connect(controller_, &appDelegate::sourceAccepted, this, [this, &rows](int row) {
        controller_->model().encBatchArrayController.setPart(row, part_);
        reporter_->accepted(rows.row(row).source(), rows.row(row).dico);
    });
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
}

void BatchRunner::connectRows()
{
    const BatchList& rows = controller_->model().encBatchArrayController;
    connect(controller_, &appDelegate::rowStarted, this, [this, &rows](int row) {
        batchBegan_ = true;
        progress_ = RowProgress();
        reporter_->rowStarted(row + 1, rows.count(), rows.row(row).src, rows.row(row).part);
    });
    connect(controller_, &appDelegate::rowProgress, this, [this](int /*row*/, float value, float maximum) {
        progress_.value = value;
        progress_.maximum = maximum;
    });
    connect(controller_, &appDelegate::rowStep, this, &BatchRunner::noteStep);
    connect(controller_, &appDelegate::rowFinished, this, &BatchRunner::noteRow);
    connect(controller_, &appDelegate::rowVanished, this, [this](const QString& path) {
        rows_ << RowReport{path, {}, consoleText("Con_vanished"), 0, false};
    });
    connect(controller_, &appDelegate::batchEnded, this, [this](bool stopped) {
        const bool trouble =
            std::any_of(rows_.cbegin(), rows_.cend(), [this](const RowReport& row) { return isTrouble(row); });
        finish(stopped || trouble ? exitSomeFailed : exitAllDone);
    });
}

bool BatchRunner::isTrouble(const RowReport& row) const
{
    return row.incomplete || (!row.success && (!row.kept || wishes_.keptIsFailed));
}

// A tool's line of progress becomes the value first and the step then: the step tells both.
void BatchRunner::noteStep(int row, int pass, int passes, double fraction)
{
    const BatchRow& current = controller_->model().encBatchArrayController.row(row);
    if (fraction <= 0 || pass != progress_.pass) {
        const double seconds = convertedRecord(current).value(record::w_duration).toDouble();
        progress_.value = 0;
        estimate_.beginPass(clock_.elapsed(), {seconds, current.out}, pass, passes);
    }
    progress_.pass = pass;
    progress_.passes = passes;
    progress_.fraction = fraction;
    estimate_.progress(clock_.elapsed(), fraction);
    progress_.speed = estimate_.speed(clock_.elapsed());
    progress_.left = estimate_.clipLeft(clock_.elapsed());
    reporter_->rowProgress(progress_);
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
    } else if (wishes_.dryRun) {
        finish(exitAllDone);
    } else {
        RunLoopGate::instance().deliverLater([runner = QPointer<BatchRunner>(this)] {
            if (runner && !runner->finished_) {
                runner->controller_->iba_batchEncGoBt();
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
    report.part = finished.part;
    rows_ << report;
    estimate_.endClip(clock_.elapsed(), success);
    reporter_->rowFinished(row + 1, rows.count(), report);
}

QList<PlannedRow> BatchRunner::plannedRows() const
{
    const BatchList& rows = controller_->model().encBatchArrayController;
    const QString destination = controller_->model().mainEncDstPathStr.stringValue();
    QList<PlannedRow> planned;
    QSet<QString> names;
    for (int i = 0; i < rows.count(); ++i) {
        const BatchRow& row = rows.row(i);
        const QString codec = row.dico.value(record::v0_codec).toString();
        PlannedRow one;
        one.number = i + 1;
        one.total = rows.count();
        one.source = row.source();
        one.out = row.out;
        one.output = outputPath(destination, dateCreation2iMovieName(one.source), row.out, codec);
        one.bytes = outputForecast(convertedRecord(row), row.out);
        one.exists = QFileInfo::exists(one.output) || QFileInfo(one.output).isSymLink();
        one.sameName = names.contains(one.output);
        one.readable = !codec.isEmpty();
        names << one.output;
        planned << one;
    }
    return planned;
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
    if (wishes_.dryRun && exitCode == exitAllDone) {
        reporter_->plan(plannedRows(), leftOut_, folder, exitCode);
    } else {
        reporter_->summary(rows_, {leftOut_, notBegun}, folder, exitCode);
    }
    // The controller is in the middle of a step: it is asked to quit from the event loop.
    RunLoopGate::instance().deliverLater([runner = QPointer<BatchRunner>(this)] {
        if (runner) {
            runner->controller_->quitWithoutQuestion();
        }
    });
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
        estimate_.setPaused(clock_.elapsed(), true);
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
        estimate_.setPaused(clock_.elapsed(), false);
    }
    pausedHere_ = false;
}

} // namespace tavrix
