// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/text.h"

#include "base/text/numericlocale.h"

#include <QStringDecoder>

#include <cstdlib>
#include <limits>

namespace tavrix
{

namespace
{

// Wider than the usual white space: numbers in old tool output and tags stand behind any of these.
bool isSkippedBeforeNumber(QChar character)
{
    const char16_t unit = character.unicode();
    return unit < 0x21 || (unit >= 0x7F && unit <= 0xA0) || (unit >= 0x2000 && unit <= 0x200B) || unit == 0x3000;
}

QStringView withoutLeadingBlanks(QStringView text)
{
    qsizetype start = 0;
    while (start < text.size() && isSkippedBeforeNumber(text[start])) {
        ++start;
    }
    return text.sliced(start);
}

bool isAsciiDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

bool isNumberCharacter(QChar character)
{
    return isAsciiDigit(character) || character == u'+' || character == u'-' || character == u'.' ||
           character == u'e' || character == u'E';
}

} // namespace

int leadingInteger(QStringView text)
{
    const QStringView number = withoutLeadingBlanks(text);
    qsizetype position = 0;
    bool negative = false;
    if (!number.isEmpty() && (number[0] == u'-' || number[0] == u'+')) {
        negative = number[0] == u'-';
        position = 1;
    }
    const qint64 limit = negative ? -qint64{std::numeric_limits<int>::min()} : qint64{std::numeric_limits<int>::max()};
    qint64 value = 0;
    for (; position < number.size() && isAsciiDigit(number[position]); ++position) {
        value = qMin(limit, value * 10 + (number[position].unicode() - u'0'));
    }
    return static_cast<int>(negative ? -value : value);
}

double floatAtStart(QStringView text, bool* ok)
{
    qsizetype end = 0;
    while (end < text.size() && isNumberCharacter(text[end])) {
        ++end;
    }
    const QByteArray number = text.first(end).toLatin1();
    char* stop = nullptr;
    const double value = strtod_l(number.constData(), &stop, numericLocale());
    const bool read = stop != number.constData();
    if (ok) {
        *ok = read;
    }
    return read ? value : 0.0;
}

double floatPrefix(QStringView text, bool* ok)
{
    return floatAtStart(withoutLeadingBlanks(text), ok);
}

qsizetype findText(const QString& text, const QString& needle, qsizetype from)
{
    if (needle.isEmpty()) {
        return -1;
    }
    return text.indexOf(needle, qMax(qsizetype{0}, from));
}

bool containsText(const QString& text, const QString& needle)
{
    return findText(text, needle) >= 0;
}

QStringList componentsSeparated(const QString& text, const QString& separator)
{
    if (text.isNull()) {
        return {};
    }
    if (separator.isEmpty()) {
        return {text};
    }
    QStringList pieces;
    qsizetype start = 0;
    for (qsizetype hit = findText(text, separator); hit >= 0; hit = findText(text, separator, start)) {
        pieces.append(notNothing(text.mid(start, hit - start)));
        start = hit + separator.size();
    }
    pieces.append(notNothing(text.mid(start)));
    return pieces;
}

QString textAfter(const QString& text, const QString& marker, const QString& end)
{
    const qsizetype hit = findText(text, marker);
    if (hit < 0) {
        return {};
    }
    const qsizetype start = hit + marker.size();
    const qsizetype stop = findText(text, end, start);
    return notNothing(stop < 0 ? text.mid(start) : text.mid(start, stop - start));
}

QString textBefore(const QString& text, const QString& marker)
{
    const qsizetype hit = findText(text, marker);
    return hit < 0 ? text : notNothing(text.left(hit));
}

bool isNewline(QChar character)
{
    const char16_t unit = character.unicode();
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

QString decodedUtf8(const QByteArray& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    return decoder.hasError() ? QString() : notNothing(text);
}

QString notNothing(const QString& text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

QString capitalized(const QString& text)
{
    if (text.isEmpty()) {
        return text;
    }
    const qsizetype head = text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate() ? 2 : 1;
    return text.left(head).toUpper() + text.mid(head).toLower();
}

} // namespace tavrix
