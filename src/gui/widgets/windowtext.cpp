// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/windowtext.h"

#include "app/windowmodel.h"
#include "base/dialogue/localisation.h"
#include "base/text/shownname.h"

#include <QWidget>

#include <cmath>

namespace tavrix
{

namespace
{

QString tableText(const QString& key)
{
    return localizedString(key, QStringLiteral("Window"));
}

} // namespace

QString windowText(const char* key, std::initializer_list<FormatArg> arguments)
{
    const QString text = tableText(QString::fromLatin1(key));
    return arguments.size() == 0 ? text : shownText(formatText(text, arguments));
}

QString formatName(int out)
{
    return isOutputFormat(out) ? tableText(formatText(QStringLiteral("Win_format%d"), {out})) : QStringLiteral("");
}

QString formatNameAndUse(int out)
{
    return isOutputFormat(out) ? tableText(formatText(QStringLiteral("Win_formatUse%d"), {out})) : QStringLiteral("");
}

QString stateWords(const BatchRow& row)
{
    // Its mark is that of a failure; in words it is none.
    if (row.kept && row.hasFailed()) {
        return windowText("Win_kept");
    }
    const QString image = stateImage(row);
    return image.isEmpty() ? QStringLiteral("") : tableText(QStringLiteral("Win_image_") + image);
}

// A row that is done but lacks something does not look like the others that are done.
QString stateImage(const BatchRow& row)
{
    return row.incomplete ? QStringLiteral("puceIncomplete") : row.resultat;
}

int wholePercents(double part)
{
    // What a 32-bit number could not hold exactly is not a percent less.
    constexpr double rounding = 0.001;
    return static_cast<int>(part * 100 + rounding);
}

QString durationWords(double seconds)
{
    const int whole = static_cast<int>(std::lround(qMax(0.0, seconds)));
    if (whole >= 3600) {
        return formatText(QStringLiteral("%d:%02d:%02d"), {whole / 3600, whole / 60 % 60, whole % 60});
    }
    return formatText(QStringLiteral("%d:%02d"), {whole / 60, whole % 60});
}

QString wrappedTip(const QString& text)
{
    if (text.isEmpty()) {
        return {};
    }
    // Escaped: a file name may look like markup. Markup is what the toolkit breaks into lines.
    QString tip = shownLines(text).toHtmlEscaped();
    return QStringLiteral("<p>") + tip.replace(QLatin1Char('\n'), QStringLiteral("<br>")) + QStringLiteral("</p>");
}

void setTip(QWidget* widget, const QString& text)
{
    widget->setToolTip(wrappedTip(text));
    widget->setAccessibleDescription(text);
}

} // namespace tavrix
