// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The pictures of a damaged stream in their order, with a place for each that is lost.

#include "tools/movencoder/avsupport.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <set>

namespace tavrix::movencoder
{

// Times are in the time base of the stream.
struct DecodedPicture {
    FramePtr frame;                   // null: lost, to be replaced by the one before
    std::optional<std::int64_t> time; // known for a lost one
    std::int64_t duration = 0;        // 0: not known
};

class PictureSequence
{
public:
    // A packet was sent whose picture is to be shown at this time.
    void await(std::int64_t time) { awaited_.insert(time); }
    // A packet gave an error and no picture.
    void refuse() { ++counts_.refused; }
    void take(FramePtr frame, bool damaged);
    // No picture comes any more.
    void end();

    [[nodiscard]] bool hasEnded() const { return ended_; }
    [[nodiscard]] bool isEmpty() const { return ready_.empty(); }
    // Neither may be called while it is empty.
    [[nodiscard]] DecodedPicture& first() { return ready_.front(); }
    void dropFirst() { ready_.pop_front(); }

    // See PictureDecoder::damagedPictures().
    [[nodiscard]] std::int64_t damaged() const;

private:
    struct Counts {
        std::int64_t pictures = 0;
        std::int64_t flagged = 0;        // of them, with errors
        std::int64_t lost = 0;           // replaced by the one before
        std::int64_t refused = 0;        // packets that gave errors and are not yet known by their time
        std::int64_t withoutPicture = 0; // packets of the good part that gave no picture
        std::int64_t concealedBefore = 0;
    };

    [[nodiscard]] bool isMadeUp(std::int64_t time) const;
    void lose(std::int64_t before);
    void putLost(std::int64_t time);
    // Whether every packet is a picture: not so where each field has a packet of its own.
    [[nodiscard]] bool packetsArePictures() const { return 8 * counts_.withoutPicture <= counts_.pictures; }

    std::deque<DecodedPicture> ready_;
    std::multiset<std::int64_t> awaited_; // times of the packets whose pictures have not come yet
    Counts counts_;
    bool errorsSeen_ = false;
    bool ended_ = false;
    std::optional<std::int64_t> lastTime_;
    std::int64_t lastDuration_ = 0;
};

} // namespace tavrix::movencoder
