// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/verdictline.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tavrix::judge
{
namespace
{

Verdict incomplete()
{
    return {Outcome::Incomplete,
            {{.cause = Cause::EndedEarly, .seconds = 9.8, .ofSeconds = 20},
             {.cause = Cause::DamagedPictures, .count = 12, .from = 4.2}}};
}

TEST(VerdictLine, SaysOutcomeAndFindings)
{
    EXPECT_EQ(verdictLine({}), "tavrix-verdict: whole");
    EXPECT_EQ(verdictLine(incomplete()), "tavrix-verdict: incomplete ended-early seconds=9.80 of-seconds=20.00 "
                                         "damaged-pictures count=12 from=4.20");
    const Verdict unreadable{Outcome::Failed,
                             {{.cause = Cause::NotReadable, .text = "Invalid data\n\x1b[2J \xe2\x80\xae%"}}};
    EXPECT_EQ(verdictLine(unreadable),
              "tavrix-verdict: failed not-readable text=Invalid%20data%0A%1B%5B2J%20%E2%80%AE%25");
}

TEST(VerdictLine, ComesBackAsItWas)
{
    const Verdict verdicts[] = {
        {},
        incomplete(),
        {Outcome::Failed, {{.cause = Cause::NotReadable, .text = "a=b c%20\n\t\xc3\xa9 \"'$`"}}},
        {Outcome::Failed, {{.cause = Cause::PictureCount, .count = 3, .ofCount = 50}}},
        {Outcome::Whole, {{.cause = Cause::HiddenShown, .count = 12}}},
        {Outcome::Incomplete, {{.cause = Cause::LostPackets, .count = 1, .from = 0.0}, {.cause = Cause::CutOff}}},
    };
    for (const Verdict& verdict : verdicts) {
        const std::string line = verdictLine(verdict);
        SCOPED_TRACE(line);
        const auto parsed = parseVerdictLine(line + "\r\n");
        ASSERT_TRUE(parsed);
        EXPECT_EQ(*parsed, verdict);
    }
}

TEST(VerdictLine, EveryCauseHasANameOfItsOwnAndAText)
{
    std::vector<std::string> lines;
    std::vector<std::string> texts;
    for (int cause = 0; cause <= static_cast<int>(Cause::HiddenShown); ++cause) {
        const Finding finding{.cause = static_cast<Cause>(cause), .text = "reason"};
        lines.push_back(verdictLine({Outcome::Failed, {finding}}));
        texts.push_back(englishText(finding));
        EXPECT_NE(texts.back(), "") << cause;
        const auto parsed = parseVerdictLine(lines.back());
        ASSERT_TRUE(parsed) << lines.back();
        EXPECT_EQ(parsed->findings.front().cause, finding.cause);
    }
    for (auto* const list : {&lines, &texts}) {
        std::ranges::sort(*list);
        EXPECT_EQ(std::ranges::adjacent_find(*list), list->end());
    }
}

TEST(VerdictLine, IsShortEnoughForOneWriteWhateverTheTextHolds)
{
    std::string text;
    for (int i = 0; i < 2000; ++i) {
        text += "\xe2\x80\xae";
    }
    const std::string line = verdictLine({Outcome::Failed, {{.cause = Cause::NotReadable, .text = text}}});
    EXPECT_LT(line.size(), 2000U);
    const auto parsed = parseVerdictLine(line);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->findings.front().text, text.substr(0, 300));
}

TEST(VerdictLine, OtherLinesAreNone)
{
    const char* const lines[] = {
        "",
        "whole",
        "tavrix-verdict:",
        "tavrix-verdict: perfect",
        "tavrix-verdict: whole count=1",
        "tavrix-verdict: failed not-readable text=%2",
        "tavrix-verdict: failed not-readable text=%zz",
        "tavrix-verdict: failed not-readable count=1x",
        "tavrix-verdict: failed not-readable count=99999999999999999999",
        "tavrix-verdict: failed not-readable colour=red",
        "tavrix-verdict: failed no-such-cause",
        "x tavrix-verdict: whole",
        "tavrix-verdict:whole",
    };
    for (const char* line : lines) {
        EXPECT_FALSE(parseVerdictLine(line)) << line;
    }
}

TEST(VerdictText, TellsPeopleWhatIsMissing)
{
    EXPECT_EQ(englishText(Verdict()), "");
    EXPECT_EQ(englishText(incomplete()),
              "Incomplete: 9.8 of 20.0 s could be read; source damaged: 12 pictures from 0:04.2 on");
    EXPECT_EQ(englishText(Finding{.cause = Cause::DamagedPictures, .count = 1}), "source damaged: 1 picture");
    EXPECT_EQ(englishText(Finding{.cause = Cause::PictureCount, .count = 1, .ofCount = 9}),
              "the output has 1 picture instead of 9");
}

TEST(VerdictText, ClockTimes)
{
    EXPECT_EQ(clockText(0), "0:00.0");
    EXPECT_EQ(clockText(4.2), "0:04.2");
    EXPECT_EQ(clockText(59.96), "1:00.0");
    EXPECT_EQ(clockText(754.25), "12:34.3");
    EXPECT_EQ(clockText(3723), "1:02:03.0");
    EXPECT_EQ(clockText(-1), "0:00.0");
}

} // namespace
} // namespace tavrix::judge
