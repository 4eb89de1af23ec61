// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "base/dialogue/localisation.h"
#include "gui/window/batchdrawer.h"
#include "gui/window/rowdetails.h"
#include "support/qtprinters.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QListView>
#include <QProcess>
#include <QProgressBar>
#include <QToolButton>

namespace tavrix::test
{
namespace
{

bool makeClip(const QString& path, const QStringList& options)
{
    const QStringList head{QStringLiteral("-nostdin"),
                           QStringLiteral("-v"),
                           QStringLiteral("error"),
                           QStringLiteral("-f"),
                           QStringLiteral("lavfi"),
                           QStringLiteral("-i"),
                           QStringLiteral("testsrc2=size=640x480:rate=25:duration=4,noise=alls=60:allf=t")};
    return QProcess::execute(QStringLiteral("ffmpeg"), head + options + QStringList{path}) == 0;
}

const QStringList h264{QStringLiteral("-c:v"),      QStringLiteral("libx264"),  QStringLiteral("-preset"),
                       QStringLiteral("ultrafast"), QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p")};
const QStringList mjpeg{QStringLiteral("-c:v"), QStringLiteral("mjpeg"), QStringLiteral("-pix_fmt"),
                        QStringLiteral("yuvj420p")};

} // namespace

using MainJob = WindowTest;

// The whole job with the real tools: drop, rows with pictures, format, start, pause, resume, end, folder opened.
TEST_F(MainJob, ThreeDroppedClipsAreConverted)
{
    const QStringList clips{folder_.path(QStringLiteral("a.MTS")), folder_.path(QStringLiteral("b.mov")),
                            folder_.path(QStringLiteral("c.avi"))};
    if (!makeClip(clips[0], h264) || !makeClip(clips[1], h264) || !makeClip(clips[2], mjpeg)) {
        GTEST_SKIP() << "ffmpeg cannot make the clips";
    }
    startProgram(true);
    EXPECT_EQ(drop(clips), Qt::CopyAction);
    EXPECT_TRUE(controller().isAnalysing());
    EXPECT_TRUE(find<QLabel>("dragndropActionStr")->isVisible());
    EXPECT_FALSE(find<QLabel>("dragndropCaptionStr")->isVisible());
    EXPECT_FALSE(find<QAbstractButton>("batchEncGoBt")->isEnabled());
    ASSERT_TRUE(waitFor([this] { return !controller().isAnalysing(); }));
    ASSERT_EQ(rows().count(), 3);
    EXPECT_TRUE(find<QWidget>("drawer")->isVisible());
    auto* list = find<QListView>("encBatchArrayController");
    EXPECT_EQ(list->model()->rowCount(), 3);
    window().grab();
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(window().batchDrawer().details().thumbnail(rows().row(i), QSize(96, 54), 1).isNull()) << i;
    }

    // The second row gets another format, by hand.
    auto* format = find<QComboBox>("rowFormatBt");
    EXPECT_FALSE(format->isEnabled());
    EXPECT_TEXT(format->placeholderText(), QStringLiteral("(select a clip)"));
    list->setCurrentIndex(list->model()->index(1, 0));
    EXPECT_EQ(rows().selectedRow(), 1);
    ASSERT_TRUE(format->isEnabled());
    QTest::keyClick(format, Qt::Key_Up);
    Q_EMIT format->activated(2);
    EXPECT_EQ(rows().row(1).out, 2);

