// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Reading of media files with libavformat.

#include <QString>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

// Reading of media files with libavformat: local files only, and never for longer than allowed.
namespace tavrix
{

class AvInput
{
public:
    // Null when the path is no regular file, cannot be read as media, or takes more than `seconds`; logged.
    [[nodiscard]] static std::unique_ptr<AvInput> open(const QString& path, int seconds);
    AvInput(const AvInput&) = delete;
    AvInput& operator=(const AvInput&) = delete;
    ~AvInput();

    // Never null; stays this object's.
    [[nodiscard]] AVFormatContext* context() const { return context_; }
    // Sets a new limit, counted from now; 0 removes it.
    void allowSeconds(int seconds);
    // True for QuickTime and MP4 files.
    [[nodiscard]] bool isMov() const;

private:
    AvInput() = default;
    static int interrupted(void* self);

    AVFormatContext* context_ = nullptr;
    std::optional<std::chrono::steady_clock::time_point> deadline_;
};

struct PacketDeleter {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using PacketPointer = std::unique_ptr<AVPacket, PacketDeleter>;

// What libavformat tells of one stream. Times are in microseconds from the start of the file's timeline.
struct StreamFacts {
    int index = 0;
    int id = 0;
    AVMediaType type = AVMEDIA_TYPE_UNKNOWN;
    AVCodecID codec = AV_CODEC_ID_NONE;
    std::uint32_t tag = 0; // of the container, the first character in the most significant byte
    int width = 0;
    int height = 0;
    double pixelAspect = 1; // width of a pixel by its height
    int channels = 0;
    int sampleRate = 0;
    int bits = 0;
    std::int64_t start = 0;
    std::int64_t duration = 0;
};

struct FileFacts {
    QString format;
    bool isMov = false;
    bool isAvi = false;
    std::int64_t origin = 0; // microseconds of the file's clock at which the timeline begins
    std::int64_t duration = 0;
    std::vector<StreamFacts> streams; // attached pictures left out
};

// What libavformat tells of the whole file.
[[nodiscard]] FileFacts fileFacts(const AvInput& input);
// The library's words for its error number.
[[nodiscard]] QString avErrorText(int error);

} // namespace tavrix
