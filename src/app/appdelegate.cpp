// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/appdelegate.h"

#include "app/currentrow.h"
#include "app/face.h"
#include "app/machines.h"
#include "app/stepflags.h"
#include "base/dialogue/runloopgate.h"
#include "base/text/log.h"

#include <QPointer>

namespace tavrix
{

namespace
{

appDelegate* applicationDelegate = nullptr;

} // namespace

appDelegate::appDelegate(ApplicationFace* face, QObject* parent)
    : QObject(parent), session_(model_, *face), machines_(std::make_unique<Machines>(session_, *this)),
      beat_([this](qint64 milliseconds) { passTime(milliseconds); })
{
    applicationDelegate = this;
    model_.encStopBt.setHidden(true);
    model_.analyseStopBt.setHidden(true);
    connectMachines();
}

appDelegate::~appDelegate()
{
    if (applicationDelegate == this) {
        applicationDelegate = nullptr;
    }
}

void appDelegate::passTime(qint64 milliseconds)
{
    drive([&] { machines_->batch.passTime(milliseconds); });
    drive([&] { machines_->analysis.passTime(milliseconds); });
}

// What machines tell is passed on; where two things follow from it they follow in the order of these lines.
void appDelegate::connectMachines()
{
    Intake& intake = machines_->intake;
    connect(&intake, &Intake::refused, this, &appDelegate::intakeRefused);
    connect(&intake, &Intake::began, this, &appDelegate::intakeBegan);
    connect(&intake, &Intake::queued, this, &appDelegate::sourcesQueued);
    connect(&intake, &Intake::skipped, this, &appDelegate::sourceRejected);
    connect(&intake, &Intake::nothingNew, this, &appDelegate::nothingToAnalyse);

    AnalysisMachine& analysis = machines_->analysis;
    BatchMachine& batch = machines_->batch;
    connect(&analysis, &AnalysisMachine::leftOverDropped, this, &appDelegate::leftOverDropped);
    connect(&analysis, &AnalysisMachine::started, this, &appDelegate::analysisStarted);
    connect(&analysis, &AnalysisMachine::accepted, this, &appDelegate::sourceAccepted);
    connect(&analysis, &AnalysisMachine::rejected, this, &appDelegate::sourceRejected);
    connect(&analysis, &AnalysisMachine::panelReset, &intake, &Intake::release);
    connect(&analysis, &AnalysisMachine::ended, this, &appDelegate::analysisEnded);
    connect(&analysis, &AnalysisMachine::ended, &batch, &BatchMachine::deliverWaitingEnd);
    connect(&analysis, &AnalysisMachine::stalled, this, &appDelegate::analysisStalled);
    connect(&analysis, &AnalysisMachine::stalled, &batch, &BatchMachine::deliverWaitingEnd);
    connect(&analysis, &AnalysisMachine::childGone, this, &appDelegate::taskLauncherDone);

    connect(&batch, &BatchMachine::rowStarted, this, &appDelegate::rowStarted);
    connect(&batch, &BatchMachine::rowProgress, this, &appDelegate::rowProgress);
    connect(&batch, &BatchMachine::rowStep, this, &appDelegate::rowStep);
    connect(&batch, &BatchMachine::rowFinished, this, &appDelegate::rowFinished);
    connect(&batch, &BatchMachine::rowVanished, this, &appDelegate::rowVanished);
    connect(&batch, &BatchMachine::batchEnded, this, &appDelegate::batchEnded);
    connect(&batch, &BatchMachine::childGone, this, &appDelegate::taskLauncherDone);
}

void appDelegate::setLauncherFactory(LauncherFactory factory)
{
    machines_->launchers.setFactory(std::move(factory));
}

void appDelegate::setReplacePolicy(std::optional<int> policy)
{
    machines_->batch.row().clearance().setReplacePolicy(policy);
}

bool appDelegate::awakeFromNib()
{
    return machines_->startUp.run();
}

void appDelegate::ac_iba_menuQuit()
{
    if (applicationDelegate != nullptr) {
        applicationDelegate->iba_menuQuit();
    }
}

// Intake --------------------------------------------------------------------------------------------------------------

void appDelegate::dragNDropPerformDrag(QObject* /*view*/, const QStringList& paths)
{
    RunLoopGate::instance().deliver([controller = QPointer<appDelegate>(this), paths] {
        if (controller) {
            controller->draggedFiles(paths);
        }
    });
}

void appDelegate::applicationOpenFiles(const QStringList& paths)
{
    RunLoopGate::instance().deliverLater([controller = QPointer<appDelegate>(this), paths] {
        if (controller) {
            controller->performOpenFiles(paths);
        }
    });
}

void appDelegate::performOpenFiles(const QStringList& paths)
{
    draggedFiles(paths);
}

void appDelegate::draggedFiles(const QStringList& paths)
{
    drive([&] { machines_->intake.take(paths); });
}

void appDelegate::analysis()
{
    machines_->analysis.step();
}

QStringList appDelegate::analysisArray()
{
    return analysisFlags();
}

bool appDelegate::taskLauncherAnalysisStart(const QStringList& arguments)
{
    return machines_->analysis.launch(arguments);
}

void appDelegate::iba_analysisStopBt()
{
    machines_->analysis.stop();
}

bool appDelegate::isAnalysing() const
{
    return machines_->analysis.isRunning();
}

void appDelegate::iba_batchEncGoBt()
{
    machines_->batch.start();
}

void appDelegate::encSend(const QString& stepName)
{
    machines_->batch.send(stepName);
}

void appDelegate::enc(const QString& stepName)
{
    machines_->batch.step(stepName);
}

QStringList appDelegate::encArray()
{
    return encodeFlags();
}

bool appDelegate::taskLauncherEncStart_progressMaxValueFloat_parseInt(const QStringList& arguments, float maximum,
                                                                      int parser)
{
    return machines_->batch.launch(arguments, maximum, parser);
}

void appDelegate::iba_encStopBt(SegmentedControl* control)
{
    machines_->batch.control().press(*control);
}

void appDelegate::deselectSelectedSeg(SegmentedControl* control)
{
    control->setSelectedSegment(-1);
}

void appDelegate::encBatchRemove(Control* sender)
{
    machines_->rows.remove(sender);
}

void appDelegate::encBatchRemoveAll(Control* sender)
{
    machines_->rows.removeAll(sender);
}

void appDelegate::removeConverted()
{
    machines_->rows.removeConverted();
}

void appDelegate::goOnWithTheRest()
{
    // A press that was on its way when the batch began must not begin another one.
    if (model_.batchEncGoBt.state() == 0 && model_.batchEncGoBt.isEnabled()) {
        removeConverted();
        iba_batchEncGoBt();
    }
}

int appDelegate::encBatchInprogressRowIdentification() const
{
    return currentRowIndex(model_.encBatchArrayController);
}

void appDelegate::encGoRazGui()
{
    machines_->startUp.clearDisplay();
}

bool appDelegate::isEncoding() const
{
    return machines_->batch.child().isHeld();
}

// A callback belongs to the machine that holds its launcher; one of nobody's to the analysis while that holds a child.
bool appDelegate::isAnalysisSender(const taskLauncher* launcher) const
{
    if (launcher != nullptr && launcher == machines_->batch.child().launcher()) {
        return false;
    }
    return machines_->analysis.child().isHeld();
}

void appDelegate::taskLauncherDidReceiveNewString(taskLauncher* launcher, const QString& text)
{
    if (isAnalysisSender(launcher)) {
        machines_->analysis.childWrote(text);
    } else {
        machines_->batch.childWrote(text, machines_->analysis.child().isHeld());
    }
}

void appDelegate::taskLauncherTaskDidEnd(taskLauncher* launcher)
{
    const bool analysisMode = isAnalysisSender(launcher);
    const int status = launcher->terminationStatus();
    if (status == taskLauncher::statusInterrupted) {
        logLine(QStringLiteral("interrupted"));
        launcher->terminate();
        taskLauncherDone(launcher);
        if (analysisMode) {
            machines_->analysis.interrupted();
        }
        return;
    }
    if (status != 0) {
        logLine(QStringLiteral("task failed, error  :-( %d"), {status});
        launcher->terminate();
    }
    taskLauncherDone(launcher);
    if (analysisMode) {
        analysis();
    }
}

void appDelegate::taskLauncherTaskDidSuspend(taskLauncher* /*launcher*/)
{
    logLine(QStringLiteral("task suspended"));
}

void appDelegate::taskLauncherTaskDidResume(taskLauncher* /*launcher*/)
{
    logLine(QStringLiteral("task resumed"));
}

void appDelegate::taskLauncherDone(taskLauncher* launcher)
{
    if (isAnalysisSender(launcher)) {
        logDebug(QStringLiteral("task done (analysis)"));
        return;
    }
    drive([&] { machines_->batch.childDone(launcher, machines_->analysis.isRunning()); });
}

} // namespace tavrix
