// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/ffinfos.h"

#include "base/dialogue/alerts.h"
#include "base/dialogue/numberconversions.h"
#include "base/dialogue/textfiles.h"
#include "base/store/settings.h"
#include "base/text/listconversions.h"
#include "base/text/log.h"
#include "base/text/roundingconversions.h"
#include "base/text/text.h"
#include "process/runners.h"
#include "process/shelltext.h"

// What is read is the description of the input in the classic words of the tool `ffmpeg`, six lines of which are:
//
//     Input #0, mpegts, from '/clips/00001.MTS':
//       Duration: 00:00:10.43, start: 1.033367, bitrate: 17054 kb/s
//         Stream #0.0[0x1011]: Video: h264, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], 59.94 tbr, 90k tbn, 119.88 tbc
//         Stream #0.1[0x1100]: Audio: ac3, 48000 Hz, stereo, s16, 192 kb/s
//     Output #0, image2, to '/tmp/frame.png':
//     At least one output file must be specified
namespace tavrix
{

namespace
{

const QString fieldSeparator = QStringLiteral(", ");
const QString streamMark = QStringLiteral("Stream #");
const QString audioMark = QStringLiteral("Audio: ");
const QString videoMark = QStringLiteral("Video: ");
const QString bitrateMark = QStringLiteral(" kb/s");

// Lines of the last input description that a marker follows: scanned from the end, so that a second run in the same
// capture wins over the first.
QStringList inputBlock(const QStringList& lines)
{
    qsizetype start = 0;
    qsizetype end = 0;
    for (qsizetype i = lines.size() - 1; i > 0; --i) {
        const QString& line = lines.at(i);
        if (line.contains(QLatin1String("At least one output file must be specified")) ||
            line.contains(QLatin1String("Output #0, "))) {
            end = i;
        }
        if (line.contains(QLatin1String("Input #0, "))) {
            start = i;
            if (end > 0) {
                break;
            }
        }
    }
    return end > start ? lines.mid(start, end - start) : QStringList();
}

int integerBefore(const QString& field, const QString& marker)
{
    return leadingInteger(textBefore(field, marker));
}

// Reads the lines of one block into a record. File names, titles and codec names in the text are under the control of
// whoever made the clip, so no piece of a line is taken for granted.
class BlockReader
{
public:
    // False when the block must not be trusted: a stream line without the "#file.stream" form.
    bool read(const QString& line);
    [[nodiscard]] const MediaInfoRecord& result() const { return record_; }

private:
    enum class Specifier { present, absentInStreamLine, absentElsewhere };

    static Specifier specifierOf(const QString& line, const QStringList& fields);
    void readSummary(const QStringList& fields);
    void readDuration(const QString& field);
    void readBitrate(const QString& field);
    void readAudioField(const QString& field);
    void readChannels(const QString& field);
    void readVideoField(const QString& field);
    void readRates(const QString& field);
    void readSize(const QString& field);
    void readChroma(const QString& field);
    void set(char kind, int number, const char* name, const QVariant& value)
    {
        record_.insert(record::stream(kind, number, name), value);
    }

