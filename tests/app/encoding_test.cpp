#include "controllertest.h"

#include "app/logs.h"
#include "base/filesizes.h"
#include "base/format.h"
#include "base/preferences.h"
#include "base/settings.h"

#include <QFile>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

const QString end = QStringLiteral("sheet:All done: the batch has ended");

class Encoding : public ControllerTest
{
protected:
    Encoding()
    {
        QObject::connect(controller.get(), &appDelegate::batchEnded, controller.get(), [this](bool stopped) {
            ++ends;
            stoppedEnds += stopped ? 1 : 0;
        });
    }

    void expectNormalEnd()
    {
        EXPECT_EQ(ends, 1);
        EXPECT_EQ(stoppedEnds, 0);
        EXPECT_TRUE(log.contains(QStringLiteral("enc fini :-)")));
        const qsizetype sheet = face.events.indexOf(end);
        EXPECT_GE(sheet, 0);
        EXPECT_EQ(face.count(end), 1);
        EXPECT_TEXT(face.events.value(sheet + 1), QStringLiteral("open:") + events);
        EXPECT_TEXT(prefRead(pref::encCurrentProcessingFile), QStringLiteral(""));
        expectIdle();
    }

    int ends = 0;
    int stoppedEnds = 0;
};

} // namespace

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
    tools.running().last().launcher->write(QStringLiteral("time=3.00"));
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
    EXPECT_TEXT(rows().row(0).reason, QStringLiteral("the output is smaller than 200 kilobytes and was removed"));
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
    tools.running().last().launcher->write(QStringLiteral("frame=1 time=1.00\na.mts: Permission denied\n"));
    ASSERT_TRUE(tools.finish(ToolKind::Encode, 1));
    EXPECT_TEXT(rows().row(0).reason, QStringLiteral("a.mts: Permission denied"));
    EXPECT_TRUE(resumeLog().endsWith(QLatin1String("\nfailure             : a.mts: Permission denied\n")))
        << resumeLog().toStdString();
}

TEST_F(Encoding, NonZeroEndIsJudgedByTheOutput)
{
    addRows(makeClips(1));
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Encode, 1));
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
    EXPECT_LT(face.events.lastIndexOf(QStringLiteral("beep")), face.events.indexOf(end));
    EXPECT_TRUE(log.contains(QStringLiteral("Erreur au lancement = 3")));
    expectNormalEnd();
}

