// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/compare.h"

#include <algorithm>
#include <cmath>

namespace tavrix::judge
{

namespace
{

using media::Kind;
using media::Reading;
using media::StreamReading;

constexpr double leastTolerance = 0.05;
// Where a clock steps, writers put the parts behind one another to a picture and a sound packet more or less.
constexpr double tolerancePerJoin = 0.15;

// What can be shown of the source, as a range: what precedes the first key picture may come out or not.
struct Expected {
    std::int64_t least = 0; // pictures
    std::int64_t most = 0;
    double shortest = 0; // seconds from the first to the end of the last
    double longest = 0;
};

double span(const StreamReading& stream)
{
    return std::max(0.0, stream.end - stream.first);
}

double interval(const StreamReading& stream)
{
    return stream.interval > 0 ? stream.interval : span(stream);
}

Expected expectedOfPackets(const StreamReading& source, Way way)
{
    const bool copied = way == Way::Copied;
    Expected expected;
    expected.most = copied ? source.packets : source.pictures;
    expected.least = expected.most - (copied ? source.packetsBeforeKey : source.picturesBeforeKey);
    expected.longest = span(source);
    expected.shortest = std::max(0.0, source.end - std::max(source.first, source.firstKey));
    if (copied) {
        expected.least -= source.broken.count;
    }
    return expected;
}

// Damaged pictures may come out or not.
Expected expectedOfDecoded(const StreamReading& source, const media::DecodedPictures& decoded, bool hasJoins)
{
    const double last = interval(source);
    Expected expected;
    expected.most =
        std::max(source.pictures, decoded.shown + decoded.shownBefore + decoded.lost.count + decoded.lostBefore);
    expected.least = std::max<std::int64_t>(0, decoded.shown - decoded.damaged.count);
    expected.shortest = std::max(0.0, decoded.lastWhole + last - decoded.first);
    if (source.facts.edits.pieces > 1) {
        // The decoder's times are libavformat's, which are not exact at the joints.
        expected.shortest = std::min(expected.shortest, span(source));
    }
    expected.longest = std::max(span(source), expected.shortest);
    if (hasJoins) {
        // The decoder's times are those of the recorder's clock.
        expected.shortest = std::min(expected.longest, static_cast<double>(expected.least) * last);
    }
    return expected;
}

// How much the spans of source and output may differ.
double tolerance(const StreamReading& source, const StreamReading& output, std::int64_t joins)
{
    return std::max({leastTolerance, interval(source), interval(output)}) +
           tolerancePerJoin * static_cast<double>(joins);
}

class Comparison
{
public:
    Comparison(const Evidence& evidence, const Asked& asked)
        : evidence_(evidence), asked_(asked), sourcePicture_(evidence.source.chosen(Kind::Picture)),
          sourceSound_(evidence.source.chosen(Kind::Sound)), picture_(evidence.output.chosen(Kind::Picture)),
          sound_(evidence.output.chosen(Kind::Sound))
    {
    }

    Verdict verdict()
    {
        if (wantsPicture()) {
            lookAtPicture();
        }
        if (wantsSound()) {
            lookAtSound();
        }
        lookAtOutput();
        lookAtSource();
        Verdict verdict;
        verdict.outcome = !failures_.empty()  ? Outcome::Failed
                          : !damages_.empty() ? Outcome::Incomplete
                                              : Outcome::Whole;
        for (auto* const findings : {&failures_, &damages_, &remarks_}) {
            verdict.findings.insert(verdict.findings.end(), findings->begin(), findings->end());
        }
        return verdict;
    }

    [[nodiscard]] bool pictureIsDoubtful() const
    {
        if (!wantsPicture() || sourcePicture_->packets == 0) {
            return false;
        }
        if (asked_.picture == Way::Copied) {
            return !endsDecode();
        }
        const WriterCounts& writer = evidence_.writer;
        const StreamReading& source = *sourcePicture_;
        const bool errors = writer.decodeErrors.value_or(0) > 0 ||
                            writer.decoded.value_or(source.pictures) < source.pictures - source.picturesBeforeKey;
        return errors || isDamaged(source) || picture_ == nullptr ||
               !pictureFits(expectedOfPackets(source, Way::Encoded));
    }

    [[nodiscard]] bool soundIsDoubtful() const
    {
        if (!wantsSound() || asked_.sound != Way::Encoded || sound_ == nullptr || sourceSound_->packets == 0) {
            return false;
        }
        return isDamaged(*sourceSound_) || !soundFits(expectedOfPackets(*sourceSound_, Way::Encoded));
    }

private:
    [[nodiscard]] bool wantsPicture() const { return asked_.picture != Way::Left && sourcePicture_ != nullptr; }
    [[nodiscard]] bool wantsSound() const { return asked_.sound != Way::Left && sourceSound_ != nullptr; }
    [[nodiscard]] bool isDamaged(const StreamReading& source) const
    {
        const media::ContainerFlaws& flaws = evidence_.source.flaws;
        return source.broken.count > 0 || flaws.cutOff || flaws.lost.count > 0 || !evidence_.source.failure.empty();
    }

