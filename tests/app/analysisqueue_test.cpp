// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysisfixture.h"

#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "process/notificationcenter.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class AnalysisQueue : public Analysis
{
};

} // namespace

TEST_F(AnalysisQueue, FailedLaunchStallsAndTheNextDropTakesItUpAgain)
{
    const QStringList sources = makeClips(3);
    tools.results = {3};
    controller->draggedFiles({sources.at(0), sources.at(1)});
    settle();
    expectStalledButOpen();
    EXPECT_TEXTS(face.events, QStringList(QStringLiteral("beep")));
    EXPECT_TRUE(log.contains(QStringLiteral("Erreur au lancement = 3")));
    EXPECT_TEXT(prefRead(pref::analysisSrcPathStr), sources.at(0));
    EXPECT_TEXT(prefRead(pref::analysisFfmpegParse), QStringLiteral("1"));
    EXPECT_TEXT(prefReadChildDico(pref::analysisSrcPathesDico, QStringLiteral("0")), sources.at(1));

    controller->draggedFiles({sources.at(2)});
    EXPECT_TEXT(caption(), QStringLiteral("1/2"));
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXTS(allSources(rows()), QStringList({sources.at(0), sources.at(2)}));
    expectIdle();
}

TEST_F(AnalysisQueue, FailedThumbnailLaunchStallsAndTheNextDropTakesItUpAgain)
{
    const QStringList sources = makeClips(2);
    tools.results = {0, 3};
    controller->draggedFiles({sources.at(0)});
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    expectStalledButOpen();
    EXPECT_EQ(rows().count(), 0);
    addRows({sources.at(1)});
    EXPECT_TEXTS(allSources(rows()), sources);
    expectIdle();
}

TEST_F(AnalysisQueue, StalledSourceDroppedAgainGetsOneRow)
{
    const QString source = clip(QStringLiteral("a.mts"));
    tools.results = {3};
    controller->draggedFiles({source});
    addRows({source});
    EXPECT_EQ(rows().count(), 1);
    expectIdle();
    EXPECT_FALSE(itemExists(getTMPFOLDER() + QStringLiteral("frame.yuv")));
}

TEST_F(AnalysisQueue, StopAfterAStalledThumbnailMakesNoRowFromTheOldText)
{
    const QStringList sources = makeClips(2);
    tools.results = {0, 3};
    controller->draggedFiles({sources.at(0)});
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    ASSERT_EQ(stalls, 1);
    controller->draggedFiles({sources.at(1)});
    controller->iba_analysisStopBt();
    ASSERT_TRUE(tools.finishAll());
    EXPECT_EQ(rows().count(), 0);
    expectIdle();
}

TEST_F(AnalysisQueue, InterruptedChildStallsAndTheNextDropTakesItUpAgain)
{
    const QStringList sources = makeClips(2);
    controller->draggedFiles({sources.at(0)});
    NotificationCenter::defaultCenter().post(fabKillTasks, tools.running().last().launcher->uid());
    settle();
    expectStalledButOpen();
    EXPECT_TRUE(log.contains(QStringLiteral("interrupted")));
    addRows({sources.at(1)});
    EXPECT_TEXTS(allSources(rows()), sources);
    expectIdle();
}

TEST_F(AnalysisQueue, PictureOfAnInterruptedThumbnailIsNotTakenForAnotherSource)
{
    const QStringList sources = makeClips(2);
    controller->draggedFiles({sources.at(0)});
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    const FakeTools::Launch thumbnail = tools.current(ToolKind::Thumbnail);
    tools.writeFiles(thumbnail);
    NotificationCenter::defaultCenter().post(fabKillTasks, thumbnail.launcher->uid());
    settle();
    ASSERT_EQ(stalls, 1);
    // Meanwhile it has become another kind of clip, which is rejected; the next one is unreadable but gets a row.
    tools.clips[sources.at(0)].height = 1080;
    tools.clips[sources.at(1)].text = QStringLiteral("x: Unknown format\n");
    addRows({sources.at(1)});
    ASSERT_EQ(rows().count(), 1);
    EXPECT_TEXT(sourceOf(0), sources.at(1));
    EXPECT_FALSE(rows().row(0).dico.contains(record::imgPathStr));
    EXPECT_TRUE(rows().row(0).img.isNull());
}

TEST_F(AnalysisQueue, QueueWithoutAZeroContinuesWithItsSmallestNumber)
{
    const QStringList sources = makeClips(3);
    prefWriteDico(pref::analysisSrcPathesDico, QVariantMap({{QStringLiteral("12"), sources.at(1)},
                                                            {QStringLiteral("7"), sources.at(0)},
                                                            {QStringLiteral("100"), sources.at(2)}}));
    setFlag(pref::analysisDeb);
    controller->analysis();
    ASSERT_TRUE(tools.finishAll(20));
    EXPECT_TEXTS(allSources(rows()), sources);
}

