// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/rowverdict.h"

#include "judge/verdictline.h"
#include "sys/publication.h"

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

// Both passes may find the same flaw, each counting in its own way: it is one flaw, and the larger number stands.
void keepGraver(std::vector<judge::Finding>& findings, const judge::Finding& finding)
{
    const auto same =
        std::ranges::find_if(findings, [&](const judge::Finding& kept) { return kept.cause == finding.cause; });
    if (same == findings.end()) {
        findings.push_back(finding);
    } else if (finding.count > same->count || finding.ofSeconds > same->ofSeconds) {
        *same = finding;
    }
}

} // namespace

void RowVerdict::begin()
{
    verdict_.reset();
    beginPass();
}

void RowVerdict::beginPass()
{
    open_.clear();
    output_.reset();
    passJudged_ = false;
}

bool RowVerdict::isGood() const
{
    return passJudged_ && verdict_->outcome != judge::Outcome::Failed;
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
    const std::string text = line.toStdString();
    if (const std::optional<FileIdentity> file = publication::parseOutputLine(text)) {
        output_ = file;
    }
    const std::optional<judge::Verdict> found = judge::parseVerdictLine(text);
    if (!found) {
        return;
    }
    passJudged_ = true;
    if (!verdict_) {
        verdict_ = found;
        return;
    }
    verdict_->outcome = std::max(verdict_->outcome, found->outcome);
    for (const judge::Finding& finding : found->findings) {
        keepGraver(verdict_->findings, finding);
    }
}

} // namespace tavrix
