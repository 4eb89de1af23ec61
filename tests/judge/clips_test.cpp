// SPDX-License-Identifier: GPL-3.0-or-later
// Damaged and harmless sources through the formats: the table of what each is judged to be.
#include "judge/judge.h"

#include "judge/verdictline.h"
#include "media/headerchange.h"
#include "support/clipmaker.h"
#include "support/temphome.h"
#include "support_clips/damage.h"
#include "support_clips/sources.h"
#include "sys/descriptor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <thread>

namespace tavrix::test
{
namespace
{

using judge::Outcome;
using Words = std::vector<std::string>;

const char* nameOf(Outcome outcome)
{
    return outcome == Outcome::Whole ? "whole" : outcome == Outcome::Incomplete ? "incomplete" : "failed";
}

std::string extensionOf(const std::string& path)
{
    return std::filesystem::path(path).extension().string();
}

// A format of the program: how its pictures get into the output.
struct Format {
    int number;
    bool encodes;
};

class JudgedClips : public testing::Test
{
protected:
    struct Trial {
        SourceRow row;
        std::string source;
    };

    void SetUp() override { media::silenceLibraries(); }

    [[nodiscard]] std::string folder() const { return folder_.path().toStdString(); }

    std::vector<Trial> prepare(const std::vector<SourceRow>& rows)
    {
        std::vector<Trial> trials;
        for (const SourceRow& row : rows) {
            const std::string base = baseClip(folder(), row.base);
            if (base.empty()) {
                continue;
            }
            std::string source = base;
            if (row.change) {
                source = folder() + "/source" + std::to_string(trials.size()) + extensionOf(base);
                putBytes(source, row.change(bytesOf(base)));
            }
            trials.push_back({row, source});
        }
        return trials;
    }

    [[nodiscard]] judge::Verdict convert(const Trial& trial, int format, const std::string& output) const
    {
        judge::Case given{trial.source, output, {}, {}};
        Words words = {"-i", trial.source, "-vsync", "vfr"};
        if (format == 0) {
            const bool halved = trial.row.base == "50p" || trial.row.base == "59.94p";
            const std::string rate = trial.row.base == "50p" ? "25" : "30000/1001";
            given.asked = {judge::Way::Encoded, judge::Way::Encoded,
                           halved ? std::optional(rate == "25" ? 25 : 30000 / 1001.0) : std::nullopt};
            const std::string filter = halved ? "fps=" + rate + ":round=near," : "";
            words.insert(words.end(), {"-c:v", "mpeg4", "-b:v", "250k", "-vf", filter + "scale=480:272,setdar=16/9",
                                       "-c:a", "aac", "-ac", "2", "-ar", "44100", "-g", "25"});
        } else {
            words.insert(words.end(),
                         {"-c:v", "copy", "-c:a", "pcm_s16le", "-ac", "2", "-ar", "48000", "-af", "aresample=async=1"});
        }
        words.push_back(output);
        (void)runFfmpegUnchecked(words);
        return judge::judge(given);
    }

