// Damaged and harmless sources through the formats: the table of what each is judged to be.
#include "judge/judge.h"

#include "judge/damage.h"
#include "judge/sources.h"
#include "support/clipmaker.h"
#include "support/temphome.h"

#include <gtest/gtest.h>

#include <atomic>
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

} // namespace
} // namespace tavrix::test
