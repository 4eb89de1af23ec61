// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/progress.h"

#include "process/runners.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <cmath>
#include <limits>

namespace tavrix
{

namespace
{

using test::TempFolder;

struct LineRow {
    const char* name;
    const char* line;
    float value;
};

struct AcceptRow {
    const char* name;
    float value;
    float maximum;
    bool accepted;
};

} // namespace

class ProgressLines : public testing::TestWithParam<LineRow>
{
};

TEST_P(ProgressLines, GiveTheTimeReached)
{
    EXPECT_EQ(progressFfmpeg(test::text(GetParam().line)), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Ffmpeg, ProgressLines,
    testing::Values(LineRow{"Whole", "frame=  250 fps= 35 q=3.0 size=   32134kB time=10.00 bitrate=26324.3kbits/s",
                            10.0F},
                    LineRow{"Without", "frame=  250", 0.0F}, LineRow{"NoNumber", "time=N/A", 0.0F},
                    LineRow{"FirstOfTwo", "time=1.50 time=2.50", 1.5F}, LineRow{"BlanksBefore", "time= 7.5", 7.5F},
                    LineRow{"NewlineBefore", "time=\n5", 5.0F}, LineRow{"Negative", "time=-1", -1.0F},
                    LineRow{"Exponent", "time=1e2", 100.0F}, LineRow{"OtherCase", "TIME=5", 0.0F},
                    LineRow{"Clock", "time=00:00:10.00", 0.0F}, LineRow{"AtTheEnd", "time=", 0.0F},
                    LineRow{"Huge", "time=1e999", std::numeric_limits<float>::infinity()},
                    LineRow{"Comma", "time=1,5", 1.0F}, LineRow{"Infinity", "time=inf", 0.0F},
                    LineRow{"Empty", "", 0.0F}, LineRow{"Nothing", nullptr, 0.0F}),
    test::rowName<LineRow>);

TEST(Progress, EveryToolHasItsMarker)
{
    EXPECT_TEXT(progressFfmpegGrepStr(), QStringLiteral("time="));
    EXPECT_TEXT(progressMov2wavMux2movGrepStr(), QStringLiteral("pourcentage    : "));
    EXPECT_TEXT(progressNormalizeGrepStr(), QStringLiteral("(batch "));
    EXPECT_TEXT(progressMovencoderGrepStr(), QStringLiteral("Processing ("));
    EXPECT_EQ(progressMov2wavMux2mov(QStringLiteral("pourcentage    : 42.5 %")), 42.5F);
    EXPECT_EQ(progressMov2wavMux2mov(QStringLiteral("pourcentage : 42.5 %")), 0.0F);
    EXPECT_EQ(progressNormalize(QStringLiteral("file (batch 12 %)")), 12.0F);
    EXPECT_EQ(progressMovencoder(QStringLiteral("Processing (37.5 %)")), 37.5F);
}

TEST(Progress, NothingOrAnEmptyMarkerGivesZero)
{
    EXPECT_EQ(progresses(QStringLiteral("5"), QString()), 0.0F);
    EXPECT_EQ(progresses(QStringLiteral("5"), QStringLiteral("")), 0.0F);
    EXPECT_EQ(progresses(QString(), QStringLiteral("x")), 0.0F);
}

TEST(Progress, SelectorChoosesTheParser)
{
    const QString line = QStringLiteral("time=1 pourcentage    : 2 Processing (4");
    EXPECT_EQ(progressValue(0, line), 1.0F);
    EXPECT_EQ(progressValue(2, line), 2.0F);
    EXPECT_EQ(progressValue(4, line), 4.0F);
    for (const int other : {-1, 1, 3, 5}) {
        EXPECT_EQ(progressValue(other, line), 123456792.0F);
    }
    EXPECT_EQ(progressSentinel, static_cast<float>(123456789));
}

class Acceptance : public testing::TestWithParam<AcceptRow>
{
};

TEST_P(Acceptance, IsAboveZeroUpToTheMaximum)
{
    EXPECT_EQ(progressAccepted(GetParam().value, GetParam().maximum), GetParam().accepted);
}

INSTANTIATE_TEST_SUITE_P(
    Values, Acceptance,
    testing::Values(AcceptRow{"Within", 1.0F, 10.0F, true}, AcceptRow{"Maximum", 10.0F, 10.0F, true},
                    AcceptRow{"Above", 10.01F, 10.0F, false}, AcceptRow{"Zero", 0.0F, 10.0F, false},
                    AcceptRow{"Negative", -1.0F, 10.0F, false}, AcceptRow{"NoMaximum", 1.0F, 0.0F, false},
                    AcceptRow{"Sentinel", progressSentinel, 36000.0F, false},
                    AcceptRow{"NoNumber", std::nanf(""), 10.0F, false},
                    AcceptRow{"Infinity", std::numeric_limits<float>::infinity(), 10.0F, false}),
    test::rowName<AcceptRow>);

TEST(ProgressTemplates, AreExact)
{
    EXPECT_TEXT(
        progressMpeg2enc(QStringLiteral("/T/a b.log"), 2.5F, 7),
        QStringLiteral("/bin/echo \"scale=6; `/bin/cat \"/T/a b.log\" | strings | grep Enc1 | grep q= | tail -1 | "
                       "/usr/bin/awk -F Enc1 '{print $2}' | /usr/bin/awk '{print $1}'` /2.500000 /7 *100\" | bc -l"));
    EXPECT_TEXT(
        progressMplayer(QStringLiteral("/T/a.log"), 60),
        QStringLiteral("/bin/echo \"scale=6; `/bin/cat \"/T/a.log\"  | grep A: | strings | tail -1 | awk -F A:  "
                       "'{print $2}' | awk -F '(' '{print $1}' | awk  '{print $1}'` /60 * 100\" | bc -l"));
}

TEST(ProgressTemplates, RefusePathsThatCannotBeQuoted)
{
    for (const char* path : {"/T/a\"b", "/T/$x", "/T/`x`", "/T/a\\b"}) {
        EXPECT_TRUE(progressMpeg2enc(QString::fromUtf8(path), 1, 1).isNull()) << path;
        EXPECT_TRUE(progressMplayer(QString::fromUtf8(path), 1).isNull()) << path;
    }
    EXPECT_TRUE(progressMplayer(QString(), 1).isNull());
}

TEST(ProgressTemplates, ComputeThePercentage)
{
    const TempFolder folder;
    const QString enc = folder.makeFile(QStringLiteral("enc log.txt"), "x Enc1 9 q=1\nEnc1 1 q=2 more\nEnc1 5\n");
    EXPECT_TEXT(taskWithStrBasic(progressMpeg2enc(enc, 3.0F, 7)), QStringLiteral("4.761900"));
    const QString player = folder.makeFile(QStringLiteral("play.txt"), "A:  10.0 (10.0)\nA:  30.0 (30.0) of 60\n");
    EXPECT_TEXT(taskWithStrBasic(progressMplayer(player, 60)), QStringLiteral("50.000000"));
    // The calculator is given no number then.
    const QString empty = folder.makeFile(QStringLiteral("empty.txt"), "");
    EXPECT_TEXT(taskWithStrBasic(progressMpeg2enc(empty, 3.0F, 7)), QStringLiteral(""));
    EXPECT_TEXT(taskWithStrBasic(progressMplayer(empty, 60)), QStringLiteral(""));
}

TEST(Progress, SizeOfTheOutputInMegabytes)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a.mov"), QByteArray(qsizetype{512} * 1024, 'x'));
    EXPECT_EQ(progressPoidsMo(file), 0.5F);
    EXPECT_EQ(progressPoidsMo(folder.path(QStringLiteral("missing"))), -1.0F);
    EXPECT_EQ(progressPoidsMo(QString()), -1.0F);
}

} // namespace tavrix
