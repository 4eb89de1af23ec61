// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/edittimeline.h"

#include "media/sampleselection.h"
#include "media/soundsink.h"

#include <gtest/gtest.h>

namespace tavrix::test
{

namespace
{

TrackAtoms trackOf(std::uint32_t mediaScale, std::uint64_t mediaDuration, std::vector<EditEntry> edits = {})
{
    TrackAtoms track;
    track.mediaTimeScale = mediaScale;
    track.mediaDuration = mediaDuration;
    track.hasEdits = !edits.empty();
    track.edits = std::move(edits);
    return track;
}

// Pictures of 10 units; every fifth is a key, and each is shown two units after it is decoded.
SampleTable pictures(int count)
{
    SampleTable table;
    for (int index = 0; index < count; ++index) {
        Sample sample;
        sample.offset = 1000U + 100U * static_cast<unsigned>(index);
        sample.size = 100;
        sample.duration = 10;
        sample.compositionOffset = 20;
        sample.chunk = static_cast<std::uint32_t>(index / 4);
        sample.sync = index % 5 == 0;
        table.samples.push_back(sample);
    }
    table.hasCompositionOffsets = true;
    table.hasSyncTable = true;
    return table;
}

std::vector<std::int64_t> shape(const std::vector<TrackPiece>& pieces)
{
    std::vector<std::int64_t> numbers;
    for (const TrackPiece& piece : pieces) {
        numbers.push_back(piece.shown);
        numbers.push_back(piece.empty ? -1 : piece.mediaStart);
    }
    return numbers;
}

} // namespace

TEST(EditTimelineTest, deletesInFrontInTheMiddleAndBehind)
{
    EditTimeline timeline(36000, 600);
    timeline.deleteRange(0, 6000);
    EXPECT_EQ(timeline.duration(), 30000);
    timeline.deleteRange(18000, 30000);
    EXPECT_EQ(timeline.duration(), 18000);
    ASSERT_EQ(timeline.segments().size(), 1U);
    EXPECT_EQ(timeline.segments().front().start, 6000);
    timeline.deleteRange(600, 600);
    ASSERT_EQ(timeline.segments().size(), 2U);
    EXPECT_EQ(timeline.segments()[1].start, 7200);
    EXPECT_EQ(timeline.duration(), 17400);
}

TEST(EditTimelineTest, rangesAreClippedToTheMovie)
{
    EditTimeline timeline(1000, 600);
    timeline.deleteRange(2000, 100);
    timeline.deleteRange(500, 0);
    timeline.deleteRange(500, -10);
    timeline.deleteRange(-100, 50);
    EXPECT_EQ(timeline.duration(), 1000);
    EXPECT_FALSE(timeline.edited());
    timeline.deleteRange(-100, 150);
    EXPECT_EQ(timeline.duration(), 950);
    timeline.deleteRange(0, INT64_MAX);
    EXPECT_EQ(timeline.duration(), 0);
    timeline.deleteRange(0, 10);
    EXPECT_EQ(timeline.duration(), 0);
}

TEST(EditTimelineTest, newScalesKeepTheSeconds)
{
    EditTimeline timeline(6000, 600);
    timeline.deleteRange(0, 601);
    timeline.setTimeScale(30000);
    EXPECT_EQ(timeline.timeScale(), 30000);
    EXPECT_EQ(timeline.duration(), 5399 * 50);
    timeline.setTimeScale(0);
    EXPECT_EQ(timeline.timeScale(), 30000);
}

TEST(EditTimelineTest, scalingStretchesEverySegment)
{
    EditTimeline timeline(1000, 600);
    timeline.deleteRange(400, 200);
    timeline.scaleRange(0, 800, 1600);
    EXPECT_EQ(timeline.duration(), 1600);
    timeline.deleteRange(0, 400);
    EXPECT_EQ(timeline.segments().front().start, 200);
    EXPECT_EQ(timeline.segments().front().duration, 200);
}

TEST(TrackPiecesTest, followTheSourcesOwnEditList)
{
    const TrackAtoms track = trackOf(48000, 480000, {{600, -1, 65536}, {3000, 1024, 65536}});
    EditTimeline timeline(3600, 600);
    EXPECT_EQ(shape(trackPieces(track, 600, timeline)), (std::vector<std::int64_t>{600, -1, 3000, 1024}));
    timeline.deleteRange(0, 300);
    EXPECT_EQ(shape(trackPieces(track, 600, timeline)), (std::vector<std::int64_t>{300, -1, 3000, 1024}));
    timeline.deleteRange(0, 600);
    EXPECT_EQ(shape(trackPieces(track, 600, timeline)), (std::vector<std::int64_t>{2700, 1024 + 24000}));
}

TEST(TrackPiecesTest, aTrackThatEndsEarlyHasNoPieceBehindItsEnd)
{
    const TrackAtoms track = trackOf(600, 600);
    const EditTimeline timeline(6000, 600);
    EXPECT_EQ(shape(trackPieces(track, 600, timeline)), (std::vector<std::int64_t>{600, 0}));
}

TEST(TrackPiecesTest, neighboursThatContinueBecomeOnePiece)
{
    const TrackAtoms track = trackOf(600, 6000, {{600, 0, 65536}, {600, 600, 65536}, {600, 0, 65536}});
    const EditTimeline timeline(1800, 600);
    EXPECT_EQ(shape(trackPieces(track, 600, timeline)), (std::vector<std::int64_t>{1200, 0, 600, 0}));
}

TEST(DisplayTimesTest, areMovieTimesOfThePicturesShown)
{
    const SampleTable table = pictures(10);
    std::vector<TrackPiece> pieces{{100, true, 0, 0}, {50, false, 35, 50}};
    EXPECT_EQ(displayTimes(table, pieces), (std::vector<std::int64_t>{100, 105, 115, 125, 135, 145}))
        << "the picture that began before the edit counts at its start";
    pieces = {{20, false, 20, 0}};
    EXPECT_EQ(displayTimes(table, pieces), (std::vector<std::int64_t>{0})) << "a frozen picture counts once";
}

TEST(SampleSelectionTest, reachesBackToTheKeyPicture)
{
    const SelectedTrack selected = selectSamples(pictures(20), {{30, false, 20 + 130, 30}}, false);
    ASSERT_EQ(selected.table.samples.size(), 6U) << "pictures 10 to 15";
    EXPECT_EQ(selected.table.samples.front().offset, 2000U);
    EXPECT_EQ(selected.pieces.front().mediaStart, 50);
    EXPECT_EQ(selected.mediaDuration, 60U);
    std::uint64_t samples = 0;
    for (const CopyRun& run : selected.runs) {
        samples += run.samples;
    }
    EXPECT_EQ(samples, 6U);
    EXPECT_EQ(selected.runs.size(), 2U) << "chunks of the source are not joined";
}

TEST(SampleSelectionTest, distantPiecesKeepOnlyWhatTheyNeed)
{
    const SelectedTrack selected = selectSamples(pictures(40), {{10, false, 20, 10}, {10, false, 20 + 300, 10}}, false);
    ASSERT_EQ(selected.table.samples.size(), 2U);
    EXPECT_EQ(selected.pieces[1].mediaStart, 30);
}

TEST(SampleSelectionTest, compressedSoundKeepsALittleMore)
{
    SampleTable table = pictures(20);
    table.hasSyncTable = false;
    const SelectedTrack selected = selectSamples(table, {{10, false, 20 + 100, 10}}, true);
    EXPECT_EQ(selected.table.samples.size(), 3U);
    EXPECT_EQ(selected.pieces.front().mediaStart, 40);
}

TEST(SoundSinkTest, writesTheStretchesSampleBySample)
{
    EditTimeline timeline(100, 10);
    timeline.deleteRange(0, 20);
    timeline.deleteRange(30, 40);
    std::vector<std::int16_t> written;
    SoundSink sink(timeline, 10, 1, [&written](std::span<const std::int16_t> samples) {
        written.insert(written.end(), samples.begin(), samples.end());
        return true;
    });
    std::vector<std::int16_t> sound(100);
    for (std::size_t index = 0; index < sound.size(); ++index) {
        sound[index] = static_cast<std::int16_t>(index);
    }
    EXPECT_TRUE(sink.add(-5, std::span(sound).first(5)));
    EXPECT_TRUE(sink.add(0, std::span(sound).first(60)));
    EXPECT_TRUE(sink.add(50, std::span(sound).subspan(50)));
    ASSERT_EQ(written.size(), 40U);
    EXPECT_EQ(written.front(), 20);
    EXPECT_EQ(written[29], 49);
    EXPECT_EQ(written[30], 90);
    EXPECT_EQ(written.back(), 99);
    EXPECT_TRUE(sink.finished());
}

TEST(SoundSinkTest, gapsBecomeSilence)
{
    const EditTimeline timeline(10, 10);
    std::vector<std::int16_t> written;
    SoundSink sink(timeline, 10, 2, [&written](std::span<const std::int16_t> samples) {
        written.insert(written.end(), samples.begin(), samples.end());
        return true;
    });
    const std::vector<std::int16_t> sound{1, 2, 3, 4};
    EXPECT_TRUE(sink.add(3, sound));
    EXPECT_EQ(written, (std::vector<std::int16_t>{0, 0, 0, 0, 0, 0, 1, 2, 3, 4}));
}

TEST(SoundSinkTest, aStretchShownLongerIsFilledInBetween)
{
    EditTimeline timeline(4, 10);
    timeline.scaleRange(0, 4, 8);
    std::vector<std::int16_t> written;
    SoundSink sink(timeline, 10, 1, [&written](std::span<const std::int16_t> samples) {
        written.insert(written.end(), samples.begin(), samples.end());
        return true;
    });
    EXPECT_TRUE(sink.add(0, std::vector<std::int16_t>{0, 100, 200, 300}));
    EXPECT_EQ(written, (std::vector<std::int16_t>{0, 50, 100, 150, 200, 250, 300, 300}));
}

TEST(SoundSinkTest, aWriterThatFailsStopsIt)
{
    const EditTimeline timeline(10, 10);
    SoundSink sink(timeline, 10, 1, [](std::span<const std::int16_t>) { return false; });
    EXPECT_FALSE(sink.add(0, std::vector<std::int16_t>{1}));
}

} // namespace tavrix::test
