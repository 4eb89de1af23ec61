// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysisfixture.h"
#include "controllertest.h"

#include "base/store/settings.h"
#include "support/waituntil.h"
#include "testresources.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QThread>

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// A tool that behaves like the converter's: a decode writes header and description, a thumbnail run a picture, an
// encode works until it is let go and then leaves its output under the final name. A grandchild does the work, so that
// signals must reach the whole group. A line in "$0.go" lets an encode go on to its end; "$0.pids" holds the ids of
// both processes.
const char* const toolScript = R"(
for last; do :; done
case " $* " in
*yuv4mpegpipe*)
    printf 'YUV4MPEG2 W640 H480 F25:1 Ip A0:0\nFRAME\n' > "$last"
    printf '%s\n' "Input #0, mpegts, from 'x':" "  Duration: 00:00:30.00, start: 0.300000, bitrate: 17000 kb/s" \
        "    Stream #0.0[0x1011]: Video: h264, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], 25 fps, 25 tbr, 90k tbn, 50 tbc" \
        "Output #0, yuv4mpegpipe, to 'y':" >&2
    exit 0
    ;;
*' -vframes 1 '*)
    printf '\377\330\377\300\000\013\010\000\001\000\001\001\001\021\000\377\331' > "$last"
    exit 0
    ;;
esac
(i=0; while [ $i -lt 50000000 ]; do i=$((i + 1)); done) &
worker=$!
rm -f "$0.go"
mkfifo "$0.go"
echo "$$ $worker" > "$0.pids.part"
mv "$0.pids.part" "$0.pids"
printf 'frame=1 time=15.00 bitrate=1\n' >&2
read -r line < "$0.go"
kill $worker
truncate -s 300K "$last"
echo 'tavrix-verdict: whole' >&2
exit 0
)";

class RealProcesses : public ControllerTest
{
protected:
    RealProcesses() : tool(resources.makeTool(QStringLiteral("ffmpeg"), toolScript))
    {
        controller->setLauncherFactory({});
    }

    ~RealProcesses() override
    {
        controller.reset();
        EXPECT_TRUE(waitUntil([] { return ::waitpid(-1, nullptr, WNOHANG) == -1; })) << "a child is left";
    }

    void analyse(const QStringList& dropped)
    {
        controller->draggedFiles(dropped);
        ASSERT_TRUE(waitUntil([this] { return !controller->isAnalysing(); }));
    }

    // Starts the batch and waits for the ids of the encoder and of its worker.
    void begin(int count)
    {
        sources = makeClips(count);
        analyse(sources);
        ASSERT_EQ(rows().count(), count);
        pressStart();
        waitForEncoder();
    }

    void waitForEncoder()
    {
        ASSERT_TRUE(waitUntil([this] { return QFile::exists(tool + QStringLiteral(".pids")); }));
        const QList<QByteArray> ids =
            readBytes(tool + QStringLiteral(".pids")).value_or(QByteArray()).trimmed().split(' ');
        ASSERT_EQ(ids.size(), 2);
        encoder = ids.at(0).toInt();
        worker = ids.at(1).toInt();
        QFile::remove(tool + QStringLiteral(".pids"));
        ASSERT_TRUE(waitUntil([this] { return model().mainEncProgressPercentStr.stringValue() == u"50 %"; }));
    }

    void letGo() const
    {
        int fifo = -1;
        const QByteArray path = QFile::encodeName(tool + QStringLiteral(".go"));
        // Nobody may be reading yet.
        ASSERT_TRUE(waitUntil([&] {
            fifo = ::open(path.constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            return fifo >= 0;
        }));
        EXPECT_EQ(::write(fifo, "\n", 1), 1);
        ::close(fifo);
    }

    // State letter of a process; 0 when there is none.
    static char state(int pid)
    {
        const QByteArray stat = readBytes(QStringLiteral("/proc/%1/stat").arg(pid)).value_or(QByteArray());
        const qsizetype at = stat.lastIndexOf(')');
        return at < 0 || at + 2 >= stat.size() ? '\0' : stat.at(at + 2);
    }

    // Processor time of a process, in clock ticks.
    static qint64 ticks(int pid)
    {
        const QByteArray stat = readBytes(QStringLiteral("/proc/%1/stat").arg(pid)).value_or(QByteArray());
        const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        return fields.value(11).toLongLong() + fields.value(12).toLongLong();
    }

    static bool isGone(int pid) { return state(pid) == '\0' || state(pid) == 'Z'; }

    const TestResources resources;
    const QString tool;
    QStringList sources;
    int encoder = 0;
    int worker = 0;
};

} // namespace

