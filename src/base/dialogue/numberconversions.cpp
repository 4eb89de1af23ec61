// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/numberconversions.h"

#include "base/dialogue/alerts.h"
#include "base/store/settings.h"
#include "base/text/format.h"
#include "base/text/log.h"
#include "base/text/roundingconversions.h"
#include "base/text/text.h"

#include <cmath>
#include <limits>

namespace tavrix
{

namespace
{

// A platform quirk of old: the scanner skips letters (and their accents) instead of white space.
QStringView withoutLeadingLetters(QStringView text)
{
    qsizetype start = 0;
    while (start < text.size()) {
        char32_t point = text[start].unicode();
        qsizetype units = 1;
        if (text[start].isHighSurrogate() && start + 1 < text.size() && text[start + 1].isLowSurrogate()) {
            point = QChar::surrogateToUcs4(text[start], text[start + 1]);
            units = 2;
        }
        if (!QChar::isLetter(point) && !QChar::isMark(point)) {
            break;
        }
        start += units;
    }
    return text.sliced(start);
}

float narrowed(double value)
{
    if (std::abs(value) > double{std::numeric_limits<float>::max()}) {
        return static_cast<float>(std::copysign(std::numeric_limits<double>::infinity(), value));
    }
    return static_cast<float>(value);
}

int saturated(qint64 value)
{
    return static_cast<int>(
        qBound(qint64{std::numeric_limits<int>::min()}, value, qint64{std::numeric_limits<int>::max()}));
}

// "50" is fifty hundredths; "12/25" counts frames and becomes hundredths written without a leading zero.
double timecodeFraction(QString digits)
{
    if (containsText(digits, QStringLiteral("/"))) {
        const QStringList frames = componentsSeparated(digits, QStringLiteral("/"));
        const double rate = double{str2Float(frames.at(1))};
        const double hundredths = rate == 0.0 ? 0.0 : double{str2Float(frames.at(0))} * 100.0 / rate;
        digits = QString::number(truncatedInt(hundredths));
    }
    if (digits.isEmpty()) {
        return 0.0;
    }
    const double fraction = double{str2Float(digits)} / std::pow(10.0, static_cast<double>(digits.size()));
    return std::isfinite(fraction) ? fraction : 0.0;
}

double timecodeSeconds(const QString& text)
{
    const QString separator = containsText(text, QStringLiteral(",")) ? QStringLiteral(",") : QStringLiteral(".");
    const QStringList parts = componentsSeparated(text, separator);
    const double whole = double{str2Float(parts.at(0))};
    return parts.size() > 1 ? whole + timecodeFraction(parts.at(1)) : whole;
}

double timecodeValue(const QString& text)
{
    QStringList pieces = componentsSeparated(text, QStringLiteral(":"));
    if (pieces.size() == 4) {
        // Days stand for 25 hours each and take the place of the hours: kept, files made with it rely on it.
        const double days = double{str2Float(pieces.at(0))};
        pieces[1] = QString::number(truncatedInt(days * 24.0 + days));
        pieces.removeFirst();
    }
    if (pieces.size() != 3) {
        return 0.0;
    }
    return double{str2Float(pieces.at(0))} * 3600.0 + double{str2Float(pieces.at(1))} * 60.0 +
           timecodeSeconds(pieces.at(2));
}

} // namespace

float str2Float(const QString& text)
{
    const QString dense = QString(text).remove(u' ');
    bool read = false;
    const double value = floatAtStart(withoutLeadingLetters(dense), &read);
    if (!read) {
        logLine(QStringLiteral("mais heuu, c'est meme pas un float :("));
        return 0.0F;
    }
    return narrowed(value);
}

int str2Int(const QString& text)
{
    return truncatedInt(double{str2Float(text)});
}

float timecodeStr2Float(const QString& text)
{
    const float seconds = narrowed(timecodeValue(text));
    if (getDEBUG() && std::abs(double{seconds}) < 0.1 && str2Float(text) != 0.0F) {
        displayAlert(QStringLiteral("utils > timecodeStr2Float ? :-/"), text, 0, nullptr);
    }
    return seconds;
}

float secondesCutStr2Float(const QString& text)
{
    return text.size() < 2 ? 0.0F : str2Float(text.mid(1, text.size() - 2));
}

QString secondesInt2Str(int seconds)
{
    const int minutes = seconds / 60;
    const int rest = seconds % 60;
    const QString minutesText = minutes == 0 ? QStringLiteral("00") : QString::number(minutes);
    const QString zero = rest <= 9 ? QStringLiteral("0") : QString();
    return minutesText + u'"' + zero + QString::number(rest) + u'\'';
}

int secondesStr2Int(const QString& text)
{
    const QString mark = QStringLiteral("\"");
    if (!containsText(text, mark)) {
        return 0;
    }
    return saturated(qint64{leadingInteger(textBefore(text, mark))} * 60 + leadingInteger(textAfter(text, mark)));
}

int str2SecondesInt(const QString& text)
{
    const QString mark = QStringLiteral("\"");
    const QString apostrophe = QStringLiteral("'");
    if (!containsText(text, mark)) {
        return 0;
    }
    // Unlike secondesStr2Int this adds the number at the head of the whole text, the minutes once more.
    const bool closed = containsText(textAfter(text, mark), apostrophe);
    const int added = closed ? leadingInteger(textBefore(text, apostrophe)) : 0;
    return saturated(qint64{leadingInteger(textBefore(text, mark))} * 60 + added);
}

QString secondesCutFloat2Str(float seconds)
{
    if (!(seconds > 0.0F)) {
        return QStringLiteral("");
    }
    const QString zero = seconds < 10.0F ? QStringLiteral("0") : QStringLiteral("");
    return formatText(QStringLiteral("-%@%.1f'"), {zero, seconds});
}

} // namespace tavrix
