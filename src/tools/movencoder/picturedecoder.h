#pragma once

// Decoding that goes on after errors: a damaged picture must not cost the rest of the clip.

#include "sys/result.h"
#include "tools/movencoder/avsupport.h"

#include <cstdint>
#include <deque>
#include <memory>
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
    [[nodiscard]] DecodedPicture& picture() { return ready_.front(); }
    // After a picture, before the next question.
    void drop() { ready_.pop_front(); }

    // Pictures so far that decoded with errors or not at all, after the first good one: a recording may start in the
    // middle of a group of pictures. Those whose time is not known are in it after the end only.
    [[nodiscard]] std::int64_t damagedPictures() const;
    // Of them, those that only a strict decoder finds damaged.
    [[nodiscard]] std::int64_t strictlyDamaged() const { return strictlyDamaged_; }

private:
    PictureDecoder() = default;
    static Result<CodecPtr> makeDecoder(const AVStream& stream, bool strict);
    Result<void> sendAgain(const AVPacket& packet);
    Result<Answer> receive();
    void take(FramePtr frame, bool damaged);
    [[nodiscard]] bool isMadeUp(std::int64_t time) const;
    void lose(std::int64_t before);
    void putLost(std::int64_t time);
    void end();
    // Whether every packet is a picture: not so where each field has a packet of its own.
    [[nodiscard]] bool packetsArePictures() const { return 8 * withoutPicture_ <= pictures_; }

    const AVStream* stream_ = nullptr;
    CodecPtr decoder_;
    CodecPtr lenient_; // of a strict decoder, for the pictures that it refuses; made when needed
    bool ended_ = false;
    bool flushed_ = false;
    std::deque<DecodedPicture> ready_;
    std::multiset<std::int64_t> awaited_; // times of the packets whose pictures have not come yet
    std::int64_t refused_ = 0;            // packets that gave errors and are not yet known by their time
    bool errorsSeen_ = false;
    std::int64_t withoutPicture_ = 0; // packets of the good part that gave no picture
    std::int64_t pictures_ = 0;
    std::int64_t flagged_ = 0;
    std::int64_t lost_ = 0;
    std::int64_t strictlyDamaged_ = 0;
    std::int64_t concealedBefore_ = 0;
    std::optional<std::int64_t> lastTime_;
    std::int64_t lastDuration_ = 0;
};

} // namespace tavrix::movencoder
