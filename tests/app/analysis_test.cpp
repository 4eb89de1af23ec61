// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysisfixture.h"

#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "process/notificationcenter.h"
#include "testpaths.h"

using namespace tavrix;
using namespace tavrix::test;

TEST_F(Analysis, RejectedSourceBetweenTwoAcceptedOnes)
{
    const QStringList sources = makeClips(3);
    tools.clips[sources.at(1)].width = 1920;
    tools.clips[sources.at(1)].height = 1080;
    addRows(sources);
    EXPECT_TEXTS(allSources(rows()), QStringList({sources.at(0), sources.at(2)}));
    EXPECT_TEXT(icons(), QStringLiteral("puce puce"));
    EXPECT_EQ(rows().row(1).order, 2);
    EXPECT_TEXTS(rejected, QStringList(sources.at(1)));
    EXPECT_TEXTS(reasons, QStringList(QStringLiteral("1920x1080 is larger than 1280x720")));
    EXPECT_TRUE(log.contains(QStringLiteral("analysisRetainedStr release != AVCHD-Lite")));
    EXPECT_TRUE(log.contains(QStringLiteral("forget to release previous task? (analysisTaskClass)")));
    EXPECT_TRUE(model().drawer.isOpen());
    EXPECT_TEXTS(face.events, QStringList(QStringLiteral("ecran:b 320")));
    expectIdle();
}

TEST_F(Analysis, CommandLinesAreThoseOfTheTool)
{
    const QString source = clip(QStringLiteral("a.mts"));
    addRows({source});
    ASSERT_EQ(tools.launches.size(), 2);
    const QString tool = QStringLiteral(TAVRIX_BUILD_RESOURCES) + QStringLiteral("/tools/ffmpeg");
    const QString temporary = getTMPFOLDER();
    EXPECT_TEXTS(
        tools.launches.at(0).arguments,
        QStringList({tool, QStringLiteral("-v"), QStringLiteral("2"), QStringLiteral("-i"), source,
                     QStringLiteral("-vframes"), QStringLiteral("10"), QStringLiteral("-s"), QStringLiteral("640x480"),
                     QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"), QStringLiteral("-an"), QStringLiteral("-f"),
                     QStringLiteral("yuv4mpegpipe"), QStringLiteral("-y"), temporary + QStringLiteral("frame.yuv")}));
    EXPECT_TEXTS(tools.launches.at(1).arguments,
                 QStringList({tool, QStringLiteral("-vframes"), QStringLiteral("1"), QStringLiteral("-i"), source,
                              QStringLiteral("-s"), QStringLiteral("320x180"), QStringLiteral("-y"),
                              temporary + QStringLiteral("a.mts.jpg")}));
    EXPECT_FALSE(itemExists(temporary + QStringLiteral("frame.yuv")));
}

TEST_F(Analysis, RowHoldsTheRecordAndTheThumbnail)
{
    const QString source = clip(QStringLiteral("a.avi"));
    FakeClip& found = tools.clips[source];
    found.wrapper = QStringLiteral("avi");
    found.codec = QStringLiteral("mjpeg");
    found.width = 640;
    found.height = 480;
    model().prefCheckMatrix.setSelectedSegment(2);
    addRows({source});
    ASSERT_EQ(rows().count(), 1);
    const BatchRow& row = rows().row(0);
    const QString image = getTMPFOLDER() + QStringLiteral("a.avi.jpg");
    EXPECT_TEXT(row.src, QStringLiteral("a.avi"));
    EXPECT_EQ(row.out, 2);
    EXPECT_EQ(row.order, 1);
    EXPECT_TEXT(row.img, image);
    EXPECT_TEXT(row.dico.value(record::imgPathStr).toString(), image);
    EXPECT_TEXT(row.dico.value(record::mainEncSrcPathStr).toString(), source);
    EXPECT_FLOAT_EQ(row.dico.value(record::v0_aspect).toFloat(), 1.33F);
    EXPECT_EQ(row.dico.value(record::out).toInt(), 2);
    EXPECT_EQ(row.dico.value(record::w_duration).toInt(), 30);
    EXPECT_TEXT(row.dico.value(record::v0_codec).toString(), QStringLiteral("mjpeg"));
    EXPECT_TRUE(tools.launches.at(1).arguments.contains(QStringLiteral("240x180")));
}

