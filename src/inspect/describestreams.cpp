// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/describestreams.h"

#include "base/dialogue/numberconversions.h"
#include "base/text/shownname.h"
#include "inspect/soundoffsets.h"
#include "inspect/words.h"

#include <cmath>

namespace tavrix
{

namespace
{

// One stream of a file, as the record numbers it.
class StreamView
{
public:
    StreamView(const Inspection& inspection, char kind, int number)
        : inspection_(inspection), kind_(kind), number_(number),
          shown_(shownStream(inspection, kind == 'v' ? media::Kind::Picture : media::Kind::Sound, number))
    {
    }
    [[nodiscard]] QVariant ofTool(const char* name) const
    {
        return inspection_.infos.value(record::stream(kind_, number_, name));
    }
    [[nodiscard]] QVariant ofMovie(const char* name) const
    {
        return inspection_.movie.value(record::stream(kind_, number_, name));
    }
    [[nodiscard]] QVariant known(const char* name) const { return knownValue(inspection_, kind_, number_, name); }
    [[nodiscard]] const media::StreamFacts* shown() const { return shown_; }
    [[nodiscard]] int number() const { return number_; }

private:
    const Inspection& inspection_;
    char kind_;
    int number_;
    const media::StreamFacts* shown_;
};

QString shapeWords(const QString& aspect, double ratio)
{
    constexpr double wide = 1.77;
    constexpr double classic = 1.33;
    constexpr double near = 0.1;
    if (std::fabs(ratio - wide) < near) {
        return inspectText("Ins_shapeWide", {aspect});
    }
    if (std::fabs(ratio - classic) < near) {
        return inspectText("Ins_shapeClassic", {aspect});
    }
    return inspectText("Ins_shapeOther", {aspect});
}

// "16:9" as a number; 0 when it is none.
double ratioOf(const QString& aspect)
{
    const float second = str2Float(aspect.section(QLatin1Char(':'), 1, 1));
    return second > 0 ? static_cast<double>(str2Float(aspect.section(QLatin1Char(':'), 0, 0)) / second) : 0;
}

void addShape(const StreamView& view, LineList& lines)
{
    const QString display = view.known("dar").toString();
    if (!display.isEmpty()) {
        lines.add("Ins_shape", shapeWords(display, ratioOf(display)));
    }
    const QString pixel = view.known("par").toString();
    if (!pixel.isEmpty()) {
        const bool square = std::fabs(ratioOf(pixel) - 1) < 0.005;
        lines.add("Ins_pixelShape", inspectText(square ? "Ins_pixelSquare" : "Ins_pixelOblong", {pixel}));
    }
}

QString cropWords(const StreamView& view)
{
    const bool turned = view.shown() != nullptr && view.shown()->turning != media::Turning{};
    // The margins are told for the picture as it is stored: beside a turned one they mean nothing.
    if (turned || !view.ofMovie("croptop").isValid()) {
        return {};
    }
    const int top = view.ofMovie("croptop").toInt();
    const int bottom = view.ofMovie("cropbottom").toInt();
    const int left = view.ofMovie("cropleft").toInt();
    const int right = view.ofMovie("cropright").toInt();
    return top == 0 && bottom == 0 && left == 0 && right == 0
               ? inspectText("Ins_none")
               : inspectText("Ins_cropValue", {top, bottom, left, right});
}

void addRates(const StreamView& view, LineList& lines)
{
    const QVariant mean = view.ofTool("meanRate");
    const double rate = (mean.isValid() ? mean : view.ofTool("fps")).toDouble();
    if (rate > 0) {
        lines.add("Ins_frameRate", rateWords(rate));
    }
    const double counted = view.ofMovie("fps").toDouble();
    constexpr double worthTelling = 0.02;
    if (counted > 0 && std::fabs(counted - rate) > worthTelling) {
        lines.add("Ins_countedRate", rateWords(counted));
    }
}

QString fieldWords(const QString& code)
{
    if (code == QLatin1String("TFF")) {
        return inspectText("Ins_fields_TFF");
    }
    if (code == QLatin1String("BFF")) {
        return inspectText("Ins_fields_BFF");
    }
    return code.isEmpty() ? QString() : inspectText("Ins_fields_PFF");
}

QString turningWords(const media::Turning& turning)
{
    if (turning.degrees == 0) {
        return inspectText(turning.mirrored ? "Ins_mirrored" : "Ins_notTurned");
    }
    const QString words = inspectText("Ins_turned", {turning.degrees});
    return turning.mirrored ? words + inspectText("Ins_andMirrored") : words;
}

QString editWords(const media::Edits& edits)
{
    if (!edits.present) {
        return inspectText("Ins_noEdits");
    }
    QString words = inspectText(edits.pieces == 1 ? "Ins_editPiece" : "Ins_editPieces", {edits.pieces});
    if (edits.emptyStart > 0) {
        words += inspectText("Ins_editLate", {numberWords(edits.emptyStart, 3)});
    }
    if (edits.hidesStart) {
        words += inspectText("Ins_editHidden");
    }
    if (edits.endsBeforeMedia) {
        words += inspectText("Ins_editEarly");
    }
    return words;
}

QString bitrateWords(const StreamView& view)
{
    const int bitrate = view.ofTool("bitrate").toInt();
    return bitrate > 0 ? inspectText("Ins_kilobits", {bitrate}) : QString();
}

void addPicture(const Inspection& inspection, int number, LineList& lines)
{
    const StreamView view(inspection, 'v', number);
    lines.heading(inspectText("Ins_picture", {number, view.ofTool("id").toInt()}));
    const QString chroma = view.ofTool("chroma").toString();
    const QString codec = codecWords(view.ofTool("codec").toString());
    lines.add("Ins_codec", chroma.isEmpty() ? codec : codec + QStringLiteral(", ") + shownText(chroma));
    lines.addKnown("Ins_bitrate", bitrateWords(view));
    if (view.known("width").isValid()) {
        lines.add("Ins_size", inspectText("Ins_pixels", {view.known("width").toInt(), view.known("height").toInt()}));
    }
    addShape(view, lines);
    lines.addKnown("Ins_crop", cropWords(view));
    addRates(view, lines);
    if (number == 0) {
        lines.addKnown("Ins_fields", fieldWords(inspection.interlacing));
    }
    if (view.shown() != nullptr) {
        lines.add("Ins_turning", turningWords(view.shown()->turning));
        if (inspection.shown->isMovie) {
            lines.add("Ins_edits", editWords(view.shown()->edits));
        }
        lines.add("Ins_colour", colourWords(view.shown()->colour, view.shown()->fullRange));
    }
    lines.endHeading();
}

QString offsetWords(const std::optional<int>& offset)
{
    if (!offset) {
        return inspectText("Ins_unknown");
    }
    const int milliseconds = noticedOffset(*offset);
    if (milliseconds == 0) {
        return inspectText("Ins_together", {*offset});
    }
    return milliseconds > 0 ? inspectText("Ins_soundLate", {milliseconds})
                            : inspectText("Ins_soundEarly", {-milliseconds});
}

void addOffsets(const SoundOffset& offset, LineList& lines)
{
    lines.add("Ins_offsetTool", offsetWords(offset.byTimeStamps));
    lines.add("Ins_offsetMovie", offsetWords(offset.byTrackRanges));
    if (const std::optional<bool> agree = offsetsAgree(offset)) {
        lines.add("Ins_offsetsAgree", inspectText(*agree ? "Ins_yes" : "Ins_no"));
    }
}

QString soundWords(const StreamView& view)
{
    QStringList words;
    if (const int rate = view.known("rate").toInt(); rate > 0) {
        words << inspectText("Ins_hertz", {rate});
    }
    if (const int channels = view.known("channels").toInt(); channels > 0) {
        words << inspectText(channels == 1 ? "Ins_mono" : "Ins_channels", {channels});
    }
    // Of compressed sound the number says nothing.
    const bool plain = view.ofTool("codec").toString().startsWith(QLatin1String("pcm_"));
    if (const int bits = view.ofMovie("bits").toInt(); plain && bits > 0) {
        words << inspectText("Ins_bits", {bits});
    }
    return words.join(QStringLiteral(", "));
}

void addSound(const Inspection& inspection, int number, LineList& lines)
{
    const StreamView view(inspection, 'a', number);
    lines.heading(inspectText("Ins_sound", {number, view.ofTool("id").toInt()}));
    lines.add("Ins_codec", codecWords(view.ofTool("codec").toString()));
    lines.addKnown("Ins_soundForm", soundWords(view));
    lines.addKnown("Ins_bitrate", bitrateWords(view));
    // "und" is the code for a language that is not told.
    if (const QString language = view.ofTool("lang").toString(); language != QLatin1String("und")) {
        lines.addKnown("Ins_language", shownText(language));
    }
    if (view.shown() != nullptr && inspection.shown->isMovie) {
        lines.add("Ins_edits", editWords(view.shown()->edits));
    }
    if (number < inspection.offsets.size() && streamCount(inspection.infos, 'v') > 0) {
        addOffsets(inspection.offsets.at(number), lines);
    }
    lines.endHeading();
}

} // namespace

void LineList::add(const char* key, const QString& value)
{
    lines_ << DescribedLine{depth_, inspectText(key), value.isNull() ? QStringLiteral("") : value};
}

void LineList::addKnown(const char* key, const QString& value)
{
    if (!value.isEmpty()) {
        add(key, value);
    }
}

void addStreams(const Inspection& inspection, LineList& lines)
{
    for (int number = 0; number < streamCount(inspection.infos, 'v'); ++number) {
        addPicture(inspection, number, lines);
    }
    for (int number = 0; number < streamCount(inspection.infos, 'a'); ++number) {
        addSound(inspection, number, lines);
    }
}

} // namespace tavrix
