// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/keptanswers.h"

#include <charconv>
#include <functional>
#include <utility>
#include <vector>

namespace tavrix::front
{

namespace
{

constexpr const char* bannerName = "banner";
constexpr const char* thumbnailName = "thumbnail";
constexpr const char* framesPrefix = "ahead-";

constexpr std::size_t framesValues = 3;
constexpr std::size_t allValues = 8; // with the picture's size and answer

std::optional<int> number(const std::string& digits)
{
    int value = 0;
    const auto [last, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && last == digits.data() + digits.size() ? std::optional(value) : std::nullopt;
}

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

std::string KeptAnswers::answerKey(const AnalysisTask& task, const std::string& state) const
{
    return programKey_ + '\n' + std::to_string(task.width) + 'x' + std::to_string(task.height) + '\n' + state + '\n' +
           task.source;
}

void KeptAnswers::storeThumbnail(const AnalysisTask& task, const std::string& state,
                                 const AnalysisDelivery& answer) const
{
    if (!state.empty()) {
        keep_.store(thumbnailName, answerKey(task, state), {answer.said, answer.saidBehindName, answer.bytes});
    }
}

std::optional<AnalysisDelivery> KeptAnswers::thumbnail(const AnalysisTask& task) const
{
    const std::string state = stateOf(task);
    if (task.kind != AnalysisTask::Kind::Thumbnail || state.empty()) {
        return std::nullopt;
    }
    auto values = keep_.read(thumbnailName, answerKey(task, state));
    if (!values || values->size() != 3 || values->at(2).empty()) {
        return std::nullopt;
    }
    return AnalysisDelivery{std::move(values->at(0)), std::move(values->at(1)), std::move(values->at(2)), 0};
}

// One for each clip: several may be looked at at a time.
std::string KeptAnswers::framesName(const AnalysisTask& task) const
{
    return framesPrefix + std::to_string(std::hash<std::string>()(answerKey(task, "")));
}

Descriptor KeptAnswers::announceFrames(const AnalysisTask& task) const
{
    return keep_.announce(framesName(task));
}

void KeptAnswers::storeFrames(const AnalysisTask& task, const std::string& state, const FramesAnswer& answer) const
{
    std::vector<std::string> values = {answer.frames.said, answer.frames.saidBehindName, answer.frames.bytes};
    if (answer.thumbnail && answer.thumbnailTask) {
        values.insert(values.end(),
                      {std::to_string(answer.thumbnailTask->width), std::to_string(answer.thumbnailTask->height),
                       answer.thumbnail->said, answer.thumbnail->saidBehindName, answer.thumbnail->bytes});
    }
    if (!state.empty()) {
        keep_.store(framesName(task), answerKey(task, state), values);
    }
}

std::optional<FramesAnswer> KeptAnswers::frames(const AnalysisTask& task) const
{
    keep_.await(framesName(task));
    const std::string state = stateOf(task);
    auto values = state.empty() ? std::nullopt : keep_.read(framesName(task), answerKey(task, state));
    if (!values || (values->size() != framesValues && values->size() != allValues)) {
        return std::nullopt;
    }
    const auto delivery = [&](std::size_t first) {
        return AnalysisDelivery{std::move(values->at(first)), std::move(values->at(first + 1)),
                                std::move(values->at(first + 2)), 0};
    };
    FramesAnswer answer;
    answer.frames = delivery(0);
    if (values->size() == allValues) {
        const auto width = number(values->at(3));
        const auto height = number(values->at(4));
        if (!width || !height) {
            return std::nullopt;
        }
        answer.thumbnailTask = AnalysisTask{AnalysisTask::Kind::Thumbnail, task.source, *width, *height, 1};
        answer.thumbnail = delivery(5);
    }
    return answer;
}

void KeptAnswers::forgetFrames(const AnalysisTask& task) const
{
    keep_.remove(framesName(task));
}

} // namespace tavrix::front
