// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"
#include "memoryhome.h"
#include "randomworld.h"

#include "app/logs.h"
#include "base/dialogue/runloopgate.h"
#include "base/files/fileinfo.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/log.h"
#include "process/notificationcenter.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <array>
#include <random>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

constexpr int sequences = 5000;
constexpr unsigned firstSeed = 20101;
constexpr int recoverySources = 2;
// A step that called itself for every row or source would soon be beyond this.
constexpr quintptr deepestStack = quintptr{256} * 1024;

// One life of the controller, with everything that can happen to it happening at random.
class Life
{
public:
    Life(const RandomWorld& world, unsigned seed) : world_(world), random_(seed), seed_(seed)
    {
        world_.renew();
        resetProcessState(world_.folder.path(QStringLiteral("temporary")) + u'/');
        setAIC(1);
        setPRORES(1);
        chooseClips();
        face_.otherwise = [this](const AlertRequest& request) {
            return answer(request);
        };
        face_.whileOpen = [this](const AlertRequest&) {
            happenUnderAnAlert();
        };
        setLogSink([this](const QString&) { noteDepth(); });
        controller_.setLauncherFactory(tools_.factory());
        controller_.encGoRazGui();
        controller_.draggedFiles({});
        model().prefCheckMatrix.setSelectedSegment(3);
        model().mainEncDstPathStr.setStringValue(world_.folder.path(QStringLiteral("destination")));
    }

    ~Life()
    {
        setLogSink({});
        setFreeSpaceForTests(-1);
    }

    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

    void live()
    {
        const int steps = below(4) == 0 ? 25 : 3 + below(12);
        for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
            base_ = reinterpret_cast<quintptr>(__builtin_frame_address(0));
            happen();
            if (below(5) != 0) {
                settle();
            }
            checkAlways();
        }
        comeToRest();
    }

