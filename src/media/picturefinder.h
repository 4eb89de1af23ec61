// SPDX-License-Identifier: GPL-3.0-or-later
// Single pictures of a clip by their time, as a player shows them.
#pragma once

#include "media/mediainput.h"
#include "media/sourcefacts.h"

#include <atomic>
#include <deque>
#include <memory>
#include <optional>

namespace tavrix::media
{

// A decoded picture and when it is shown, in seconds of the clip's timeline.
struct FoundPicture {
    const AVFrame* frame = nullptr; // until the next question
    double start = 0;
    double end = 0;
};

// Decodes from the key picture before; neighbours of what was found last are at hand. For one thread at a time.
class PictureFinder
{
public:
    // While `cancelled` is set nothing is found. It is not owned. The reason of a failure is without the path.
    [[nodiscard]] static Result<std::unique_ptr<PictureFinder>> open(const std::string& path,
                                                                     const std::atomic<bool>& cancelled);

    [[nodiscard]] const StreamFacts& facts() const { return facts_; }
    // The picture that is shown at that time: the first one before the beginning, the last one behind the end. Nothing
    // when none can be decoded.
    [[nodiscard]] std::optional<FoundPicture> at(double seconds);

private:
    struct Held {
        FramePointer frame;
        double start = 0;
    };

    PictureFinder(std::unique_ptr<MediaInput> input, StreamFacts facts, double origin,
                  const std::atomic<bool>& cancelled);
    [[nodiscard]] Result<void> start();
    [[nodiscard]] std::optional<FoundPicture> amongHeld(double seconds) const;
    // To a place from which the picture can be decoded.
    void seekBefore(double seconds);
    void seekTo(double seconds);
    void seekToBegin();
    // Nothing of what was decoded goes on behind a jump.
    void forget();
    // Decodes the next picture to the held ones; false at the end.
    bool decodeNext();
    bool feed();
    [[nodiscard]] double secondsOf(std::int64_t time) const;

    std::unique_ptr<MediaInput> input_;
    StreamFacts facts_;
    double origin_;
    const std::atomic<bool>& cancelled_;
    CodecPointer codec_;
    PacketPointer packet_;
    FramePointer frame_;
    std::deque<Held> held_; // one after the other, without a gap
    bool fed_ = false;      // to the end
    bool ended_ = false;
};

} // namespace tavrix::media
