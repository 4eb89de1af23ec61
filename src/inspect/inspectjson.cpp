// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/inspectjson.h"

#include "base/text/format.h"
#include "inspect/ratename.h"
#include "inspect/soundoffsets.h"

#include <QJsonArray>

namespace tavrix
{

namespace
{

QString name(const char* text)
{
    return QLatin1String(text);
}

// 32-bit floats keep their short text: 59.94, not 59.939998626708984.
QJsonValue jsonValue(const QVariant& value)
{
    return value.typeId() == QMetaType::Float ? QJsonValue(textOf(value).toDouble()) : QJsonValue::fromVariant(value);
}

void put(QJsonObject& object, const char* key, const QVariant& value)
{
    if (value.isValid()) {
        object.insert(name(key), jsonValue(value));
    }
}

void putText(QJsonObject& object, const char* key, const QString& text)
{
    if (!text.isEmpty()) {
        object.insert(name(key), text);
    }
}

QJsonObject recordObject(const MediaInfoRecord& record)
{
    QJsonObject object;
    for (auto it = record.cbegin(); it != record.cend(); ++it) {
        object.insert(it.key(), jsonValue(it.value()));
    }
    return object;
}

QJsonObject containerObject(const Inspection& inspection)
{
    QJsonObject object;
    put(object, "name", inspection.infos.value(record::wrapper));
    if (inspection.shown && inspection.shown->duration) {
        object.insert(name("seconds"), *inspection.shown->duration);
    } else {
        put(object, "seconds", inspection.infos.value(record::w_duration));
    }
    put(object, "start", inspection.infos.value(record::w_offset));
    put(object, "kilobitsPerSecond", inspection.infos.value(record::w_bitrate));
    return object;
}

QJsonObject editsObject(const media::Edits& edits)
{
    return {{name("pieces"), edits.present ? edits.pieces : 0},
            {name("emptyStart"), edits.emptyStart},
            {name("hidesStart"), edits.hidesStart},
            {name("endsBeforeMedia"), edits.endsBeforeMedia}};
}

QJsonObject colourObject(const media::StreamFacts& stream)
{
    QJsonObject object{{name("fullRange"), stream.fullRange}};
    putText(object, "primaries", QString::fromStdString(stream.colour.primaries));
    putText(object, "transfer", QString::fromStdString(stream.colour.transfer));
    putText(object, "matrix", QString::fromStdString(stream.colour.matrix));
    return object;
}

const char* kindName(RateKind kind)
{
    switch (kind) {
    case RateKind::Standard:
        return "full";
    case RateKind::Half:
        return "half";
    case RateKind::Twice:
        return "twice";
    case RateKind::Unknown:
        break;
    }
    return "none";
}

QJsonObject cropObject(const Inspection& inspection, int number)
{
    QJsonObject object;
    for (const char* side : {"top", "bottom", "left", "right"}) {
        put(object, side, inspection.movie.value(record::stream('v', number, "crop") + QLatin1String(side)));
    }
    return object;
}

QJsonObject pictureObject(const Inspection& inspection, int number)
{
    const auto known = [&inspection, number](const char* key) {
        return knownValue(inspection, 'v', number, key);
    };
    QJsonObject object;
    put(object, "stream", known("id"));
    put(object, "codec", known("codec"));
    put(object, "chroma", known("chroma"));
    put(object, "kilobitsPerSecond", known("bitrate"));
    put(object, "width", known("width"));
    put(object, "height", known("height"));
    put(object, "displayAspect", known("dar"));
    put(object, "pixelAspect", known("par"));
    put(object, "rate", inspection.infos.value(record::stream('v', number, "fps")));
    put(object, "countedRate", inspection.movie.value(record::stream('v', number, "fps")));
    const StandardRate standard = standardRate(known("fps").toDouble());
    object.insert(name("rateKind"), name(kindName(standard.kind)));
    putText(object, "standardRate", standard.text);
    if (number == 0) {
        putText(object, "fields", inspection.interlacing);
    }
    if (const QJsonObject crop = cropObject(inspection, number); !crop.isEmpty()) {
        object.insert(name("crop"), crop);
    }
    if (const media::StreamFacts* shown = shownStream(inspection, media::Kind::Picture, number)) {
        object.insert(name("turned"), shown->turning.degrees);
        object.insert(name("mirrored"), shown->turning.mirrored);
        object.insert(name("edits"), editsObject(shown->edits));
        object.insert(name("colour"), colourObject(*shown));
    }
    return object;
}

QJsonObject offsetObject(const SoundOffset& offset)
{
    QJsonObject object;
    if (offset.byTimeStamps) {
        object.insert(name("timeStamps"), *offset.byTimeStamps);
    }
    if (offset.byTrackRanges) {
        object.insert(name("trackRanges"), *offset.byTrackRanges);
    }
    if (const std::optional<bool> agree = offsetsAgree(offset)) {
        object.insert(name("agree"), *agree);
    }
    return object;
}

QJsonObject soundObject(const Inspection& inspection, int number)
{
    const auto known = [&inspection, number](const char* key) {
        return knownValue(inspection, 'a', number, key);
    };
    QJsonObject object;
    put(object, "stream", known("id"));
    put(object, "codec", known("codec"));
    put(object, "rate", known("rate"));
    put(object, "channels", known("channels"));
    if (known("codec").toString().startsWith(QLatin1String("pcm_"))) {
        put(object, "bits", known("bits"));
    }
    put(object, "kilobitsPerSecond", known("bitrate"));
    put(object, "language", known("lang"));
    if (const media::StreamFacts* shown = shownStream(inspection, media::Kind::Sound, number)) {
        putText(object, "layout", QString::fromStdString(shown->layout));
        object.insert(name("edits"), editsObject(shown->edits));
    }
    if (number < inspection.offsets.size()) {
        object.insert(name("offset"), offsetObject(inspection.offsets.at(number)));
    }
    return object;
}

QJsonObject recorderObject(const RecorderFacts& recorder)
{
    QJsonObject object{{name("kind"), name(recorder.kind == RecorderKind::Avchd ? "avchd" : "eyetv")},
                       {name("folder"), recorder.folder},
                       {name("name"), recorder.name}};
    if (recorder.seconds > 0) {
        object.insert(name("seconds"), jsonValue(recorder.seconds));
    }
    return object;
}

QJsonObject formatObject(const FormatPreview& format)
{
    QJsonObject object{{name("format"), format.out},
                       {name("name"), format.name},
                       {name("width"), format.width},
                       {name("height"), format.height},
                       {name("rate"), fixedText(format.rate, 3).toDouble()}};
    if (format.bytes >= 0) {
        object.insert(name("bytes"), format.bytes);
    }
    return object;
}

QJsonObject thoroughObject(const ThoroughFacts& facts)
{
    QJsonObject object{{name("soundDecodes"), facts.soundDecodes},
                       {name("needsVsync"), facts.needsVsync},
                       {name("countedRate"), jsonValue(facts.countedRate)}};
    if (facts.elementarySeconds >= 0) {
        object.insert(name("elementarySeconds"), facts.elementarySeconds);
    }
    return object;
}

void putStreams(QJsonObject& object, const Inspection& inspection)
{
    QJsonArray pictures;
    for (int number = 0; number < streamCount(inspection.infos, 'v'); ++number) {
        pictures.append(pictureObject(inspection, number));
    }
    QJsonArray sounds;
    for (int number = 0; number < streamCount(inspection.infos, 'a'); ++number) {
        sounds.append(soundObject(inspection, number));
    }
    object.insert(name("pictures"), pictures);
    object.insert(name("sounds"), sounds);
}

} // namespace

QJsonObject inspectionObject(const Inspection& inspection)
{
    QJsonObject object{{name("file"), inspection.path}, {name("described"), inspection.described()}};
    if (inspection.bytes >= 0) {
        object.insert(name("bytes"), inspection.bytes);
    }
    if (!inspection.described()) {
        object.insert(name("problem"), inspection.problem);
        putText(object, "tool", inspection.toolWords);
        return object;
    }
    object.insert(name("container"), containerObject(inspection));
    putStreams(object, inspection);
    if (!inspection.recording.date.isNull()) {
        object.insert(name("recorded"), QJsonObject{{name("date"), inspection.recording.date},
                                                    {name("source"), inspection.recording.source}});
    }
    if (inspection.recorder.kind != RecorderKind::None) {
        object.insert(name("recorder"), recorderObject(inspection.recorder));
    }
    object.insert(name("taken"), inspection.verdict.accepted);
    putText(object, "reason", inspection.verdict.reason);
    QJsonArray formats;
    for (const FormatPreview& format : inspection.formats) {
        formats.append(formatObject(format));
    }
    object.insert(name("formats"), formats);
    if (inspection.thorough) {
        object.insert(name("thorough"), thoroughObject(*inspection.thorough));
    }
    object.insert(name("record"), recordObject(inspection.infos));
    object.insert(name("movie"), recordObject(inspection.movie));
    return object;
}

} // namespace tavrix
