#include "gui/windowtext.h"

#include "app/windowmodel.h"
#include "base/localisation.h"
#include "base/shownname.h"

namespace tavrix
{

QString windowText(const char* key, std::initializer_list<FormatArg> arguments)
{
    const QString text = localizedString(QString::fromLatin1(key), QStringLiteral("Window"));
    return arguments.size() == 0 ? text : shownText(formatText(text, arguments));
}

QString formatName(int out)
{
    if (out < 0 || out >= outputFormatCount) {
        return QStringLiteral("");
    }
    return localizedString(formatText(QStringLiteral("Win_format%d"), {out}), QStringLiteral("Window"));
}

QString tallyWords(const BatchTally& tally)
{
    if (tally.incomplete == 0) {
        return windowText("Win_batchDone", {tally.converted, tally.failed});
    }
    return windowText("Win_batchDoneIncomplete", {tally.converted, tally.incomplete, tally.failed});
}

} // namespace tavrix
