// SPDX-License-Identifier: GPL-3.0-or-later
// The judgement from figures alone; tests/judge/clips_test.cpp has the real files.
#include "judge/compare.h"

#include <gtest/gtest.h>

namespace tavrix::judge
{
namespace
{

using media::Kind;

media::StreamReading stream(Kind kind, double seconds, double perSecond)
{
    media::StreamReading reading;
    reading.facts.kind = kind;
    reading.facts.index = kind == Kind::Picture ? 0 : 1;
    reading.facts.width = kind == Kind::Picture ? 1280 : 0;
    reading.facts.channels = kind == Kind::Sound ? 2 : 0;
    reading.packets = static_cast<std::int64_t>(seconds * perSecond + 0.5);
    reading.pictures = reading.packets;
    reading.end = seconds;
    reading.interval = 1 / perSecond;
    reading.longestGap = reading.interval;
    return reading;
}

media::Reading clip(double seconds, double perSecond = 25)
{
    media::Reading reading;
    reading.streams = {stream(Kind::Picture, seconds, perSecond), stream(Kind::Sound, seconds, 50)};
    for (const media::StreamReading& one : reading.streams) {
        reading.facts.streams.push_back(one.facts);
    }
    return reading;
}

// Ten seconds of 25 pictures, copied or encoded as they are.
class Comparing : public testing::Test
{
protected:
    Comparing()
    {
        evidence_.source = clip(10);
        evidence_.output = clip(10);
        evidence_.outputEnds = media::DecodedEnds{true, true};
    }
    media::StreamReading& sourcePicture() { return evidence_.source.streams[0]; }
    media::StreamReading& picture() { return evidence_.output.streams[0]; }
    media::StreamReading& sound() { return evidence_.output.streams[1]; }

    void expect(Outcome outcome, std::vector<Cause> causes) const
    {
        const Verdict verdict = compare(evidence_, asked_);
        EXPECT_EQ(verdict.outcome, outcome) << englishText(verdict);
        std::vector<Cause> found;
        for (const Finding& finding : verdict.findings) {
            found.push_back(finding.cause);
        }
        EXPECT_EQ(found, causes) << englishText(verdict);
    }