    [[nodiscard]] std::int64_t written() const
    {
        return asked_.picture == Way::Copied ? picture_->packets : picture_->pictures;
    }

    [[nodiscard]] bool countFits(const Expected& expected) const
    {
        if (asked_.rate) {
            const double wanted = span(*picture_) * *asked_.rate;
            return std::abs(static_cast<double>(picture_->pictures) - wanted) <= 2;
        }
        return written() >= expected.least && written() <= expected.most;
    }

    [[nodiscard]] double pictureTolerance() const
    {
        return tolerance(*sourcePicture_, *picture_, evidence_.source.joins);
    }

    [[nodiscard]] bool pictureFits(const Expected& expected) const
    {
        const double allowed = pictureTolerance();
        return countFits(expected) && span(*picture_) >= expected.shortest - allowed &&
               span(*picture_) <= expected.longest + allowed;
    }

    // Coded sound comes in whole packets: how much of the first and the last is heard, only some containers say. Holes
    // below a tenth of a second are closed and not filled.
    [[nodiscard]] double soundTolerance() const
    {
        constexpr double shortestFilledHole = 0.1;
        constexpr std::int64_t mostHoles = 5;
        const std::int64_t holes = evidence_.source.flaws.lost.count + sourceSound_->broken.count;
        return tolerance(*sourceSound_, *sound_, evidence_.source.joins) + interval(*sourceSound_) +
               shortestFilledHole * static_cast<double>(std::min(holes, mostHoles));
    }

    [[nodiscard]] bool soundFits(const Expected& expected) const
    {
        return span(*sound_) >= expected.shortest - soundTolerance();
    }

    [[nodiscard]] Expected expectedPicture() const
    {
        if (asked_.picture == Way::Encoded && evidence_.sourcePictures) {
            return expectedOfDecoded(*sourcePicture_, *evidence_.sourcePictures, evidence_.source.joins > 0);
        }
        return expectedOfPackets(*sourcePicture_, asked_.picture);
    }

    [[nodiscard]] Expected expectedSound() const
    {
        if (evidence_.sourceSound) {
            return expectedOfDecoded(*sourceSound_, *evidence_.sourceSound, evidence_.source.joins > 0);
        }
        return expectedOfPackets(*sourceSound_, asked_.sound);
    }

    void lookAtPicture()
    {
        if (sourcePicture_->packets == 0 || picture_ == nullptr || picture_->packets == 0 || nothingDecodes()) {
            if (whyNoPicture() != Cause::NoPicture || evidence_.output.failure.empty()) {
                failures_.push_back({.cause = whyNoPicture()});
            }
            return;
        }
        const Expected expected = expectedPicture();
        const double allowed = pictureTolerance();
        if (span(*picture_) < expected.shortest - allowed) {
            failures_.push_back(
                {.cause = Cause::ShorterPicture, .seconds = span(*picture_), .ofSeconds = expected.shortest});
            return;
        }
        if (!countFits(expected)) {
            lookAtCount(expected);
        } else if (span(*picture_) > expected.longest + allowed) {
            failures_.push_back(
                {.cause = Cause::LongerPicture, .seconds = span(*picture_), .ofSeconds = expected.longest});
        }
    }

    // A copy begins at a key picture and may have to take along what the source's edit list hides.
    void lookAtCount(const Expected& expected)
    {
        const std::int64_t more = written() - expected.most;
        if (asked_.picture == Way::Copied && more > 0 && more <= sourcePicture_->hidden) {
            remarks_.push_back({.cause = Cause::HiddenShown, .count = more});
            return;
        }
        const std::int64_t wanted = asked_.rate ? std::llround(span(*picture_) * *asked_.rate)
                                    : more > 0  ? expected.most
                                                : expected.least;
        failures_.push_back({.cause = Cause::PictureCount, .count = written(), .ofCount = wanted});
    }

    [[nodiscard]] Cause whyNoPicture() const
    {
        const media::StreamFacts& facts = sourcePicture_->facts;
        return facts.external                 ? Cause::PicturesElsewhere
               : facts.encrypted              ? Cause::Encrypted
               : sourcePicture_->packets == 0 ? Cause::NothingReadable
               : nothingDecodes()             ? Cause::NothingDecodable
                                              : Cause::NoPicture;
    }

    [[nodiscard]] bool nothingDecodes() const
    {
        return evidence_.sourcePictures && evidence_.sourcePictures->shown == 0 &&
               evidence_.sourcePictures->shownBefore == 0;
    }

