// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/textreporter.h"

#include "app/partfile.h"
#include "base/dialogue/plurals.h"
#include "base/dialogue/shownvalues.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "base/text/shownname.h"
#include "console/consoletext.h"
#include "probe/cameraclip.h"
#include "probe/mediainforecord.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>

namespace tavrix
{

namespace
{

const QString consoleTable = QStringLiteral("Console");
constexpr int defaultWidth = 80;
constexpr int widestShownName = 60;
constexpr qint64 redrawMilliseconds = 100;

QString shownName(const QString& path)
{
    return elided(lastPathComponent(path), widestShownName);
}

} // namespace

TextReporter::TextReporter(std::FILE* stream, bool terminal, Verbosity verbosity)
    : stream_(stream), terminal_(terminal && verbosity != Verbosity::Quiet), verbosity_(verbosity)
{
}

int TextReporter::terminalWidth() const
{
    winsize size = {};
    if (::ioctl(::fileno(stream_), TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
    return defaultWidth;
}

void TextReporter::clearDrawn()
{
    if (drawn_) {
        std::fputs("\r\033[K", stream_);
        drawn_ = false;
    }
}

void TextReporter::line(const QString& text)
{
    clearDrawn();
    std::fputs(text.toUtf8().constData(), stream_);
    std::fputc('\n', stream_);
    std::fflush(stream_);
}

void TextReporter::chat(const QString& text)
{
    if (!isQuiet()) {
        line(text);
    }
}

void TextReporter::draw(const QString& text)
{
    std::fputs("\r\033[K", stream_);
    std::fputs(text.toUtf8().constData(), stream_);
    std::fflush(stream_);
    drawn_ = true;
}

QString TextReporter::place() const
{
    return formatText(QStringLiteral("%d/%d"), {analysisNumber_, analysisTotal_});
}

void TextReporter::queued(int count)
{
    chat(formatText(countedText("Con_queued", count, consoleTable), {count}));
}

void TextReporter::analysing(const QString& path, int number, int total)
{
    analysisNumber_ = number;
    analysisTotal_ = total;
    if (terminal_) {
        draw(elided(place() + QLatin1Char(' ') + lastPathComponent(path), terminalWidth() - 1));
    }
}

void TextReporter::accepted(const QString& path, const QVariantMap& infos)
{
    ++names_[lastPathComponent(path)];
    const QString what = clipDescription(infos);
    chat(formatText(QStringLiteral("%@ %@: %@"),
                    {place(), shownName(path), what.isEmpty() ? consoleText("Con_unreadable") : what}));
    if (const QString date = infos.value(record::recordingDate).toString();
        verbosity_ == Verbosity::Verbose && !date.isEmpty()) {
        line(formatText(consoleText("Con_recorded"), {date}));
    }
}

void TextReporter::rejected(const QString& path, const QString& reason)
{
    // What is skipped before the analysis has no place in it.
    const QString name =
        analysisNumber_ > 0 ? formatText(QStringLiteral("%@ %@"), {place(), shownName(path)}) : shownName(path);
    line(formatText(consoleText("Con_rejected"), {name, shownText(reason)}));
}

void TextReporter::rowStarted(int number, int total, const QString& source, const std::optional<ClipPart>& part)
{
    const QString words = part ? QStringLiteral(" (%1)").arg(partText(*part)) : QString();
    state_ = ProgressState();
    state_.name = lastPathComponent(source) + words;
    state_.number = number;
    state_.total = total;
    rowClock_.start();
    drawClock_.start();
    if (terminal_) {
        draw(progressLine(state_, terminalWidth() - 1));
    } else {
        chat(formatText(consoleText("Con_rowStarted"), {number, total, shownName(source) + words}));
    }
}

void TextReporter::rowProgress(const RowProgress& progress)
{
    if (progress.fraction <= 0 && progress.passes > 1 && verbosity_ == Verbosity::Verbose) {
        line(formatText(consoleText("Con_rowStep"), {progress.pass, progress.passes}));
    }
    const bool other = progress.pass != state_.pass || progress.passes != state_.passes;
    if (!terminal_ || (!other && progress.fraction < 1 && drawClock_.elapsed() < redrawMilliseconds)) {
        return;
    }
    state_.pass = progress.pass;
    state_.passes = progress.passes;
    state_.fraction = progress.fraction;
    state_.speed = progress.speed;
    state_.left = progress.left.value_or(-1);
    draw(progressLine(state_, terminalWidth() - 1));
    drawClock_.restart();
}

void TextReporter::rowFinished(int number, int total, const RowReport& row)
{
    if (!row.success) {
        const char* key = row.kept ? "Con_rowKept" : "Con_rowFailed";
        const QString words =
            formatText(consoleText(key), {number, total, failedName(row.source), shownText(row.reason)});
        row.kept ? chat(words) : line(words);
        return;
    }
    QString words =
        formatText(consoleText("Con_rowDone"), {number, total, shownName(row.source), shownSize(row.bytes)});
    if (verbosity_ == Verbosity::Verbose) {
        words += formatText(consoleText("Con_rowTook"), {clockText(static_cast<double>(rowClock_.elapsed()) / 1000)});
    }
    // Who wants to hear of trouble only must still learn whose warning it is.
    row.warning.isEmpty() ? chat(words) : line(words);
    if (!row.warning.isEmpty()) {
        line(QStringLiteral("  ") + shownText(row.warning));
    }
}

void TextReporter::message(const QString& title, const QString& text, const QString& answer)
{
    QString shown = shownText(title);
    if (!text.isEmpty() && text != title) {
        shown += QStringLiteral(": ") + shownText(text);
    }
    if (!answer.isEmpty()) {
        shown += QStringLiteral(" [") + shownText(answer) + QStringLiteral("]");
    }
    line(shown);
}

QString TextReporter::failedName(const QString& path) const
{
    const QString name = lastPathComponent(path);
    if (names_.value(name) < 2) {
        return shownName(path);
    }
    return elided(lastPathComponent(stringByDeletingLastPathComponent(path)) + u'/' + name, widestShownName);
}

void TextReporter::notice(const QString& title, const QString& text)
{
    if (!isQuiet()) {
        message(title, text, QString());
    }
}

void TextReporter::plan(const QList<PlannedRow>& rows, int leftOut, const QString& folder, int /*exitCode*/)
{
    qint64 bytes = 0;
    for (const PlannedRow& row : rows) {
        const QString source = failedName(row.source);
        const QString format = shortFormatName(row.out);
        const QString output = shownText(lastPathComponent(row.output));
        bytes += qMax(qint64(0), row.bytes);
        line(row.bytes < 0
                 ? formatText(consoleText("Con_plannedUnknown"), {row.number, row.total, source, format, output})
                 : formatText(consoleText("Con_planned"),
                              {row.number, row.total, source, format, shownSize(row.bytes), output}));
        if (!row.readable) {
            line(consoleText("Con_plannedUnreadable"));
        } else if (row.sameName) {
            line(consoleText("Con_plannedTwice"));
        } else if (row.exists) {
            line(consoleText("Con_plannedExists"));
        }
    }
    line(QString());
    const int count = static_cast<int>(rows.size());
    line(formatText(countedText("Con_planSummary", count, consoleTable), {count, shownSize(bytes), leftOut}));
    line(formatText(consoleText("Con_planFolder"), {shownText(folder)}));
}

void TextReporter::listRow(const RowReport& row)
{
    if (!row.success) {
        const char* key = row.kept ? "Con_summaryKeptRow" : "Con_summaryFailed";
        line(formatText(consoleText(key), {failedName(row.source), shownText(row.reason)}));
        return;
    }
    line(formatText(QStringLiteral("  %@  %@"), {shownText(row.output), shownSize(row.bytes)}));
    if (!row.warning.isEmpty()) {
        line(QStringLiteral("    ") + shownText(row.warning));
    }
}

void TextReporter::summary(const QList<RowReport>& rows, const NotConverted& others, const QString& folder,
                           int exitCode)
{
    if ((rows.isEmpty() && others.leftOut == 0) || (isQuiet() && exitCode == 0)) {
        return;
    }
    const auto count = [&rows](bool RowReport::*mark) {
        return qint64(std::count_if(rows.cbegin(), rows.cend(), [mark](const RowReport& row) { return row.*mark; }));
    };
    const qint64 done = count(&RowReport::success);
    const qint64 incomplete = count(&RowReport::incomplete);
    const qint64 kept = count(&RowReport::kept);
    chat(QString());
    QString counts = formatText(consoleText("Con_summary"),
                                {done - incomplete, incomplete, qint64(rows.size()) - done - kept, others.leftOut});
    if (kept > 0) {
        counts += formatText(consoleText("Con_summaryKept"), {kept});
    }
    if (others.notBegun > 0) {
        counts += formatText(consoleText("Con_summaryNotBegun"), {others.notBegun});
    }
    line(counts);
    // Each trouble has had its line already.
    if (isQuiet()) {
        return;
    }
    for (const RowReport& row : rows) {
        listRow(row);
    }
    if (done > 0) {
        line(formatText(consoleText("Con_folder"), {shownText(folder)}));
    }
}

} // namespace tavrix
