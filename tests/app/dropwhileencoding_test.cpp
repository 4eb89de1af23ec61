// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "base/store/preferences.h"
#include "base/store/settings.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class DropWhileEncoding : public ControllerTest
{
protected:
    DropWhileEncoding()
    {
        first = clip(QStringLiteral("first.mts"));
        dropped = clip(QStringLiteral("dropped.mts"));
        addRows({first});
        pressStart();
        encoder = tools.current(ToolKind::Encode);
    }

    void expectRunning(bool paused)
    {
        ASSERT_TRUE(encoder.launcher);
        EXPECT_EQ(encoder.launcher->isSuspended(), paused);
        EXPECT_TRUE(model().encStopBt.isEnabled());
        EXPECT_FALSE(model().encStopBt.isHidden());
        EXPECT_TEXT(model().encStopBt.imageName(encStopSegmentPause),
                    paused ? controlImage::play : controlImage::pause);
        EXPECT_EQ(model().batchEncGoBt.state(), 1);
        EXPECT_FALSE(model().batchEncGoBt.isEnabled());
        EXPECT_EQ(getOPENPERM(), 1);
    }

    QString first;
    QString dropped;
    FakeTools::Launch encoder;
};

} // namespace

TEST_F(DropWhileEncoding, PausesUntilTheAnalysisEndsAndTheNewRowFollows)
{
    controller->draggedFiles({dropped});
    EXPECT_TRUE(encoder.launcher->isSuspended());
    EXPECT_FALSE(model().encStopBt.isEnabled());
    EXPECT_TEXT(model().encStopBt.imageName(encStopSegmentPause), controlImage::play);
    EXPECT_EQ(tools.mostAtOnce, 2);
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    EXPECT_TRUE(encoder.launcher->isSuspended());
    ASSERT_TRUE(tools.finish(ToolKind::Thumbnail));
    EXPECT_TEXT(icons(), QStringLiteral("puceCurrent puce"));
    expectRunning(false);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    expectIdle();
}

TEST_F(DropWhileEncoding, NothingNewResumesAtOnce)
{
    controller->draggedFiles({first});
    expectRunning(false);
    EXPECT_EQ(log.lines().count(QStringLiteral("process             : pause")), 1);
    EXPECT_EQ(log.lines().count(QStringLiteral("process             : play")), 1);
}

TEST_F(DropWhileEncoding, NothingNewWhileTheUserHasPausedStaysPausedAndStartStaysOff)
{
    pressPause();
    controller->draggedFiles({first});
    expectRunning(true);
}

TEST_F(DropWhileEncoding, PauseOfTheUserStays)
{
    pressPause();
    controller->draggedFiles({dropped});
    EXPECT_TRUE(encoder.launcher->isSuspended());
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    ASSERT_TRUE(tools.finish(ToolKind::Thumbnail));
    expectRunning(true);
    pressPause();
    expectRunning(false);
}

TEST_F(DropWhileEncoding, EncoderThatEndsDuringTheAnalysisIsJudgedAfterIt)
{
    controller->draggedFiles({dropped});
    tools.finish(encoder);
    settle();
    EXPECT_TEXT(icons(), QStringLiteral("puceCurrent"));
    EXPECT_EQ(getOPENPERM(), 0);
    EXPECT_TRUE(controller->isAnalysing());
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    ASSERT_TRUE(tools.finish(ToolKind::Thumbnail));
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceCurrent"));
    EXPECT_TEXT(sourceOf(1), dropped);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    expectIdle();
}

TEST_F(DropWhileEncoding, EncoderThatEndsDuringAStalledAnalysisIsJudgedAfterIt)
{
    controller->draggedFiles({dropped});
    tools.finish(encoder);
    tools.results = {3};
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_EQ(getOPENPERM(), 1);
    EXPECT_EQ(model().batchEncGoBt.state(), 0);
    EXPECT_TRUE(model().batchEncGoBt.isEnabled());
}

TEST_F(DropWhileEncoding, OutputOfTheEncoderIsNeitherTranscriptNorProgress)
{
    controller->draggedFiles({dropped});
    const FakeTools::Launch decode = tools.current(ToolKind::Decode);
    FakeClip other;
    other.width = 1920;
    other.height = 1080;
    tools.writeFiles(decode);
    decode.launcher->write(bannerOf(FakeClip(), dropped));
    encoder.launcher->write(bannerOf(other, first) + QStringLiteral("time=12.00: Unknown format"));
    EXPECT_TRUE(model().mainEncProgressPercentStr.stringValue().isEmpty());
    decode.launcher->end(0);
    settle();
    ASSERT_TRUE(tools.finish(ToolKind::Thumbnail));
    ASSERT_EQ(rows().count(), 2);
    EXPECT_EQ(rows().row(1).dico.value(record::v0_width).toInt(), 1280);
}

TEST_F(DropWhileEncoding, StalledAnalysisResumesTheEncoder)
{
    tools.results = {3};
    controller->draggedFiles({dropped});
    expectRunning(false);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}

TEST_F(DropWhileEncoding, StopOfTheAnalysisResumesTheEncoder)
{
    controller->draggedFiles({dropped});
    controller->iba_analysisStopBt();
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    EXPECT_EQ(rows().count(), 1);
    expectRunning(false);
}

TEST_F(DropWhileEncoding, StopOfTheBatchDuringTheAnalysisEndsItAfterwards)
{
    controller->draggedFiles({dropped});
    pressStop();
    EXPECT_TRUE(controller->isAnalysing());
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puce"));
    EXPECT_EQ(face.count(sheetEvent("D_fin_GUI")), 1);
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
    expectIdle();
}

TEST_F(DropWhileEncoding, SecondDropDuringTheAnalysisDoesNotDisturbThePause)
{
    controller->draggedFiles({dropped});
    controller->draggedFiles({clip(QStringLiteral("late.mts"))});
    EXPECT_TRUE(encoder.launcher->isSuspended());
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    ASSERT_TRUE(tools.finish(ToolKind::Thumbnail));
    EXPECT_EQ(rows().count(), 2);
    expectRunning(false);
}

TEST_F(DropWhileEncoding, TwoDropsOneAfterTheOtherPairTheirPauses)
{
    for (const char* name : {"x.mts", "y.mts"}) {
        controller->draggedFiles({clip(QString::fromUtf8(name))});
        ASSERT_TRUE(tools.finish(ToolKind::Decode));
        ASSERT_TRUE(tools.finish(ToolKind::Thumbnail));
        expectRunning(false);
    }
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess puceSuccess"));
    expectIdle();
}

TEST_F(DropWhileEncoding, EncoderKilledDuringTheAnalysisFailsItsRow)
{
    controller->draggedFiles({dropped});
    encoder.launcher->end(9);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceSuccess"));
    expectIdle();
}
