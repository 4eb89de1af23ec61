// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/codecnames.h"

#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <span>

namespace tavrix
{

namespace
{

struct CodecRow {
    const char* codes; // separated by "|"
    const char* name;
};

// The first row that lists the code wins: "dx50" is DivX although the MPEG-4 row has it too. Three-character entries
// never equal a code of four; they stay for the day a library reports one.
constexpr CodecRow videoRows[] = {
    {"avc1", "h264"},
    {"m2v|m2s|m2v1|hdv1|hdv2|hdv3", "mpeg2video"},
    {"m1v|mpeg|m1s|m1v1", "mpeg1video"},
    {"flv1", "flv"},
    {"div3|div4|div5|div6|div|dx45|dx50", "divx"},
    {"mp4v|dx50|xvid", "mpeg4"},
    {"mp43", "msmpeg4"},
    {"mp42", "msmpeg4v2"},
    {"rle", "qtrle"},
    {"cvid", "cinepack"},
};

// "ms.U" is compared with a lower-cased code and so never met.
constexpr CodecRow audioRows[] = {
    {"mp4a", "aac"},          {".mp3|ms.U", "mp3"}, {"twos", "pcm_s16be"}, {"sowt", "pcm_s16le"},
    {"ima4", "adpcm_ima_qt"}, {"wma2", "wmav2"},    {"wma|wmva", "vc1"},   {"ms .", "ac3"},
};

QString nameOf(const QString& code, std::span<const CodecRow> rows)
{
    QString lowered = code.toLower();
    for (const CodecRow& row : rows) {
        if (QString::fromLatin1(row.codes).split(QLatin1Char('|')).contains(lowered)) {
            return QString::fromLatin1(row.name);
        }
    }
    return lowered;
}

} // namespace

QString fourCharText(quint32 code)
{
    char bytes[4];
    std::memcpy(bytes, &code, sizeof bytes);
    QString text;
    for (const char byte : bytes) {
        if (static_cast<unsigned char>(byte) > 0x7F) {
            return QString();
        }
        text += byte == 0 ? QLatin1Char('.') : QLatin1Char(byte);
    }
    if constexpr (Q_BYTE_ORDER == Q_LITTLE_ENDIAN) {
        std::reverse(text.begin(), text.end());
    }
    return text;
}

QString sampleFormatText(const QString& mediaType, const SampleDescription& description)
{
    if (description.error || mediaType == QLatin1String("flsh")) {
        return QStringLiteral("raw");
    }
    const QString text = fourCharText(description.dataFormat);
    return text.isNull() ? QStringLiteral("raw") : text;
}

QString videoCodecName(const QString& code)
{
    return nameOf(code, videoRows);
}

QString audioCodecName(const QString& code)
{
    return nameOf(code, audioRows);
}

} // namespace tavrix