    useDestination();
    ASSERT_TRUE(waitFor([this] { return find<QAbstractButton>("batchEncGoBt")->isEnabled(); }));
    click("batchEncGoBt");
    ASSERT_TRUE(controller().isEncoding());
    EXPECT_TRUE(find<QWidget>("encStopBt.0")->isVisible());
    EXPECT_EQ(find<QLabel>("mainEncProgressCaptionStr")->text(), QStringLiteral("a.MTS"));
    click("encStopBt.0");
    EXPECT_EQ(find<QToolButton>("encStopBt.0")->accessibleName(), QStringLiteral("Resume"));
    click("encStopBt.0");
    EXPECT_EQ(find<QToolButton>("encStopBt.0")->accessibleName(), QStringLiteral("Pause"));
    robot_->press(QStringLiteral("alertButton0"));
    ASSERT_TRUE(waitFor([this] { return model().batchEncGoBt.state() == 0 && robot_->isDone(); }));
    EXPECT_TEXTS(states(), QStringList(3, rowIcon::success));
    const QString events = destination_ + QStringLiteral("/Tavrix events");
    EXPECT_EQ(QDir(events).entryList(QDir::Files).size(), 3);
    ASSERT_EQ(desktop_.opened.size(), 1);
    EXPECT_EQ(desktop_.opened.first().toLocalFile(), events);
    click("mainEncDstRevealBt");
    EXPECT_EQ(desktop_.opened.size(), 2);
    EXPECT_EQ(find<QLabel>("noticeStr")->text(), QStringLiteral("3 of 3 clips converted"));
}

TEST_F(MainJob, ProgressIsShown)
{
    startProgram();
    analysedClips(1);
    useDestination();
    auto* bar = find<QProgressBar>("encTaskProgress");
    EXPECT_FALSE(bar->isVisible());
    click("batchEncGoBt");
    tools_.current(ToolKind::Encode).launcher->write(QStringLiteral("frame=  1 fps=1 time=15.00 bitrate=1\n"));
    EXPECT_TRUE(bar->isVisible());
    EXPECT_EQ(bar->value() * 100 / bar->maximum(), 50);
    EXPECT_EQ(find<QLabel>("mainEncProgressPercentStr")->text(), QStringLiteral("50 %"));
}

TEST_F(MainJob, StopInTheMiddleDeletesTheOutputAndEndsTheBatch)
{
    startProgram();
    analysedClips(2);
    useDestination();
    click("batchEncGoBt");
    const FakeTools::Launch launch = tools_.current(ToolKind::Encode);
    tools_.writeFiles(launch);
    ASSERT_TRUE(itemExists(launch.output()));
    robot_->press(QStringLiteral("alertButton0")); // "stopped"
    robot_->press(QStringLiteral("alertButton0")); // the sheet of the end
    click("encStopBt.1");
    ASSERT_TRUE(waitFor([this] { return robot_->isDone() && model().batchEncGoBt.state() == 0; }));
    EXPECT_FALSE(itemExists(launch.output()));
    EXPECT_TEXTS(states(), QStringList({rowIcon::failure, rowIcon::pending}));
    EXPECT_TEXTS(robot_->titles, QStringList({localizedString(QStringLiteral("D_action_stop")),
                                              localizedString(QStringLiteral("D_fin_GUI"))}));
    EXPECT_TRUE(find<QAbstractButton>("batchEncGoBt")->isEnabled());
}

TEST_F(MainJob, AnalysisStopControlEndsTheAnalysis)
{
    startProgram();
    drop({folder_.makeFile(QStringLiteral("a.MTS")), folder_.makeFile(QStringLiteral("b.MTS"))});
    EXPECT_EQ(find<QLabel>("analyseCaptionStr")->text(), QStringLiteral("1/2"));
    click("analyseStopBt.0");
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(rows().count(), 0);
    EXPECT_TRUE(find<QLabel>("dragndropCaptionStr")->isVisible());
    EXPECT_FALSE(find<QWidget>("analyseStopBt.0")->isVisible());
}

TEST_F(MainJob, LeftOutFilesAreToldWithTheirReasons)
{
    startProgram();
    const QString large = folder_.makeFile(QStringLiteral("large.MTS"));
    FakeClip clip;
    clip.width = 1920;
    clip.height = 1080;
    tools_.clips.insert(large, clip);
    drop({large, folder_.makeFile(QStringLiteral("good.MTS"))});
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(rows().count(), 1);
    EXPECT_EQ(find<QAbstractButton>("leftOutBt")->text(), QStringLiteral("1 file left out: why?"));
    click("leftOutBt");
    auto* list = find<QAbstractItemView>("leftOutList");
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->model()->index(0, 0).data().toString(),
              QStringLiteral("large.MTS\n1920x1080 is larger than 1280x720"));
    find<QDialog>("leftOutDialog")->close();
    // The next drop begins a new count.
    drop({folder_.makeFile(QStringLiteral("other.MTS"))});
    EXPECT_FALSE(find<QAbstractButton>("leftOutBt")->isVisible());
}

// Every step by key alone: open, list, format, destination, start, pause, stop.
TEST_F(MainJob, TheWholeJobByKeyboard)
{
    startProgram();
    const QString clip = folder_.makeFile(QStringLiteral("key.MTS"), "clip");
    window().activateWindow();
    ASSERT_TRUE(waitFor([this] { return QApplication::activeWindow() == &window(); }));
    robot_->choose(clip);
    QTest::keyClick(&window(), Qt::Key_O, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([this] { return controller().isAnalysing(); }));
    EXPECT_TRUE(tools_.finishAll());
    ASSERT_EQ(rows().count(), 1);
    auto* list = find<QListView>("encBatchArrayController");
    window().activateWindow();
    ASSERT_TRUE(waitFor([this] { return QApplication::activeWindow() == &window(); }));
    list->setFocus();
    ASSERT_TRUE(waitFor([list] { return list->hasFocus(); }));
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(rows().selectedRow(), 0);
    useDestination();
    QTest::keyClick(&window(), Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(controller().isEncoding());
    QTest::keyClick(&window(), Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(tools_.current(ToolKind::Encode).launcher->isSuspended());
    QTest::keyClick(&window(), Qt::Key_P, Qt::ControlModifier);
    EXPECT_FALSE(tools_.current(ToolKind::Encode).launcher->isSuspended());
    robot_->press(QStringLiteral("alertButton0"));
    robot_->press(QStringLiteral("alertButton0"));
    QTest::keyClick(&window(), Qt::Key_Period, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([this] { return model().batchEncGoBt.state() == 0 && robot_->isDone(); }));
}

} // namespace tavrix::test
