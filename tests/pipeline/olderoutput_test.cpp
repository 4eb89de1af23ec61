// SPDX-License-Identifier: GPL-3.0-or-later
// What stands under an output's name, by the whole program with its tools: before ffmpeg stands a script that waits in
// the middle of an encode until the test lets it go on.
#include "encode/outputname.h"
#include "pipeline/batchprogram.h"
#include "pipeline/clips.h"
#include "pipeline/words.h"
#include "probe/recordersources.h"
#include "support/waituntil.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

const char* const waitingFfmpeg = R"(#!/bin/sh
case "$*" in
*yuv4mpegpipe*|*image2*) ;;
*)
    echo begun > "$TRIAL/begun"
    read -r word < "$TRIAL/go"
    [ "$word" = fail ] && exit 1
    ;;
esac
exec /usr/bin/ffmpeg "$@"
)";

// Only a hang lasts longer, also on a busy machine.
constexpr int patienceMilliseconds = 400000;

enum class Event { Appears, AppearsAndStop, Fails, IsStopped, IsKilled };

struct OlderTrial {
    const char* name;
    int format;
    const char* existing;
    Event event;
};

class OlderOutputOfTheProgram : public testing::TestWithParam<OlderTrial>
{
protected:
    static void SetUpTestSuite()
    {
        clips = new TempFolder;
        ClipRequest request = avchdLiteClip();
        request.seconds = 1;
        ASSERT_TRUE(makeClip(clips->path(text("00001.MTS")), request));
    }
    static void TearDownTestSuite()
    {
        delete clips;
        clips = nullptr;
    }

    OlderOutputOfTheProgram()
    {
        const QString ffmpeg = trial.makeFile(text("bin/ffmpeg"), waitingFfmpeg);
        QFile::setPermissions(ffmpeg, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        EXPECT_EQ(::mkfifo(qPrintable(trial.path(text("go"))), 0600), 0);
        program.setVariable(text("TRIAL"), trial.path());
        program.setVariable(text("PATH"), trial.path(text("bin")) + text(":/usr/bin:/bin"));
    }

    void startUpToTheEncode()
    {
        program.start({text("--format"), QString::number(GetParam().format), text("--existing"),
                       text(GetParam().existing), text("--output"), destination.path(), source});
        ASSERT_TRUE(program.readUntil(
            [](const QJsonObject& object) { return object.value(text("event")).toString() == text("row-started"); }));
        ASSERT_TRUE(waitUntil([this] { return QFile::exists(trial.path(text("begun"))); }, patienceMilliseconds));
    }

    void letGo(const QByteArray& word) const
    {
        int fifo = -1;
        ASSERT_TRUE(waitUntil(
            [&] {
                fifo = ::open(qPrintable(trial.path(text("go"))), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
                return fifo >= 0;
            },
            patienceMilliseconds));
        const QByteArray line = word + '\n';
        EXPECT_EQ(::write(fifo, line.constData(), static_cast<size_t>(line.size())), line.size());
        ::close(fifo);
    }

    void letItHappen()
    {
        switch (GetParam().event) {
        case Event::Appears:
        case Event::Fails:
            letGo(GetParam().event == Event::Fails ? "fail" : "on");
            break;
        case Event::AppearsAndStop:
        case Event::IsStopped:
            ::kill(static_cast<pid_t>(program.pid()), SIGINT);
            break;
        case Event::IsKilled:
            ::kill(static_cast<pid_t>(program.pid()), SIGKILL);
            break;
        }
    }

    static TempFolder* clips;
    const TempFolder trial;
    const TempFolder destination;
    const QString source = clips->path(text("00001.MTS"));
    BatchProgram program;
};

TempFolder* OlderOutputOfTheProgram::clips = nullptr;

std::string trialName(const testing::TestParamInfo<OlderTrial>& info)
{
    return info.param.name;
}

const OlderTrial trials[] = {
    {"Format3AppearsWithReplace", 3, "replace", Event::Appears},
    {"Format3AppearsWithKeep", 3, "keep", Event::Appears},
    {"Format3AppearsAndStop", 3, "replace", Event::AppearsAndStop},
    {"Format3Fails", 3, "replace", Event::Fails},
    {"Format3IsStopped", 3, "replace", Event::IsStopped},
    {"Format3IsKilled", 3, "replace", Event::IsKilled},
    {"Format5AppearsWithReplace", 5, "replace", Event::Appears},
    {"Format5AppearsWithKeep", 5, "keep", Event::Appears},
    {"Format5AppearsAndStop", 5, "keep", Event::AppearsAndStop},
    {"Format5Fails", 5, "replace", Event::Fails},
    {"Format5IsStopped", 5, "replace", Event::IsStopped},
    {"Format5IsKilled", 5, "replace", Event::IsKilled},
};

} // namespace

TEST_P(OlderOutputOfTheProgram, KeepsItsBytes)
{
    const QString output =
        outputPath(destination.path(), dateCreation2iMovieName(source), GetParam().format, text("h264"));
    const QByteArray precious = "the file of last week";
    const bool appears = GetParam().event == Event::Appears || GetParam().event == Event::AppearsAndStop;
    const QString relative = output.mid(destination.path().size() + 1);
    if (!appears) {
        destination.makeFile(relative, precious);
    }
    startUpToTheEncode();
    if (appears) {
        destination.makeFile(relative, precious);
    }
    letItHappen();
    const BatchResult result = program.finish();
    EXPECT_TRUE(result.outputs().isEmpty());
    EXPECT_TRUE(program.allProcessesGone());
    EXPECT_EQ(readBytes(output), precious);
    EXPECT_EQ(filesBelow(destination.path()), QStringList(relative));
    EXPECT_TRUE(QFile::exists(source));
    if (GetParam().event == Event::Appears) {
        const QList<QJsonObject> rows = result.named(text("row-finished"));
        ASSERT_EQ(rows.size(), 1);
        EXPECT_EQ(rows.first().value(text("reason")).toString(),
                  text("another file has appeared under the output's name meanwhile and was kept"));
    }
}

INSTANTIATE_TEST_SUITE_P(Publication, OlderOutputOfTheProgram, testing::ValuesIn(trials), trialName);
