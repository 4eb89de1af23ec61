// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/analysismachine.h"

#include "app/analysedclip.h"
#include "app/droparea.h"
#include "app/encodefailure.h"
#include "app/face.h"
#include "app/session.h"
#include "app/stepflags.h"
#include "app/windowmodel.h"
#include "app/workfolder.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/plurals.h"
#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/format.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/text.h"
#include "encode/analysisarguments.h"
#include "probe/batchtexts.h"
#include "probe/cameraclip.h"
#include "probe/ffinfos.h"
#include "probe/ffprobes.h"
#include "probe/pictureobstacle.h"
#include "process/childprocess.h"
#include "sys/keepfolder.h"

#include <utility>

namespace tavrix
{

namespace
{

constexpr qint64 silentStopMilliseconds = 3000;

QString ffmpegTool()
{
    return toolPath(QStringLiteral("ffmpeg"));
}

} // namespace

AnalysisMachine::AnalysisMachine(Session& session, DropArea& dropArea, const LauncherMaker& maker)
    : session_(session), dropArea_(dropArea), maker_(maker),
      child_(session, maker, "forget to release previous task? (analysisTaskClass)")
{
}

QStringList AnalysisMachine::leftOver() const
{
    if (queueIsOwn_) {
        return {};
    }
    QStringList sources;
    const QString current = prefRead(pref::analysisSrcPathStr);
    if (!current.isEmpty() && current != cancelMark) {
        sources << current;
    }
    return sources + queue_.sources();
}

void AnalysisMachine::dropLeftOver()
{
    const QStringList sources = leftOver();
    queueIsOwn_ = true;
    prefDelete(pref::analysisSrcPathStr);
    queue_.clear();
    if (!sources.isEmpty()) {
        logLine(QStringLiteral("analysis left over  :-/ %d : %@"), {qint64(sources.size()), sources.first()});
    }
}

void AnalysisMachine::begin(const QStringList& sources)
{
    if (const QStringList old = leftOver(); !queueIsOwn_) {
        dropLeftOver();
        if (!old.isEmpty()) {
            Q_EMIT leftOverDropped(old);
        }
    }
    queue_.fill(sources);
    running_ = true;
    setFlag(pref::analysisDeb);
}

void AnalysisMachine::step()
{
    if (session_.isEnding()) {
        return;
    }
    honourStop();
    if (!takeNext()) {
        return;
    }
    showCaption();
    if (takeFlag(pref::analysisDeb)) {
        session_.model().analyseStopBt.setHidden(false);
        setFlag(pref::analysisFfmpeg);
    }
    if (takeFlag(pref::analysisFfmpeg)) {
        decode();
    } else if (takeFlag(pref::analysisFfmpegParse)) {
        parse();
    } else if (takeFlag(pref::analysisFin)) {
        finishSource();
    }
}

void AnalysisMachine::honourStop()
{
    IntegerField& stopped = session_.model().analysisStopInt;
    if (stopped.intValue() == 0) {
        return;
    }
    logLine(QStringLiteral("analysis stop = 1"));
    stopped.setIntValue(0);
    const QStringList flags = analysisFlags();
    // The first flag is kept: a stop reaches the machine only after the decoding step has taken it.
    for (qsizetype i = 1; i < flags.size() - 1; ++i) {
        prefDelete(flags.at(i));
    }
    setFlag(flags.last());
    queue_.clear();
    prefWrite(pref::analysisSrcPathStr, cancelMark);
}

// False when the program ends.
bool AnalysisMachine::takeNext()
{
    if (!prefRead(pref::analysisSrcPathStr).isEmpty() || queue_.count() == 0) {
        return true;
    }
    const QString current = queue_.first();
    logLine(QStringLiteral("analysis new file : %@"), {current});
    // It is stored before it leaves the queue: a crash in between loses no source.
    prefWrite(pref::analysisSrcPathStr, current);
    queue_.removeFirst();
    if (getDEBUGDEV() == 0) {
        return true;
    }
    return session_.tell(formatText(QStringLiteral("reliquat = %d"), {queue_.count()})) != After::Ending;
}

void AnalysisMachine::showCaption()
{
    TextField& caption = session_.model().analyseCaptionStr;
    const int waiting = queue_.count();
    const QString shown = textAfter(caption.stringValue(), QStringLiteral("/"));
    const int total = shown.isNull() ? waiting + 1 : leadingInteger(shown);
    caption.setStringValue(formatText(QStringLiteral("%d/%d"), {total - waiting, total}));
}

void AnalysisMachine::decode()
{
    const QString source = prefRead(pref::analysisSrcPathStr);
    const QString caption = session_.model().analyseCaptionStr.stringValue();
    Q_EMIT started(source, leadingInteger(caption), leadingInteger(textAfter(caption, QStringLiteral("/"))));
    // What an earlier source has left, by a stop or a stall, must not be taken for this one's.
    source_ = {};
    prefDelete(pref::analysisIStr);
    prefDelete(pref::imgPathStr);
    removeOwnFile(frameFile(), getTMPFOLDER());
    setFlag(pref::analysisFfmpegParse);
    logLine(QStringLiteral("analysis task - deb"));
    if (!launch(decodeArguments(ffmpegTool(), source, frameFile()))) {
        stall();
    }
}

void AnalysisMachine::parse()
{
    lookAhead();
    // Without a frame the clip counts as progressive: so it must not be this program's own lack of room.
    if (!testPresenceCocoa(frameFile())) {
        if (const QString trouble = workFolderTrouble(getTMPFOLDER()); !trouble.isNull()) {
            reject(formatText(batchText("Clip_noTemporary"), {trouble}));
            return;
        }
    }
    const QString text = std::exchange(source_.incoming, QString());
    // What is wrong with the machine is no fault of the clip's.
    if (const QString trouble = toolTrouble(text); !trouble.isNull()) {
        reject(trouble);
        return;
    }
    if (!text.isEmpty() && text != QLatin1String(" ")) {
        source_.retained = text;
        const bool readable = ffmpegSuccess(text);
        const Look look = readable ? Look::AtHeader : Look::AtPackets;
        if (const QString obstacle = pictureObstacle(prefRead(pref::analysisSrcPathStr), look); !obstacle.isNull()) {
            reject(obstacle);
            return;
        }
        if (!readable) {
            setFlag(pref::analysisFin);
            step();
            return;
        }
    }
    const QString code = interlacingOfFrames();
    prefWrite(pref::analysisIStr, code);
    const std::optional<MediaInfoRecord> infos = analysisFf(source_.retained, code);
    const ClipVerdict verdict = cameraClipVerdict(infos, code);
    if (verdict.accepted) {
        makeThumbnail(*infos);
        return;
    }
    const bool described = infos && infos->contains(record::v0_width);
    reject(described ? verdict.reason : unreadableReason(text));
}

void AnalysisMachine::reject(const QString& reason)
{
    logLine(QStringLiteral("analysisRetainedStr release != AVCHD-Lite"));
    source_.rejection = reason;
    source_.retained = QString();
    prefDelete(pref::analysisIStr);
    setFlag(pref::analysisFin);
    step();
}

QString AnalysisMachine::toolTrouble(const QString& text) const
{
    const taskLauncher* launcher = child_.launcher();
    if (launcher == nullptr) {
        return machineTrouble(text);
    }
    const ChildEnd end = {launcher->endedBySignal(), launcher->terminationStatus()};
    if (text.isEmpty() && end == ChildEnd{false, ChildProcess::statusNotStarted}) {
        return formatText(batchText("Enc_toolNotStarted"), {ffmpegTool()});
    }
    // It always describes what it reads, or says why it cannot.
    return machineTrouble(text.trimmed().isEmpty() || end.bySignal ? text + endLine(ffmpegTool(), end) : text);
}

void AnalysisMachine::makeThumbnail(const MediaInfoRecord& infos)
{
    logLine(QStringLiteral("Thumb - deb"));
    const QString source = prefRead(pref::analysisSrcPathStr);
    const QString image = thumbnailPath(source);
    prefWrite(pref::imgPathStr, image);
    setFlag(pref::analysisFin);
    if (!launch(thumbnailArguments(ffmpegTool(), source, thumbnailSize(clipAspect(infos)), image))) {
        stall();
    }
}

void AnalysisMachine::finishSource()
{
    std::optional<MediaInfoRecord> infos = analysisFf(source_.retained, prefRead(pref::analysisIStr));
    const std::optional<float> mean = meanRate(source_.retained);
    source_.retained = QString();
    prefDelete(pref::analysisIStr);
    releaseChild();
    const QString source = prefRead(pref::analysisSrcPathStr);
    if (infos) {
        if (mean) {
            infos->insert(record::v0_meanRate, *mean);
        }
        logLine(QStringLiteral("stocker…"));
        addRow(std::move(*infos));
    } else if (source != cancelMark) {
        Q_EMIT rejected(source, source_.rejection.isNull() ? batchText("Clip_noVideo") : source_.rejection);
    }
    prefDelete(pref::analysisSrcPathStr);
    lookAhead();
    if (queue_.count() > 0 && session_.model().analysisStopInt.intValue() != 1) {
        logLine(QStringLiteral("panel_analyse       - fin (src current)"));
        setFlag(pref::analysisFfmpeg);
        step();
        return;
    }
    queue_.clear();
    resetPanel();
    Q_EMIT ended();
}

void AnalysisMachine::addRow(MediaInfoRecord infos)
{
    const QString source = prefRead(pref::analysisSrcPathStr);
    const QString thumbnail = prefRead(pref::imgPathStr);
    const QString image = !thumbnail.isEmpty() && testPresenceCocoa(thumbnail) ? thumbnail : QString();
    prefDelete(pref::imgPathStr);
    WindowModel& model = session_.model();
    BatchList& rows = model.encBatchArrayController;
    if (rows.indexOfSource(source) >= 0) {
        // The row machine finds its row by the source's path: two rows of one source would never end.
        if (!image.isNull()) {
            removeOwnFile(image, getTMPFOLDER());
        }
        return;
    }
    BatchRow row = analysedRow(source, std::move(infos), image, model.prefCheckMatrix.selectedSegment());
    row.order = rows.count() + 1;
    rows.append(row);
    if (!model.drawer.isOpen()) {
        session_.face().ecran(QStringLiteral("b"), drawerHeight);
        model.drawer.open();
    }
    Q_EMIT accepted(rows.count() - 1);
}

void AnalysisMachine::passTime(qint64 milliseconds)
{
    const bool stopping = session_.model().analysisStopInt.intValue() != 0;
    const qint64 limit = stopping ? silentStopMilliseconds : silenceLimit(pref::silenceAnalysis);
    if (!child_.isSilentAfter(milliseconds, limit)) {
        return;
    }
    logLine(QStringLiteral("analysis silent     :-( %d s"), {limit / 1000});
    source_.rejection = formatText(countedText("Clip_silent", limit / 1000, QStringLiteral("Batch")), {limit / 1000});
    silenced_ = true;
    child_.kill();
}

void AnalysisMachine::interrupted()
{
    if (!std::exchange(silenced_, false)) {
        stall();
        return;
    }
    // Without a description there is no row; what only lacks its thumbnail has one.
    if (takeFlag(pref::analysisFfmpegParse)) {
        source_.retained = QString();
        setFlag(pref::analysisFin);
    }
    step();
}

void AnalysisMachine::stall()
{
    const QString source = prefRead(pref::analysisSrcPathStr);
    releaseChild();
    resetPanel();
    Q_EMIT stalled(source);
}

void AnalysisMachine::resetPanel()
{
    WindowModel& model = session_.model();
    running_ = false;
    ahead_.end();
    model.analyseCaptionStr.setStringValue(QString());
    model.analyseStopBt.setHidden(true);
    model.analysisStopInt.setIntValue(0);
    dropArea_.open();
    Q_EMIT panelReset();
}

void AnalysisMachine::stop()
{
    session_.model().analysisStopInt.setIntValue(1);
    session_.model().analyseStopBt.setSelectedSegment(-1);
}

bool AnalysisMachine::launch(const QStringList& arguments)
{
    if (!child_.mayLaunch(arguments)) {
        return false;
    }
    source_.incoming = QStringLiteral("");
    // The picture is made beside the frames, and the tool need not look at the clip a second time.
    return child_.launch(arguments, [this] { Q_EMIT childGone(nullptr); },
                         {{QString::fromLatin1(keepVariable), getTMPFOLDER()}});
}

void AnalysisMachine::childWrote(const QString& text)
{
    child_.heard();
    if (!source_.incoming.isNull()) {
        source_.incoming += text;
    }
}

void AnalysisMachine::releaseChild()
{
    child_.release();
    source_.incoming = QString();
}

// From the first clip's description on: what the installed ffmpeg says of itself is known then.
void AnalysisMachine::lookAhead()
{
    if (maker_.makesRealProcesses() && session_.model().analysisStopInt.intValue() == 0) {
        ahead_.lookAt(queue_.next(AnalysisAhead::reach()));
    }
}

void AnalysisMachine::abandon()
{
    ahead_.end();
    child_.silence();
    child_.kill();
    releaseChild();
}

} // namespace tavrix
