#include "app/appdelegate.h"

#include "app/instancelock.h"
#include "app/stepflags.h"
#include "base/format.h"
#include "base/log.h"
#include "encode/progress.h"

#include <QCoreApplication>

namespace tavrix
{

namespace
{

appDelegate* applicationDelegate = nullptr;

// Launchers are released inside their own callbacks, so they must outlive the current call.
void releaseLater(taskLauncher* launcher)
{
    if (launcher != nullptr) {
        launcher->setDelegate(nullptr);
        launcher->deleteLater();
    }
}

constexpr qsizetype transcriptTailLength = 4000;

} // namespace

appDelegate::appDelegate(ApplicationFace* face, QObject* parent)
    : QObject(parent), face_(face), analysisTaskClass_(nullptr, releaseLater), encTaskClass_(nullptr, releaseLater)
{
    applicationDelegate = this;
    model_.encStopBt.setHidden(true);
    model_.analyseStopBt.setHidden(true);
}

appDelegate::~appDelegate()
{
    for (LauncherPointer* pointer : {&analysisTaskClass_, &encTaskClass_}) {
        if (taskLauncher* launcher = pointer->release()) {
            launcher->setDelegate(nullptr);
            delete launcher;
        }
    }
    if (applicationDelegate == this) {
        applicationDelegate = nullptr;
    }
}

void appDelegate::setLauncherFactory(LauncherFactory factory)
{
    launcherFactory_ = std::move(factory);
}

taskLauncher* appDelegate::newLauncher()
{
    taskLauncher* launcher = launcherFactory_ ? launcherFactory_() : new taskLauncher;
    launcher->setDelegate(this);
    return launcher;
}

void appDelegate::ac_iba_menuQuit()
{
    if (applicationDelegate != nullptr) {
        applicationDelegate->iba_menuQuit();
    }
}

bool appDelegate::isAnalysisSender(taskLauncher* launcher) const
{
    if (launcher != nullptr && launcher == encTaskClass_.get()) {
        return false;
    }
    return analysisTaskClass_ != nullptr;
}

void appDelegate::taskLauncherDidReceiveNewString(taskLauncher* launcher, const QString& text)
{
    if (isAnalysisSender(launcher)) {
        if (!analysisTaskVerboseMStr_.isNull()) {
            analysisTaskVerboseMStr_ += text;
        }
        return;
    }
    encTranscriptTail_ = (encTranscriptTail_ + text).right(transcriptTailLength);
    // While an analysis runs the encoder is paused for it: what still arrives is no progress.
    showProgress(analysisTaskClass_ ? progressSentinel : progressValue(encTaskParseInt_, text));
}

void appDelegate::showProgress(float value)
{
    const float maximum = encTaskProgressMaxValue_;
    if (maximum == 0.0F || !progressAccepted(value, maximum)) {
        return;
    }
    model_.encTaskProgress.incrementBy(static_cast<double>(value - encTaskPreviousTime_));
    const double percent = static_cast<double>(value * 100.0F / maximum);
    model_.mainEncProgressPercentStr.setStringValue(formatText(QStringLiteral("%.0f %%"), {percent}));
    logDebug(QStringLiteral("progress str        : %.0f"), {percent});
    encTaskPreviousTime_ = value;
    Q_EMIT rowProgress(encBatchInprogressRowIdentification(), value, maximum);
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
            analysisStall();
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
    // Stop and quit announce the end of a launcher that has already announced it itself.
    if (encTaskClass_ == nullptr || (launcher != nullptr && launcher != encTaskClass_.get())) {
        return;
    }
    if (quitting_) {
        releaseEncoderTask();
        return;
    }
    // The row machine must not move on, and open the intake, under a running analysis.
    if (analysisBatchRunning_) {
        encoderEndPending_ = true;
        return;
    }
    releaseEncoderTask();
    model_.mainEncProgressPercentStr.setStringValue(QString());
    model_.encStopBt.setHidden(true);
    model_.encTaskProgress.setDoubleValue(model_.encTaskProgress.maxValue());
    encSend(stepProcesses);
}

void appDelegate::releaseEncoderTask()
{
    encoderEndPending_ = false;
    encTaskClass_.reset();
}

} // namespace tavrix
