// SPDX-License-Identifier: GPL-3.0-or-later
#include "encodingfixture.h"

#include "app/rowverdict.h"
#include "app/verdictwords.h"
#include "base/dialogue/localisation.h"
#include "judge/verdictline.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

using judge::Cause;
using judge::Outcome;
using judge::Verdict;

const Verdict endedEarly{Outcome::Incomplete, {{.cause = Cause::EndedEarly, .seconds = 9.8, .ofSeconds = 20}}};
const Verdict damaged{Outcome::Incomplete, {{.cause = Cause::DamagedPictures, .count = 12, .from = 4.2}}};
const Verdict whole{Outcome::Whole, {}};
const Verdict shorter{Outcome::Failed, {{.cause = Cause::ShorterPicture, .seconds = 1, .ofSeconds = 5}}};

QString lineOf(const Verdict& verdict)
{
    return QString::fromStdString(judge::verdictLine(verdict)) + QLatin1Char('\n');
}

TEST(RowVerdict, FindsALineThatComesInPieces)
{
    RowVerdict verdict;
    const QString line = QStringLiteral("frame=1 time=1.00\r") + lineOf(endedEarly);
    verdict.read(line.left(30));
    EXPECT_FALSE(verdict.verdict());
    verdict.read(line.mid(30));
    ASSERT_TRUE(verdict.verdict());
    EXPECT_EQ(*verdict.verdict(), endedEarly);
}

TEST(RowVerdict, KeepsTheWorseOfBothPasses)
{
    RowVerdict verdict;
    verdict.read(lineOf(endedEarly));
    verdict.read(lineOf(whole));
    ASSERT_TRUE(verdict.verdict());
    EXPECT_EQ(*verdict.verdict(), endedEarly);
    verdict.read(lineOf(damaged));
    verdict.read(lineOf(damaged));
    EXPECT_EQ(verdict.verdict()->findings.size(), 2U);
    Verdict more = damaged;
    more.findings.front().count = 13;
    verdict.read(lineOf(more));
    verdict.read(lineOf(damaged));
    ASSERT_EQ(verdict.verdict()->findings.size(), 2U) << "one flaw, though both passes count it";
    EXPECT_EQ(verdict.verdict()->findings.back().count, 13);
    verdict.begin();
    EXPECT_FALSE(verdict.verdict());
}

TEST(RowVerdict, IsNothingWhereNoToolHasJudged)
{
    RowVerdict verdict;
    verdict.read(QStringLiteral("frame=1 time=1.00\nverdict: whole\n"));
    EXPECT_FALSE(verdict.verdict());
}

class VerdictWords : public ControllerTest
{
};

TEST_F(VerdictWords, ShowNumbersAsTheLanguageDoes)
{
    Verdict verdict = endedEarly;
    verdict.findings.push_back(damaged.findings.front());
    for (const char* language : {"fr", "de"}) {
        setLanguage(text(language));
        const QString words = verdictWords(verdict);
        EXPECT_TRUE(words.contains(QStringLiteral("9,8")) && words.contains(QStringLiteral("20,0"))) << language;
        EXPECT_TRUE(words.endsWith(QStringLiteral("0:04,2"))) << words.toStdString();
    }
    setLanguage(QStringLiteral("en"));
    EXPECT_TRUE(verdictWords(verdict).startsWith(QStringLiteral("Incomplete: 9.8 of 20.0 s could be read")));
}

TEST_F(VerdictWords, TellWhatIsMissingAndFromWhereOn)
{
    EXPECT_TEXT(verdictWords(whole), QString());
    EXPECT_TEXT(verdictWords(endedEarly), QStringLiteral("Incomplete: 9.8 of 20.0 s could be read"));
    EXPECT_TEXT(verdictWords(damaged), QStringLiteral("Incomplete: source damaged: pictures that cannot be decoded "
                                                      "well: 12, from 0:04.2 on"));
    EXPECT_TEXT(verdictWords(shorter),
                QStringLiteral("the output had pictures for 1.0 of 5.0 s only and was discarded"));
}

// "the output had 1 pictures".
TEST_F(VerdictWords, CountOnePictureInTheSingular)
{
    const auto words = [](std::int64_t count) {
        return verdictWords({Outcome::Failed, {{.cause = Cause::PictureCount, .count = count, .ofCount = 300}}});
    };
    EXPECT_TEXT(words(1), QStringLiteral("the output had 1 picture instead of 300 and was discarded"));
    EXPECT_TEXT(words(2), QStringLiteral("the output had 2 pictures instead of 300 and was discarded"));
}

TEST_F(VerdictWords, StandInTheTableForEveryCause)
{
    for (int cause = 0; cause <= static_cast<int>(Cause::HiddenShown); ++cause) {
        const Verdict verdict{Outcome::Failed, {{.cause = static_cast<Cause>(cause), .text = "why"}}};
        const QString words = verdictWords(verdict);
        EXPECT_FALSE(words.isEmpty()) << cause;
        EXPECT_FALSE(words.contains(QStringLiteral("Row_"))) << cause << ' ' << words.toStdString();
    }
}

class JudgedRow : public Encoding
{
protected:
    void finishWith(const Verdict& verdict)
    {
        addRows(makeClips(1));
        pressStart();
        tools.running().last().launcher->write(lineOf(verdict));
        ASSERT_TRUE(tools.finishAll());
    }
};

TEST_F(JudgedRow, IsASuccessWithAWarningWhenTheSourceIsDamaged)
{
    finishWith(endedEarly);
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_TRUE(rows().row(0).incomplete);
    EXPECT_TEXT(rows().row(0).warning, QStringLiteral("Incomplete: 9.8 of 20.0 s could be read"));
    EXPECT_TRUE(
        resumeLog().endsWith(QLatin1String("\nwarning             : Incomplete: 9.8 of 20.0 s could be read\n")))
        << resumeLog().toStdString();
}

TEST_F(JudgedRow, HasNoWarningWhenItsOutputIsWhole)
{
    finishWith(whole);
    EXPECT_FALSE(rows().row(0).incomplete);
    EXPECT_TRUE(rows().row(0).warning.isEmpty());
    EXPECT_FALSE(resumeLog().contains(QStringLiteral("warning")));
}

TEST_F(JudgedRow, LosesItsWarningWhenItIsConvertedAgain)
{
    finishWith(endedEarly);
    face.answer(0);
    pressStart();
    tools.running().last().launcher->write(lineOf(whole));
    ASSERT_TRUE(tools.finishAll());
    EXPECT_FALSE(rows().row(0).incomplete);
    EXPECT_TRUE(rows().row(0).warning.isEmpty());
}

TEST_F(JudgedRow, FailsForTheJudgesReason)
{
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].kilobytes = -1;
    addRows({source});
    pressStart();
    tools.running().last().launcher->write(lineOf(shorter) + QStringLiteral("Conversion failed!\n"));
    ASSERT_TRUE(tools.finish(ToolKind::Encode, 1));
    EXPECT_TEXT(rows().row(0).reason, verdictWords(shorter));
}

} // namespace