TEST_F(Encoding, ManyRowsThatCannotBeLaunchedDoNotGrowTheStack)
{
    const QuietErrorStream quiet;
    constexpr int count = 300;
    const QStringList sources = makeClips(count);
    for (const QString& source : sources) {
        BatchRow row;
        row.out = 3;
        row.resultat = rowIcon::pending;
        row.dico = {{record::mainEncSrcPathStr, source}, {record::v0_codec, QStringLiteral("h264")}};
        rows().append(row);
    }
    tools.results = std::deque<int>(count, 3);
    quintptr lowest = 0;
    quintptr highest = 0;
    QObject::connect(controller.get(), &appDelegate::rowFinished, controller.get(), [&] {
        const auto here = reinterpret_cast<quintptr>(__builtin_frame_address(0));
        lowest = lowest == 0 ? here : qMin(lowest, here);
        highest = qMax(highest, here);
    });
    pressStart();
    settle();
    EXPECT_EQ(tools.launches.size(), count);
    EXPECT_LE(highest - lowest, 4096U);
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

TEST_F(Encoding, VanishedFirstSource)
{
    const QStringList sources = makeClips(3);
    addRows(sources);
    QFile::remove(sources.at(0));
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_EQ(face.count(QStringLiteral("alert:A clip has disappeared")), 1);
    EXPECT_EQ(rows().row(0).order, 1);
    expectNormalEnd();
}

TEST_F(Encoding, VanishedMiddleSource)
{
    const QStringList sources = makeClips(3);
    addRows(sources);
    QFile::remove(sources.at(1));
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_TEXT(sourceOf(1), sources.at(2));
    // The finish of the vanished row must not be taken for a second finish of the row before it.
    EXPECT_EQ(resumeLog().count(QStringLiteral("speed ")), 2);
    EXPECT_EQ(tools.count(ToolKind::Encode), 2);
    expectNormalEnd();
}

TEST_F(Encoding, VanishedLastSource)
{
    const QStringList sources = makeClips(3);
    addRows(sources);
    QFile::remove(sources.at(2));
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_EQ(resumeLog().count(QStringLiteral("speed ")), 2);
    expectNormalEnd();
}

TEST_F(Encoding, VanishedOnlySource)
{
    const QStringList sources = makeClips(1);
    addRows(sources);
    const QString image = rows().row(0).img;
    EXPECT_TRUE(itemExists(image));
    QFile::remove(sources.at(0));
    runBatch();
    EXPECT_EQ(rows().count(), 0);
    EXPECT_FALSE(model().drawer.isOpen());
    EXPECT_FALSE(itemExists(image));
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_FALSE(resumeLog().contains(QStringLiteral("speed ")));
    expectNormalEnd();
}

TEST_F(Encoding, AllSourcesVanished)
{
    const QStringList sources = makeClips(4);
    addRows(sources);
    for (const QString& source : sources) {
        QFile::remove(source);
    }
    runBatch();
    EXPECT_EQ(rows().count(), 0);
    EXPECT_EQ(face.count(QStringLiteral("alert:A clip has disappeared")), 4);
    expectNormalEnd();
}

TEST_F(Encoding, SourceThatVanishesDuringTheBatch)
{
    const QStringList sources = makeClips(3);
    addRows(sources);
    pressStart();
    QFile::remove(sources.at(1));
    QFile::remove(sources.at(2));
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    expectNormalEnd();
}

TEST_F(Encoding, MissingSourceAlertNamesTheFileAndCloses)
{
    const QString source = clip(QStringLiteral("50% <b>x %@.mts"));
    addRows({source});
    QFile::remove(source);
    runBatch();
    const AlertRequest& alert = face.alerts.first();
    EXPECT_TRUE(alert.text.contains(QStringLiteral("50% <b>x %@.mts"))) << alert.text.toStdString();
    EXPECT_EQ(alert.seconds, 10);
    EXPECT_TEXTS(alert.buttons, QStringList(QStringLiteral("OK")));
}

TEST_F(Encoding, NotEnoughSpaceFailsTheRow)
{
    const QStringList sources = makeClips(2);
    addRows(sources);
    setFreeSpaceForTests(1);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceFailure"));
    EXPECT_EQ(face.count(QStringLiteral("alert:Keep")), 2);
    EXPECT_TEXT(face.alerts.first().text, QStringLiteral("Keep"));
    EXPECT_EQ(face.alerts.first().seconds, 0);
    EXPECT_FALSE(resumeLog().contains(QStringLiteral("----------")));
    EXPECT_TEXT(rows().row(0).reason, QStringLiteral("not enough free space in the destination"));
    expectNormalEnd();
}

TEST_F(Encoding, ExactlyEnoughSpaceIsEnough)
{
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].duration = QStringLiteral("00:01:00.00");
    addRows({source});
    rows().setOut(0, 4);
    setFreeSpaceForTests(6);
    pressStart();
    EXPECT_EQ(tools.running().size(), 1);
    ASSERT_TRUE(tools.finishAll());
    setFreeSpaceForTests(5);
    QFile::remove(rows().row(0).output);
    pressStart();
    EXPECT_TRUE(tools.running().isEmpty());
}

TEST_F(Encoding, RowWithoutAPathGetsNoCommand)
{
    addRows(makeClips(1));
    BatchRow row;
    row.out = 3;
    row.dico.insert(record::v0_codec, QStringLiteral("h264"));
    rows().append(row);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    expectNormalEnd();
}

TEST_F(Encoding, NoDestinationAsksForAFolder)
{
    addRows(makeClips(1));
    face.events.clear();
    model().mainEncDstPathStr.setStringValue(QString());
    pressStart();
    EXPECT_TEXTS(face.events,
                 QStringList({QStringLiteral("alert:Please choose a destination folder"), QStringLiteral("choose")}));
    EXPECT_EQ(model().batchEncGoBt.state(), 0);
    EXPECT_TRUE(model().batchEncGoBt.isEnabled());
    face.folders << destination;
    runBatch();
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), destination);
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}

