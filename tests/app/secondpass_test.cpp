// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "base/files/fileinfo.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/listconversions.h"
#include "testpaths.h"

#include <QDir>
#include <QFile>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class SecondPass : public ControllerTest
{
protected:
    void begin(int out, int count = 1)
    {
        setAIC(1);
        setPRORES(1);
        sources = makeClips(count);
        addRows(sources);
        for (int i = 0; i < count; ++i) {
            rows().setOut(i, out);
        }
        face.events.clear();
        pressStart();
        output = outputOf(sources.at(0));
    }

    [[nodiscard]] QStringList eventFiles() const
    {
        return QDir(events).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    QStringList sources;
    QString output;
};

struct PassRow {
    const char* name;
    int out;
    int aic;
    int prores;
    bool second;
};

class Passes : public ControllerTest, public testing::WithParamInterface<PassRow>
{
};

const PassRow passRows[] = {
    {"Intermediate", 4, 1, 0, true},   {"IntermediateMissing", 4, 0, 1, false}, {"ProRes", 5, 0, 1, true},
    {"ProResMissing", 5, 1, 0, false}, {"MovieCopy", 3, 1, 1, false},           {"SmallScreen", 0, 1, 1, false},
};

} // namespace

TEST_P(Passes, DependOnFormatAndEncoder)
{
    setAIC(GetParam().aic);
    setPRORES(GetParam().prores);
    addRows(makeClips(2));
    rows().setOut(0, GetParam().out);
    runBatch();
    EXPECT_EQ(tools.count(ToolKind::SecondPass), GetParam().second ? 1 : 0);
    EXPECT_EQ(tools.count(ToolKind::Encode), 2);
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_EQ(QDir(events).entryList(QDir::Files).size(), 2);
    expectIdle();
}

INSTANTIATE_TEST_SUITE_P(SecondPass, Passes, testing::ValuesIn(passRows), rowName<PassRow>);

TEST_F(SecondPass, ReadsTheMovedOutputAndWritesTheFinalName)
{
    begin(5);
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    const FakeTools::Launch launch = tools.current(ToolKind::SecondPass);
    ASSERT_TRUE(launch.launcher);
    const QString master = oldSrcPathStr2DstPathStr(output);
    const QString resources = QStringLiteral(TAVRIX_BUILD_RESOURCES);
    EXPECT_TEXTS(launch.arguments, QStringList({resources + QStringLiteral("/tools/movencoder"), QStringLiteral("-s"),
                                                resources + QStringLiteral("/presets/1280x720p"), master, output}));
    EXPECT_TRUE(itemExists(master));
    EXPECT_FALSE(itemExists(output));
    EXPECT_TEXT(prefReadChildDico(pref::processEncDico, record::dstPathStr), output);
    EXPECT_TEXT(prefReadChildDico(pref::processEncDico, record::purgePathStr1), master);
    EXPECT_TEXT(prefReadChildDico(pref::processEncDico, record::mainEncSrcPathStr), output);
    EXPECT_TEXT(prefReadChildDico(pref::processEncDico, record::out), QStringLiteral("5"));
    // The tool reads what it must know from the file.
    EXPECT_TRUE(readBytes(preferencesPath()).value_or(QByteArray()).contains("purgePathStr1"));
    ASSERT_TRUE(tools.finish(ToolKind::SecondPass));
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_FALSE(itemExists(master));
    EXPECT_TRUE(itemExists(output));
    EXPECT_EQ(resumeLog().count(QStringLiteral("speed ")), 1);
    expectIdle();
}

TEST_F(SecondPass, ProgressIsMeasuredAgainstTheDuration)
{
    begin(4);
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    const FakeTools::Launch launch = tools.current(ToolKind::SecondPass);
    EXPECT_DOUBLE_EQ(model().encTaskProgress.maxValue(), 30);
    EXPECT_DOUBLE_EQ(model().encTaskProgress.doubleValue(), 0);
    launch.launcher->write(QStringLiteral("Processing (15%)"));
    EXPECT_TEXT(model().mainEncProgressPercentStr.stringValue(), QStringLiteral("50 %"));
    launch.launcher->write(QStringLiteral("Processing (31%)"));
    EXPECT_TEXT(model().mainEncProgressPercentStr.stringValue(), QStringLiteral("50 %"));
    launch.launcher->write(QStringLiteral("time=20.00"));
    EXPECT_TEXT(model().mainEncProgressPercentStr.stringValue(), QStringLiteral("50 %"));
}

TEST_F(SecondPass, FirstPassWithoutOutputHasNone)
{
    setAIC(1);
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].kilobytes = -1;
    addRows({source});
    rows().setOut(0, 4);
    pressStart();
    tools.running().last().launcher->write(QStringLiteral("cannot read\n"));
    ASSERT_TRUE(tools.finish(ToolKind::Encode, 1));
    EXPECT_EQ(tools.count(ToolKind::SecondPass), 0);
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_TEXT(rows().row(0).reason, QStringLiteral("cannot read"));
    expectIdle();
}