    MediaInfoRecord record_;
    int audio_ = 0;
    int video_ = 0;
    bool channelsKnown_ = false; // of any audio stream so far: later streams then get no count
};

// The number after the first "." of "Stream #0.1[0x1100](eng): ..."; no value without a ".".
std::optional<int> streamNumber(const QString& field)
{
    const QStringList pieces = componentsSeparated(field, QStringLiteral("."));
    if (pieces.size() < 2) {
        return std::nullopt;
    }
    return leadingInteger(textBefore(pieces.at(1), QStringLiteral("[")));
}

BlockReader::Specifier BlockReader::specifierOf(const QString& line, const QStringList& fields)
{
    for (const QString& field : fields) {
        if (field.contains(streamMark) && !streamNumber(field)) {
            const bool streamLine = line.trimmed().startsWith(streamMark);
            return streamLine ? Specifier::absentInStreamLine : Specifier::absentElsewhere;
        }
    }
    return Specifier::present;
}

bool BlockReader::read(const QString& line)
{
    logDebug(QStringLiteral("currentLineStr : %@"), {line});
    const QStringList fields = componentsSeparated(line, fieldSeparator);
    if (line.contains(QLatin1String("Input "))) {
        if (fields.size() > 1) {
            record_.insert(record::wrapper, fields.at(1));
        }
        return true;
    }
    if (line.contains(QLatin1String("Duration: "))) {
        readSummary(fields);
        return true;
    }
    const bool audioLine = line.contains(streamMark) && line.contains(audioMark);
    const bool videoLine = !audioLine && line.contains(streamMark) && line.contains(videoMark);
    if (!audioLine && !videoLine) {
        return true;
    }
    const Specifier specifier = specifierOf(line, fields);
    if (specifier != Specifier::present) {
        return specifier == Specifier::absentElsewhere;
    }
    for (const QString& field : fields) {
        if (audioLine) {
            readAudioField(field);
        } else {
            readVideoField(field);
        }
    }
    if (audioLine) {
        ++audio_;
    } else {
        logDebug(QStringLiteral("infosDico v#%d: %@"), {video_, record_});
        ++video_;
    }
    return true;
}

void BlockReader::readSummary(const QStringList& fields)
{
    const QString startMark = QStringLiteral("start: ");
    for (const QString& field : fields) {
        if (field.contains(QLatin1String("Duration: "))) {
            readDuration(field);
        } else if (field.contains(startMark)) {
            record_.insert(record::w_offset, QVariant(str2Float(textAfter(field, startMark))));
        } else if (field.contains(QLatin1String("bitrate: "))) {
            readBitrate(field);
        }
    }
}

void BlockReader::readDuration(const QString& field)
{
    const QStringList pieces = componentsSeparated(field, QStringLiteral(": "));
    if (pieces.size() < 2) {
        return;
    }
    const float seconds = timecodeStr2Float(pieces.at(1));
    if (seconds > 0) {
        record_.insert(record::w_duration, truncatedInt(static_cast<double>(seconds)));
    }
}

void BlockReader::readBitrate(const QString& field)
{
    const QString candidate = textAfter(field, QStringLiteral("bitrate: "));
    if (getDEBUGDEV() != 0) {
        displayAlert(formatText(QStringLiteral("ffmpeg>ffinfos : %@"), {candidate}), QStringLiteral("cf logs"), 0,
                     nullptr);
    }
    const int kilobits = leadingInteger(candidate);
    if (kilobits >= 1) {
        record_.insert(record::w_bitrate, kilobits);
    }
}

void BlockReader::readAudioField(const QString& field)
{
    const QString hertzMark = QStringLiteral(" Hz");
    const QString languageMark = QStringLiteral("](");
    if (field.contains(streamMark)) {
        set('a', audio_, "id", streamNumber(field).value_or(0));
        if (field.contains(audioMark)) {
            set('a', audio_, "codec", textAfter(field, audioMark));
        }
        if (field.contains(languageMark)) {
            set('a', audio_, "lang", textAfter(field, languageMark, QStringLiteral(")")));
        }
    } else if (field.contains(audioMark)) {
        set('a', audio_, "codec", textAfter(field, audioMark));
    } else if (field.contains(hertzMark)) {
        set('a', audio_, "rate", integerBefore(field, hertzMark));
    } else if (field.contains(bitrateMark)) {
        const int kilobits = integerBefore(field, bitrateMark);
        if (kilobits >= 1) {
            set('a', audio_, "bitrate", kilobits);
        }
    } else if (!channelsKnown_) {
        readChannels(field);
    }
}

void BlockReader::readChannels(const QString& field)
{
    const QString point = QStringLiteral(".");
    const QString countMark = QStringLiteral(" channels");
    const QString lower = field.toLower();
    int channels = 2;
    channelsKnown_ = true;
    if (lower == QLatin1String("mono")) {
        channels = 1;
    } else if (lower == QLatin1String("2 channels") || lower == QLatin1String("stereo")) {
        channels = 2;
    } else if (field.contains(point)) {
        const qint64 sum = qint64{integerBefore(field, point)} + leadingInteger(textAfter(field, point));
        channels = truncatedInt(static_cast<double>(sum));
    } else if (field.contains(countMark)) {
        channels = integerBefore(field, countMark);
    } else {
        // Not a layout: a provisional 2 that a later field may replace.
        channelsKnown_ = false;
    }
    set('a', audio_, "channels", channels);
}

void BlockReader::readVideoField(const QString& field)
{
    if (field.contains(streamMark)) {
        set('v', video_, "id", streamNumber(field).value_or(0));
        if (field.contains(videoMark)) {
            set('v', video_, "codec", textAfter(field, videoMark));
        }
    } else if (field.contains(videoMark)) {
        set('v', video_, "codec", textAfter(field, videoMark));
    } else if (field.contains(bitrateMark)) {
        const int kilobits = integerBefore(field, bitrateMark);
        if (kilobits >= 1) {
            set('v', video_, "bitrate", kilobits);
        }
    } else if (field.contains(QLatin1String(" tbr")) || field.contains(QLatin1String(" tbc"))) {
        readRates(field);
    } else if (field.contains(QLatin1Char('x'))) {
        readSize(field);
    } else {
        readChroma(field);
    }
}

void BlockReader::readRates(const QString& field)
{
    const QString rateMark = QStringLiteral(" tbr");
    if (field.contains(rateMark)) {
        if (getDEBUGDEV() != 0) {
            displayAlert(formatText(QStringLiteral("ffmpeg>ffinfos : %@"), {field}), QStringLiteral(" tbr?"), 0,
                         nullptr);
        }
        set('v', video_, "fps", QVariant(str2Float(textBefore(field, rateMark))));
        return;
    }
    QString base = textBefore(field, QStringLiteral(" tbc"));
    if (base.contains(QLatin1Char('k'))) {
        base = textBefore(field, QStringLiteral("k"));
    }
    set('v', video_, "tbc", QVariant(static_cast<float>(leadingInteger(base))));
}

void BlockReader::readSize(const QString& field)
{
    const QString blank = QStringLiteral(" ");
    const QString times = QStringLiteral("x");
    set('v', video_, "width", integerBefore(field, times));
    set('v', video_, "height", leadingInteger(textBefore(textAfter(field, times), blank)));
    const QString pixelMark = QStringLiteral("PAR ");
    const QString displayMark = QStringLiteral("DAR ");
    if (field.contains(pixelMark)) {
        set('v', video_, "par", textAfter(field, pixelMark, blank));
    }
    if (field.contains(displayMark)) {
        set('v', video_, "dar", textAfter(field, displayMark, QStringLiteral("]")));
    }
}

void BlockReader::readChroma(const QString& field)
{
    const bool other = field.contains(QLatin1String("fps")) || field.contains(QLatin1String("tbn")) ||
                       field == QString::number(leadingInteger(field)) || field.contains(QLatin1Char('/')) ||
                       field.contains(QLatin1String("PAR "));
    if (!other) {
        set('v', video_, "chroma", field);
    }
}

bool describesInput(const QString& banner)
{
    return banner.contains(QLatin1String("Input #"));
}

// What the tool prints about the source; nothing when it prints nothing readable.
QString askedBanner(const QString& sourcePath)
{
    const QString capture = formatText(QStringLiteral("%@ff.txt"), {getTMPFOLDER()});
    const QString answer = taskWithStr(
        formatText(QStringLiteral("\"%@\" -v 2 -i \"%@\" 2>%@"),
                   {shellDoubleQuoted(ffmpegPathStr()), shellDoubleQuoted(sourcePath), shellWord(capture)}));
    logDebug(QStringLiteral("ffInfos             : %@"), {answer});
    return readContentsTxtUTF8(capture);
}

} // namespace

MediaInfoRecord recordFromBanner(const QString& banner)
{
    const QStringList lines = inputBlock(linesToArray(banner));
    logLine(QStringLiteral("linesResultMArray : %@"), {lines});
    BlockReader reader;
    for (const QString& line : lines) {
        if (!reader.read(line)) {
            logLine(QStringLiteral("ffInfos             :-( %@"), {line});
            return {};
        }
    }
    logDebug(QStringLiteral("infosDico : %@"), {reader.result()});
    return reader.result();
}

std::optional<MediaInfoRecord> ffInfos(const QString& sourcePath, const QString& banner)
{
    logLine(QStringLiteral("ffInfos - debInt"));
    if (sourcePath.isNull()) {
        if (banner.isEmpty()) {
            if (getDEBUG() != 0) {
                displayAlert(QStringLiteral("ffmpeg > ffInfos: :-("),
                             QStringLiteral("if ([verboseStr isEqualToString:@''])"), 0, nullptr);
            }
            return std::nullopt;
        }
        return describesInput(banner) ? recordFromBanner(banner) : MediaInfoRecord();
    }
    if (banner.isNull()) {
        return recordFromBanner(banner);
    }
    if (describesInput(banner)) {
        return recordFromBanner(banner);
    }
    const QString asked = askedBanner(sourcePath);
    if (asked.isNull()) {
        return std::nullopt;
    }
    if (!describesInput(asked)) {
        if (getDEBUG() != 0) {
            displayAlert(QStringLiteral("ffInfos > !Input #"), QStringLiteral(":-((("), 0, nullptr);
        }
        return std::nullopt;
    }
    return recordFromBanner(asked);
}

std::optional<MediaInfoRecord> analysisFf(const QString& verboseFFmpegStr, const QString& interlacingStr)
{
    if (verboseFFmpegStr.isNull() || interlacingStr.isNull()) {
        return std::nullopt;
    }
    logDebug(QStringLiteral("interlacingStr      : %@"), {interlacingStr});
    return ffInfos(QString(), verboseFFmpegStr);
}

MediaInfoRecord analysisDico()
{
    MediaInfoRecord skeleton;
    for (const char* key :
         {"wrapper", "wduration", "woffset", "wbitrate", "vcodec", "vchroma", "vpar", "vdar", "a1codec", "a1lang"}) {
        skeleton.insert(QLatin1String(key), QStringLiteral(""));
    }
    for (const char* key :
         {"vid", "vwidth", "vheight", "vbitrate", "vtbc", "a1id", "a1rate", "a1channels", "a1bitrate"}) {
        skeleton.insert(QLatin1String(key), 0);
    }
    skeleton.insert(QStringLiteral("vfps"), QVariant(0.0F));
    return skeleton;
}

} // namespace tavrix
