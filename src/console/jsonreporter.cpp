// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/jsonreporter.h"

#include "base/text/format.h"
#include "base/text/shownname.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <array>
#include <cmath>

namespace tavrix
{

namespace
{

// What a script may rely on, documented in docs/console.md. The record's other keys are the program's own affair; these
// are spelled out here, so that renaming one inside cannot change the output unseen.
constexpr std::array publicKeys = {"wrapper",       "w_duration",         "w_offset",    "w_bitrate",
                                   "v0_codec",      "v0_width",           "v0_height",   "v0_fps",
                                   "v0_meanRate",   "v0_aspect",          "v0_bitrate",  "v0_par",
                                   "v0_dar",        "v0_chroma",          "a0_codec",    "a0_lang",
                                   "a0_rate",       "a0_bitrate",         "a0_channels", "out",
                                   "recordingDate", "recordingDateSource"};

QString name(const char* text)
{
    return QLatin1String(text);
}

// Seconds; without an end the part goes to the clip's.
QJsonObject partObject(const ClipPart& part)
{
    QJsonObject object{{name("from"), part.from}};
    if (part.to) {
        object.insert(name("to"), *part.to);
    }
    return object;
}

QJsonObject rowObject(const RowReport& row)
{
    QJsonObject object{{name("source"), row.source}, {name("success"), row.success}};
    if (row.part) {
        object.insert(name("part"), partObject(*row.part));
    }
    if (row.success) {
        object.insert(name("output"), row.output);
        object.insert(name("bytes"), row.bytes);
        if (!row.warning.isEmpty()) {
            object.insert(name("warning"), row.warning);
            object.insert(name("incomplete"), row.incomplete);
        }
    } else {
        object.insert(name("reason"), row.reason);
        if (row.kept) {
            object.insert(name("kept"), true);
        }
    }
    return object;
}

// 32-bit floats keep their short text: 59.94, not 59.939998626708984.
QJsonValue jsonValue(const QVariant& value)
{
    if (value.typeId() == QMetaType::Float) {
        return textOf(value).toDouble();
    }
    return QJsonValue::fromVariant(value);
}

// To that part of one: no longer tail of digits than means anything.
double rounded(double value, int part)
{
    return std::round(value * part) / part;
}

} // namespace

JsonReporter::JsonReporter(std::FILE* stream) : stream_(stream) {}

void JsonReporter::write(const char* event, QJsonObject object)
{
    object.insert(name("event"), name(event));
    const QByteArray line = shownJson(QJsonDocument(object).toJson(QJsonDocument::Compact)) + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stream_);
    std::fflush(stream_);
}

void JsonReporter::queued(int count)
{
    write("queued", {{name("count"), count}});
}

void JsonReporter::analysing(const QString& path, int number, int total)
{
    write("analysing", {{name("source"), path}, {name("number"), number}, {name("total"), total}});
}

void JsonReporter::accepted(const QString& path, const QVariantMap& infos)
{
    QJsonObject record;
    for (const char* key : publicKeys) {
        if (const auto value = infos.constFind(name(key)); value != infos.constEnd()) {
            record.insert(name(key), jsonValue(*value));
        }
    }
    write("accepted", {{name("source"), path}, {name("record"), record}});
}

void JsonReporter::rejected(const QString& path, const QString& reason)
{
    write("rejected", {{name("source"), path}, {name("reason"), reason}});
}

void JsonReporter::rowStarted(int number, int total, const QString& source, const std::optional<ClipPart>& part)
{
    row_ = number;
    QJsonObject object{{name("row"), number}, {name("total"), total}, {name("source"), source}};
    if (part) {
        object.insert(name("part"), partObject(*part));
    }
    write("row-started", object);
}

void JsonReporter::rowProgress(const RowProgress& progress)
{
    // Before the tool has said anything there is nothing to divide by.
    if (progress.maximum <= 0) {
        return;
    }
    QJsonObject object{{name("row"), row_},
                       {name("value"), jsonValue(progress.value)},
                       {name("maximum"), jsonValue(progress.maximum)},
                       {name("pass"), progress.pass},
                       {name("passes"), progress.passes},
                       {name("fraction"), rounded(progress.fraction, 10000)}};
    if (progress.speed > 0) {
        object.insert(name("speed"), rounded(progress.speed, 100));
    }
    if (progress.left) {
        object.insert(name("left"), rounded(*progress.left, 1));
    }
    write("progress", object);
}

void JsonReporter::rowFinished(int number, int total, const RowReport& row)
{
    QJsonObject object = rowObject(row);
    object.insert(name("row"), number);
    object.insert(name("total"), total);
    write("row-finished", object);
}

void JsonReporter::message(const QString& title, const QString& text, const QString& answer)
{
    write("message", {{name("title"), title}, {name("text"), text}, {name("answer"), answer}});
}

void JsonReporter::notice(const QString& title, const QString& text)
{
    message(title, text, QString());
}

void JsonReporter::plan(const QList<PlannedRow>& rows, int leftOut, const QString& folder, int exitCode)
{
    for (const PlannedRow& row : rows) {
        QJsonObject object{{name("row"), row.number},        {name("total"), row.total},
                           {name("source"), row.source},     {name("output"), row.output},
                           {name("format"), row.out},        {name("exists"), row.exists},
                           {name("sameName"), row.sameName}, {name("readable"), row.readable}};
        if (row.bytes >= 0) {
            object.insert(name("bytes"), row.bytes);
        }
        write("planned", object);
    }
    summary({}, {leftOut, 0}, folder, exitCode);
}

void JsonReporter::summary(const QList<RowReport>& rows, const NotConverted& others, const QString& folder,
                           int exitCode)
{
    QJsonArray list;
    for (const RowReport& row : rows) {
        list.append(rowObject(row));
    }
    write("end", {{name("rows"), list},
                  {name("leftOut"), others.leftOut},
                  {name("notBegun"), others.notBegun},
                  {name("folder"), folder},
                  {name("exitCode"), exitCode}});
}

} // namespace tavrix
