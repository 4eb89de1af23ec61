// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Decoding that goes on after errors: a damaged picture must not cost the rest of the clip.

#include "sys/result.h"
#include "tools/movencoder/avsupport.h"
#include "tools/movencoder/picturesequence.h"

#include <cstdint>
#include <memory>

namespace tavrix::movencoder
{

class PictureDecoder
{
public:
    [[nodiscard]] static Result<std::unique_ptr<PictureDecoder>> open(const AVStream& stream);

    // Takes a packet of the stream, null at its end. The decoder must have answered "needs a packet" before. Only a
    // lack of memory is a failure.
    Result<void> send(const AVPacket* packet);

    enum class Answer {
        Picture, // in picture()
        NeedsPacket,
        End,
    };
    Result<Answer> next();
    [[nodiscard]] DecodedPicture& picture() { return pictures_.first(); }
    // After a picture, before the next question.
    void drop() { pictures_.dropFirst(); }

    // Pictures so far that decoded with errors or not at all, after the first good one: a recording may start in the
    // middle of a group of pictures. Those whose time is not known are in it after the end only.
    [[nodiscard]] std::int64_t damagedPictures() const { return pictures_.damaged(); }
    // Of them, those that only a strict decoder finds damaged.
    [[nodiscard]] std::int64_t strictlyDamaged() const { return strictlyDamaged_; }

private:
    PictureDecoder() = default;
    static Result<CodecPtr> makeDecoder(const AVStream& stream, bool strict);
    Result<void> sendAgain(const AVPacket& packet);
    Result<Answer> receive();

    const AVStream* stream_ = nullptr;
    CodecPtr decoder_;
    CodecPtr lenient_;   // of a strict decoder, for the pictures that it refuses; made when needed
    bool ended_ = false; // the stream, not yet the decoder
    std::int64_t strictlyDamaged_ = 0;
    PictureSequence pictures_;
};

} // namespace tavrix::movencoder
