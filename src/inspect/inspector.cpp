// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/inspector.h"

#include "base/bundle/bundle.h"
#include "base/text/listconversions.h"
#include "base/text/paths.h"
#include "base/text/text.h"
#include "inspect/fileproblem.h"
#include "inspect/formatpreview.h"
#include "inspect/recorderfacts.h"
#include "inspect/soundoffsets.h"
#include "inspect/toolrun.h"
#include "inspect/words.h"
#include "probe/batchtexts.h"
#include "probe/cameraclip.h"
#include "probe/ffinfos.h"
#include "probe/ffprobes.h"
#include "probe/intakelist.h"
#include "probe/pictureobstacle.h"
#include "probe/streamoffsets.h"
#include "probe/vocabulary.h"
#include "process/runners.h"
#include "quicktime/rules/framerate.h"
#include "quicktime/rules/movieslots.h"
#include "quicktime/rules/trackinformation.h"
#include "sys/transfer.h"
#include "tools/ffmpeg/clipinspection.h"

#include <QDir>
#include <QFileInfo>

namespace tavrix
{

QStringList inspectionArguments(const QString& tool, const QString& file)
{
    QStringList arguments{tool, QStringLiteral("-fdebug"), QStringLiteral("ts"), QStringLiteral("-i"), file};
    for (const char* word :
         {"-vframes", "1", "-s", "640x480", "-pix_fmt", "yuv420p", "-an", "-f", "yuv4mpegpipe", "-"}) {
        arguments << QLatin1String(word);
    }
    return arguments;
}

QString reasonInTranscript(const QString& transcript, const QString& file)
{
    const QString begin = file + QStringLiteral(": ");
    const QStringList lines = linesToArray(transcript);
    for (qsizetype i = lines.size() - 1; i >= 0; --i) {
        if (lines.at(i).startsWith(begin)) {
            return lines.at(i).mid(begin.size()).trimmed();
        }
    }
    return {};
}

Inspector::Inspector(const QString& path, const InspectionWish& wish) : wish_(wish)
{
    inspection_.path = path;
    file_ = QDir::cleanPath(QDir::current().absoluteFilePath(path));
    inspection_.problem = fileProblem(file_);
    if (!inspection_.described()) {
        return;
    }
    const QString tool = ffmpegPathStr();
    if (tool.isEmpty()) {
        inspection_.problem = formatText(batchText("Enc_toolMissing"), {"ffmpeg"});
        return;
    }
    // Without another program it takes a third of the time, and in a copy of this one a clip that breaks its reader
    // breaks no more than with one.
    here_ = front::canInspectClips();
    run_ = here_ ? std::make_unique<ToolRun>([this](int output, int errors) { return inspectHere(output, errors); })
                 : std::make_unique<ToolRun>(inspectionArguments(tool, file_));
}

Inspector::~Inspector() = default;

// Runs in a copy of the program. Status 0 when the streams tell what the tool's would.
int Inspector::inspectHere(int output, int errors) const
{
    const auto told = front::inspectClip(nativePath(file_).toStdString());
    return told && writeAll(output, told->header) && writeAll(errors, told->transcript) ? 0 : 1;
}

ToolAnswer Inspector::toolAnswer()
{
    ToolAnswer answer = run_->finish();
    if (here_ && !answer.succeeded && !answer.outOfTime) {
        run_ = std::make_unique<ToolRun>(inspectionArguments(ffmpegPathStr(), file_));
        answer = run_->finish();
    }
    run_.reset();
    return answer;
}

Inspection Inspector::finish()
{
    if (run_ == nullptr) {
        return std::move(inspection_);
    }
    inspection_.bytes = QFileInfo(file_).size();
    inspection_.recorder = recorderFacts(file_);
    inspection_.recording = recordingName(file_);
    readMovie();
    readToolAnswer();
    QTMOVIErelease();
    return std::move(inspection_);
}

void Inspector::readMovie()
{
    Result<media::SourceFacts> facts = media::readSourceFacts(nativePath(file_).toStdString(), 20);
    if (!facts) {
        return;
    }
    MovieLook look;
    // Without an index the whole file would be read for the number of pictures.
    look.countsPictures = facts->isMovie;
    look.mayRepair = false;
    inspection_.movie = movieRecord(file_, look);
    inspection_.shown = std::move(*facts);
}

void Inspector::readToolAnswer()
{
    const ToolAnswer answer = toolAnswer();
    const QString transcript = QString::fromUtf8(answer.errors);
    // Behind this mark stand the streams of the output, with time bases of their own.
    transcript_ = textBefore(transcript, QStringLiteral("\nOutput #0, "));
    if (!answer.failure.isNull() || answer.outOfTime) {
        inspection_.problem = inspectText(answer.outOfTime ? "Ins_outOfTime" : "Ins_notStarted");
        inspection_.toolWords = answer.failure;
        return;
    }
    const QString firstLine = QString::fromLatin1(answer.output.left(answer.output.indexOf('\n')));
    const QString code = interlacedYuvheaders2tvxStr(interlacingLetter(firstLine));
    inspection_.infos = analysisFf(transcript, code).value_or(MediaInfoRecord());
    if (const std::optional<float> mean = meanRate(transcript)) {
        inspection_.infos.insert(record::v0_meanRate, *mean);
    }
    if (!inspection_.infos.contains(record::v0_width) && transcript_.contains(QLatin1String("Input #0"))) {
        describeAgain();
    }
    if (!ffmpegSuccess(transcript) || inspection_.infos.isEmpty()) {
        inspection_.problem = inspectText("Ins_unreadable");
        inspection_.toolWords = reasonInTranscript(transcript, file_);
        return;
    }
    if (!firstLine.isEmpty()) {
        inspection_.interlacing = code;
    }
    inspection_.infos.insert(ptsDtsOffsetMs(transcript_));
    inspection_.offsets = soundOffsets(streamCount(inspection_.infos, 'a'), transcript_, getQTMOVIE().get());
    judge();
    inspection_.formats = formatPreviews(inspection_, file_);
    if (wish_.thorough) {
        lookThoroughly();
    }
}

// Without pictures the first run has made no output, and its description lacks the end that the parser asks for.
void Inspector::describeAgain()
{
    ToolRun again(QStringList{ffmpegPathStr(), QStringLiteral("-i"), file_});
    const ToolAnswer answer = again.finish();
    inspection_.infos = recordFromBanner(QString::fromUtf8(answer.errors));
}

void Inspector::judge()
{
    const IntakeList intake = intakeList({file_});
    if (intake.accepted.isEmpty()) {
        inspection_.verdict.reason = intake.skipped.isEmpty() ? QString() : intake.skipped.first().reason;
        return;
    }
    const QString code = inspection_.interlacing.isNull() ? interlacedYuvheaders2tvxStr({}) : inspection_.interlacing;
    inspection_.verdict = cameraClipVerdict(inspection_.infos, code);
    const Look look = inspection_.verdict.accepted ? Look::AtHeader : Look::AtPackets;
    // What a player shows was read with the packets.
    const bool known = look == Look::AtPackets && inspection_.shown.has_value();
    const QString obstacle = known ? pictureObstacle(*inspection_.shown, look) : pictureObstacle(file_, look);
    if (!obstacle.isNull()) {
        inspection_.verdict = {false, obstacle};
    }
}

void Inspector::lookThoroughly()
{
    ThoroughFacts facts;
    const QString extension = pathExtension(file_).toLower();
    facts.soundDecodes = ffmpegSuccessAudioCodec(file_);
    facts.needsVsync = ffmpegVsync(file_, QStringLiteral(""), QString());
    facts.countedRate = movieFpsQt(file_, mpegTs(QStringLiteral(""), transcript_) ? 1 : 0);
    if (elementariesStreamsArray().contains(extension)) {
        facts.elementarySeconds = durationM2v(file_);
    }
    inspection_.thorough = facts;
}

} // namespace tavrix
