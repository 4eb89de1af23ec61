// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/analysistask.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace tavrix::front
{

namespace
{

using Kind = AnalysisTask::Kind;

// Words in angle brackets stand for a value.
struct Form {
    Kind kind;
    int pictures;
    std::array<std::string_view, 15> words; // "" ends a shorter one
};

constexpr std::array forms = {
    Form{Kind::Frames,
         10,
         {"-v", "2", "-i", "<source>", "-vframes", "10", "-s", "<size>", "-pix_fmt", "yuv420p", "-an", "-f",
          "yuv4mpegpipe", "-y", "<output>"}},
    Form{Kind::Thumbnail, 1, {"-vframes", "1", "-i", "<source>", "-s", "<size>", "-y", "<output>"}},
    Form{Kind::Description, 0, {"-v", "2", "-i", "<source>"}},
};

constexpr int largestSide = 4096;

std::optional<int> side(std::string_view digits)
{
    int value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, value);
    const bool usable = error == std::errc() && last == end && value >= 2 && value <= largestSide && value % 2 == 0;
    return usable ? std::optional(value) : std::nullopt;
}

bool readSize(std::string_view word, AnalysisTask& task)
{
    const auto times = word.find('x');
    if (times == std::string_view::npos) {
        return false;
    }
    const auto width = side(word.substr(0, times));
    const auto height = side(word.substr(times + 1));
    task.width = width.value_or(0);
    task.height = height.value_or(0);
    return width && height;
}

// A picture's name decides on its kind.
bool isOutputOf(Kind kind, std::string_view name)
{
    return !name.empty() && !name.starts_with('-') && (kind != Kind::Thumbnail || name.ends_with(".jpg"));
}

bool isFileName(std::string_view name)
{
    return !name.empty() && !name.starts_with('-') && !name.starts_with("pipe:");
}

std::optional<AnalysisTask> taskOfForm(const Form& form, const std::vector<std::string>& words)
{
    const auto length = static_cast<std::size_t>(std::ranges::find(form.words, "") - form.words.begin());
    if (words.size() != length) {
        return std::nullopt;
    }
    AnalysisTask task;
    task.kind = form.kind;
    task.pictures = form.pictures;
    for (std::size_t i = 0; i < length; ++i) {
        const std::string_view wanted = form.words[i];
        const std::string& word = words[i];
        bool fits = word == wanted;
        if (wanted == "<source>") {
            fits = isFileName(word);
            task.source = word;
        } else if (wanted == "<size>") {
            fits = readSize(word, task);
        } else if (wanted == "<output>") {
            fits = isOutputOf(form.kind, word);
        }
        if (!fits) {
            return std::nullopt;
        }
    }
    return task;
}

} // namespace

std::optional<AnalysisTask> analysisTask(const std::vector<std::string>& words)
{
    for (const Form& form : forms) {
        if (auto task = taskOfForm(form, words)) {
            return task;
        }
    }
    return std::nullopt;
}

} // namespace tavrix::front
