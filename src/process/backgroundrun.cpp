// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/backgroundrun.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/numberconversions.h"
#include "base/dialogue/textfiles.h"
#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/text/listconversions.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/text.h"
#include "process/processinfo.h"
#include "process/runners.h"
#include "process/shellrun.h"
#include "process/shelltext.h"
#include "sys/transfer.h"

#include <chrono>
#include <thread>

namespace tavrix
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr auto passInterval = std::chrono::seconds(1);
// A tool that has not ended within a day is not watched any longer.
constexpr int maximumPasses = 24 * 60 * 60;
constexpr BackgroundRunRect defaultButtonRect = {266, 94, 38, 18};

void logButtonRect(const BackgroundRunRect& rect)
{
    if (rect.width > 0 && rect.height > 0) {
        return;
    }
    const BackgroundRunRect& used = defaultButtonRect;
    logLine(QStringLiteral("btRect : x=%.0f, y=%.0f, dim=%.0fx%.0f"), {used.x, used.y, used.width, used.height});
}

// The name stands without quotes in the text: one that is neither harmless nor quoted gets quotes here.
int listedPid(const QString& name, int shellPid)
{
    const QString answer = taskWithStrBasic(
        formatText(QStringLiteral("/bin/ps -avvxw | grep %@ | /usr/bin/awk '{print $1}'"), {shellWord(name)}));
    return backgroundRunPid(answer, shellPid);
}

bool isListed(int pid)
{
    const QString answer = taskWithStrBasic(formatText(
        QStringLiteral("/bin/ps -p %d | /usr/bin/grep %d | /usr/bin/wc -l | /usr/bin/awk '{print $1}'"), {pid, pid}));
    return leadingInteger(answer) != 0;
}

// What the tool writes on its standard output is thrown away, so that a full pipe never stops it.
void discardOutput(const Descriptor& pipe)
{
    QByteArray chunk;
    for (qint64 left = waitingBytes(pipe.get()); left > 0; left -= chunk.size()) {
        if (readChunk(pipe.get(), chunk) != ReadState::Data) {
            return;
        }
    }
}

void showProgress(const QString& progressPath, const BackgroundRunIndicator& indicator)
{
    const double seconds = backgroundRunSeconds(readContentsTxtUTF8(progressPath));
    if (seconds < 0) {
        return;
    }
    logLine(QStringLiteral("1 cocoa = %f"), {seconds});
    if (indicator.setValue) {
        indicator.setValue(seconds);
    }
}

void watchTool(int pid, const Descriptor& pipe, const QString& progressPath, const BackgroundRunIndicator& indicator)
{
    const ProcessIdentity tool = processIdentity(pid);
    for (int pass = 0; pass < maximumPasses; ++pass) {
        const Clock::time_point begun = Clock::now();
        showProgress(progressPath, indicator);
        discardOutput(pipe);
        // A process that nobody has reaped yet is still listed, and a number may be given to a stranger.
        if (!isListed(pid) || !isRunningAs(tool)) {
            return;
        }
        std::this_thread::sleep_until(begun + passInterval);
    }
    logLine(QStringLiteral("background run      :-( %d is not watched any longer"), {pid});
}

} // namespace

QString backgroundRunCommand(const QStringList& arguments)
{
    QStringList words;
    for (const QString& argument : arguments) {
        if (pathSafeStr(argument)) {
            words.append(argument);
            continue;
        }
        logLine(QStringLiteral("pathSafeStr()       :-( %@"), {argument});
        words.append(QLatin1Char('"') + shellDoubleQuoted(argument) + QLatin1Char('"'));
    }
    return array2Str(words);
}

QString backgroundRunName(const QString& command)
{
    QString firstWord = textBefore(command, QStringLiteral(" "));
    if (testPresenceCocoa(firstWord)) {
        return firstWord;
    }
    return textBefore(command, QStringLiteral("\" ")) + QLatin1Char('"');
}

int backgroundRunPid(const QString& psAnswer, int shellPid)
{
    const QStringList lines = linesToArray(psAnswer);
    if (lines.size() < 2) {
        return 0;
    }
    const int pid = leadingInteger(lines.first());
    return pid > shellPid ? pid : 0;
}

double backgroundRunSeconds(const QString& progressText)
{
    const QString marker = QStringLiteral("time=");
    const QStringList lines = linesToArray(progressText);
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        QString value = textAfter(*line, marker);
        if (value.isNull()) {
            continue;
        }
        value.chop(3);
        value = textBefore(value, QStringLiteral(" "));
        if (value.contains(QLatin1Char(':'))) {
            return static_cast<double>(timecodeStr2Float(value));
        }
        return static_cast<double>(str2Float(value));
    }
    return -1;
}

void taskcontrollerBasic(const QStringList& arguments, QObject* /*window*/, const BackgroundRunRect& buttonRect,
                         const QVariant& /*spare*/, const BackgroundRunIndicator& indicator, int durationSeconds)
{
    if (arguments.isEmpty()) {
        return;
    }
    const QString caches = cachesFolder();
    const QString progressPath = stringByAppendingPathComponent(caches, QStringLiteral("tmpProcess.txt"));
    const QString donePath = stringByAppendingPathComponent(caches, QStringLiteral("tmpProcessDone.txt"));
    if (!mkdirCocoa(caches)) {
        return;
    }
    if (!removeOwnFile(progressPath, caches) || !removeOwnFile(donePath, caches)) {
        logLine(QStringLiteral("background run      :-( %@ cannot be removed"), {progressPath});
    }

    const QString command =
        backgroundRunCommand(arguments) + formatText(QStringLiteral(" 2>%@ & /bin/echo $!"), {shellWord(progressPath)});
    const std::optional<CapturedRun> shell = runShell(command);
    if (!shell) {
        return;
    }
    const int pid = listedPid(backgroundRunName(command), shell->pid);
    logButtonRect(buttonRect);
    if (indicator.setRange) {
        indicator.setRange(0, durationSeconds);
    }
    if (indicator.setValue) {
        indicator.setValue(0);
    }
    watchTool(pid, shell->rest, progressPath, indicator);
    if (indicator.setValue) {
        indicator.setValue(durationSeconds);
    }
    if (!removeOwnFile(progressPath, caches)) {
        logLine(QStringLiteral("background run      :-( %@ cannot be removed"), {progressPath});
    }
}

} // namespace tavrix
