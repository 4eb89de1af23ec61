// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The source: its first video stream decoded, its sound streams as they are.

#include "sys/result.h"
#include "tools/movencoder/avsupport.h"
#include "tools/movencoder/clockjumps.h"
#include "tools/movencoder/picturedecoder.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tavrix::movencoder
{

class MovieReader
{
public:
    enum class Item {
        Picture, // to be taken by takePicture()
        Sound,   // in packet()
        End,
    };

    // Fails when the file cannot be opened or has no video that can be decoded. Only local files are opened, whatever
    // the content asks for.
    [[nodiscard]] static Result<std::unique_ptr<MovieReader>> open(const std::string& path);
    MovieReader(const MovieReader&) = delete;
    MovieReader& operator=(const MovieReader&) = delete;
    ~MovieReader();

    // The next picture or sound packet. Damage does not end it: a picture that cannot be decoded comes without a frame,
    // to be replaced by the one before, and a source that ends early just ends. It fails when not a single picture can
    // be had.
    Result<Item> next();
    [[nodiscard]] DecodedPicture takePicture();
    [[nodiscard]] AVPacket* packet() const { return packet_.get(); }

    // So far: packets of the pictures, pictures that came out, and those that lack parts or did not come out.
    [[nodiscard]] std::int64_t packets() const { return videoPackets_; }
    [[nodiscard]] std::int64_t decodedPictures() const { return pictures_ - lost_; }
    [[nodiscard]] std::int64_t damagedPictures() const { return decoder_->damagedPictures(); }
    [[nodiscard]] std::int64_t strictlyDamaged() const { return decoder_->strictlyDamaged(); }

    [[nodiscard]] AVFormatContext* container() const { return container_; }
    [[nodiscard]] AVStream* video() const { return video_; }
    [[nodiscard]] const std::vector<AVStream*>& sounds() const { return sounds_; }
    // Pixel aspect of a picture, from the container or the stream; 0/1 when unknown.
    [[nodiscard]] AVRational pixelAspect(AVFrame& picture) const;
    // Pictures a second, as far as the container tells; 0/1 when unknown.
    [[nodiscard]] AVRational rate() const;
    // How long the last picture is shown: to the end that an edited movie names, when that is near its own duration.
    [[nodiscard]] std::int64_t lastDuration(std::int64_t time, std::int64_t duration) const;
    // Start and length of the movie in the units of AV_TIME_BASE, 0 when unknown.
    [[nodiscard]] std::int64_t start() const;
    [[nodiscard]] std::int64_t duration() const;
    // Whether it is of QuickTime's family.
    [[nodiscard]] bool isMovie() const;

private:
    MovieReader() = default;
    Result<void> openContainer(const std::string& path);
    Result<void> chooseStreams();
    [[nodiscard]] bool readPacket();
    void moveClock();
    [[nodiscard]] bool keepsSound();
    [[nodiscard]] std::int64_t pictureDuration(std::int64_t told) const;

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
    ClockJumps clockJumps_;
    std::unique_ptr<PictureDecoder> decoder_;
    PacketPtr packet_;
    std::vector<std::int64_t> pieceTimes_; // of the pictures in their order; empty: they come with their times
    bool clockMayJump_ = false;
    std::int64_t pictures_ = 0;
    std::int64_t lost_ = 0; // of them, without a frame
    std::int64_t videoPackets_ = 0;
};

} // namespace tavrix::movencoder
