#include "app/appdelegate.h"

#include "app/stepflags.h"
#include "base/alerts.h"
#include "base/bundle.h"
#include "base/conversions.h"
#include "base/filedelete.h"
#include "base/filesizes.h"
#include "base/localisation.h"
#include "base/log.h"
#include "base/paths.h"
#include "base/preferences.h"
#include "base/settings.h"
#include "base/text.h"
#include "encode/analysisarguments.h"
#include "probe/batchtexts.h"
#include "probe/cameraclip.h"
#include "probe/ffinfos.h"
#include "probe/ffprobes.h"

#include <QRandomGenerator>

// The analysis: a step machine over the queue of sources. Every call performs the steps whose flags are set, and either
// starts a child or goes on.
namespace tavrix
{

namespace
{

constexpr int longQueue = 256;

QString existingFile(const QString& path)
{
    return !path.isEmpty() && testPresenceCocoa(path) ? path : QString();
}

// Key of the next source: "0", or the smallest number when the queue begins later. `hint` is where it last began.
QString nextQueueKey(const QVariantMap& queue, int hint)
{
    for (const QString& key : {QStringLiteral("0"), QString::number(hint)}) {
        if (queue.contains(key)) {
            return key;
        }
    }
    QString smallest;
    for (auto it = queue.keyBegin(); it != queue.keyEnd(); ++it) {
        if (smallest.isNull() || leadingInteger(*it) < leadingInteger(smallest)) {
            smallest = *it;
        }
    }
    return smallest;
}

// Takes one source out and moves those that follow it to the keys from "0" on.
void takeFromQueue(QVariantMap& queue, const QString& takenKey)
{
    const int taken = leadingInteger(takenKey);
    queue.remove(takenKey);
    for (int i = 1; i <= 12344; ++i) {
        const auto next = queue.find(QString::number(taken + i));
        if (next == queue.end()) {
            break;
        }
        const QVariant source = next.value();
        queue.erase(next);
        queue.insert(QString::number(i - 1), source);
    }
}

QVariantMap storedQueue()
{
    return prefReadDico(pref::analysisSrcPathesDico).value_or(QVariantMap());
}

} // namespace

QStringList appDelegate::analysisArray()
{
    return {pref::analysisFfmpeg, pref::analysisFfmpegParse, pref::analysisFin};
}

void appDelegate::analysis()
{
    if (quitting_) {
        return;
    }
    analysisHonourStop();
    analysisTakeNext();
    analysisCaption();
    if (takeFlag(pref::analysisDeb)) {
        model_.analyseStopBt.setHidden(false);
        setFlag(pref::analysisFfmpeg);
    }
    if (takeFlag(pref::analysisFfmpeg)) {
        analysisDecodeStep();
    } else if (takeFlag(pref::analysisFfmpegParse)) {
        analysisParseStep();
    } else if (takeFlag(pref::analysisFin)) {
        analysisFinalStep();
    }
}

void appDelegate::analysisHonourStop()
{
    if (model_.analysisStopInt.intValue() == 0) {
        return;
    }
    logLine(QStringLiteral("analysis stop = 1"));
    model_.analysisStopInt.setIntValue(0);
    const QStringList flags = analysisArray();
    // The first flag is kept: a stop reaches the machine only after the decoding step has taken it.
    for (qsizetype i = 1; i < flags.size() - 1; ++i) {
        prefDelete(flags.at(i));
    }
    setFlag(flags.last());
    prefDelete(pref::analysisSrcPathesDico);
    prefWrite(pref::analysisSrcPathStr, cancelMark);
}

void appDelegate::analysisTakeNext()
{
    QVariantMap queue = storedQueue();
    if (!prefRead(pref::analysisSrcPathStr).isEmpty() || queue.isEmpty()) {
        return;
    }
    const QString key = nextQueueKey(queue, analysisQueueHead_);
    const QString current = queue.value(key).toString();
    logLine(QStringLiteral("analysis new file : %@"), {current});
    prefWrite(pref::analysisSrcPathStr, current);
    const qsizetype left = queue.size() - 1;
    // Moving all that waits costs time in proportion to the queue: a long one is moved up only now and then.
    if (queue.size() <= longQueue || analysisTakes_++ % longQueue == 0) {
        prefDelete(pref::analysisSrcPathesDico);
        takeFromQueue(queue, key);
        prefWriteDico(pref::analysisSrcPathesDico, queue);
        analysisQueueHead_ = 0;
    } else {
        queue.clear();
        prefDeleteChildDico(pref::analysisSrcPathesDico, key);
        analysisQueueHead_ = leadingInteger(key) + 1;
    }
    if (getDEBUGDEV() != 0) {
        displayAlert(formatText(QStringLiteral("reliquat = %d"), {qint64(left)}), QString(), 0, nullptr);
    }
}

void appDelegate::analysisCaption()
{
    const int waiting = static_cast<int>(storedQueue().size());
    const QString shown = textAfter(model_.analyseCaptionStr.stringValue(), QStringLiteral("/"));
    const int total = shown.isNull() ? waiting + 1 : leadingInteger(shown);
    model_.analyseCaptionStr.setStringValue(formatText(QStringLiteral("%d/%d"), {total - waiting, total}));
}

QString appDelegate::frameFile() const
{
    return formatText(QStringLiteral("%@frame.yuv"), {getTMPFOLDER()});
}

void appDelegate::analysisDecodeStep()
{
    const QString source = prefRead(pref::analysisSrcPathStr);
    const QString caption = model_.analyseCaptionStr.stringValue();
    Q_EMIT analysisStarted(source, leadingInteger(caption), leadingInteger(textAfter(caption, QStringLiteral("/"))));
    analysisRejection_ = QString();
    // What an earlier source has left, by a stop or a stall, must not be taken for this one's.
    analysisRetainedStr_ = QString();
    prefDelete(pref::analysisIStr);
    prefDelete(pref::imgPathStr);
    removeOwnFile(frameFile(), getTMPFOLDER());
    setFlag(pref::analysisFfmpegParse);
    logLine(QStringLiteral("analysis task - deb"));
    const bool started =
        taskLauncherAnalysisStart(decodeArguments(toolPath(QStringLiteral("ffmpeg")), source, frameFile()));
    if (!started) {
        analysisStall();
    }
}

void appDelegate::analysisParseStep()
{
    if (analysisTaskVerboseMStr_.isEmpty() || analysisTaskVerboseMStr_ == QLatin1String(" ")) {
        analysisTaskVerboseMStr_ = QString();
    } else {
        analysisRetainedStr_ = analysisTaskVerboseMStr_;
        analysisTaskVerboseMStr_ = QString();
        if (!ffmpegSuccess(analysisRetainedStr_)) {
            setFlag(pref::analysisFin);
            analysis();
            return;
        }
    }
    QString letter;
    if (testPresenceCocoa(frameFile())) {
        letter = interlacingLetter(firstLineOfFile(frameFile()));
        removeOwnFile(frameFile(), getTMPFOLDER());
    }
    const QString code = interlacedYuvheaders2tvxStr(letter);
    prefWrite(pref::analysisIStr, code);
    const std::optional<MediaInfoRecord> infos = analysisFf(analysisRetainedStr_, code);
    const ClipVerdict verdict = cameraClipVerdict(infos, code);
    if (verdict.accepted) {
        analysisThumbnailStep(*infos);
        return;
    }
    logLine(QStringLiteral("analysisRetainedStr release != AVCHD-Lite"));
    analysisRejection_ = verdict.reason;
    analysisRetainedStr_ = QString();
    prefDelete(pref::analysisIStr);
    setFlag(pref::analysisFin);
    analysis();
}

void appDelegate::analysisThumbnailStep(const MediaInfoRecord& infos)
{
    logLine(QStringLiteral("Thumb - deb"));
    const QString source = prefRead(pref::analysisSrcPathStr);
    QString image = formatText(QStringLiteral("%@%@.jpg"), {getTMPFOLDER(), lastPathComponent(source)});
    if (testPresenceCocoa(image)) {
        const int number = static_cast<int>(QRandomGenerator::global()->generate() & 0x7FFFFFFFU);
        image = formatText(QStringLiteral("%@_%d.jpg"), {stringByDeletingPathExtension(image), number});
    }
    prefWrite(pref::imgPathStr, image);
    setFlag(pref::analysisFin);
    const bool started = taskLauncherAnalysisStart(
        thumbnailArguments(toolPath(QStringLiteral("ffmpeg")), source, thumbnailSize(clipAspect(infos)), image));
    if (!started) {
        analysisStall();
    }
}

void appDelegate::analysisFinalStep()
{
    std::optional<MediaInfoRecord> infos = analysisFf(analysisRetainedStr_, prefRead(pref::analysisIStr));
    analysisRetainedStr_ = QString();
    prefDelete(pref::analysisIStr);
    releaseAnalysisTask();
    const QString source = prefRead(pref::analysisSrcPathStr);
    if (infos) {
        logLine(QStringLiteral("stocker…"));
        analysisAddRow(*infos);
    } else if (source != cancelMark) {
        Q_EMIT sourceRejected(source, analysisRejection_.isNull() ? batchText("Clip_noVideo") : analysisRejection_);
    }
    prefDelete(pref::analysisSrcPathStr);
    if (!storedQueue().isEmpty() && model_.analysisStopInt.intValue() != 1) {
        logLine(QStringLiteral("panel_analyse       - fin (src current)"));
        setFlag(pref::analysisFfmpeg);
        analysis();
        return;
    }
    analysisBatchEnd();
}

void appDelegate::analysisAddRow(MediaInfoRecord infos)
{
    const QString source = prefRead(pref::analysisSrcPathStr);
    const QString image = existingFile(prefRead(pref::imgPathStr));
    prefDelete(pref::imgPathStr);
    BatchList& rows = model_.encBatchArrayController;
    if (rows.indexOfSource(source) >= 0) {
        // The row machine finds its row by the source's path: two rows of one source would never end.
        if (!image.isNull()) {
            removeOwnFile(image, getTMPFOLDER());
        }
        return;
    }
    infos.insert(record::v0_aspect, clipAspect(infos));
    infos.insert(record::mainEncSrcPathStr, source);
    if (!image.isNull()) {
        infos.insert(record::imgPathStr, image);
    }
    const int out = model_.prefCheckMatrix.selectedSegment();
    infos.insert(record::out, out);
    BatchRow row;
    row.order = rows.count() + 1;
    row.src = lastPathComponent(source);
    row.out = out;
    row.resultat = rowIcon::pending;
    row.dico = infos;
    row.img = isJpegFile(image) ? image : QString();
    rows.append(row);
    if (!model_.drawer.isOpen()) {
        face_->ecran(QStringLiteral("b"), 320);
        model_.drawer.open();
    }
    Q_EMIT sourceAccepted(rows.count() - 1);
}

void appDelegate::analysisPanelReset()
{
    analysisBatchRunning_ = false;
    model_.analyseCaptionStr.setStringValue(QString());
    model_.analyseStopBt.setHidden(true);
    model_.analysisStopInt.setIntValue(0);
    resetDropArea();
    resumeEncodingAfterDrop();
    if (model_.encBatchArrayController.count() > 0 && model_.batchEncGoBt.state() == 0) {
        model_.batchEncGoBt.setEnabled(true);
    }
}

void appDelegate::analysisBatchEnd()
{
    prefDelete(pref::analysisSrcPathesDico);
    analysisPanelReset();
    Q_EMIT analysisEnded();
    deliverPendingEncoderEnd();
}

// Queue, current source and flags stay, so that the next drop takes the batch up again; that drop needs an open intake.
void appDelegate::analysisStall()
{
    const QString source = prefRead(pref::analysisSrcPathStr);
    releaseAnalysisTask();
    analysisPanelReset();
    Q_EMIT analysisStalled(source);
    deliverPendingEncoderEnd();
}

void appDelegate::releaseAnalysisTask()
{
    analysisTaskClass_.reset();
    analysisTaskVerboseMStr_ = QString();
}

bool appDelegate::taskLauncherAnalysisStart(const QStringList& arguments)
{
    if (arguments.isEmpty() || quitting_) {
        return false;
    }
    if (analysisTaskClass_ != nullptr) {
        logLine(QStringLiteral("forget to release previous task? (analysisTaskClass)"));
    }
    analysisTaskVerboseMStr_ = QStringLiteral("");
    analysisTaskClass_.reset(newLauncher());
    const int result = analysisTaskClass_->launchTasksWithArguments(arguments);
    if (result == 0) {
        return true;
    }
    taskLauncherDone(nullptr);
    face_->beep();
    logLine(QStringLiteral("Erreur au lancement = %d"), {result});
    return false;
}

void appDelegate::iba_analysisStopBt()
{
    model_.analysisStopInt.setIntValue(1);
    deselectSelectedSeg(&model_.analyseStopBt);
}

} // namespace tavrix
