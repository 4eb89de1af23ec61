// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/rowwords.h"

#include "app/alerttext.h"
#include "app/verdictwords.h"
#include "base/dialogue/shownvalues.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "base/text/shownname.h"
#include "probe/batchtexts.h"

namespace tavrix
{

namespace
{

// Size and date of a file, on one line.
QString fileWords(const char* key, const QString& path)
{
    const std::optional<qint64> date = creationSeconds(path);
    return formatText(alertText(key), {shownText(lastPathComponent(path)),
                                       shownSize(static_cast<qint64>(poidsFile(path, QStringLiteral("O")))),
                                       date ? shownDate(*date) : QStringLiteral("?")});
}

} // namespace

QString replaceWords(const QString& source, const QString& output)
{
    return fileWords("D_replaceOld", output) + QLatin1Char('\n') + fileWords("D_replaceNew", source);
}

QString olderKeptWords(judge::Verdict verdict)
{
    verdict.outcome = judge::Outcome::Failed;
    verdict.findings.insert(verdict.findings.begin(), {.cause = judge::Cause::OlderKept});
    return verdictWords(verdict);
}

QString folderGone(const QString& output)
{
    const QString folder = stringByDeletingLastPathComponent(output);
    return isFolder(folder) ? QString() : formatText(batchText("Enc_folderGone"), {shownText(folder)});
}

} // namespace tavrix
