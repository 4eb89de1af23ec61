// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/progressline.h"

#include "base/dialogue/shownvalues.h"
#include "base/text/format.h"
#include "base/text/shownname.h"
#include "console/consoletext.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace tavrix
{

namespace
{

constexpr int widestName = 32;
constexpr int widestBar = 30;

bool isWide(char32_t c)
{
    return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7A3) ||
           (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE6F) || (c >= 0xFF00 && c <= 0xFF60) ||
           (c >= 0x1F300 && c <= 0x1FAFF) || (c >= 0x20000 && c <= 0x3FFFD);
}

int characterWidth(char32_t c)
{
    const auto category = QChar::category(c);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing || category == QChar::Other_Format) {
        return 0;
    }
    return isWide(c) ? 2 : 1;
}

} // namespace

int displayWidth(const QString& text)
{
    int width = 0;
    for (const char32_t c : text.toStdU32String()) {
        width += characterWidth(c);
    }
    return width;
}

QString elided(const QString& text, int width)
{
    const QString shown = shownText(text);
    if (displayWidth(shown) <= width) {
        return shown;
    }
    if (width <= 0) {
        return QStringLiteral("");
    }
    const std::u32string characters = shown.toStdU32String();
    const int head = (width - 1) / 2;
    const int tail = width - 1 - head;
    std::size_t front = 0;
    for (int used = 0; (used += characterWidth(characters.at(front))) <= head;) {
        ++front;
    }
    std::size_t back = characters.size();
    for (int used = 0; (used += characterWidth(characters.at(back - 1))) <= tail;) {
        --back;
    }
    return QString::fromStdU32String(characters.substr(0, front)) + QChar(0x2026) +
           QString::fromStdU32String(characters.substr(back));
}

QString clockText(double seconds)
{
    if (!(seconds >= 0) || seconds > 359999) {
        return QStringLiteral("-:--");
    }
    const int whole = static_cast<int>(std::lround(seconds));
    if (whole >= 3600) {
        return formatText(QStringLiteral("%d:%.2d:%.2d"), {whole / 3600, whole / 60 % 60, whole % 60});
    }
    return formatText(QStringLiteral("%d:%.2d"), {whole / 60, whole % 60});
}

QString progressLine(const ProgressState& state, int width)
{
    const double fraction = std::clamp(state.fraction, 0.0, 1.0);
    const QString head = formatText(QStringLiteral("%d/%d "), {state.number, state.total});
    QString tail = QStringLiteral(" ");
    if (state.passes > 1) {
        tail += formatText(consoleText("Con_step"), {state.pass, state.passes}) + QLatin1Char(' ');
    }
    tail +=
        formatText(QStringLiteral("%3.0f %%  %@x  %@"),
                   {std::floor(fraction * 100), shownDecimal(state.speed, 1).rightJustified(5), clockText(state.left)});
    const int room = width - displayWidth(head) - displayWidth(tail) - 4;
    if (room < 12) {
        return elided(head + tail.trimmed(), width);
    }
    const int nameWidth = std::min(widestName, room / 2);
    const int barWidth = std::min(widestBar, room - nameWidth);
    QString name = elided(state.name, nameWidth);
    name += QString(std::max(0, nameWidth - displayWidth(name)), QLatin1Char(' '));
    const int filled = static_cast<int>(fraction * barWidth);
    return head + name + QStringLiteral(" [") + QString(filled, QLatin1Char('#')) +
           QString(barWidth - filled, QLatin1Char('.')) + QStringLiteral("]") + tail;
}

} // namespace tavrix
