// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/describe.h"

#include "base/text/paths.h"
#include "base/text/shownname.h"
#include "inspect/describestreams.h"
#include "inspect/words.h"
#include "probe/vocabulary.h"

#include <algorithm>

namespace tavrix
{

namespace
{

constexpr int indent = 2;

// What the name promises and the content does not keep.
QString nameWords(const Inspection& inspection)
{
    const QString extension = pathExtension(inspection.path).toLower();
    const QString wrapper = inspection.infos.value(record::wrapper).toString();
    const bool isMpeg = wrapper.startsWith(QLatin1String("mpeg"));
    if (multiplexedStreamsArray().contains(extension) && !isMpeg) {
        return inspectText("Ins_nameMultiplexed", {extension});
    }
    if (elementariesStreamsArray().contains(extension) && !isMpeg) {
        return inspectText("Ins_nameElementary", {extension});
    }
    const bool nameOfMovie = qtExtensionsHandledArray(QStringLiteral("V")).contains(extension);
    return nameOfMovie && inspection.shown && !inspection.shown->isMovie ? inspectText("Ins_nameMovie", {extension})
                                                                         : QString();
}

QString lengthLine(const Inspection& inspection)
{
    if (inspection.shown && inspection.shown->duration) {
        return lengthWords(*inspection.shown->duration);
    }
    if (inspection.infos.contains(record::w_duration)) {
        return lengthWords(inspection.infos.value(record::w_duration).toDouble());
    }
    return inspectText("Ins_unknown");
}

QString dateLine(const RecordingName& recording)
{
    return recording.date.isNull() ? inspectText("Ins_unknown")
                                   : inspectText("Ins_dateFrom", {recording.date, dateSourceWords(recording.source)});
}

QString recorderLine(const RecorderFacts& recorder)
{
    const QString name = shownText(recorder.name);
    const QString folder = shownText(recorder.folder);
    if (recorder.kind == RecorderKind::Avchd) {
        return inspectText("Ins_recorderAvchd", {name, folder});
    }
    const QString words = inspectText("Ins_recorderEyetv", {name, folder});
    return recorder.seconds > 0
               ? words + inspectText("Ins_recorderLength", {lengthWords(static_cast<double>(recorder.seconds))})
               : words;
}

void addContainer(const Inspection& inspection, LineList& lines)
{
    const MediaInfoRecord& infos = inspection.infos;
    lines.add("Ins_container", containerWords(infos.value(record::wrapper).toString()));
    lines.addKnown("Ins_name", nameWords(inspection));
    lines.add("Ins_length", lengthLine(inspection));
    if (const double start = infos.value(record::w_offset).toDouble(); start != 0) {
        lines.add("Ins_start", inspectText("Ins_startValue", {numberWords(start, 3)}));
    }
    if (infos.contains(record::w_bitrate)) {
        lines.add("Ins_bitrate", inspectText("Ins_kilobits", {infos.value(record::w_bitrate).toInt()}));
    }
    lines.add("Ins_recorded", dateLine(inspection.recording));
    if (inspection.recorder.kind != RecorderKind::None) {
        lines.add("Ins_recorder", recorderLine(inspection.recorder));
    }
}

void addFormats(const Inspection& inspection, LineList& lines)
{
    if (inspection.formats.isEmpty()) {
        return;
    }
    lines.heading(inspectText("Ins_formats"));
    for (const FormatPreview& format : inspection.formats) {
        const QString caption =
            localizedString(formatText(QStringLiteral("Ins_format%d"), {format.out}), QStringLiteral("Inspect"));
        const QString size = inspectText("Ins_pixels", {format.width, format.height});
        const QString bytes =
            format.bytes < 0 ? inspectText("Ins_unknown") : inspectText("Ins_about", {sizeWords(format.bytes)});
        lines.addWith(formatText(QStringLiteral("%d %@"), {format.out, caption}),
                      inspectText("Ins_format", {size, inspectText("Ins_rate", {numberWords(format.rate, 2)}), bytes,
                                                 shownText(format.name)}));
    }
    lines.endHeading();
}

void addThorough(const Inspection& inspection, LineList& lines)
{
    if (!inspection.thorough) {
        return;
    }
    const ThoroughFacts& facts = *inspection.thorough;
    lines.heading(inspectText("Ins_thorough"));
    lines.add("Ins_soundDecodes", inspectText(facts.soundDecodes ? "Ins_yes" : "Ins_no"));
    lines.add("Ins_needsVsync", inspectText(facts.needsVsync ? "Ins_yes" : "Ins_no"));
    lines.add("Ins_countedRate",
              facts.countedRate > 0 ? rateWords(static_cast<double>(facts.countedRate)) : inspectText("Ins_unknown"));
    if (facts.elementarySeconds >= 0) {
        lines.add("Ins_elementaryLength", lengthWords(facts.elementarySeconds));
    }
    lines.endHeading();
}

} // namespace

QList<DescribedLine> describedLines(const Inspection& inspection)
{
    LineList lines;
    lines.heading(shownText(lastPathComponent(inspection.path)));
    lines.add("Ins_file", inspection.bytes < 0
                              ? shownText(inspection.path)
                              : inspectText("Ins_fileSize", {shownText(inspection.path), sizeWords(inspection.bytes)}));
    if (!inspection.described()) {
        lines.add("Ins_problem", shownText(inspection.problem));
        lines.addKnown("Ins_toolWords", shownText(inspection.toolWords));
        return lines.take();
    }
    addContainer(inspection, lines);
    addStreams(inspection, lines);
    lines.add("Ins_taken", inspection.verdict.accepted
                               ? inspectText("Ins_takenYes")
                               : inspectText("Ins_takenNo", {shownText(inspection.verdict.reason)}));
    addFormats(inspection, lines);
    addThorough(inspection, lines);
    return lines.take();
}

QString describedText(const QList<DescribedLine>& lines)
{
    qsizetype widest = 0;
    for (const DescribedLine& line : lines) {
        if (!line.value.isNull()) {
            widest = std::max(widest, line.depth * indent + line.label.size());
        }
    }
    QString text;
    for (const DescribedLine& line : lines) {
        const QString head = QString(line.depth * indent, QLatin1Char(' ')) + line.label;
        text += line.value.isNull() ? head : head.leftJustified(widest + indent) + line.value;
        text += QLatin1Char('\n');
    }
    return text;
}

} // namespace tavrix
