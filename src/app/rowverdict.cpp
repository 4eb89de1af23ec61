#include "app/rowverdict.h"

#include "judge/verdictline.h"

#include <algorithm>

namespace tavrix
{

namespace
{

// Longer than any verdict: what a child writes without a line end is not collected.
constexpr qsizetype longestLine = 4096;

bool isLineEnd(QChar character)
{
    return character == QLatin1Char('\n') || character == QLatin1Char('\r');
}

} // namespace

void RowVerdict::begin()
{
    open_.clear();
    verdict_.reset();
}

void RowVerdict::beginSecondPass()
{
    if (verdict_) {
        std::erase_if(verdict_->findings,
                      [](const judge::Finding& finding) { return finding.cause == judge::Cause::HiddenShown; });
    }
}

void RowVerdict::read(const QString& text)
{
    for (const QChar character : text) {
        if (isLineEnd(character)) {
            take(open_);
            open_.clear();
        } else if (open_.size() < longestLine) {
            open_ += character;
        }
    }
}

void RowVerdict::take(const QString& line)
{
    const std::optional<judge::Verdict> found = judge::parseVerdictLine(line.toStdString());
    if (!found) {
        return;
    }
    if (!verdict_) {
        verdict_ = found;
        return;
    }
    verdict_->outcome = std::max(verdict_->outcome, found->outcome);
    for (const judge::Finding& finding : found->findings) {
        if (std::ranges::find(verdict_->findings, finding) == verdict_->findings.end()) {
            verdict_->findings.push_back(finding);
        }
    }
}

} // namespace tavrix