TEST_F(RealProcesses, ClipsAreLookedAtBeforeTheirTurnAndALookThatHangsHoldsNothingUp)
{
    if (QThread::idealThreadCount() < 2) {
        GTEST_SKIP() << "one processor";
    }
    // A thumbnail of the first clip waits for the look at the second.
    const QByteArray hangs = R"(
if [ -n "$TAVRIX_AHEAD" ]; then
    echo "$4" >> "$0.ahead"
    exec tail -f /dev/null
fi
case " $* " in *' -vframes 1 '*) while [ ! -s "$0.ahead" ]; do :; done ;; esac
)";
    ASSERT_EQ(resources.makeTool(QStringLiteral("ffmpeg"), hangs + toolScript), tool);
    sources = makeClips(4);
    analyse(sources);
    EXPECT_TEXTS(allSources(rows()), sources);
    const QByteArray looks = readBytes(tool + QStringLiteral(".ahead")).value_or(QByteArray());
    EXPECT_TRUE(looks.contains(sources.at(1).toUtf8()) || looks.contains(sources.at(2).toUtf8())) << looks.constData();
    EXPECT_FALSE(looks.contains(sources.at(0).toUtf8())) << looks.constData();
}

TEST_F(RealProcesses, WholeBatch)
{
    begin(2);
    letGo();
    ASSERT_TRUE(waitUntil([this] { return rows().row(1).resultat == rowIcon::current; }));
    waitForEncoder();
    letGo();
    ASSERT_TRUE(waitUntil([this] { return !controller->isEncoding(); }));
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess puceSuccess"));
    EXPECT_TRUE(itemExists(rows().row(1).img));
    EXPECT_EQ(QFile(outputOf(sources.at(1))).size(), 300 * 1024);
}

TEST_F(RealProcesses, PauseStopsTheWholeGroupAndResumeLetsItGoOn)
{
    begin(1);
    pressPause();
    ASSERT_TRUE(waitUntil([this] { return state(encoder) == 'T' && state(worker) == 'T'; }));
    const qint64 used = ticks(worker);
    // Long enough for a running worker to use many ticks.
    const QDeadlineTimer pause(200);
    ASSERT_TRUE(waitUntil([&] { return pause.hasExpired(); }));
    EXPECT_EQ(ticks(worker), used);
    pressPause();
    ASSERT_TRUE(waitUntil([&] { return state(encoder) != 'T' && ticks(worker) > used; }));
    letGo();
    ASSERT_TRUE(waitUntil([this] { return !controller->isEncoding(); }));
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_TRUE(waitUntil([this] { return isGone(worker); }));
}

TEST_F(RealProcesses, DropPausesAndTheEndOfTheAnalysisResumes)
{
    begin(1);
    controller->draggedFiles({clip(QStringLiteral("x.mts"))});
    ASSERT_TRUE(waitUntil([this] { return state(encoder) == 'T' || !controller->isAnalysing(); }));
    ASSERT_TRUE(waitUntil([this] { return !controller->isAnalysing(); }));
    EXPECT_EQ(rows().count(), 2);
    EXPECT_TRUE(waitUntil([this] { return state(encoder) != 'T'; }));
    pressStop();
}

TEST_F(RealProcesses, StopEndsAllProcessesAndLeavesNoOutput)
{
    begin(2);
    pressStop();
    EXPECT_TRUE(waitUntil([this] { return isGone(encoder) && isGone(worker); }));
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure puce"));
    EXPECT_TRUE(QDir(events).isEmpty());
    EXPECT_FALSE(controller->isEncoding());
}

TEST_F(RealProcesses, StopWhilePausedEndsAllProcesses)
{
    begin(1);
    pressPause();
    ASSERT_TRUE(waitUntil([this] { return state(encoder) == 'T'; }));
    pressStop();
    EXPECT_TRUE(waitUntil([this] { return isGone(encoder) && isGone(worker); }));
}

TEST_F(RealProcesses, QuitLeavesNoChild)
{
    begin(2);
    pressPause();
    controller->draggedFiles({clip(QStringLiteral("x.mts"))});
    controller->quitWithoutQuestion();
    EXPECT_TRUE(waitUntil([this] { return isGone(encoder) && isGone(worker); }));
    EXPECT_EQ(rows().count(), 0);
    EXPECT_TRUE(QDir(events).isEmpty());
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("temporary"))));
}

TEST_F(RealProcesses, KilledEncoderFailsItsRow)
{
    begin(1);
    ASSERT_EQ(::kill(encoder, SIGKILL), 0);
    ASSERT_TRUE(waitUntil([this] { return !controller->isEncoding(); }));
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_TRUE(log.contains(QStringLiteral("task failed, error  :-( 9")));
    ::kill(worker, SIGKILL);
    EXPECT_TRUE(waitUntil([this] { return isGone(worker); }));
}

TEST_F(RealProcesses, MissingToolStallsTheAnalysisAndFailsTheRow)
{
    sources = makeClips(2);
    analyse({sources.at(0)});
    ASSERT_EQ(rows().count(), 1);
    ASSERT_TRUE(QFile::remove(tool));
    analyse({sources.at(1)});
    EXPECT_EQ(rows().count(), 1);
    EXPECT_EQ(face.count(QStringLiteral("beep")), 1);
    pressStart();
    settle();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_TEXT(rows().row(0).reason, tool + QStringLiteral(": this tool cannot be found; reinstall the program"));
}
