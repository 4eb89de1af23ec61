// SPDX-License-Identifier: GPL-3.0-or-later
#include "encodingfixture.h"
#include "testpaths.h"

using namespace tavrix;
using namespace tavrix::test;

TEST_F(Encoding, ThreeRowsOneAfterTheOther)
{
    const QStringList sources = makeClips(3);
    addRows(sources);
    face.events.clear();
    pressStart();
    EXPECT_EQ(model().batchEncGoBt.state(), 1);
    EXPECT_FALSE(model().batchEncGoBt.isEnabled());
    for (int row = 0; row < 3; ++row) {
        EXPECT_EQ(controller->encBatchInprogressRowIdentification(), row);
        EXPECT_TEXT(rows().row(row).resultat, rowIcon::current);
        EXPECT_TEXT(model().mainEncProgressCaptionStr.stringValue(), rows().row(row).src);
        EXPECT_FALSE(model().encStopBt.isHidden());
        EXPECT_EQ(tools.running().size(), 1);
        EXPECT_TEXT(tools.running().last().source(), sources.at(row));
        EXPECT_TEXT(tools.running().last().output(), outputOf(sources.at(row)));
        ASSERT_TRUE(tools.finish(ToolKind::Encode));
    }
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess puceSuccess"));
    EXPECT_TEXT(rows().row(1).output, outputOf(sources.at(1)));
    EXPECT_TEXT(model().mainEncProgressCaptionStr.stringValue(), QString());
    expectNormalEnd();
}

TEST_F(Encoding, SummaryLogHoldsABlockPerRow)
{
    const QStringList sources = makeClips(2);
    addRows(sources);
    runBatch();
    const QStringList lines = resumeLog().split(u'\n');
    ASSERT_EQ(lines.size(), 17);
    EXPECT_TRUE(lines.at(0).startsWith(QLatin1String("start date    : ")));
    EXPECT_TRUE(readBytes(logResumePathStr())->startsWith("\xEF\xBB\xBFstart date"));
    for (int row = 0; row < 2; ++row) {
        const qsizetype at = 1 + row * 8;
        EXPECT_TEXT(lines.at(at), QStringLiteral("----------"));
        EXPECT_TEXT(lines.at(at + 1), QStringLiteral(""));
        EXPECT_TEXT(lines.at(at + 2), QStringLiteral("source              : ") + sources.at(row));
        EXPECT_TEXT(lines.at(at + 3), QStringLiteral("destination         : ") + outputOf(sources.at(row)));
        EXPECT_TEXT(lines.at(at + 4), QStringLiteral("format              : 3"));
        EXPECT_TRUE(lines.at(at + 5).startsWith(QLatin1String("speed               : real time / ")));
        EXPECT_TRUE(lines.at(at + 6).startsWith(QLatin1String("date                : ")));
        EXPECT_TEXT(lines.at(at + 7), QStringLiteral("(made by https://tavrix.example/)"));
    }
}

TEST_F(Encoding, StartWithAnEmptyListDoesNothing)
{
    controller->draggedFiles({});
    pressStart();
    EXPECT_TRUE(face.events.isEmpty());
    expectIdle();
}

TEST_F(Encoding, SecondBatchEncodesAllRowsAgain)
{
    addRows(makeClips(2));
    runBatch();
    face.otherwise = [](const AlertRequest&) {
        return AlertOutcome{0, false};
    };
    runBatch();
    EXPECT_EQ(tools.count(ToolKind::Encode), 4);
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_EQ(ends, 2);
    expectIdle();
}

TEST_F(Encoding, ProgressIsShownAsTheToolReportsIt)
{
    addRows(makeClips(1));
    pressStart();
    const QPointer<FakeLauncher> launcher = tools.running().last().launcher;
    EXPECT_FALSE(model().encTaskProgress.isIndeterminate());
    EXPECT_DOUBLE_EQ(model().encTaskProgress.maxValue(), 30);
    struct Step {
        const char* text;
        const char* percent;
        double value;
    };
    // Half a percent goes to the even number; what lies outside of the clip is no progress.
    for (const Step& step :
         {Step{"no number", "", 0}, Step{"frame=1 time=3.00 bitrate=1", "10 %", 3}, Step{"time=3.75", "12 %", 3.75},
          Step{"time=31.00", "12 %", 3.75}, Step{"time=0.00", "12 %", 3.75}, Step{"time=-4", "12 %", 3.75},
          Step{"time=30.00", "100 %", 30}}) {
        launcher->write(QString::fromUtf8(step.text));
        EXPECT_TEXT(model().mainEncProgressPercentStr.stringValue() + QStringLiteral(""),
                    QString::fromUtf8(step.percent) + QStringLiteral(""));
        EXPECT_NEAR(model().encTaskProgress.doubleValue(), step.value, 1e-6) << step.text;
    }
    launcher->end(0);
    settle();
    EXPECT_DOUBLE_EQ(model().encTaskProgress.doubleValue(), 0);
    EXPECT_TRUE(model().mainEncProgressPercentStr.stringValue().isEmpty());
}

