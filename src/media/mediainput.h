// SPDX-License-Identifier: GPL-3.0-or-later
// Opening of media files with libavformat: local regular files, in the containers that the program handles, and never
// for longer than allowed.
#pragma once

#include "media/avowners.h"
#include "sys/result.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace tavrix::media
{

// Lists for libavformat's and ffmpeg's `format_whitelist` and `protocol_whitelist`. Play lists, scripts, lists of
// pictures, devices and addresses are in neither.
inline constexpr const char* sourceDemuxers = "mpegts,mov,mp4,m4a,3gp,3g2,mj2,avi,mpeg,mpegvideo,dv";
inline constexpr const char* localProtocols = "file,pipe,fd";

struct OpenRequest {
    std::string path; // also "/proc/self/fd/N"
    std::string demuxers = sourceDemuxers;
    std::string demuxer;       // taken without looking at the content; "" to look
    int seconds = 60;          // for the opening; 0 is no limit
    bool probesStreams = true; // false: only what the header says
};

class MediaInput
{
public:
    // The reason of a failure is the libraries' or the system's own, without the path.
    [[nodiscard]] static Result<std::unique_ptr<MediaInput>> open(const OpenRequest& request);
    MediaInput(const MediaInput&) = delete;
    MediaInput& operator=(const MediaInput&) = delete;
    ~MediaInput() = default;

    [[nodiscard]] AVFormatContext* context() const { return context_.get(); }
    // A new limit, counted from now; 0 removes it.
    void allowSeconds(int seconds);
    // Whether the limit has passed.
    [[nodiscard]] bool outOfTime() const;
    // Whether the container is QuickTime's or one of its family.
    [[nodiscard]] bool isMovie() const;
    // Whether the container has that name ("avi", "mpegts").
    [[nodiscard]] bool isContainer(const char* name) const;

private:
    MediaInput() = default;
    static int interrupted(void* self);

    std::optional<std::chrono::steady_clock::time_point> deadline_;
    InputPointer context_;
};

} // namespace tavrix::media