// The next run once converted a clip that it was not given, and hung again on one that had hung it before.
TEST_F(AnalysisQueue, LeftOverOfAnEarlierRunIsDroppedByTheNextDropAndTold)
{
    const QStringList sources = makeClips(3);
    QStringList dropped;
    QObject::connect(controller.get(), &appDelegate::leftOverDropped, controller.get(),
                     [&dropped](const QStringList& left) { dropped += left; });
    prefWrite(pref::analysisSrcPathStr, sources.at(0));
    prefWriteDico(pref::analysisSrcPathesDico, QVariantMap({{QStringLiteral("0"), sources.at(1)}}));
    controller->draggedFiles({sources.at(2)});
    EXPECT_TEXT(caption(), QStringLiteral("1/1"));
    ASSERT_TRUE(tools.finishAll(20));
    EXPECT_TEXTS(allSources(rows()), QStringList(sources.at(2)));
    EXPECT_TEXTS(dropped, QStringList({sources.at(0), sources.at(1)}));
    expectIdle();
}

TEST_F(AnalysisQueue, LeftOverOfAnEarlierRunIsOfferedByAFaceThatCanAsk)
{
    const QStringList sources = makeClips(12);
    QVariantMap queue;
    for (int i = 1; i < 12; ++i) {
        queue.insert(QString::number(i), sources.at(i));
    }
    const auto leave = [&] {
        prefWrite(pref::analysisSrcPathStr, sources.at(0));
        prefWriteDico(pref::analysisSrcPathesDico, queue);
        makeController();
        controller->applicationDidFinishLaunching();
        settle();
    };
    leave();
    EXPECT_TRUE(face.alerts.isEmpty()) << "a face that cannot ask";
    face.offers = true;
    face.answer(1);
    leave();
    ASSERT_EQ(face.alerts.size(), 1);
    EXPECT_TRUE(face.alerts.first().text.contains(QStringLiteral("12 clips of the last session were not read")))
        << face.alerts.first().text.toStdString();
    EXPECT_TRUE(tools.launches.isEmpty());
    EXPECT_TRUE(prefRead(pref::analysisSrcPathStr).isEmpty());
    face.answer(0);
    leave();
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXTS(allSources(rows()), sources);
    expectIdle();
}

TEST_F(AnalysisQueue, QueueBeyondTheCompactionLimitLeavesAGap)
{
    const QuietErrorStream quiet;
    QVariantMap queue;
    for (int i = 0; i < 12346; ++i) {
        queue.insert(QString::number(i), QString(QStringLiteral("/none/") + QString::number(i)));
    }
    prefWriteDico(pref::analysisSrcPathesDico, queue);
    setFlag(pref::analysisDeb);
    controller->analysis();
    const QVariantMap left = prefReadDico(pref::analysisSrcPathesDico).value_or(QVariantMap());
    EXPECT_TEXT(prefRead(pref::analysisSrcPathStr), QStringLiteral("/none/0"));
    EXPECT_EQ(left.size(), 12345);
    EXPECT_TEXT(left.value(QStringLiteral("0")).toString(), QStringLiteral("/none/1"));
    EXPECT_TEXT(left.value(QStringLiteral("12343")).toString(), QStringLiteral("/none/12344"));
    EXPECT_FALSE(left.contains(QStringLiteral("12344")));
    EXPECT_TEXT(left.value(QStringLiteral("12345")).toString(), QStringLiteral("/none/12345"));
}

TEST_F(AnalysisQueue, LongQueueIsTakenInItsOrderAndMovedUpNowAndThen)
{
    const QuietErrorStream quiet;
    QVariantMap queue;
    for (int i = 0; i < 700; ++i) {
        queue.insert(QString::number(i), QString(QStringLiteral("/none/") + QString::number(i)));
    }
    prefWriteDico(pref::analysisSrcPathesDico, queue);
    int movedUp = 0;
    for (int i = 0; i < 700; ++i) {
        prefDelete(pref::analysisSrcPathStr);
        controller->analysis();
        ASSERT_EQ(prefRead(pref::analysisSrcPathStr), QStringLiteral("/none/") + QString::number(i));
        const QVariantMap left = prefReadDico(pref::analysisSrcPathesDico).value_or(QVariantMap());
        ASSERT_EQ(left.size(), 699 - i);
        movedUp += left.value(QStringLiteral("0")).toString() == QStringLiteral("/none/") + QString::number(i + 1);
    }
    EXPECT_GT(movedUp, 256) << "a short rest begins at 0 again";
}

TEST_F(AnalysisQueue, GapAtTheEndOfAHugeQueueDoesNotLoop)
{
    const QStringList sources = makeClips(4);
    prefWriteDico(pref::analysisSrcPathesDico, QVariantMap({{QStringLiteral("0"), sources.at(0)},
                                                            {QStringLiteral("1"), sources.at(1)},
                                                            {QStringLiteral("2"), sources.at(2)},
                                                            {QStringLiteral("12345"), sources.at(3)}}));
    setFlag(pref::analysisDeb);
    controller->analysis();
    ASSERT_TRUE(tools.finishAll(20));
    EXPECT_EQ(tools.count(ToolKind::Decode), 4);
    EXPECT_TEXTS(allSources(rows()), sources);
}
