#include "console/textreporter.h"

#include "base/format.h"
#include "base/paths.h"
#include "base/shownname.h"
#include "console/consoletext.h"
#include "probe/cameraclip.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>

namespace tavrix
{

namespace
{

constexpr int defaultWidth = 80;
constexpr int widestShownName = 60;
constexpr qint64 redrawMilliseconds = 100;

QString shownName(const QString& path)
{
    return elided(lastPathComponent(path), widestShownName);
}

} // namespace

TextReporter::TextReporter(std::FILE* stream, bool terminal) : stream_(stream), terminal_(terminal) {}

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
    line(formatText(consoleText("Con_queued"), {count}));
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
    line(formatText(QStringLiteral("%@ %@: %@"),
                    {place(), shownName(path), what.isEmpty() ? consoleText("Con_unreadable") : what}));
}

void TextReporter::rejected(const QString& path, const QString& reason)
{
    // What is skipped before the analysis has no place in it.
    const QString name =
        analysisNumber_ > 0 ? formatText(QStringLiteral("%@ %@"), {place(), shownName(path)}) : shownName(path);
    line(formatText(consoleText("Con_rejected"), {name, shownText(reason)}));
}

void TextReporter::rowStarted(int number, int total, const QString& source)
{
    state_ = ProgressState{lastPathComponent(source), number, total, 0, 0, 0};
    rowClock_.start();
    drawClock_.start();
    if (terminal_) {
        draw(progressLine(state_, terminalWidth() - 1));
    } else {
        line(formatText(consoleText("Con_rowStarted"), {number, total, shownName(source)}));
    }
}

void TextReporter::rowProgress(float value, float maximum)
{
    if (!terminal_ || (value < maximum && drawClock_.elapsed() < redrawMilliseconds)) {
        return;
    }
    state_.value = static_cast<double>(value);
    state_.maximum = static_cast<double>(maximum);
    state_.elapsed = static_cast<double>(rowClock_.elapsed()) / 1000;
    draw(progressLine(state_, terminalWidth() - 1));
    drawClock_.restart();
}

void TextReporter::rowFinished(int number, int total, const RowReport& row)
{
    if (row.success) {
        line(formatText(consoleText("Con_rowDone"), {number, total, shownName(row.source), sizeText(row.bytes)}));
        if (!row.warning.isEmpty()) {
            line(QStringLiteral("  ") + shownText(row.warning));
        }
    } else {
        line(formatText(consoleText("Con_rowFailed"), {number, total, failedName(row.source), shownText(row.reason)}));
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

void TextReporter::summary(const QList<RowReport>& rows, const NotConverted& others, const QString& folder,
                           int /*exitCode*/)
{
    if (rows.isEmpty() && others.leftOut == 0) {
        return;
    }
    const auto done = std::count_if(rows.cbegin(), rows.cend(), [](const RowReport& row) { return row.success; });
    const auto incomplete =
        std::count_if(rows.cbegin(), rows.cend(), [](const RowReport& row) { return row.incomplete; });
    line(QString());
    const auto kept = std::count_if(rows.cbegin(), rows.cend(), [](const RowReport& row) { return row.kept; });
    QString counts =
        formatText(consoleText("Con_summary"), {qint64(done) - qint64(incomplete), qint64(incomplete),
                                                qint64(rows.size()) - qint64(done) - qint64(kept), others.leftOut});
    if (kept > 0) {
        counts += formatText(consoleText("Con_summaryKept"), {qint64(kept)});
    }
    if (others.notBegun > 0) {
        counts += formatText(consoleText("Con_summaryNotBegun"), {others.notBegun});
    }
    line(counts);
    for (const RowReport& row : rows) {
        if (row.success) {
            line(formatText(QStringLiteral("  %@  %@"), {shownText(row.output), sizeText(row.bytes)}));
            if (!row.warning.isEmpty()) {
                line(QStringLiteral("    ") + shownText(row.warning));
            }
        } else {
            line(formatText(consoleText("Con_summaryFailed"), {failedName(row.source), shownText(row.reason)}));
        }
    }
    if (done > 0) {
        line(formatText(consoleText("Con_folder"), {shownText(folder)}));
    }
}

} // namespace tavrix
