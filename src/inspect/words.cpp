// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/words.h"

#include "base/text/shownname.h"
#include "inspect/ratename.h"

#include <QStringList>

#include <array>
#include <cmath>

namespace tavrix
{

namespace
{

struct KnownName {
    const char* technical;
    const char* words;
};

// Proper names: they are the same in every language.
constexpr std::array<KnownName, 16> knownCodecs{{{"h264", "H.264"},
                                                 {"hevc", "H.265"},
                                                 {"mjpeg", "Motion-JPEG"},
                                                 {"mpeg1video", "MPEG-1"},
                                                 {"mpeg2video", "MPEG-2"},
                                                 {"mpeg4", "MPEG-4"},
                                                 {"dvvideo", "DV"},
                                                 {"prores", "ProRes"},
                                                 {"ac3", "AC-3"},
                                                 {"eac3", "E-AC-3"},
                                                 {"aac", "AAC"},
                                                 {"mp2", "MPEG-1 layer 2"},
                                                 {"mp3", "MP3"},
                                                 {"amr_nb", "AMR"},
                                                 {"adpcm_ima_wav", "ADPCM"},
                                                 {"adpcm_ima_qt", "ADPCM"}}};

constexpr std::array<KnownName, 9> knownColours{{{"bt709", "BT.709"},
                                                 {"bt470bg", "BT.601 (625)"},
                                                 {"smpte170m", "BT.601 (525)"},
                                                 {"bt2020", "BT.2020"},
                                                 {"bt2020nc", "BT.2020"},
                                                 {"iec61966-2-1", "sRGB"},
                                                 {"smpte2084", "PQ"},
                                                 {"arib-std-b67", "HLG"},
                                                 {"gbr", "RGB"}}};

// Nothing for a name that is not among them.
template <std::size_t size> QString nameIn(const std::array<KnownName, size>& names, const QString& technical)
{
    for (const KnownName& known : names) {
        if (technical == QLatin1String(known.technical)) {
            return QLatin1String(known.words);
        }
    }
    return {};
}

struct NamedKey {
    const char* name;
    const char* key; // of the table
};

constexpr std::array<NamedKey, 7> containerKeys{{{"mpegts", "Ins_container_mpegts"},
                                                 {"mov", "Ins_container_mov"},
                                                 {"avi", "Ins_container_avi"},
                                                 {"mpeg", "Ins_container_mpeg"},
                                                 {"mpegvideo", "Ins_container_mpegvideo"},
                                                 {"dv", "Ins_container_dv"},
                                                 {"wav", "Ins_container_wav"}}};

constexpr std::array<NamedKey, 6> dateSourceKeys{{{"playlist", "Ins_date_playlist"},
                                                  {"pictureStream", "Ins_date_pictureStream"},
                                                  {"creationDate", "Ins_date_creationDate"},
                                                  {"movieHeader", "Ins_date_movieHeader"},
                                                  {"aviDate", "Ins_date_aviDate"},
                                                  {"file", "Ins_date_file"}}};

constexpr std::array<NamedKey, 5> rateKeys{{{"25", "Ins_standard_25"},
                                            {"23.98", "Ins_standard_23.98"},
                                            {"24", "Ins_standard_24"},
                                            {"29.97", "Ins_standard_29.97"},
                                            {"30", "Ins_standard_30"}}};

// The technical name where the table has none.
template <std::size_t size> QString textIn(const std::array<NamedKey, size>& keys, const QString& technical)
{
    for (const NamedKey& known : keys) {
        if (technical == QLatin1String(known.name)) {
            return inspectText(known.key);
        }
    }
    return technical;
}

QString knownCodec(const QString& codec)
{
    const QString known = nameIn(knownCodecs, codec);
    return known.isNull() && codec.startsWith(QLatin1String("pcm_")) ? QStringLiteral("PCM") : known;
}

QString colourName(const std::string& technical)
{
    if (technical.empty()) {
        return inspectText("Ins_unknown");
    }
    const QString name = QString::fromStdString(technical);
    const QString known = nameIn(knownColours, name);
    return known.isNull() ? name : known;
}

} // namespace

QString inspectText(const char* key, std::initializer_list<FormatArg> arguments)
{
    return formatText(localizedString(QLatin1String(key), QStringLiteral("Inspect")), arguments);
}

QString numberWords(double number, int decimals)
{
    QString text = fixedText(number, decimals);
    if (text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0'))) {
            text.chop(1);
        }
        if (text.endsWith(QLatin1Char('.'))) {
            text.chop(1);
        }
    }
    return text.replace(QLatin1Char('.'), inspectText("Ins_decimalSign"));
}