    // The number of those that were judged otherwise than expected.
    int misjudged(const std::vector<SourceRow>& rows)
    {
        const std::vector<Trial> trials = prepare(rows);
        std::atomic<std::size_t> next = 0;
        std::atomic<int> wrong = 0;
        std::mutex printing;
        const auto work = [&] {
            for (std::size_t i = next++; i < trials.size(); i = next++) {
                for (const Format format : {Format{0, true}, Format{3, false}}) {
                    const std::string output =
                        folder() + "/out" + std::to_string(i) + (format.number == 0 ? ".mp4" : ".mov");
                    const judge::Verdict verdict = convert(trials[i], format.number, output);
                    const Outcome expected = format.encodes ? trials[i].row.encoded : trials[i].row.copied;
                    std::filesystem::remove(output);
                    if (verdict.outcome != expected) {
                        ++wrong;
                        const std::lock_guard lock(printing);
                        std::cout << trials[i].row.name << ", format " << format.number << ": " << nameOf(expected)
                                  << " expected, judged as " << judge::englishText(verdict) << std::endl;
                    }
                }
            }
        };
        std::thread other(work);
        work();
        other.join();
        std::cout << trials.size() << " sources, misjudged: " << wrong << std::endl;
        return wrong;
    }

private:
    TempFolder folder_;
};

TEST_F(JudgedClips, Damaged)
{
    EXPECT_EQ(misjudged(damagedSources()), 0);
}

TEST_F(JudgedClips, Harmless)
{
    EXPECT_EQ(misjudged(harmlessSources()), 0);
}

// What an edit list shows, in seconds.
struct Piece {
    double from;
    double length;
};

bool showPieces(const std::string& path, const std::vector<Piece>& pieces)
{
    const Descriptor file = openFile(path.c_str(), O_RDWR);
    const MovieAtoms movie = readMovieAtoms(readAtOf(file.get()), std::filesystem::file_size(path));
    HeaderChange change;
    change.movieScale = 1000;
    for (std::size_t track = 0; track < movie.tracks.size(); ++track) {
        const TrackAtoms& atoms = movie.tracks[track];
        const std::int64_t origin = atoms.edits.empty() ? 0 : atoms.edits.back().mediaTime;
        TrackEdits edits;
        edits.track = track;
        for (const Piece& piece : pieces) {
            EditEntry entry;
            entry.duration = static_cast<std::uint64_t>(std::llround(piece.length * 1000));
            entry.mediaTime = origin + std::llround(piece.from * atoms.mediaTimeScale);
            edits.entries.push_back(entry);
        }
        change.edits.push_back(edits);
    }
    return changeMovieHeader(file.get(), change).hasValue();
}

// The packets at the joints, and the times that libavformat gives them, are not what a player shows.
class JudgedPieces : public testing::TestWithParam<std::vector<Piece>>
{
protected:
    JudgedPieces()
    {
        media::silenceLibraries();
        source_ = baseClip(folder(), "mov, index last");
    }
    [[nodiscard]] std::string folder() const { return folder_.path().toStdString(); }
    [[nodiscard]] judge::Outcome judged(const std::string& output, judge::Way picture) const
    {
        const judge::Verdict verdict = judge::judge({source_, output, {picture, judge::Way::Left, {}}, {}});
        std::cout << judge::verdictLine(verdict) << std::endl;
        return verdict.outcome;
    }
    // Evenly spaced, as many as a player shows less some.
    [[nodiscard]] std::string encoded(int fewer) const
    {
        double seconds = 0;
        for (const Piece& piece : GetParam()) {
            seconds += piece.length;
        }
        std::string output = folder() + "/encoded.mp4";
        EXPECT_TRUE(runFfmpeg({"-i", source_, "-vf", "setpts=N/25/TB,fps=25", "-vsync", "vfr", "-an", "-c:v", "mpeg4",
                               "-frames:v", std::to_string(std::llround(seconds * 25) - fewer), output}));
        return output;
    }

    TempFolder folder_;
    std::string source_;
};

TEST_P(JudgedPieces, AreWholeWhereAllThatIsShownComesOut)
{
    ASSERT_TRUE(showPieces(source_, GetParam()));
    EXPECT_EQ(judged(source_, judge::Way::Copied), Outcome::Whole) << "the same file again";
    EXPECT_EQ(judged(encoded(0), judge::Way::Encoded), Outcome::Whole);
    EXPECT_EQ(judged(encoded(2), judge::Way::Encoded), Outcome::Failed);
    const std::string cut = folder() + "/cut.mov";
    ASSERT_TRUE(runFfmpeg({"-ignore_editlist", "1", "-i", source_, "-an", "-c", "copy", "-frames:v", "20", cut}));
    EXPECT_EQ(judged(cut, judge::Way::Copied), Outcome::Failed);
}

TEST_P(JudgedPieces, ACopyThatHidesNothingSaysSo)
{
    ASSERT_TRUE(showPieces(source_, GetParam()));
    const std::string whole = folder() + "/whole.mov";
    ASSERT_TRUE(runFfmpeg({"-ignore_editlist", "1", "-i", source_, "-an", "-c", "copy", whole}));
    const judge::Verdict verdict = judge::judge({source_, whole, {judge::Way::Copied, judge::Way::Left, {}}, {}});
    // Pieces that overlap, or come in another order, are another clip.
    const bool inOrder = GetParam()[0].from + GetParam()[0].length <= GetParam()[1].from;
    EXPECT_EQ(verdict.outcome, inOrder ? Outcome::Whole : Outcome::Failed);
    ASSERT_EQ(verdict.findings.size(), 1U);
    EXPECT_EQ(verdict.findings[0].cause, inOrder ? judge::Cause::HiddenShown : judge::Cause::PictureCount);
}

INSTANTIATE_TEST_SUITE_P(Edits, JudgedPieces,
                         testing::Values(std::vector<Piece>{{0.2, 0.52}, {1.24, 0.8}},
                                         std::vector<Piece>{{0.12, 0.4}, {0.8, 0.28}, {1.6, 0.44}},
                                         std::vector<Piece>{{0.4, 0.6}, {0.4, 0.6}},
                                         std::vector<Piece>{{1.6, 0.48}, {0.32, 0.48}}));

} // namespace
} // namespace tavrix::test
