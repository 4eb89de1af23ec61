// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/keptanswers.h"

#include <utility>
#include <vector>

namespace tavrix::front
{

namespace
{

constexpr const char* bannerName = "banner";
constexpr const char* thumbnailName = "thumbnail";

} // namespace

KeptAnswers::KeptAnswers(AnalysisKeep keep, const std::string& program)
    : keep_(std::move(keep)), programKey_(program + '\n' + contentKey(program) + '\n' + contentKey("/proc/self/exe"))
{
}

std::optional<std::string> KeptAnswers::banner() const
{
    const auto values = keep_.read(bannerName, programKey_);
    return values && values->size() == 1 ? std::optional(values->front()) : std::nullopt;
}

void KeptAnswers::hear(std::string_view line)
{
    if (complete_) {
        return;
    }
    const bool first = heard_.empty() && line.starts_with("ffmpeg version ");
    const bool more = !heard_.empty() && line.starts_with("  ");
    if (first || more) {
        heard_ += std::string(line) + '\n';
        return;
    }
    complete_ = true;
    if (!heard_.empty()) {
        keep_.store(bannerName, programKey_, {heard_});
    }
}

std::string KeptAnswers::stateOf(const AnalysisTask& task)
{
    return contentKey(task.source);
}

std::string KeptAnswers::thumbnailKey(const AnalysisTask& task, const std::string& state) const
{
    return programKey_ + '\n' + std::to_string(task.width) + 'x' + std::to_string(task.height) + '\n' + state + '\n' +
           task.source;
}

void KeptAnswers::storeThumbnail(const AnalysisTask& task, const std::string& state,
                                 const AnalysisDelivery& answer) const
{
    if (!state.empty()) {
        keep_.store(thumbnailName, thumbnailKey(task, state), {answer.said, answer.saidBehindName, answer.bytes});
    }
}

std::optional<AnalysisDelivery> KeptAnswers::thumbnail(const AnalysisTask& task) const
{
    const std::string state = stateOf(task);
    if (task.kind != AnalysisTask::Kind::Thumbnail || state.empty()) {
        return std::nullopt;
    }
    auto values = keep_.read(thumbnailName, thumbnailKey(task, state));
    if (!values || values->size() != 3 || values->at(2).empty()) {
        return std::nullopt;
    }
    return AnalysisDelivery{std::move(values->at(0)), std::move(values->at(1)), std::move(values->at(2)), 0};
}

} // namespace tavrix::front
