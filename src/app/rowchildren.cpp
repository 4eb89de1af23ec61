// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/rowchildren.h"

#include "app/encodefailure.h"
#include "app/verdictwords.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "probe/batchtexts.h"
#include "process/childprocess.h"

namespace tavrix
{

namespace
{

constexpr qsizetype transcriptTailLength = 4000;

} // namespace

void RowChildren::beginRow()
{
    verdict_.begin();
    end_.reset();
    silence_ = QString();
    transcriptTail_ = QString();
}

void RowChildren::beginPass(const QString& tool)
{
    tool_ = tool;
    verdict_.beginPass();
    end_.reset();
    silence_ = QString();
    transcriptTail_ = QString();
}

void RowChildren::wrote(const QString& text)
{
    verdict_.read(text);
    transcriptTail_ = (transcriptTail_ + text).right(transcriptTailLength);
}

void RowChildren::missing(const QString& tool)
{
    transcriptTail_ = formatText(batchText("Enc_toolMissing"), {tool});
}

void RowChildren::silent(int seconds)
{
    silence_ = formatText(batchText("Enc_silent"), {seconds});
}

QString RowChildren::failureReason(bool made) const
{
    if (!silence_.isNull()) {
        return silence_;
    }
    const std::optional<judge::Verdict>& verdict = verdict_.verdict();
    if (verdict && verdict->outcome == judge::Outcome::Failed && !verdict->findings.empty()) {
        return verdictWords(*verdict);
    }
    if (made && end_ == ChildEnd() && !verdict_.isPassJudged()) {
        return batchText("Enc_notJudged");
    }
    const bool mute = failureLine(transcriptTail_).isNull();
    if (mute && end_ == ChildEnd{false, ChildProcess::statusNotStarted}) {
        return formatText(batchText("Enc_toolNotStarted"), {tool_});
    }
    const bool unexpected = end_ && (end_->bySignal || (mute && end_->code != 0));
    const QString reason = tailReason(unexpected ? transcriptTail_ + endLine(tool_, *end_) : transcriptTail_);
    return reason.isNull() ? batchText("Enc_noOutput") : reason;
}

} // namespace tavrix