TEST_F(Encoding, MissingDestinationFallsBackToTheDefault)
{
    addRows(makeClips(1));
    prefWrite(pref::prefDefautDstPathStr, destination);
    model().mainEncDstPathStr.setStringValue(folder.path(QStringLiteral("gone")));
    face.events.clear();
    runBatch();
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), destination);
    EXPECT_EQ(face.count(QStringLiteral("choose")), 0);
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
}

TEST_F(Encoding, MissingDestinationWithoutDefaultAsks)
{
    addRows(makeClips(1));
    model().mainEncDstPathStr.setStringValue(folder.path(QStringLiteral("gone")));
    face.events.clear();
    pressStart();
    EXPECT_TEXTS(face.events, QStringList({QStringLiteral("alert:The destination folder cannot be found"),
                                           QStringLiteral("choose")}));
    EXPECT_TRUE(model().mainEncDstPathStr.stringValue().isEmpty());
    EXPECT_TRUE(tools.running().isEmpty());
    EXPECT_TRUE(model().batchEncGoBt.isEnabled());
}

TEST_F(Encoding, DestinationClearedDuringTheBatchFailsTheNextRow)
{
    addRows(makeClips(2));
    pressStart();
    model().mainEncDstPathStr.setStringValue(QString());
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceFailure"));
    EXPECT_FALSE(itemExists(QStringLiteral("/Tavrix events")));
    EXPECT_EQ(face.count(QStringLiteral("sheet:Please choose a destination folder")), 1);
    EXPECT_EQ(ends, 1);
    expectIdle();
}

TEST_F(Encoding, DestinationChangedDuringTheBatchIsUsedByTheNextRow)
{
    addRows(makeClips(2));
    pressStart();
    const QString other = folder.makeFolder(QStringLiteral("other"));
    model().mainEncDstPathStr.setStringValue(other);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TRUE(rows().row(0).output.startsWith(destination));
    EXPECT_TRUE(rows().row(1).output.startsWith(other));
}

TEST_F(Encoding, EventsFolderThatCannotBeMadeFailsTheRows)
{
    folder.makeFile(QStringLiteral("destination/Tavrix events"), "in the way");
    addRows(makeClips(2));
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puceFailure"));
    EXPECT_TEXT(rows().row(0).reason, events + QStringLiteral(": this folder cannot be made or written"));
    EXPECT_EQ(ends, 1);
    expectIdle();
}

TEST_F(Encoding, FormatOfTheRowIsTheOneInForce)
{
    addRows(makeClips(2));
    rows().setOut(0, 0);
    rows().setOut(1, 1);
    runBatch();
    EXPECT_TRUE(rows().row(0).output.endsWith(QLatin1String(".mp4")));
    EXPECT_TRUE(rows().row(1).output.endsWith(QLatin1String(".m4v")));
    EXPECT_TRUE(resumeLog().contains(QStringLiteral("format              : 1\n")));
}

TEST_F(Encoding, NameThatIsTooLongForTheFileSystemIsCut)
{
    const QString source = clip(QString(240, u'x') + QStringLiteral(".mts"));
    addRows({source});
    ASSERT_EQ(rows().count(), 1);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_EQ(rows().row(0).output.mid(rows().row(0).output.lastIndexOf(u'/') + 1).toUtf8().size(), 255);
}

TEST_F(Encoding, PreviousRowRemovedMeanwhileStartsAgainAtTheFirst)
{
    addRows(makeClips(3));
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    EXPECT_EQ(controller->encBatchInprogressRowIdentification(), 1);
    rows().setSelectedRow(0);
    controller->encBatchRemove(&model().batchEncRemoveBt);
    EXPECT_EQ(controller->encBatchInprogressRowIdentification(), 0);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_EQ(tools.count(ToolKind::Encode), 3);
    expectNormalEnd();
}
