// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/libraryremarks.h"

#include "tools/ffmpeg/errorlines.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <mutex>
#include <string_view>
#include <thread>

extern "C" {
#include <libavutil/log.h>
}

namespace tavrix::front
{

namespace
{

// The libraries know one listener for the whole process, and decoders speak on threads of their own.
struct Heard {
    std::mutex mutex;
    bool remarks = false;
    int atLineStart = 1;
    std::string last;
    std::string* description = nullptr;
    std::thread::id describer;
};

Heard& heard()
{
    static Heard instance;
    return instance;
}

// ffmpeg cuts lines at this length.
constexpr std::size_t longestLine = 1024;

// What ffmpeg would print otherwise than it was said: cut, with signs replaced, or as a repetition of the line before.
bool isPrintedAsSaid(std::string_view line, int length, const Heard& all)
{
    const bool cut = length < 0 || static_cast<std::size_t>(length) >= longestLine;
    const bool plain = std::ranges::none_of(line, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x08 || (byte > 0x0d && byte < 0x20);
    });
    const bool repeated = all.atLineStart != 0 && !line.empty() && line == all.last;
    return !cut && plain && !repeated;
}

void listen(void* speaker, int level, const char* format, va_list arguments)
{
    if (level > AV_LOG_INFO) {
        return;
    }
    Heard& all = heard();
    const std::lock_guard lock(all.mutex);
    std::array<char, longestLine> buffer{};
    const int length = av_log_format_line2(speaker, level, format, arguments, buffer.data(),
                                           static_cast<int>(buffer.size()), &all.atLineStart);
    const std::string_view line = buffer.data();
    const bool asSaid = isPrintedAsSaid(line, length, all);
    const bool describes =
        speaker == nullptr && all.description != nullptr && all.describer == std::this_thread::get_id();
    if (describes && asSaid) {
        *all.description += line;
    } else if (!asSaid || !tellsOldPixelFormat(line)) {
        all.remarks = true;
    }
    all.last = line;
}

} // namespace

LibraryRemarks::LibraryRemarks()
{
    Heard& all = heard();
    all.remarks = false;
    all.atLineStart = 1;
    all.last.clear();
    av_log_set_level(AV_LOG_INFO);
    av_log_set_callback(listen);
}

LibraryRemarks::~LibraryRemarks()
{
    av_log_set_callback(av_log_default_callback);
}

bool LibraryRemarks::any() const
{
    const std::lock_guard lock(heard().mutex);
    return heard().remarks;
}

std::string LibraryRemarks::description(AVFormatContext& context, const char* name, bool ofOutput)
{
    std::string text;
    Heard& all = heard();
    {
        const std::lock_guard lock(all.mutex);
        all.description = &text;
        all.describer = std::this_thread::get_id();
    }
    av_dump_format(&context, 0, name, ofOutput ? 1 : 0);
    const std::lock_guard lock(all.mutex);
    all.description = nullptr;
    return text;
}

} // namespace tavrix::front
