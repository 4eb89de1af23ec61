// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/format.h"

#include "base/text/datetext.h"
#include "base/text/numericlocale.h"
#include "base/text/text.h"

#include <QDateTime>

#include <cmath>
#include <cstdio>
#include <limits>

namespace tavrix
{

namespace
{

// Wide enough for every table and log; a larger figure in a translated text must not ask for gigabytes.
constexpr int widthLimit = 512;

// One place of a format: "%", flags, width, precision, length modifier, conversion.
struct Place {
    QByteArray flags;
    int width = -1;
    int precision = -1;
    QByteArray length;
    char16_t conversion = 0;
    qsizetype end = 0; // position behind it
};

int readNumber(const QString& format, qsizetype& position)
{
    int number = 0;
    while (position < format.size() && format[position] >= u'0' && format[position] <= u'9') {
        number = qMin(widthLimit, number * 10 + (format[position].unicode() - u'0'));
        ++position;
    }
    return number;
}

Place readPlace(const QString& format, qsizetype position)
{
    Place place;
    ++position;
    while (position < format.size() && QStringLiteral("-+ #0").contains(format[position])) {
        place.flags.append(static_cast<char>(format[position++].unicode()));
    }
    if (position < format.size() && format[position].isDigit()) {
        place.width = readNumber(format, position);
    }
    if (position < format.size() && format[position] == u'.') {
        ++position;
        place.precision = readNumber(format, position);
    }
    while (position < format.size() && QStringLiteral("hlq").contains(format[position])) {
        place.length.append(static_cast<char>(format[position++].unicode()));
    }
    if (position < format.size()) {
        place.conversion = format[position++].unicode();
    }
    place.end = position;
    return place;
}

template <typename Number> QString printed(const Place& place, const char* length, char conversion, Number number)
{
    QByteArray specification = "%" + place.flags;
    if (place.width >= 0) {
        specification += QByteArray::number(place.width);
    }
    if (place.precision >= 0) {
        specification += "." + QByteArray::number(place.precision);
    }
    specification += length;
    specification += conversion;
    const NumericLocaleScope scope;
    const int size = std::snprintf(nullptr, 0, specification.constData(), number);
    if (size < 0) {
        return {};
    }
    QByteArray buffer(size + 1, '\0');
    std::snprintf(buffer.data(), static_cast<size_t>(buffer.size()), specification.constData(), number);
    return QString::fromLatin1(buffer.constData(), size);
}

qint64 signedNumber(const Place& place, qint64 number)
{
    if (place.length == "hh") {
        return static_cast<signed char>(number);
    }
    return place.length == "h" ? static_cast<short>(number) : number;
}

// A negative 32-bit value shows 32 bits unless the format asks for more.
quint64 unsignedNumber(const Place& place, qint64 number)
{
    if (place.length == "hh") {
        return static_cast<unsigned char>(number);
    }
    if (place.length == "h") {
        return static_cast<unsigned short>(number);
    }
    if (place.length.isEmpty() && number < 0 && number >= std::numeric_limits<int>::min()) {
        return static_cast<unsigned int>(number);
    }
    return static_cast<quint64>(number);
}

QString nullShown(const QString& text)
{
    return text.isNull() ? QStringLiteral("(null)") : text;
}

// Nothing when the conversion is not one of ours.
QString filledPlace(const Place& place, const FormatArg* argument)
{
    switch (place.conversion) {
    case u'@':
        return argument ? nullShown(argument->asText()) : QStringLiteral("");
    case u'd':
    case u'i':
        return argument ? printed(place, "ll", 'd', signedNumber(place, argument->asInteger())) : QStringLiteral("");
    case u'u':
    case u'x':
    case u'X':
        return argument ? printed(place, "ll", static_cast<char>(place.conversion),
                                  unsignedNumber(place, argument->asInteger()))
                        : QStringLiteral("");
    case u'f':
        return argument ? printed(place, "", 'f', argument->asDouble()) : QStringLiteral("");
    default:
        return {};
    }
}

QString filled(const QString& format, const FormatArg* arguments, qsizetype count)
{
    QString result = QStringLiteral("");
    qsizetype next = 0;
    qsizetype position = 0;
    while (position < format.size()) {
        const qsizetype percent = format.indexOf(u'%', position);
        if (percent < 0) {
            break;
        }
        result += QStringView(format).sliced(position, percent - position);
        const Place place = readPlace(format, percent);
        if (place.conversion == u'%') {
            result += u'%';
            position = place.end;
            continue;
        }
        const QString text = filledPlace(place, next < count ? arguments + next : nullptr);
        if (text.isNull()) {
            result += u'%';
            position = percent + 1;
            continue;
        }
        ++next;
        result += text;
        position = place.end;
    }
    result += QStringView(format).sliced(position);
    return result;
}

// The shortest text that reads back as the same value, without an exponent where a person would write none.
QString floatText(float number)
{
    Place place;
    // Six digits would write a million as 1e+06.
    for (place.precision = std::abs(number) < 1e6F ? 6 : 7; place.precision < 9; ++place.precision) {
        QString text = printed(place, "", 'g', static_cast<double>(number));
        if (static_cast<float>(floatPrefix(text)) == number) {
            return text;
        }
    }
    return printed(place, "", 'g', static_cast<double>(number));
}

QString doubleText(double number)
{
    Place place;
    place.precision = 16;
    return printed(place, "", 'g', number);
}

QString listText(const QVariantList& list)
{
    QStringList parts;
    for (const QVariant& element : list) {
        parts.append(nullShown(textOf(element)));
    }
    return QStringLiteral("(") + parts.join(QStringLiteral(", ")) + QStringLiteral(")");
}

QString dictionaryText(const QVariantMap& dictionary)
{
    QString result = QStringLiteral("{");
    for (auto entry = dictionary.cbegin(); entry != dictionary.cend(); ++entry) {
        result += entry.key() + QStringLiteral(" = ") + nullShown(textOf(entry.value())) + QStringLiteral("; ");
    }
    if (!dictionary.isEmpty()) {
        result.chop(1);
    }
    return result + QStringLiteral("}");
}

QString dateValueText(const QDateTime& date)
{
    return date.isValid() ? dateText(QDateTime(date).toUTC().toSecsSinceEpoch()) : QString();
}

qint64 truncatedLong(double number)
{
    // 2^63 itself is beyond the range, -2^63 is its lower end.
    constexpr double limit = 9223372036854775808.0;
    if (std::isnan(number)) {
        return 0;
    }
    if (number >= limit) {
        return std::numeric_limits<qint64>::max();
    }
    return number < -limit ? std::numeric_limits<qint64>::min() : static_cast<qint64>(number);
}

} // namespace

FormatArg::FormatArg(const QString& text) : value_(text) {}
FormatArg::FormatArg(const char* utf8) : value_(utf8 ? QString::fromUtf8(utf8) : QString()) {}
FormatArg::FormatArg(int number) : value_(number) {}
FormatArg::FormatArg(unsigned int number) : value_(number) {}
FormatArg::FormatArg(long number) : value_(static_cast<qint64>(number)) {}
FormatArg::FormatArg(unsigned long number) : value_(static_cast<quint64>(number)) {}
FormatArg::FormatArg(qint64 number) : value_(number) {}
FormatArg::FormatArg(quint64 number) : value_(number) {}
FormatArg::FormatArg(float number) : value_(number) {}
FormatArg::FormatArg(double number) : value_(number) {}
FormatArg::FormatArg(const QStringList& list) : value_(list) {}
FormatArg::FormatArg(const QVariantMap& dictionary) : value_(dictionary) {}
FormatArg::FormatArg(const QVariant& value) : value_(value) {}

QString FormatArg::asText() const
{
    return textOf(value_);
}

qint64 FormatArg::asInteger() const
{
    switch (value_.typeId()) {
    case QMetaType::QString:
        return leadingInteger(value_.toString());
    case QMetaType::Float:
    case QMetaType::Double:
        return truncatedLong(value_.toDouble());
    case QMetaType::ULongLong:
        return static_cast<qint64>(value_.toULongLong());
    default:
        return value_.toLongLong();
    }
}

double FormatArg::asDouble() const
{
    return value_.typeId() == QMetaType::QString ? floatPrefix(value_.toString()) : value_.toDouble();
}

QString formatText(const QString& format, std::initializer_list<FormatArg> arguments)
{
    return filled(format, arguments.begin(), static_cast<qsizetype>(arguments.size()));
}

QString formatText(const QString& format, const QList<FormatArg>& arguments)
{
    return filled(format, arguments.constData(), arguments.size());
}

QString fixedText(double number, int decimals)
{
    Place place;
    place.precision = qBound(0, decimals, widthLimit);
    return printed(place, "", 'f', number);
}

QString textOf(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return {};
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Float:
        return floatText(value.toFloat());
    case QMetaType::Double:
        return doubleText(value.toDouble());
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
        return listText(value.toList());
    case QMetaType::QVariantMap:
        return dictionaryText(value.toMap());
    case QMetaType::QDateTime:
        return dateValueText(value.toDateTime());
    case QMetaType::QByteArray:
        return QLatin1Char('<') + QString::fromLatin1(value.toByteArray().toHex()) + QLatin1Char('>');
    default:
        return value.toString();
    }
}

} // namespace tavrix