TEST_F(Analysis, MissingThumbnailLeavesARowWithoutImage)
{
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].image = false;
    addRows({source});
    ASSERT_EQ(rows().count(), 1);
    EXPECT_TEXT(rows().row(0).img, QString());
    EXPECT_FALSE(rows().row(0).dico.contains(record::imgPathStr));
    EXPECT_TEXT(prefRead(pref::imgPathStr), QStringLiteral(""));
}

TEST_F(Analysis, DamagedThumbnailIsNoImageButIsKnown)
{
    const QString source = clip(QStringLiteral("a.mts"));
    controller->draggedFiles({source});
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    const FakeTools::Launch thumbnail = tools.current(ToolKind::Thumbnail);
    ASSERT_TRUE(thumbnail.launcher);
    ASSERT_TRUE(writeBytes(thumbnail.output(), "no picture"));
    thumbnail.launcher->end(0);
    settle();
    EXPECT_TEXT(rows().row(0).img, QString());
    EXPECT_TEXT(rows().row(0).dico.value(record::imgPathStr).toString(), thumbnail.output());
}

TEST_F(Analysis, TwoSourcesOfOneNameGetThumbnailsOfTheirOwn)
{
    addRows({clip(QStringLiteral("one/a.mts")), clip(QStringLiteral("two/a.mts"))});
    ASSERT_EQ(rows().count(), 2);
    const QString second = rows().row(1).img;
    EXPECT_TEXT(rows().row(0).img, getTMPFOLDER() + QStringLiteral("a.mts.jpg"));
    EXPECT_TRUE(second.startsWith(getTMPFOLDER() + QStringLiteral("a.mts_"))) << second.toStdString();
    EXPECT_TRUE(second.endsWith(QLatin1String(".jpg")));
    EXPECT_FALSE(second.mid(getTMPFOLDER().size()).contains(u'-'));
}

TEST_F(Analysis, CaptionCountsWhileTheTotalStays)
{
    const QStringList sources = makeClips(5);
    tools.clips[sources.at(2)].letter = QStringLiteral("t");
    QStringList captions;
    QObject::connect(controller.get(), &appDelegate::analysisStarted, controller.get(),
                     [&](const QString&, int number, int total) {
                         captions << QString::number(number) + u'/' + QString::number(total);
                         EXPECT_TEXT(caption(), captions.last());
                     });
    addRows(sources);
    EXPECT_TEXT(captions.join(u' '), QStringLiteral("1/5 2/5 3/5 4/5 5/5"));
    EXPECT_EQ(rows().count(), 4);
    EXPECT_TEXTS(reasons, QStringList(QStringLiteral("the picture is interlaced")));
}

TEST_F(Analysis, StopDuringTheDecodeMakesNoRow)
{
    const QStringList sources = makeClips(3);
    controller->draggedFiles(sources);
    EXPECT_FALSE(model().analyseStopBt.isHidden());
    model().analyseStopBt.setSelectedSegment(0);
    controller->iba_analysisStopBt();
    EXPECT_EQ(model().analysisStopInt.intValue(), 1);
    EXPECT_EQ(model().analyseStopBt.selectedSegment(), -1);
    ASSERT_EQ(tools.running().size(), 1);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TRUE(log.contains(QStringLiteral("analysis stop = 1")));
    EXPECT_EQ(tools.launches.size(), 1);
    EXPECT_EQ(rows().count(), 0);
    EXPECT_TRUE(rejected.isEmpty());
    expectIdle();
}

TEST_F(Analysis, StopDuringTheThumbnailMakesARowNamedCancel)
{
    controller->draggedFiles(makeClips(2));
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    controller->iba_analysisStopBt();
    ASSERT_TRUE(tools.finishAll());
    ASSERT_EQ(rows().count(), 1);
    EXPECT_TEXT(rows().row(0).src, QStringLiteral("cancel"));
    EXPECT_TEXT(sourceOf(0), QStringLiteral("cancel"));
    expectIdle();
}

