// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/clipinspection.h"

#include "tools/ffmpeg/analysisversions.h"
#include "tools/ffmpeg/banner.h"
#include "tools/ffmpeg/clippictures.h"
#include "tools/ffmpeg/installedlibraries.h"
#include "tools/ffmpeg/linesplitter.h"
#include "tools/ffmpeg/locate.h"
#include "tools/ffmpeg/pictureoutput.h"
#include "tools/ffmpeg/transcript.h"

#include <array>
#include <cstdarg>
#include <cstdlib>
#include <mutex>
#include <string_view>

extern "C" {
#include <libavutil/log.h>
}

namespace tavrix::front
{

namespace
{

// Everything that ffmpeg would print, and what timestamp debugging adds, which is the libraries' own.
struct Heard {
    std::mutex mutex; // decoders speak on threads of their own
    int atLineStart = 1;
    bool describes = false; // the time bases of a description are for debugging only
    std::string text;
};

Heard& heard()
{
    static Heard instance;
    return instance;
}

bool tellsPacket(std::string_view format)
{
    return format.starts_with("ff_read_packet stream=") || format.starts_with("read_frame_internal stream=");
}

void listen(void* speaker, int level, const char* format, va_list arguments)
{
    Heard& all = heard();
    const std::lock_guard lock(all.mutex);
    const bool ofDescription = all.describes && speaker == nullptr && level <= AV_LOG_DEBUG;
    if (level > AV_LOG_INFO && !ofDescription && !tellsPacket(format)) {
        return;
    }
    std::array<char, 1024> line{}; // ffmpeg cuts lines at this length
    av_log_format_line2(speaker, level, format, arguments, line.data(), static_cast<int>(line.size()),
                        &all.atLineStart);
    all.text += line.data();
}

// Listens for as long as it lives.
class Listening
{
public:
    Listening()
    {
        heard().text.clear();
        heard().atLineStart = 1;
        av_log_set_callback(listen);
    }
    ~Listening() { av_log_set_callback(av_log_default_callback); }
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

    static void say(const std::string& text)
    {
        const std::lock_guard lock(heard().mutex);
        heard().text += text;
    }
    static void describe(const ClipPictures& clip, const std::string& url)
    {
        setDescribes(true);
        av_dump_format(&clip.container(), 0, url.c_str(), 0);
        setDescribes(false);
    }
    [[nodiscard]] static std::string text()
    {
        const std::lock_guard lock(heard().mutex);
        return heard().text;
    }

private:
    static void setDescribes(bool describes)
    {
        const std::lock_guard lock(heard().mutex);
        heard().describes = describes;
    }
};

// "YUV4MPEG2 W640 H480 ..." of the first picture; "" when it cannot be made.
std::string firstHeader(ClipPictures& clip)
{
    const AnalysisTask task{AnalysisTask::Kind::Frames, {}, 640, 480, 1};
    std::string header;
    const bool decoded = clip.decode([&](const ClipPictures::Picture& picture) {
        const auto output = PictureOutput::make(task, clip, picture.frame);
        if (output && output->write(picture.frame, 1) && output->finish()) {
            header = output->bytes().substr(0, output->bytes().find('\n') + 1);
        }
        return false;
    });
    return decoded ? header : std::string();
}

std::string classic(const std::string& said, const std::string& url, const std::string& path)
{
    std::string text = classicBanner() + '\n';
    TranscriptNames names;
    names.inputs.push_back({url, path});
    Transcript transcript(names, false);
    LineSplitter splitter([&](std::string_view line, char end) {
        for (const TranscriptLine& translated : transcript.translate(line, end)) {
            text += translated.text + translated.end;
        }
    });
    splitter.feed(said);
    splitter.finish();
    return text;
}

} // namespace

bool canInspectClips()
{
    const char* const path = std::getenv("PATH");
    const auto program = installedFfmpeg(path == nullptr ? "" : path, "");
    return isAnalysisProven() && program && namesOwnLibraries(*program);
}

std::optional<ClipInspection> inspectClip(const std::string& path)
{
    const std::string url = "file:" + path;
    const Listening listening;
    const auto clip = ClipPictures::open(url, ClipPictures::Purpose::Description);
    if (!clip) {
        return std::nullopt;
    }
    Listening::say(clip->remarks());
    Listening::describe(*clip, url);
    std::string header = firstHeader(*clip);
    if (header.empty()) {
        return std::nullopt;
    }
    Listening::say("Stream mapping:\n  Stream #0:" + std::to_string(clip->stream().index) +
                   " -> #0:0\nOutput #0, yuv4mpegpipe, to 'pipe:':\n");
    return ClipInspection{classic(Listening::text(), url, path), std::move(header)};
}

} // namespace tavrix::front
