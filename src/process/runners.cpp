// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/runners.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/textfiles.h"
#include "base/files/fileinfo.h"
#include "base/files/posixfile.h"
#include "base/store/settings.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/text.h"
#include "process/capturedrun.h"
#include "process/programlookup.h"
#include "process/shellrun.h"

#include <fcntl.h>
#include <string_view>

namespace tavrix
{

namespace
{

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// The file keeps what an earlier, longer capture left behind the new text: it is never truncated. A planted link or a
// special file is refused.
Descriptor openCapture(const QString& path, int flags)
{
    Descriptor file = openFile(nativePath(path), flags | O_NOFOLLOW, 0600);
    struct stat info = {};
    if (file.isOpen() && (fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode))) {
        return {};
    }
    return file;
}

QString withoutFinalNewline(QString text)
{
    if (text.endsWith(QLatin1Char('\n'))) {
        text.chop(1);
    }
    return text;
}

QString captureFailure()
{
    logLine(QStringLiteral("task failure        :-( !fileReadWrite"));
    return {};
}

} // namespace

QString taskWithStr(const QString& command, const QString& directory)
{
    if (!directory.isEmpty()) {
        logLine(QStringLiteral("cd : %@"), {directory});
    }
    const std::optional<CapturedRun> run = runShell(command, directory);
    if (!run) {
        return {};
    }
    QString text = decodedUtf8(run->output);
    if (text.isNull()) {
        return QLatin1String("");
    }
    if (text.isEmpty()) {
        logLine(QStringLiteral("stringOutput        :-/ '%@'"), {text});
        return {};
    }
    return text;
}

QString taskWithStrBasic(const QString& command)
{
    const std::optional<CapturedRun> run = runShell(command);
    return run ? withoutFinalNewline(decodedUtf8(run->output)) : QString();
}

QString taskArray(const QStringList& arguments, bool stderrToo)
{
    if (arguments.isEmpty()) {
        return {};
    }
    const QString capturePath = getTMPFOLDER() + QStringLiteral("taskData.txt");
    Descriptor capture = openCapture(capturePath, O_WRONLY | O_CREAT);
    if (!capture.isOpen() || !writeAll(capture.get(), byteOrderMark)) {
        return captureFailure();
    }

    ChildSetup setup;
    setup.program = resolvedProgram(arguments.first());
    if (setup.program.isNull()) {
        return {};
    }
    for (const QString& argument : arguments.mid(1)) {
        setup.arguments.append(launchArgument(argument));
    }
    setup.toolLocale = true;
    const std::optional<CapturedRun> run =
        runCaptured(setup, stderrToo, [](int pid) { logDebug(QStringLiteral("PID current        : %d"), {pid}); });
    if (!run) {
        return {};
    }
    if (!writeAll(capture.get(), viewOf(run->output)) || !capture.close()) {
        return captureFailure();
    }
    if (!openCapture(capturePath, O_RDWR).isOpen()) {
        return captureFailure();
    }
    return withoutFinalNewline(readContentsTxtUTF8(capturePath));
}

QString ffmpegPathStr()
{
    const QString name = QStringLiteral("ffmpeg");
    QStringList candidates;
    if (const QString resources = resourcePath(); !resources.isEmpty()) {
        candidates << stringByAppendingPathComponent(resources, name) << toolPath(name);
    }
    candidates << stringByAppendingPathComponent(supportFolder(), name);
    for (const QString& path : candidates) {
        if (testPresenceCocoa(path)) {
            return path;
        }
    }
    return QLatin1String("");
}

} // namespace tavrix