TEST_F(Analysis, SecondStopDuringAThumbnailAddsNoSecondCancelRow)
{
    for (const char* name : {"a.mts", "b.mts"}) {
        controller->draggedFiles({clip(QString::fromUtf8(name))});
        ASSERT_TRUE(tools.finish(ToolKind::Decode));
        controller->iba_analysisStopBt();
        ASSERT_TRUE(tools.finishAll());
    }
    EXPECT_EQ(rows().count(), 1);
    expectIdle();
}

TEST_F(Analysis, HeaderLeftByAStoppedDecodeDoesNotJudgeTheNextSource)
{
    const QStringList sources = makeClips(2);
    tools.clips[sources.at(0)].letter = QStringLiteral("t");
    controller->draggedFiles({sources.at(0)});
    controller->iba_analysisStopBt();
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TRUE(itemExists(getTMPFOLDER() + QStringLiteral("frame.yuv")));
    tools.clips[sources.at(1)].letter = QString();
    addRows({sources.at(1)});
    EXPECT_EQ(rows().count(), 1);
}

TEST_F(Analysis, UnknownFormatStillGetsARow)
{
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].text = source + QStringLiteral(": Unknown format\n");
    tools.clips[source].letter = QString();
    controller->draggedFiles({source});
    ASSERT_TRUE(tools.finish(ToolKind::Decode, 1));
    EXPECT_TRUE(log.contains(QStringLiteral("task failed, error  :-( 1")));
    ASSERT_EQ(rows().count(), 1);
    EXPECT_FLOAT_EQ(rows().row(0).dico.value(record::v0_aspect).toFloat(), 1.77F);
    EXPECT_TEXT(sourceOf(0), source);
    EXPECT_FALSE(rows().row(0).dico.contains(record::v0_codec));
    EXPECT_EQ(tools.launches.size(), 1);
    expectIdle();
}

TEST_F(Analysis, OtherFailureTextsGiveNoRow)
{
    for (const char* output : {"a.mts: No such file or directory\n", "", " "}) {
        const QString source = clip(QStringLiteral("a.mts"));
        tools.clips[source].text = QString::fromUtf8(output);
        tools.clips[source].letter = QString();
        controller->draggedFiles({source});
        ASSERT_TRUE(tools.finish(ToolKind::Decode, 1));
        EXPECT_EQ(rows().count(), 0) << output;
        expectIdle();
    }
    ASSERT_EQ(reasons.size(), 3);
    EXPECT_TEXT(reasons.at(0), QStringLiteral("no video that can be read (a.mts: No such file or directory)"));
    // Without a word it is no fault of the clip's.
    for (const QString& mute : reasons.mid(1)) {
        EXPECT_TRUE(mute.startsWith(QStringLiteral("ffmpeg ended unexpectedly: "))) << mute.toStdString();
    }
}

TEST_F(Analysis, NonZeroEndOfAGoodRunIsTreatedLikeAGoodOne)
{
    controller->draggedFiles({clip(QStringLiteral("a.mts"))});
    ASSERT_TRUE(tools.finish(ToolKind::Decode, 1));
    ASSERT_TRUE(tools.finish(ToolKind::Thumbnail, 1));
    EXPECT_EQ(rows().count(), 1);
    expectIdle();
}

TEST_F(Analysis, EmptyArgumentListStartsNothing)
{
    EXPECT_FALSE(controller->taskLauncherAnalysisStart({}));
    EXPECT_TRUE(tools.launches.isEmpty());
}

TEST_F(Analysis, DeveloperSettingShowsWhatIsLeft)
{
    setDEBUGDEVForTests(1);
    addRows(makeClips(2));
    EXPECT_EQ(face.count(QStringLiteral("alert:reliquat = 1")), 1);
    EXPECT_EQ(face.count(QStringLiteral("alert:reliquat = 0")), 1);
    setDEBUGDEVForTests(0);
}
