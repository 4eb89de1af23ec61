// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "base/dialogue/localisation.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "probe/batchtexts.h"

#include <functional>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

constexpr qint64 second = 1000;

class Silence : public ControllerTest
{
protected:
    Silence()
    {
        QObject::connect(controller.get(), &appDelegate::sourceRejected, controller.get(),
                         [this](const QString&, const QString& reason) { rejections << reason; });
    }

    void pass(int seconds, const std::function<void()>& everySecond = {})
    {
        for (int i = 0; i < seconds; ++i) {
            if (everySecond) {
                everySecond();
            }
            controller->passTime(second);
            settle();
        }
    }
    FakeLauncher* current() { return tools.running().isEmpty() ? nullptr : tools.running().last().launcher.data(); }

    QStringList rejections;
};

TEST_F(Silence, EndsAnAnalysisAfterAMinuteAndTheNextSourceFollows)
{
    controller->draggedFiles(makeClips(2));
    pass(59);
    EXPECT_EQ(tools.launches.size(), 1);
    pass(1);
    EXPECT_TEXTS(rejections, QStringList(formatText(batchText("Clip_silent"), {60})));
    EXPECT_EQ(tools.count(ToolKind::Decode), 2);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_EQ(rows().count(), 1);
    expectIdle();
}

TEST_F(Silence, EndsAThumbnailThatIsOnlyMissingThen)
{
    controller->draggedFiles(makeClips(1));
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    pass(60);
    ASSERT_EQ(rows().count(), 1);
    EXPECT_TRUE(rows().row(0).img.isNull());
    EXPECT_TRUE(rejections.isEmpty());
    expectIdle();
}

TEST_F(Silence, EndsAnEncodeAfterTenMinutesAndTheNextRowFollows)
{
    addRows(makeClips(2));
    pressStart();
    pass(1); // its first words
    pass(599);
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
    pass(1);
    EXPECT_EQ(tools.count(ToolKind::Encode), 2);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceSuccess"));
    EXPECT_TEXT(rows().row(0).reason, formatText(batchText("Enc_silent"), {600}));
    EXPECT_TRUE(resumeLog().contains(QStringLiteral("failure             : the encoder said and did nothing for 600")));
    expectIdle();
}

TEST_F(Silence, IsNoneWhileTheToolTalksOrMovesBytes)
{
    addRows(makeClips(1));
    pressStart();
    pass(1200, [this] { current()->write(QStringLiteral("time=1.00\r")); });
    pass(1200, [this] { current()->did.bytes += 1; });
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}

TEST_F(Silence, OfAToolThatOnlyComputesIsBorneTenTimesAsLong)
{
    controller->draggedFiles(makeClips(1));
    pass(599, [this] { current()->did.ticks += 1; });
    EXPECT_TRUE(rejections.isEmpty());
    pass(2, [this] {
        if (current() != nullptr) {
            current()->did.ticks += 1;
        }
    });
    EXPECT_EQ(rejections.size(), 1);
    expectIdle();
}

TEST_F(Silence, OfAPausedEncodeDoesNotCount)
{
    addRows(makeClips(1));
    pressStart();
    pass(500);
    pressPause();
    pass(3000);
    pressPause();
    pass(599);
    EXPECT_EQ(tools.running().size(), 1);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}

TEST_F(Silence, DuringAModalAlertDoesNotCount)
{
    addRows(makeClips(1));
    pressStart();
    face.whileOpen = [this](const AlertRequest&) {
        for (int i = 0; i < 3000; ++i) {
            controller->passTime(second);
        }
    };
    face.answer(0);
    controller->iba_menuQuit();
    EXPECT_EQ(tools.running().size(), 1);
    EXPECT_EQ(face.alerts.size(), 1);
}

TEST_F(Silence, OfThreeSecondsSufficesAfterTheStopControl)
{
    controller->draggedFiles(makeClips(3));
    controller->iba_analysisStopBt();
    pass(2);
    EXPECT_EQ(tools.running().size(), 1);
    pass(1);
    EXPECT_TRUE(tools.running().isEmpty());
    EXPECT_EQ(rows().count(), 0);
    expectIdle();
}

TEST_F(Silence, ToolThatGoesOnIsNotEndedByTheStopControl)
{
    controller->draggedFiles(makeClips(2));
    controller->iba_analysisStopBt();
    pass(100, [this] { current()->did.bytes += 1; });
    EXPECT_EQ(tools.running().size(), 1);
    ASSERT_TRUE(tools.finishAll());
    expectIdle();
}

TEST_F(Silence, LimitsAreSettings)
{
    prefWrite(pref::silenceAnalysis, 5);
    prefWrite(pref::silenceEncode, QStringLiteral("nonsense"));
    controller->draggedFiles(makeClips(2));
    pass(5);
    EXPECT_EQ(rejections.size(), 1);
    ASSERT_TRUE(tools.finishAll());
    pressStart();
    pass(1);
    pass(599);
    EXPECT_EQ(tools.running().size(), 1);
    pass(1);
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
}

} // namespace