TEST_F(Encoding, UnknownDurationShowsNoPercentage)
{
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].duration = QStringLiteral("N/A");
    addRows({source});
    pressStart();
    tools.running().last().launcher->write(QStringLiteral("time=3.00\r"));
    EXPECT_TRUE(model().mainEncProgressPercentStr.stringValue().isEmpty());
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}

TEST_F(Encoding, OutputsBelowTwoHundredKilobytesFailAndAreRemoved)
{
    const QStringList sources = makeClips(4);
    const int sizes[] = {0, 199, 200, -1};
    for (int i = 0; i < 4; ++i) {
        tools.clips[sources.at(i)].kilobytes = sizes[i];
    }
    addRows(sources);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceFailure puceSuccess puceFailure"));
    EXPECT_TEXT(rows().row(0).reason,
                QStringLiteral("under 200 kilobytes counts as failed: take a longer part or another format"));
    EXPECT_TEXT(rows().row(3).reason, QStringLiteral("the encoder wrote no output"));
    EXPECT_FALSE(itemExists(outputOf(sources.at(0))));
    EXPECT_FALSE(itemExists(outputOf(sources.at(1))));
    EXPECT_TRUE(itemExists(outputOf(sources.at(2))));
    expectNormalEnd();
}

TEST_F(Encoding, FailureReasonStandsOnALineOfItsOwnInTheSummaryLog)
{
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].kilobytes = -1;
    addRows({source});
    pressStart();
    tools.running().last().launcher->write(QStringLiteral("frame=1 time=1.00\na.mts: Unknown encoder\n"));
    ASSERT_TRUE(tools.finish(ToolKind::Encode, 1));
    EXPECT_TEXT(rows().row(0).reason, QStringLiteral("a.mts: Unknown encoder"));
    EXPECT_TRUE(resumeLog().endsWith(QLatin1String("\nfailure             : a.mts: Unknown encoder\n")))
        << resumeLog().toStdString();
}

TEST_F(Encoding, NonZeroEndIsJudgedByTheOutput)
{
    addRows(makeClips(1));
    pressStart();
    const FakeTools::Launch launch = tools.running().last();
    launch.launcher->write(tools.writeFiles(launch));
    launch.launcher->end(1);
    settle();
    EXPECT_TRUE(log.contains(QStringLiteral("task failed, error  :-( 1")));
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}

TEST_F(Encoding, OutputOfAnEarlierRunIsNoResultOfAFailedEncode)
{
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].kilobytes = -1;
    addRows({source});
    const QString output = outputOf(source);
    folder.makeFolder(QStringLiteral("destination/Tavrix events"));
    ASSERT_TRUE(makeSparseFile(output, 500));
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Encode, 1));
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_TRUE(itemExists(output));
}

TEST_F(Encoding, FailedLaunchFailsTheRowAndTheNextOneFollows)
{
    const QStringList sources = makeClips(3);
    addRows(sources);
    face.events.clear();
    tools.results = {3, 0, 3};
    pressStart();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceCurrent puce"));
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceSuccess puceFailure"));
    EXPECT_TEXT(rows().row(0).reason,
                QStringLiteral(TAVRIX_BUILD_RESOURCES) +
                    QStringLiteral("/tools/ffmpeg: this tool cannot be found; reinstall the program"));
    EXPECT_EQ(face.count(QStringLiteral("beep")), 2);
    // The beep belongs to the launch, so it sounds before the end is shown.
    EXPECT_TEXT(face.events.value(0), QStringLiteral("beep"));
    EXPECT_LT(face.events.lastIndexOf(QStringLiteral("beep")), face.events.indexOf(endSheet()));
    EXPECT_TRUE(log.contains(QStringLiteral("Erreur au lancement = 3")));
    expectNormalEnd();
}

TEST_F(Encoding, ManyRowsThatCannotBeLaunchedDoNotGrowTheStack)
{
    const QuietErrorStream quiet;
    constexpr int count = 300;
    const QStringList sources = makeClips(count);
    for (const QString& source : sources) {
        appendRow(source);
    }
    tools.results = std::deque<int>(count, 3);
    EXPECT_LE(stackBetweenRows(), 4096U);
    EXPECT_EQ(tools.launches.size(), count);
    expectNormalEnd();
}

TEST_F(Encoding, ForgottenLauncherIsLogged)
{
    addRows(makeClips(1));
    pressStart();
    EXPECT_TRUE(controller->taskLauncherEncStart_progressMaxValueFloat_parseInt({QStringLiteral("/x/ffmpeg")}, 0, 0));
    EXPECT_TRUE(log.contains(QStringLiteral("forget to release previous task?")));
    EXPECT_FALSE(controller->taskLauncherEncStart_progressMaxValueFloat_parseInt({}, 0, 0));
}