QString sizeWords(qint64 bytes)
{
    const QStringList units = inspectText("Ins_sizeUnits").split(QLatin1Char(' '));
    double value = static_cast<double>(bytes);
    qsizetype unit = 0;
    while (value >= 999.5 && unit + 1 < units.size()) {
        value /= 1000;
        ++unit;
    }
    return numberWords(value, value < 10 && unit > 0 ? 1 : 0) + QLatin1Char(' ') + units.at(unit);
}

QString lengthWords(double seconds)
{
    constexpr double longest = 1e9;
    if (!(seconds >= 0) || seconds > longest) {
        return inspectText("Ins_unknown");
    }
    constexpr double hour = 3600;
    if (seconds >= hour) {
        const auto whole = static_cast<qint64>(std::llround(seconds));
        return formatText(QStringLiteral("%d:%02d:%02d"), {whole / 3600, whole / 60 % 60, whole % 60});
    }
    const auto hundredths = static_cast<qint64>(std::llround(seconds * 100));
    return formatText(QStringLiteral("%d:%02d%@%02d"),
                      {hundredths / 6000, hundredths / 100 % 60, inspectText("Ins_decimalSign"), hundredths % 100});
}

QString codecWords(const QString& codec)
{
    const QString known = knownCodec(codec);
    return known.isNull() ? shownText(codec) : known + QStringLiteral(" (") + codec + QLatin1Char(')');
}

QString containerWords(const QString& wrapper)
{
    const QString first = wrapper.section(QLatin1Char(','), 0, 0);
    for (const NamedKey& known : containerKeys) {
        if (first == QLatin1String(known.name)) {
            return inspectText(known.key) + QStringLiteral(" (") + wrapper + QLatin1Char(')');
        }
    }
    return shownText(wrapper);
}

QString dateSourceWords(const QString& source)
{
    return textIn(dateSourceKeys, source);
}

QString rateWords(double rate)
{
    const QString words = inspectText("Ins_rate", {numberWords(rate, 3)});
    const StandardRate standard = standardRate(rate);
    if (standard.kind == RateKind::Unknown) {
        return words + inspectText("Ins_rateOwn");
    }
    const QString name = textIn(rateKeys, standard.text);
    switch (standard.kind) {
    case RateKind::Half:
        return words + inspectText("Ins_rateHalf", {name});
    case RateKind::Twice:
        return words + inspectText("Ins_rateTwice", {name});
    default:
        return words + inspectText("Ins_rateStandard", {name});
    }
}

QString colourWords(const media::Colour& colour, bool fullRange)
{
    const QString range = inspectText(fullRange ? "Ins_rangeFull" : "Ins_rangeLimited");
    if (colour == media::Colour()) {
        return inspectText("Ins_colourUntold", {range});
    }
    const QString primaries = colourName(colour.primaries);
    const QString transfer = colourName(colour.transfer);
    const QString matrix = colourName(colour.matrix);
    if (primaries == transfer && transfer == matrix) {
        return inspectText("Ins_colourOne", {primaries, range});
    }
    return inspectText("Ins_colourThree", {primaries, transfer, matrix, range});
}

} // namespace tavrix
