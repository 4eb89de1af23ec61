// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/textencoding.h"

#include "base/text/log.h"
#include "base/text/text.h"

#include <QStringDecoder>
#include <QtEndian>

#include <algorithm>
#include <array>

namespace tavrix
{
namespace
{

// Windows-1252 between 0x80 and 0x9F; 0 = undefined.
constexpr std::array<char16_t, 32> windows1252Upper{0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                                    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

struct Mark {
    QByteArray bytes;
    QStringConverter::Encoding form;
    int unit; // bytes of one code unit
    StringEncoding number;
};

// The longer mark first: FF FE also begins the one of 32 bits.
const std::array<Mark, 5>& marks()
{
    static const std::array<Mark, 5> all{{
        {QByteArray("\xFF\xFE\0\0", 4), QStringConverter::Utf32LE, 4, encodingUtf32},
        {QByteArray("\0\0\xFE\xFF", 4), QStringConverter::Utf32BE, 4, encodingUtf32},
        {QByteArray("\xEF\xBB\xBF", 3), QStringConverter::Utf8, 1, encodingUtf8},
        {QByteArray("\xFF\xFE", 2), QStringConverter::Utf16LE, 2, encodingUtf16},
        {QByteArray("\xFE\xFF", 2), QStringConverter::Utf16BE, 2, encodingUtf16},
    }};
    return all;
}

// Qt's decoder takes values beyond Unicode for text.
bool holdsOnlyCodePoints(const QByteArray& body, const Mark& mark)
{
    const bool littleEndian = mark.form == QStringConverter::Utf32LE;
    for (qsizetype index = 0; mark.unit == 4 && index < body.size(); index += 4) {
        const char* unit = body.constData() + index;
        const quint32 code = littleEndian ? qFromLittleEndian<quint32>(unit) : qFromBigEndian<quint32>(unit);
        if (code > QChar::LastValidCodePoint) {
            return false;
        }
    }
    return true;
}

QString decodedBehindMark(const QByteArray& bytes, const Mark& mark)
{
    const QByteArray body = bytes.mid(mark.bytes.size());
    if (body.size() % mark.unit != 0 || !holdsOnlyCodePoints(body, mark)) {
        return {};
    }
    QStringDecoder decoder(mark.form, QStringConverter::Flag::Stateless);
    const QString text = decoder.decode(body);
    return decoder.hasError() || !text.isValidUtf16() ? QString() : notNothing(text);
}

QString decodedWindows1252(const QByteArray& bytes)
{
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        const bool upper = code >= 0x80 && code < 0xA0;
        const char16_t character = upper ? windows1252Upper.at(code - 0x80U) : static_cast<char16_t>(code);
        if (upper && character == 0) {
            return {};
        }
        text.append(QChar(character));
    }
    return notNothing(text);
}

} // namespace

QString decodedAscii(const QByteArray& bytes)
{
    const bool plain =
        std::all_of(bytes.begin(), bytes.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
    return plain ? notNothing(QString::fromLatin1(bytes)) : QString();
}

QString decodedText(const QByteArray& bytes, StringEncoding* encoding)
{
    StringEncoding ignored = 0;
    StringEncoding& number = encoding ? *encoding : ignored;
    for (const Mark& mark : marks()) {
        if (bytes.startsWith(mark.bytes)) {
            QString text = decodedBehindMark(bytes, mark);
            number = text.isNull() ? 0 : mark.number;
            return text;
        }
    }
    // ASCII before UTF-8: every ASCII text is valid UTF-8 too.
    number = encodingAscii;
    QString text = decodedAscii(bytes);
    if (text.isNull()) {
        number = encodingUtf8;
        text = decodedUtf8(bytes);
    }
    if (text.isNull()) {
        text = decodedWindows1252(bytes);
        number = text.isNull() ? 0 : encodingWindows1252;
    }
    return text;
}

QString iconvName(StringEncoding encoding)
{
    struct Name {
        StringEncoding number;
        QLatin1String name;
    };
    static const std::array<Name, 20> names{{{1, QLatin1String("ANSI_X3.4-1968")},
                                             {2, QLatin1String("NEXTSTEP")},
                                             {3, QLatin1String("EUC-JP")},
                                             {4, QLatin1String("UTF-8")},
                                             {5, QLatin1String("CP819")},
                                             {8, QLatin1String("MS_KANJI")},
                                             {9, QLatin1String("ISO-8859-2")},
                                             {10, QLatin1String("UTF-16")},
                                             {11, QLatin1String("CP1251")},
                                             {12, QLatin1String("CP1252")},
                                             {13, QLatin1String("CP1253")},
                                             {14, QLatin1String("CP1254")},
                                             {15, QLatin1String("CP1250")},
                                             {21, QLatin1String("ISO-2022-JP")},
                                             {30, QLatin1String("MACROMAN")},
                                             {0x8C000100U, QLatin1String("UTF-32")},
                                             {0x90000100U, QLatin1String("UTF-16BE")},
                                             {0x94000100U, QLatin1String("UTF-16LE")},
                                             {0x98000100U, QLatin1String("UTF-32BE")},
                                             {0x9C000100U, QLatin1String("UTF-32LE")}}};
    if (encoding == 6 || encoding == 7 || encoding == 0x10000U) {
        logLine(QStringLiteral("ch'sais même pô à quoi ça correspond :-( %u"), {encoding});
    }
    if (encoding == 8) {
        logLine(QStringLiteral("Pô sûr de à quoi ça correspond :-/ %u"), {encoding});
    }
    const auto found =
        std::find_if(names.begin(), names.end(), [encoding](const Name& name) { return name.number == encoding; });
    return found == names.end() ? QStringLiteral("CP1252") : QString(found->name);
}

} // namespace tavrix
