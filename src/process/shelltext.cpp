// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/shelltext.h"

#include "base/text/log.h"
#include "process/runners.h"

#include <algorithm>

namespace tavrix
{

namespace
{

bool containsAny(const QString& text, QLatin1String characters)
{
    return std::any_of(text.cbegin(), text.cend(), [characters](QChar c) { return characters.contains(c); });
}

bool isHarmless(QChar c)
{
    const ushort code = c.unicode();
    return (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z') || code > 127 ||
           QLatin1String("_@%+=:,./-").contains(c);
}

// True when the text is exactly one quoted word of the shell, without expansions in it.
bool isQuotedWord(const QString& text)
{
    if (text.size() < 2 || text.front() != text.back()) {
        return false;
    }
    const QString inner = text.mid(1, text.size() - 2);
    if (text.front() == QLatin1Char('\'')) {
        return !QString(inner).replace(QLatin1String("'\\''"), QString()).contains(QLatin1Char('\''));
    }
    if (text.front() != QLatin1Char('"')) {
        return false;
    }
    bool escaped = false;
    for (const QChar c : inner) {
        if (!escaped && QLatin1String("\"$`").contains(c)) {
            return false;
        }
        escaped = !escaped && c == QLatin1Char('\\');
    }
    return !escaped;
}

} // namespace

QString shellSingleQuoted(const QString& value)
{
    return QString(value).replace(QLatin1String("'"), QLatin1String("'\\''"));
}

QString shellWord(const QString& value)
{
    if (value.isNull()) {
        return value;
    }
    if (!value.isEmpty() && (std::all_of(value.cbegin(), value.cend(), isHarmless) || isQuotedWord(value))) {
        return value;
    }
    return QLatin1Char('\'') + shellSingleQuoted(value) + QLatin1Char('\'');
}

bool pathSafeStr(const QString& path)
{
    if (path.isNull()) {
        return false;
    }
    if (path == QLatin1String("|")) {
        return true;
    }
    // The second set could not be echoed unchanged anyway, but asking the shell would run what follows it.
    if (containsAny(path, QLatin1String(" ()&`><")) || containsAny(path, QLatin1String(";|\n")) ||
        path.contains(QChar(u'\0'))) {
        return false;
    }
    const QString echo = taskWithStrBasic(QLatin1String("/bin/echo ") + path + QLatin1String(" 2>&1"));
    if (!echo.isNull() && echo == path) {
        return true;
    }
    logLine(QStringLiteral("pathSafeStr() :-( '%@' > '%@'"), {path, echo});
    return false;
}

} // namespace tavrix