private:
    WindowModel& model() { return controller_.model(); }
    BatchList& rows() { return model().encBatchArrayController; }
    int below(int limit) { return randomBelow(random_, limit); }
    QString anySource() { return world_.sources.at(below(sourceCount)); }

    void chooseClips()
    {
        for (const QString& source : world_.sources) {
            tools_.clips.insert(source, anyClip(random_));
        }
    }

    void noteDepth()
    {
        const auto here = reinterpret_cast<quintptr>(__builtin_frame_address(0));
        if (base_ > here && base_ - here > depth_) {
            depth_ = base_ - here;
        }
    }

    AlertOutcome answer(const AlertRequest& request)
    {
        const int choices = static_cast<int>(request.buttons.size());
        const bool timed = request.seconds > 0 && below(4) == 0;
        return {timed ? -1 : below(choices), below(3) == 0};
    }

    // Only what can arrive while an application-modal alert is up; all but the end of the session must wait.
    void happenUnderAnAlert()
    {
        const qsizetype launches = tools_.launches.size();
        switch (below(6)) {
        case 0:
            endAChild();
            break;
        case 1:
            controller_.dragNDropPerformDrag(nullptr, {anySource()});
            break;
        case 2:
            controller_.applicationOpenFiles({anySource()});
            settleUnderAnAlert();
            break;
        case 3:
            QFile::remove(anySource());
            break;
        case 4:
            if (below(10) == 0) {
                controller_.quitWithoutQuestion();
            }
            break;
        default:
            break;
        }
        EXPECT_EQ(tools_.launches.size(), launches) << "a step ran under an open alert";
    }

    void endAChild()
    {
        const QList<FakeTools::Launch> running = tools_.running();
        if (running.isEmpty()) {
            return;
        }
        const FakeTools::Launch& launch = running.at(below(static_cast<int>(running.size())));
        switch (below(8)) {
        case 0:
            launch.launcher->end(0);
            break;
        case 1:
            launch.launcher->end(1);
            break;
        case 2:
            tools_.writeFiles(launch);
            launch.launcher->end(9);
            break;
        default:
            tools_.finish(launch, below(6) == 0 ? 1 : 0);
        }
    }

    void writeAChunk()
    {
        const QList<FakeTools::Launch> running = tools_.running();
        if (running.isEmpty()) {
            return;
        }
        static const std::array<const char*, 6> chunks = {"frame=1 time=12.50 bitrate=1",
                                                          "Processing (20%)",
                                                          "time=1e999 time=nan",
                                                          "Input #0, avi, from 'x':\n",
                                                          "\n",
                                                          "x: No space left on device\n"};
        running.at(below(static_cast<int>(running.size())))
            .launcher->write(QString::fromLatin1(chunks.at(static_cast<size_t>(below(chunks.size())))));
    }

    void notify()
    {
        const QList<FakeTools::Launch> running = tools_.running();
        if (running.isEmpty()) {
            return;
        }
        const int uid = running.at(below(static_cast<int>(running.size()))).launcher->uid();
        const QString names[] = {fabKillTasks, fabPauseTasks, fabResumeTasks};
        NotificationCenter::defaultCenter().post(names[below(3)], uid);
    }

    void press(int segment)
    {
        // The window offers the control when it is shown and enabled; a signal of the terminal stops whenever a child
        // runs.
        const bool offered = !model().encStopBt.isHidden() && model().encStopBt.isEnabled();
        if (offered || (segment == encStopSegmentStop && controller_.isEncoding())) {
            model().encStopBt.setSelectedSegment(segment);
            controller_.iba_encStopBt(&model().encStopBt);
        }
    }

    void removeRows()
    {
        rows().setSelectedRow(below(rows().count() + 1) - 1);
        if (below(3) == 0) {
            controller_.encBatchRemoveAll(&model().batchEncRemoveAllBt);
        } else {
            controller_.encBatchRemove(&model().batchEncRemoveBt);
        }
    }

    void drop()
    {
        QStringList paths;
        for (int i = 1 + below(3); i > 0; --i) {
            paths << anySource();
        }
        if (below(6) == 0) {
            paths << world_.folder.path(QStringLiteral("sources"));
        }
        controller_.dragNDropPerformDrag(nullptr, paths);
    }

    void start()
    {
        if (model().batchEncGoBt.isEnabled()) {
            controller_.iba_batchEncGoBt();
        }
    }

    void changeTheWorld()
    {
        switch (below(7)) {
        case 0:
            QFile::remove(anySource());
            break;
        case 1:
            writeBytes(anySource(), "clip");
            break;
        case 2:
            setFreeSpaceForTests(below(2) == 0 ? 1 : 1000000);
            break;
        case 3:
            tools_.results.push_back(below(3) == 0 ? 0 : 3);
            break;
        case 4:
            rows().setOut(below(rows().count() + 1), below(outputFormatCount));
            break;
        case 5:
            model().mainEncDstPathStr.setStringValue(below(2) == 0 ? QString()
                                                                   : world_.folder.path(QStringLiteral("destination")));
            break;
        default:
            controller_.setReplacePolicy(below(2) == 0 ? std::optional<int>(below(2)) : std::nullopt);
        }
    }

    void happen()
    {
        const int what = below(100);
        if (what < 22) {
            drop();
        } else if (what < 50) {
            endAChild();
        } else if (what < 56) {
            writeAChunk();
        } else if (what < 68) {
            start();
        } else if (what < 73) {
            press(encStopSegmentStop);
        } else if (what < 79) {
            press(encStopSegmentPause);
        } else if (what < 82) {
            if (!model().analyseStopBt.isHidden()) {
                controller_.iba_analysisStopBt();
            }
        } else if (what < 86) {
            removeRows();
        } else if (what < 89) {
            notify();
        } else if (what < 98) {
            changeTheWorld();
        } else if (below(2) == 0) {
            controller_.iba_menuQuit();
        } else {
            controller_.quitWithoutQuestion();
        }
    }

    void checkAlways()
    {
        int analysing = 0;
        int encoding = 0;
        for (const FakeTools::Launch& launch : tools_.running()) {
            const bool analysis = launch.kind == ToolKind::Decode || launch.kind == ToolKind::Thumbnail;
            (analysis ? analysing : encoding) += 1;
        }
        EXPECT_LE(analysing, 1) << where();
        EXPECT_LE(encoding, 1) << where();
        EXPECT_LE(depth_, deepestStack) << where();
        if (controller_.isQuitting()) {
            EXPECT_EQ(analysing + encoding, 0) << where();
            return;
        }
        EXPECT_EQ(getOPENPERM(), controller_.isAnalysing() ? 0 : 1) << where();
        EXPECT_EQ(currentRows(), controller_.isEncoding() && stillCurrent() ? 1 : 0) << where();
    }

    QStringList icons()
    {
        QStringList found;
        for (int i = 0; i < rows().count(); ++i) {
            found << rows().row(i).resultat;
        }
        return found;
    }

    int currentRows() { return static_cast<int>(icons().count(rowIcon::current)); }

    // A stop that waits for the end of an analysis has marked its row already.
    bool stillCurrent()
    {
        const int row = controller_.encBatchInprogressRowIdentification();
        return row >= 0 && rows().row(row).resultat == rowIcon::current;
    }

    // Lets all children end and looks at what is left; then nothing may stand in the way of a further batch.
    void comeToRest()
    {
        ASSERT_TRUE(tools_.finishAll(500)) << where();
        checkAtRest();
        if (controller_.isQuitting()) {
            EXPECT_EQ(rows().count(), 0) << where();
            return;
        }
        tools_.results.clear();
        world_.bringBack(recoverySources);
        setFreeSpaceForTests(1000000);
        model().mainEncDstPathStr.setStringValue(world_.folder.path(QStringLiteral("destination")));
        controller_.setReplacePolicy(1);
        // A stalled analysis is taken up again by a drop that brings something new.
        controller_.draggedFiles(world_.sources.first(recoverySources) << world_.fresh);
        ASSERT_TRUE(tools_.finishAll(500)) << where();
        expectNoAnalysisLeft();
        // The first start may only swallow a stop that came too late.
        for (int batch = 0; batch < 2 && icons().contains(rowIcon::pending); ++batch) {
            start();
            ASSERT_TRUE(tools_.finishAll(500)) << where();
            checkAtRest();
        }
        EXPECT_FALSE(icons().contains(rowIcon::pending)) << where();
        EXPECT_TEXTS(strayKeys(), QStringList()) << where();
    }

    void expectNoAnalysisLeft()
    {
        for (const QString& key :
             {pref::analysisSrcPathesDico, pref::analysisSrcPathStr, pref::analysisIStr, pref::analysisDeb,
              pref::analysisFfmpeg, pref::analysisFfmpegParse, pref::analysisFin}) {
            EXPECT_TEXT(prefRead(key), QStringLiteral("")) << where() << key.toStdString();
        }
    }

    void checkAtRest()
    {
        EXPECT_TRUE(tools_.running().isEmpty()) << where();
        EXPECT_FALSE(RunLoopGate::instance().isClosed()) << where();
        EXPECT_FALSE(controller_.isEncoding()) << where();
        EXPECT_EQ(currentRows(), 0) << where();
        EXPECT_TRUE(launchersGone()) << where();
        EXPECT_LE(depth_, deepestStack) << where();
        if (controller_.isQuitting()) {
            return;
        }
        EXPECT_FALSE(controller_.isAnalysing()) << where();
        EXPECT_EQ(getOPENPERM(), 1) << where();
        EXPECT_EQ(model().batchEncGoBt.state(), 0) << where();
        EXPECT_EQ(model().batchEncGoBt.isEnabled(), rows().count() > 0) << where();
        EXPECT_TRUE(model().encStopBt.isHidden()) << where();
        EXPECT_TRUE(model().encStopBt.isEnabled()) << where();
        EXPECT_TRUE(model().analyseStopBt.isHidden()) << where();
        EXPECT_FALSE(model().analyseWheelProgInd.isAnimating()) << where();
        EXPECT_TEXT(prefRead(pref::replaceFilesCheck), QStringLiteral("")) << where();
        EXPECT_FALSE(isFlagSet(pref::encDeb)) << where();
        EXPECT_FALSE(isFlagSet(pref::encQtEnc)) << where();
    }

    [[nodiscard]] bool launchersGone() const
    {
        return std::all_of(tools_.launches.cbegin(), tools_.launches.cend(),
                           [](const FakeTools::Launch& launch) { return launch.launcher.isNull(); });
    }

    [[nodiscard]] std::string where() const { return "seed " + std::to_string(seed_) + " "; }

    const RandomWorld& world_;
    std::mt19937 random_;
    unsigned seed_;
    FakeFace face_;
    FakeTools tools_;
    appDelegate controller_{&face_};
    quintptr base_ = reinterpret_cast<quintptr>(__builtin_frame_address(0));
    quintptr depth_ = 0;
};

} // namespace

TEST(RandomEvents, LeaveTheControllerInAConsistentState)
{
    const QuietErrorStream quiet;
    const MemoryHome home;
    const RandomWorld world;
    const QString trash = qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/Trash");
    for (unsigned seed = firstSeed; seed < firstSeed + sequences; ++seed) {
        Life(world, seed).live();
        settle();
        if (HasFailure()) {
            FAIL() << "seed " << seed;
        }
        if (seed % 50 == 0) {
            // Names in the trash are numbered one by one, and the summary is read whole.
            QDir(trash).removeRecursively();
            QFile::remove(logResumePathStr());
        }
    }
}
