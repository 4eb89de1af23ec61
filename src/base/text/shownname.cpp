// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/shownname.h"

#include "base/text/format.h"

namespace tavrix
{

namespace
{

// Between letters of some scripts and parts of a picture these two are ordinary.
bool isJoiner(char32_t character)
{
    return character == 0x200C || character == 0x200D;
}

bool isHidden(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    case QChar::Other_Format:
        return !isJoiner(character);
    default:
        return false;
    }
}

QString escape(char32_t character)
{
    switch (character) {
    case U'\n':
        return QStringLiteral("\\n");
    case U'\r':
        return QStringLiteral("\\r");
    case U'\t':
        return QStringLiteral("\\t");
    default:
        break;
    }
    if (character < 0x100) {
        return formatText(QStringLiteral("\\x%02x"), {static_cast<unsigned int>(character)});
    }
    return formatText(character > 0xFFFF ? QStringLiteral("\\U%08x") : QStringLiteral("\\u%04x"),
                      {static_cast<unsigned int>(character)});
}

QString jsonEscape(QStringView units)
{
    QString escaped;
    for (const QChar unit : units) {
        escaped += formatText(QStringLiteral("\\u%04x"), {static_cast<unsigned int>(unit.unicode())});
    }
    return escaped;
}

// The text with what is hidden replaced; `replacement` gets the character and its one or two units.
template <typename Replacement> QString replaced(const QString& text, const Replacement& replacement)
{
    QString shown;
    shown.reserve(text.size());
    for (qsizetype at = 0; at < text.size();) {
        const bool pair = text.at(at).isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate();
        const QStringView units = QStringView(text).mid(at, pair ? 2 : 1);
        const char32_t character =
            pair ? QChar::surrogateToUcs4(units.at(0), units.at(1)) : char32_t{units.at(0).unicode()};
        if (isHidden(character)) {
            shown += replacement(character, units);
        } else {
            shown += units;
        }
        at += units.size();
    }
    return shown;
}

} // namespace

QString shownText(const QString& text)
{
    return text.isNull() ? text : replaced(text, [](char32_t character, QStringView) { return escape(character); });
}

QString shownLines(const QString& text)
{
    const auto escaped = [](char32_t character, QStringView) {
        return character == U'\n' ? QStringLiteral("\n") : escape(character);
    };
    return text.isNull() ? text : replaced(text, escaped);
}

QByteArray shownJson(const QByteArray& json)
{
    const auto escaped = [](char32_t character, QStringView units) {
        // The line ends between the parts of the text are JSON's own.
        return character == U'\n' ? QStringLiteral("\n") : jsonEscape(units);
    };
    return replaced(QString::fromUtf8(json), escaped).toUtf8();
}

} // namespace tavrix
