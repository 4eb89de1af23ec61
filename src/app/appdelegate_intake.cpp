#include "app/appdelegate.h"

#include "app/stepflags.h"
#include "base/filesizes.h"
#include "base/log.h"
#include "base/paths.h"
#include "base/preferences.h"
#include "base/runloopgate.h"
#include "base/settings.h"
#include "base/text.h"

// Source intake: what is dropped or opened becomes the analysis queue.
namespace tavrix
{

void appDelegate::dragNDropPerformDrag(QObject* /*view*/, const QStringList& paths)
{
    RunLoopGate::instance().deliver([this, paths] { draggedFiles(paths); });
}

void appDelegate::applicationOpenFiles(const QStringList& paths)
{
    RunLoopGate::instance().deliverLater([this, paths] { performOpenFiles(paths); });
}

void appDelegate::performOpenFiles(const QStringList& paths)
{
    draggedFiles(paths);
}

void appDelegate::draggedFiles(const QStringList& paths)
{
    if (quitting_) {
        return;
    }
    if (getOPENPERM() == 0) {
        refuseDrop(paths);
        return;
    }
    closeIntake();
    Q_EMIT intakeBegan();
    if (model_.batchEncGoBt.state() == 1) {
        pauseEncodingForDrop();
    }
    model_.batchEncGoBt.setEnabled(false);
    const IntakeList found = intakeList(paths);
    const QStringList fresh = withoutKnownSources(found.accepted);
    if (fresh.isEmpty()) {
        tellSkipped(found.skipped);
        nothingNewDropped();
        return;
    }
    QVariantMap queue;
    for (qsizetype i = 0; i < fresh.size(); ++i) {
        queue.insert(QString::number(i), fresh.at(i));
    }
    // One store of the whole queue: the keys are those that one write per source would leave.
    prefWriteDico(pref::analysisSrcPathesDico, queue);
    analysisBatchRunning_ = true;
    analysisQueueHead_ = 0;
    analysisTakes_ = 0;
    setFlag(pref::analysisDeb);
    Q_EMIT sourcesQueued(static_cast<int>(fresh.size()));
    tellSkipped(found.skipped);
    analysis();
}

void appDelegate::refuseDrop(const QStringList& paths)
{
    model_.dragndropImgView.setImageName(QStringLiteral("dndOff"));
    model_.dragndropCaptionStr.setHidden(true);
    model_.dragndropActionStr.setHidden(true);
    model_.analyseWheelProgInd.startAnimation();
    Q_EMIT intakeRefused(paths);
}

void appDelegate::closeIntake()
{
    model_.dragndropImgView.setImageName(QStringLiteral("dndOff"));
    model_.dragndropCaptionStr.setHidden(true);
    setOPENPERM(0);
    model_.dragndropActionStr.setHidden(false);
    model_.analyseWheelProgInd.startAnimation();
}

void appDelegate::pauseEncodingForDrop()
{
    SegmentedControl& control = model_.encStopBt;
    encControlDisabledForDrop_ = true;
    control.setEnabled(false);
    // Pressing the control toggles: an encoding that the user has paused must not be resumed by a drop.
    if (encTaskClass_ != nullptr && control.imageName(encStopSegmentPause) == controlImage::pause) {
        encPausedForDrop_ = true;
        control.setSelectedSegment(encStopSegmentPause);
        iba_encStopBt(&control);
    }
}

void appDelegate::resumeEncodingAfterDrop()
{
    SegmentedControl& control = model_.encStopBt;
    if (encControlDisabledForDrop_) {
        encControlDisabledForDrop_ = false;
        control.setEnabled(true);
    }
    if (encPausedForDrop_) {
        encPausedForDrop_ = false;
        if (control.imageName(encStopSegmentPause) == controlImage::play) {
            control.setSelectedSegment(encStopSegmentPause);
            iba_encStopBt(&control);
        }
    }
}

void appDelegate::deliverPendingEncoderEnd()
{
    if (encoderEndPending_) {
        encoderEndPending_ = false;
        taskLauncherDone(encTaskClass_.get());
    }
}

QStringList appDelegate::withoutKnownSources(const QStringList& paths) const
{
    QSet<QString> seen;
    QStringList fresh;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString& path = paths.at(i);
        if (seen.contains(path) || model_.encBatchArrayController.indexOfSource(path) >= 0) {
            logLine(QStringLiteral("doublon : pas de sur-analyse pour rien ;-) #%d/%d : %@"),
                    {i + 1, qint64(paths.size()), path});
            continue;
        }
        seen.insert(path);
        fresh << path;
    }
    return fresh;
}

void appDelegate::tellSkipped(const QList<SkippedSource>& skipped)
{
    for (const SkippedSource& source : skipped) {
        Q_EMIT sourceRejected(source.path, source.reason);
    }
}

void appDelegate::nothingNewDropped()
{
    logLine(QStringLiteral("no compatible file (or no new files ;-))"));
    resetDropArea();
    resumeEncodingAfterDrop();
    if (model_.encBatchArrayController.count() > 0 && model_.batchEncGoBt.state() == 0) {
        model_.batchEncGoBt.setEnabled(true);
    }
    Q_EMIT nothingToAnalyse();
}

void appDelegate::resetDropArea()
{
    model_.dragndropImgView.setImageName(QStringLiteral("dnd"));
    model_.dragndropCaptionStr.setHidden(false);
    setOPENPERM(1);
    model_.dragndropActionStr.setHidden(true);
    model_.analyseWheelProgInd.stopAnimation();
}

} // namespace tavrix
