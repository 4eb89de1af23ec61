// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/attempt.h"

#include "tools/ffmpeg/arguments.h"
#include "tools/ffmpeg/errorstream.h"
#include "tools/ffmpeg/linesplitter.h"

#include <utility>

namespace tavrix::front
{

Attempt::Attempt(const Task& task, Turn turn)
    : task_(task), first_(turn == Turn::First), settled_(!first_), transcript_(task.names, levelsAreMarked(task.line))
{
}

void Attempt::run(SpawnRequest request)
{
    LineSplitter splitter([this](std::string_view line, char lineEnd) { hear(line, lineEnd); });
    end_ = runChild(std::move(request), [&](std::string_view bytes) { splitter.feed(bytes); });
    splitter.finish();
    keepUntilSettled(transcript_.finish(!end_ || end_->bySignal ? 1 : end_->code));
    if (otherDialect()) {
        kept_.clear();
    }
    settle();
}

void Attempt::hear(std::string_view line, char lineEnd)
{
    spoken_ = true;
    if (task_.hear) {
        task_.hear(line);
    }
    keepUntilSettled(transcript_.translate(line, lineEnd));
    if (otherDialect()) {
        killChild();
    } else if (isSettled()) {
        settle();
    }
}

std::optional<InstalledDialect> Attempt::otherDialect() const
{
    if (!first_ || interruptingSignal() != 0) {
        return std::nullopt;
    }
    const InstalledDialect next = dialectAfter({findings(), task_.source, task_.inputCanBeReadAgain});
    return next == InstalledDialect() ? std::nullopt : std::optional(next);
}

// An option is refused before an input is opened, a filter after it.
bool Attempt::isSettled() const
{
    return !first_ || (mayRefuseAnnexB(task_.line) ? findings().outputDescribed : findings().inputDescribed);
}

void Attempt::keepUntilSettled(const std::vector<TranscriptLine>& lines)
{
    kept_.insert(kept_.end(), lines.begin(), lines.end());
    if (settled_) {
        settle();
    }
}

void Attempt::settle()
{
    settled_ = true;
    for (const TranscriptLine& line : std::exchange(kept_, {})) {
        printLine(line.text, line.end);
    }
}

} // namespace tavrix::front