TEST_F(SecondPass, OutputOfAnEarlierRunIsNotEncodedAgain)
{
    setAIC(1);
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].kilobytes = -1;
    addRows({source});
    rows().setOut(0, 4);
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    ASSERT_TRUE(makeSparseFile(outputOf(source), 777));
    controller->setReplacePolicy(1);
    runBatch();
    EXPECT_EQ(tools.count(ToolKind::SecondPass), 0);
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_EQ(QFile(outputOf(source)).size(), 777 * 1024);
}

TEST_F(SecondPass, FailedFirstLaunchHasNone)
{
    setAIC(1);
    addRows(makeClips(1));
    rows().setOut(0, 4);
    tools.results = {3};
    pressStart();
    settle();
    EXPECT_EQ(tools.count(ToolKind::SecondPass), 0);
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    expectIdle();
}

TEST_F(SecondPass, FailedLaunchFailsTheRowAndRemovesTheIntermediate)
{
    begin(5, 2);
    tools.results = {3};
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceCurrent"));
    EXPECT_TRUE(rows().row(0).reason.contains(QStringLiteral("movencoder: this tool cannot be found")));
    EXPECT_TRUE(eventFiles().isEmpty());
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceSuccess"));
    expectIdle();
}

TEST_F(SecondPass, NotEnoughSpaceForItFailsTheRowWithAnAlert)
{
    begin(4, 2);
    setFreeSpaceForTests(1);
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    EXPECT_EQ(face.count(alertEvent("D_go_echec_disque4")), 1);
    EXPECT_TEXT(rows().row(0).resultat, rowIcon::failure);
    EXPECT_EQ(tools.count(ToolKind::SecondPass), 0);
    EXPECT_TRUE(eventFiles().isEmpty());
    EXPECT_FALSE(resumeLog().contains(QStringLiteral("speed ")));
    EXPECT_TRUE(resumeLog().contains(QStringLiteral("\nfailure             : not enough free space")));
    ASSERT_TRUE(tools.finishAll());
    expectIdle();
}

TEST_F(SecondPass, StopDuringItRemovesOutputAndIntermediate)
{
    begin(5, 2);
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    tools.writeFiles(tools.current(ToolKind::SecondPass));
    EXPECT_EQ(eventFiles().size(), 2);
    pressStop();
    EXPECT_TRUE(eventFiles().isEmpty()) << eventFiles().join(u'|').toStdString();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puce"));
    expectIdle();
}

TEST_F(SecondPass, StopDuringTheFirstPassStartsNone)
{
    begin(5);
    tools.writeFiles(tools.current(ToolKind::Encode));
    pressStop();
    EXPECT_EQ(tools.count(ToolKind::SecondPass), 0);
    EXPECT_TRUE(eventFiles().isEmpty());
    expectIdle();
}

TEST_F(SecondPass, SmallOutputFails)
{
    begin(4);
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    tools.clips[sources.at(0)].kilobytes = 10;
    ASSERT_TRUE(tools.finish(ToolKind::SecondPass));
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_TEXT(rows().row(0).reason,
                QStringLiteral("under 200 kilobytes counts as failed: take a longer part or another format"));
    EXPECT_TRUE(eventFiles().isEmpty());
    expectIdle();
}

TEST_F(SecondPass, ClassicPictureTakesTheLetterboxSettings)
{
    setAIC(1);
    const QString source = clip(QStringLiteral("a.avi"));
    FakeClip& found = tools.clips[source];
    found.wrapper = QStringLiteral("avi");
    found.codec = QStringLiteral("mjpeg");
    found.width = 640;
    found.height = 480;
    addRows({source});
    rows().setOut(0, 4);
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    EXPECT_TRUE(tools.current(ToolKind::SecondPass).arguments.value(2).endsWith(QLatin1String("1280x720pLetterbox")));
}

TEST_F(SecondPass, DropDuringItPausesIt)
{
    begin(4);
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    const FakeTools::Launch launch = tools.current(ToolKind::SecondPass);
    controller->draggedFiles({clip(QStringLiteral("x.mts"))});
    EXPECT_TRUE(launch.launcher->isSuspended());
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    ASSERT_TRUE(tools.finish(ToolKind::Thumbnail));
    EXPECT_FALSE(launch.launcher->isSuspended());
}

TEST_F(SecondPass, FirstPassThatEndsDuringAnAnalysisIsFollowedAfterIt)
{
    begin(4);
    controller->draggedFiles({clip(QStringLiteral("x.mts"))});
    tools.finish(tools.current(ToolKind::Encode));
    settle();
    EXPECT_EQ(tools.count(ToolKind::SecondPass), 0);
    ASSERT_TRUE(tools.finish(ToolKind::Decode));
    ASSERT_TRUE(tools.finish(ToolKind::Thumbnail));
    EXPECT_EQ(tools.count(ToolKind::SecondPass), 1);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    expectIdle();
}

TEST_F(SecondPass, RecordKeepsItsOwnSource)
{
    begin(5);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(sourceOf(0), sources.at(0));
}
