#include "app/rowchildren.h"

#include "app/encodefailure.h"
#include "app/verdictwords.h"
#include "base/format.h"
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
    status_.reset();
    silence_ = QString();
    transcriptTail_ = QString();
}

void RowChildren::beginPass(const QString& tool)
{
    tool_ = tool;
    verdict_.beginPass();
    status_.reset();
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
    if (made && status_ == 0 && !verdict_.isPassJudged()) {
        return batchText("Enc_notJudged");
    }
    const QString line = failureLine(transcriptTail_);
    if (line.isNull() && status_ == ChildProcess::statusNotStarted) {
        return formatText(batchText("Enc_toolNotStarted"), {tool_});
    }
    return line.isNull() ? batchText("Enc_noOutput") : plainReason(line);
}

} // namespace tavrix