    Evidence evidence_;
    Asked asked_;
};

TEST_F(Comparing, TheSameIsWhole)
{
    expect(Outcome::Whole, {});
    asked_.picture = Way::Encoded;
    expect(Outcome::Whole, {});
    EXPECT_FALSE(pictureIsDoubtful(evidence_, asked_));
    EXPECT_FALSE(soundIsDoubtful(evidence_, asked_));
}

TEST_F(Comparing, ACopyWithOnePictureLessHasFailed)
{
    picture().packets = picture().pictures = 249;
    expect(Outcome::Failed, {Cause::PictureCount});
}

TEST_F(Comparing, HalfOfTheSpanHasFailedThoughTheCountIsRight)
{
    picture().end = 5;
    expect(Outcome::Failed, {Cause::ShorterPicture});
}

TEST_F(Comparing, APictureMoreOrLessInTheSpanIsWhole)
{
    picture().end = 10.04;
    expect(Outcome::Whole, {});
    picture().end = 9.96;
    expect(Outcome::Whole, {});
    picture().end = 10.2;
    expect(Outcome::Failed, {Cause::LongerPicture});
}

TEST_F(Comparing, AnotherRateCountsByTheRate)
{
    asked_ = {Way::Encoded, Way::Encoded, 12.5};
    evidence_.output.streams[0] = stream(Kind::Picture, 10, 12.5);
    expect(Outcome::Whole, {});
    picture().pictures = picture().packets = 100;
    expect(Outcome::Failed, {Cause::PictureCount});
}

TEST_F(Comparing, TwoFieldsAreOnePictureWhereTheyAreEncoded)
{
    sourcePicture().packets = 500;
    asked_.picture = Way::Encoded;
    expect(Outcome::Whole, {});
    asked_.picture = Way::Copied;
    picture().packets = 500;
    expect(Outcome::Whole, {});
}

// A recording may begin in the middle of a group of pictures: a copy begins at the first key picture.
TEST_F(Comparing, WhatPrecedesTheFirstKeyPictureMayBeMissing)
{
    sourcePicture().packetsBeforeKey = sourcePicture().picturesBeforeKey = 5;
    sourcePicture().firstKey = 0.2;
    expect(Outcome::Whole, {});
    picture().packets = picture().pictures = 245;
    picture().end = 9.8;
    expect(Outcome::Whole, {});
    picture().packets = picture().pictures = 244;
    expect(Outcome::Failed, {Cause::PictureCount});
}

TEST_F(Comparing, NoSoundAndShortSoundHaveFailed)
{
    sound().end = 9.5;
    expect(Outcome::Failed, {Cause::ShorterSound});
    evidence_.output.streams.pop_back();
    evidence_.output.facts.streams.pop_back();
    expect(Outcome::Failed, {Cause::NoSound});
    asked_.sound = Way::Left;
    expect(Outcome::Whole, {});
}

TEST_F(Comparing, NoPictureHasFailed)
{
    evidence_.output.streams.erase(evidence_.output.streams.begin());
    evidence_.output.facts.streams.erase(evidence_.output.facts.streams.begin());
    expect(Outcome::Failed, {Cause::NoPicture});
}

TEST_F(Comparing, ASilentSourceNeedsNoSound)
{
    evidence_.source.streams.pop_back();
    evidence_.source.facts.streams.pop_back();
    evidence_.output = evidence_.source;
    expect(Outcome::Whole, {});
}

TEST_F(Comparing, ASourceThatEndsEarlyIsIncomplete)
{
    sourcePicture().promisedEnd = 20;
    evidence_.source.flaws.cutOff = true;
    expect(Outcome::Incomplete, {Cause::EndedEarly});
    const Verdict verdict = compare(evidence_, asked_);
    EXPECT_DOUBLE_EQ(verdict.findings[0].seconds, 10);
    EXPECT_DOUBLE_EQ(verdict.findings[0].ofSeconds, 20);
    // What could be read must be there all the same.
    picture().packets = picture().pictures = 200;
    picture().end = 8;
    expect(Outcome::Failed, {Cause::ShorterPicture, Cause::EndedEarly});
}

TEST_F(Comparing, LostPacketsAndABrokenOneAreIncomplete)
{
    evidence_.source.flaws.lost = {1, 4.2};
    expect(Outcome::Incomplete, {Cause::LostPackets});
    evidence_.source.flaws.lost = {};
    sourcePicture().broken = {2, 4.2};
    picture().broken = {2, 4.2};
    expect(Outcome::Incomplete, {Cause::DamagedPictures});
}

TEST_F(Comparing, AnOutputWithBrokenPacketsOfItsOwnHasFailed)
{
    picture().broken = {1, 3.0};
    expect(Outcome::Failed, {Cause::BrokenPackets});
}

TEST_F(Comparing, AReadErrorOfTheSourceIsIncompleteAndOneOfTheOutputHasFailed)
{
    evidence_.source.failure = "Input/output error";
    expect(Outcome::Incomplete, {Cause::ReadError});
    evidence_.source.failure.clear();
    evidence_.output.failure = "Input/output error";
    expect(Outcome::Failed, {Cause::NotReadable});
}

// Pictures that do not decode leave an encoded output shorter: the source has to be decoded to know that.
TEST_F(Comparing, AnEncodedOutputIsMeasuredByWhatDecodes)
{
    asked_.picture = Way::Encoded;
    picture().packets = picture().pictures = 125;
    picture().end = 5;
    EXPECT_TRUE(pictureIsDoubtful(evidence_, asked_));
    expect(Outcome::Failed, {Cause::ShorterPicture});
    evidence_.sourcePictures =
        media::DecodedPictures{.shown = 125, .lost = {125, 5.0}, .last = 4.96, .lastWhole = 4.96};
    expect(Outcome::Incomplete, {Cause::DamagedPictures});
    // A tool that stops early and says all is well.
    evidence_.sourcePictures = media::DecodedPictures{.shown = 250, .last = 9.96, .lastWhole = 9.96};
    expect(Outcome::Failed, {Cause::ShorterPicture});
}

TEST_F(Comparing, TheWritersErrorsLeaveDoubts)
{
    asked_.picture = Way::Encoded;
    evidence_.writer.decodeErrors = 1;
    EXPECT_TRUE(pictureIsDoubtful(evidence_, asked_));
    evidence_.writer = {};
    evidence_.writer.decoded = 249;
    EXPECT_TRUE(pictureIsDoubtful(evidence_, asked_));
    sourcePicture().picturesBeforeKey = 1;
    EXPECT_FALSE(pictureIsDoubtful(evidence_, asked_));
}

TEST_F(Comparing, EndsThatDoNotDecodeHaveFailedUnlessTheCopiedSourceIsLikeThat)
{
    evidence_.outputEnds = media::DecodedEnds{true, false};
    EXPECT_TRUE(pictureIsDoubtful(evidence_, asked_));
    evidence_.sourcePictures = media::DecodedPictures{.shown = 250, .last = 9.96, .lastWhole = 9.96};
    expect(Outcome::Failed, {Cause::EndsNotDecodable});
    evidence_.sourcePictures->damaged = {3, 9.8};
    expect(Outcome::Incomplete, {Cause::DamagedPictures});
    asked_.picture = Way::Encoded;
    expect(Outcome::Failed, {Cause::EndsNotDecodable, Cause::DamagedPictures});
}

TEST_F(Comparing, HiddenPicturesInACopyAreARemark)
{
    sourcePicture().hidden = 12;
    picture().packets = picture().pictures = 262;
    picture().end = 10.4;
    expect(Outcome::Whole, {Cause::HiddenShown});
    picture().packets = picture().pictures = 263;
    expect(Outcome::Failed, {Cause::PictureCount});
}

TEST_F(Comparing, WithoutAnyPictureTheReasonIsTheSources)
{
    sourcePicture().packets = sourcePicture().pictures = 0;
    expect(Outcome::Failed, {Cause::NothingReadable});
    evidence_.source.streams[0].facts.encrypted = true;
    expect(Outcome::Failed, {Cause::Encrypted});
    evidence_.source.streams[0].facts.external = true;
    evidence_.output = {};
    evidence_.output.failure = "Invalid data found when processing input";
    expect(Outcome::Failed, {Cause::PicturesElsewhere});
}

TEST_F(Comparing, AnUnreadableOutputIsToldOnce)
{
    evidence_.output = {};
    evidence_.output.failure = "Invalid data found when processing input";
    expect(Outcome::Failed, {Cause::NotReadable});
}

TEST_F(Comparing, StepsOfTheClockAllowAPictureEach)
{
    picture().end = 10.3;
    expect(Outcome::Failed, {Cause::LongerPicture});
    evidence_.source.joins = 2;
    expect(Outcome::Whole, {});
}

} // namespace
} // namespace tavrix::judge