    void lookAtSound()
    {
        if (sourceSound_->packets == 0) {
            return;
        }
        if (sound_ == nullptr || sound_->packets == 0) {
            if (!evidence_.output.failure.empty()) {
                return;
            }
            failures_.push_back({.cause = Cause::NoSound});
            return;
        }
        const Expected expected = expectedSound();
        if (!soundFits(expected)) {
            failures_.push_back(
                {.cause = Cause::ShorterSound, .seconds = span(*sound_), .ofSeconds = expected.shortest});
        }
    }

    void lookAtOutput()
    {
        const Reading& output = evidence_.output;
        if (!output.failure.empty() && failures_.empty()) {
            failures_.push_back({.cause = Cause::NotReadable, .text = output.failure});
        }
        for (const StreamReading* const stream : {picture_, sound_}) {
            const bool inherited = stream != nullptr && stream == picture_ && asked_.picture == Way::Copied;
            const std::int64_t source = inherited && sourcePicture_ != nullptr ? sourcePicture_->broken.count : 0;
            if (stream != nullptr && stream->broken.count > source) {
                failures_.push_back({.cause = Cause::BrokenPackets,
                                     .count = stream->broken.count - source,
                                     .from = stream->broken.first});
            }
        }
        if (output.flaws.cutOff) {
            failures_.push_back({.cause = Cause::NotReadable, .text = "it is cut off"});
        }
        // A copy of damaged ends is as damaged as they are.
        if (!endsDecode() && !(asked_.picture == Way::Copied && sourcePicture_ != nullptr && sourceDecodesBadly())) {
            failures_.push_back({.cause = Cause::EndsNotDecodable});
        }
    }

    [[nodiscard]] bool endsDecode() const
    {
        return !evidence_.outputEnds || (evidence_.outputEnds->first && evidence_.outputEnds->last);
    }

    [[nodiscard]] bool sourceDecodesBadly() const
    {
        const auto& decoded = evidence_.sourcePictures;
        return isDamaged(*sourcePicture_) || !decoded ||
               decoded->damaged.count + decoded->lost.count + decoded->shownBefore + decoded->lostBefore > 0;
    }

    void lookAtSource()
    {
        const Reading& source = evidence_.source;
        if (!source.failure.empty()) {
            damages_.push_back({.cause = Cause::ReadError, .text = source.failure});
        }
        const bool ends = wantsPicture() && tellEarlyEnd(*sourcePicture_, Cause::EndedEarly);
        const bool soundEnds = wantsSound() && tellEarlyEnd(*sourceSound_, Cause::SoundEndedEarly);
        if (source.flaws.cutOff && !ends && !soundEnds) {
            damages_.push_back({.cause = Cause::CutOff});
        }
        if (wantsPicture()) {
            tellDamage(*sourcePicture_, evidence_.sourcePictures, Cause::DamagedPictures);
        }
        if (wantsSound()) {
            tellDamage(*sourceSound_, evidence_.sourceSound, Cause::DamagedSound);
        }
        if (source.flaws.lost.count > 0) {
            damages_.push_back(
                {.cause = Cause::LostPackets, .count = source.flaws.lost.count, .from = source.flaws.lost.first});
        }
    }

    bool tellEarlyEnd(const StreamReading& stream, Cause cause)
    {
        const double read = std::max(0.0, stream.end);
        const bool early =
            stream.promisedEnd && *stream.promisedEnd > read + std::max(leastTolerance, interval(stream));
        if (early) {
            damages_.push_back({.cause = cause, .seconds = read, .ofSeconds = *stream.promisedEnd});
        }
        return early;
    }

    void tellDamage(const StreamReading& stream, const std::optional<media::DecodedPictures>& decoded, Cause cause)
    {
        media::Flaws flaws = stream.broken;
        if (decoded) {
            flaws = decoded->damaged;
            flaws.count += decoded->lost.count;
            if (decoded->lost.first && (!flaws.first || *decoded->lost.first < *flaws.first)) {
                flaws.first = decoded->lost.first;
            }
        }
        if (flaws.count > 0) {
            damages_.push_back({.cause = cause, .count = flaws.count, .from = flaws.first});
        }
    }

    const Evidence& evidence_;
    const Asked& asked_;
    const StreamReading* sourcePicture_;
    const StreamReading* sourceSound_;
    const StreamReading* picture_;
    const StreamReading* sound_;
    std::vector<Finding> failures_;
    std::vector<Finding> damages_;
    std::vector<Finding> remarks_;
};

} // namespace

bool pictureIsDoubtful(const Evidence& evidence, const Asked& asked)
{
    return Comparison(evidence, asked).pictureIsDoubtful();
}

bool soundIsDoubtful(const Evidence& evidence, const Asked& asked)
{
    return Comparison(evidence, asked).soundIsDoubtful();
}

Verdict compare(const Evidence& evidence, const Asked& asked)
{
    return Comparison(evidence, asked).verdict();
}

} // namespace tavrix::judge
