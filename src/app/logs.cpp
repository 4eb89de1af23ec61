// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/logs.h"

#include "app/privatefiles.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/textfiles.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/text/format.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/text.h"

#include <sys/stat.h>

#include <cstdio>

namespace tavrix
{

namespace
{

FILE* newStdout = nullptr;
FILE* newStderr = nullptr;

bool isLink(const QString& path)
{
    struct stat info = {};
    return ::lstat(nativePath(path).constData(), &info) == 0 && S_ISLNK(info.st_mode);
}

FILE* reopened(const QString& path, FILE* stream)
{
    // A planted link must not redirect the log into another file; a failed reopening has closed the stream.
    FILE* file = isLink(path) ? nullptr : std::freopen(nativePath(path).constData(), "a+", stream);
    if (file == nullptr) {
        file = std::freopen("/dev/null", "a+", stream);
    }
    if (file != nullptr) {
        std::setvbuf(file, nullptr, _IOLBF, 0);
    }
    return file;
}

} // namespace

QString detailsLogPath()
{
    return logsFolder() + QStringLiteral("/Details.log");
}

QString logResumePathStr()
{
    return stringByDeletingLastPathComponent(detailsLogPath()) + QStringLiteral("/Resume.log");
}

void logResume(const QString& text)
{
    const QString path = logResumePathStr();
    if (isLink(path)) {
        return;
    }
    if (!testPresenceCocoa(path)) {
        if (!writeTextFileUtf8Bom(path, formatText(QStringLiteral("start date    : %@"), {currentDateText()}))) {
            logLine(QStringLiteral("logResume           :-( %@"), {path});
            return;
        }
        keepPrivate(path, 0600);
    }
    if (!text.isEmpty() && !writeTextFileUtf8Bom(path, text)) {
        logLine(QStringLiteral("logResume           :-( %@"), {path});
    }
}

void redirectLogs2File(const QString& path)
{
    if (newStdout != nullptr || newStderr != nullptr) {
        logLine(QStringLiteral("if (newStdout || newStderr)"));
        return;
    }
    newStdout = reopened(path, stdout);
    newStderr = reopened(path, stderr);
}

void rotateLogs()
{
    const QString folder = stringByDeletingLastPathComponent(detailsLogPath());
    mkdirCocoa(folder);
    keepPrivate(folder, 0700);
    for (const QString& path : {detailsLogPath(), logResumePathStr()}) {
        if (testPresenceCocoa(path)) {
            mvCocoa(path, formatText(QStringLiteral("%@/Previous-%@"), {folder, lastPathComponent(path)}),
                    QStringLiteral("y"));
        }
    }
}

} // namespace tavrix
