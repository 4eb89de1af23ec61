#pragma once

#include "tools/movencoder/avsupport.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

// The source: its first video stream decoded, its sound streams as they are.
namespace tavrix::movencoder
{

class MovieReader
{
public:
    enum class Item {
        Picture, // in picture()
        Sound,   // in packet()
        End,
        Failure,
    };

    // Null, with the reason in `error`, when the file cannot be opened or has no video that can be decoded. Only local
    // files are opened, whatever the content asks for.
    [[nodiscard]] static std::unique_ptr<MovieReader> open(const std::string& path, std::string& error);
    MovieReader(const MovieReader&) = delete;
    MovieReader& operator=(const MovieReader&) = delete;
    ~MovieReader();

    // The next picture or sound packet. A picture that could not be decoded is a failure, with the reason in `error`,
    // since the output would silently lack it; only what precedes the first good picture is passed over, as recordings
    // may start in the middle of a group of pictures.
    [[nodiscard]] Item next(std::string& error);
    // Gives the picture away.
    [[nodiscard]] FramePtr takePicture();
    [[nodiscard]] AVPacket* packet() const { return packet_.get(); }

    [[nodiscard]] AVFormatContext* container() const { return container_; }
    [[nodiscard]] AVStream* video() const { return video_; }
    [[nodiscard]] const std::vector<AVStream*>& sounds() const { return sounds_; }
    // Pixel aspect of a picture, from the container or the stream; 0/1 when unknown.
    [[nodiscard]] AVRational pixelAspect(AVFrame& picture) const;
    // Time of a picture in the video stream's time base, AV_NOPTS_VALUE when it has none.
    [[nodiscard]] static std::int64_t timeOf(const AVFrame& picture) { return picture.best_effort_timestamp; }
    [[nodiscard]] std::int64_t durationOf(const AVFrame& picture) const;
    // How long the last picture is shown: to the end that an edited movie names, when that is near its own duration.
    [[nodiscard]] std::int64_t lastDuration(std::int64_t time, std::int64_t duration) const;
    // Start and length of the movie in the units of AV_TIME_BASE, 0 when unknown.
    [[nodiscard]] std::int64_t start() const;
    [[nodiscard]] std::int64_t duration() const;

private:
    MovieReader() = default;
    [[nodiscard]] bool openContainer(const std::string& path, std::string& error);
    [[nodiscard]] bool chooseStreams(std::string& error);
    [[nodiscard]] bool openDecoder(std::string& error);
    [[nodiscard]] bool readPacket(std::string& error);
    [[nodiscard]] bool sendPacket(std::string& error);
    [[nodiscard]] bool complete(std::string& error) const;
    [[nodiscard]] bool isMovie() const;
    [[nodiscard]] bool forgive(int result, std::string& error);
    [[nodiscard]] bool keepsSound();

    // How far a sound stream has been handed out, in its time base.
    struct SoundPlace {
        bool heard = false; // something that the movie's edits do not hide
        std::int64_t last = AV_NOPTS_VALUE;
        std::int64_t end = AV_NOPTS_VALUE;
    };

    AVFormatContext* container_ = nullptr;
    AVStream* video_ = nullptr;
    std::vector<AVStream*> sounds_;
    std::map<int, SoundPlace> soundPlaces_; // by stream index
    CodecPtr decoder_;
    PacketPtr packet_;
    FramePtr picture_;
    bool flushing_ = false;
    std::int64_t pictures_ = 0;
    std::int64_t videoPackets_ = 0;
    std::int64_t indexedPackets_ = 0; // what the container's index promises; 0 when it has none
};

} // namespace tavrix::movencoder
