// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/picturesequence.h"

#include "tools/movencoder/decoderlog.h"

#include <algorithm>
#include <iterator>

namespace tavrix::movencoder
{

void PictureSequence::take(FramePtr frame, bool damaged)
{
    DecodedPicture picture;
    picture.duration = durationOf(*frame);
    errorsSeen_ = errorsSeen_ || damaged;
    if (frame->best_effort_timestamp != AV_NOPTS_VALUE) {
        picture.time = frame->best_effort_timestamp;
        if (isMadeUp(*picture.time)) {
            return;
        }
        lose(*picture.time);
        const auto own = awaited_.find(*picture.time);
        if (own != awaited_.end()) {
            awaited_.erase(own);
        }
    }
    if (counts_.pictures++ == 0) {
        counts_.concealedBefore = concealedPictures();
        // Without times all that was refused so far precedes this picture.
        counts_.refused = awaited_.empty() ? 0 : counts_.refused;
    }
    counts_.flagged += damaged ? 1 : 0;
    lastTime_ = picture.time;
    lastDuration_ = picture.duration;
    picture.frame = std::move(frame);
    ready_.push_back(std::move(picture));
}

// In place of lost pictures a decoder may hand out others twice.
bool PictureSequence::isMadeUp(std::int64_t time) const
{
    return errorsSeen_ && packetsArePictures() && lastTime_ && time <= *lastTime_ && !awaited_.contains(time);
}

// Pictures come in the order of their times: what should have come before this one does not come any more. In a damaged
// stream it is lost, refused or silently dropped because a picture that it depends on was refused.
void PictureSequence::lose(std::int64_t before)
{
    const auto end = awaited_.lower_bound(before);
    errorsSeen_ = errorsSeen_ || counts_.refused > 0;
    if (counts_.pictures == 0) {
        counts_.refused -= std::min<std::int64_t>(counts_.refused, std::distance(awaited_.begin(), end));
    } else if (!errorsSeen_) {
        counts_.withoutPicture += std::distance(awaited_.begin(), end);
    } else if (packetsArePictures()) {
        std::for_each(awaited_.begin(), end, [this](std::int64_t time) { putLost(time); });
    }
    awaited_.erase(awaited_.begin(), end);
}

void PictureSequence::putLost(std::int64_t time)
{
    ++counts_.lost;
    counts_.refused -= counts_.refused > 0 ? 1 : 0;
    lastTime_ = time;
    DecodedPicture lost;
    lost.time = time;
    lost.duration = lastDuration_;
    ready_.push_back(std::move(lost));
}

void PictureSequence::end()
{
    ended_ = true;
    if (counts_.pictures > 0) {
        lose(INT64_MAX);
    }
}

std::int64_t PictureSequence::damaged() const
{
    if (counts_.pictures == 0) {
        return 0;
    }
    return std::max(counts_.flagged, concealedPictures() - counts_.concealedBefore) + counts_.lost +
           (ended_ ? counts_.refused : 0);
}

} // namespace tavrix::movencoder
