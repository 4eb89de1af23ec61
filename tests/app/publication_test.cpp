// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "base/store/settings.h"
#include "base/text/listconversions.h"
#include "support/qtprinters.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

using judge::Cause;
using judge::Outcome;
using judge::Verdict;

enum class Mishap { Fails, IsStopped, IsKilled, IsTooSmall, IsIncomplete, SaysNothing };

const char* const mishapNames[] = {"Fails", "IsStopped", "IsKilled", "IsTooSmall", "IsIncomplete", "SaysNothing"};

struct Trial {
    int out;
    ToolKind in; // the pass that it befalls
    Mishap mishap;
};

class Outputs : public ControllerTest
{
protected:
    void prepare(int out)
    {
        setPRORES(1);
        source = clip(QStringLiteral("a.mts"));
        addRows({source});
        rows().setOut(0, out);
        folder.makeFolder(QStringLiteral("destination/Tavrix events"));
        output = outputOf(source);
        face.alerts.clear();
    }

    void standing(const QByteArray& bytes) const { ASSERT_TRUE(writeBytes(output, bytes)); }

    // Starts the batch and goes on to that pass.
    void beginUpTo(ToolKind pass)
    {
        pressStart();
        if (pass == ToolKind::SecondPass) {
            ASSERT_TRUE(tools.finish(ToolKind::Encode));
        }
        ASSERT_TRUE(tools.current(pass).launcher);
    }

    void befall(const Trial& trial)
    {
        const FakeTools::Launch launch = tools.current(trial.in);
        FakeClip& found = tools.clips[source];
        switch (trial.mishap) {
        case Mishap::Fails:
            launch.launcher->write(QStringLiteral("no luck\n"));
            launch.launcher->end(1);
            break;
        case Mishap::IsStopped:
            pressStop();
            break;
        case Mishap::IsKilled:
            launch.launcher->end(9);
            break;
        case Mishap::IsTooSmall:
            found.kilobytes = 199;
            tools.finish(launch);
            break;
        case Mishap::IsIncomplete:
            found.verdict = Verdict{Outcome::Incomplete, {{.cause = Cause::CutOff}}};
            tools.finish(launch);
            break;
        case Mishap::SaysNothing:
            launch.launcher->end(0);
            break;
        }
        settle();
    }

    void expectOnly(const QByteArray& bytes) const
    {
        EXPECT_EQ(readBytes(output), bytes);
        EXPECT_TEXTS(QDir(events).entryList(QDir::Files | QDir::Hidden), QStringList{output.mid(events.size() + 1)});
    }

    QString source;
    QString output;
};

class OlderOutput : public Outputs, public testing::WithParamInterface<Trial>
{
};

std::string trialName(const testing::TestParamInfo<Trial>& info)
{
    return std::string("Format") + std::to_string(info.param.out) +
           (info.param.in == ToolKind::SecondPass ? "SecondPass" : "FirstPass") +
           mishapNames[static_cast<int>(info.param.mishap)];
}

std::vector<Trial> trials()
{
    std::vector<Trial> all;
    for (int mishap = 0; mishap <= static_cast<int>(Mishap::SaysNothing); ++mishap) {
        all.push_back({3, ToolKind::Encode, static_cast<Mishap>(mishap)});
        all.push_back({5, ToolKind::SecondPass, static_cast<Mishap>(mishap)});
        // A small first pass is nothing to complain about.
        if (static_cast<Mishap>(mishap) != Mishap::IsTooSmall) {
            all.push_back({5, ToolKind::Encode, static_cast<Mishap>(mishap)});
        }
    }
    return all;
}

// A file appears under the output's name while the row is encoded.
struct Appearance {
    int out;
    ToolKind in;
    int policy; // 1 replace, 0 keep
    bool stop;
};

class StrangersFile : public Outputs, public testing::WithParamInterface<Appearance>
{
};

std::string appearanceName(const testing::TestParamInfo<Appearance>& info)
{
    return std::string("Format") + std::to_string(info.param.out) +
           (info.param.in == ToolKind::SecondPass ? "SecondPass" : "FirstPass") +
           (info.param.policy == 1 ? "Replace" : "Keep") + (info.param.stop ? "Stop" : "Alone");
}

std::vector<Appearance> appearances()
{
    std::vector<Appearance> all;
    for (const int policy : {0, 1}) {
        for (const bool stop : {false, true}) {
            all.push_back({3, ToolKind::Encode, policy, stop});
            all.push_back({5, ToolKind::Encode, policy, stop});
            all.push_back({5, ToolKind::SecondPass, policy, stop});
        }
    }
    return all;
}

} // namespace

TEST_P(OlderOutput, KeepsItsBytesWhateverBefallsTheNewOne)
{
    prepare(GetParam().out);
    standing("older");
    controller->setReplacePolicy(1);
    beginUpTo(GetParam().in);
    EXPECT_EQ(readBytes(output), QByteArray("older"));
    befall(GetParam());
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_FALSE(rows().row(0).reason.isEmpty());
    expectOnly("older");
    expectIdle();
}

INSTANTIATE_TEST_SUITE_P(Publication, OlderOutput, testing::ValuesIn(trials()), trialName);

TEST_P(StrangersFile, IsNeitherReplacedNorRemoved)
{
    prepare(GetParam().out);
    controller->setReplacePolicy(GetParam().policy);
    beginUpTo(GetParam().in);
    standing("a stranger's");
    if (GetParam().stop) {
        pressStop();
    } else {
        ASSERT_TRUE(tools.finishAll());
    }
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_TEXT(rows().row(0).reason, GetParam().stop ? QStringLiteral("stopped")
                                                      : QStringLiteral("another file has appeared under the output's "
                                                                       "name meanwhile and was kept"));
    expectOnly("a stranger's");
    expectIdle();
}

INSTANTIATE_TEST_SUITE_P(Publication, StrangersFile, testing::ValuesIn(appearances()), appearanceName);

TEST_F(Outputs, OlderOneThatChangesDuringTheEncodeStays)
{
    prepare(3);
    standing("older");
    controller->setReplacePolicy(1);
    beginUpTo(ToolKind::Encode);
    standing("somebody has gone on writing");
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    expectOnly("somebody has gone on writing");
}

TEST_F(Outputs, OlderOneIsReplacedAfterBothPasses)
{
    prepare(5);
    standing("older");
    controller->setReplacePolicy(1);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_EQ(QFile(output).size(), 300 * 1024);
    EXPECT_EQ(QDir(events).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST_F(Outputs, StopAfterTheOlderOneWasReplacedLeavesTheNewOne)
{
    prepare(3);
    standing("older");
    controller->setReplacePolicy(1);
    beginUpTo(ToolKind::Encode);
    tools.writeFiles(tools.current(ToolKind::Encode));
    pressStop();
    EXPECT_EQ(QFile(output).size(), 300 * 1024) << "there is no other one any more";
}

TEST_F(Outputs, StrangersMasterFileIsNoIntermediate)
{
    prepare(3);
    const QString master = oldSrcPathStr2DstPathStr(output);
    ASSERT_TRUE(writeBytes(master, "a stranger's"));
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_EQ(readBytes(master), QByteArray("a stranger's"));
    QFile::remove(output);
    rows().setOut(0, 5);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_TRUE(rows().row(0).reason.endsWith(
        QStringLiteral("_MASTER.mov stands in the way of the first pass: move it, or choose another destination")))
        << rows().row(0).reason.toStdString();
    EXPECT_EQ(readBytes(master), QByteArray("a stranger's"));
}

TEST_F(Outputs, AreNotBelievedWithoutAVerdict)
{
    prepare(3);
    tools.clips[source].verdict.reset();
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_TEXT(rows().row(0).reason,
                QStringLiteral("the encoder did not say whether its output is whole; it is not believed"));
    EXPECT_FALSE(itemExists(output));
}

TEST_F(Outputs, AreBelievedWithAWarningWhenTheToolCouldNotJudge)
{
    prepare(3);
    tools.clips[source].verdict = Verdict{Outcome::Whole, {{.cause = Cause::NotJudged, .text = "cut"}}};
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_TEXT(rows().row(0).warning, QStringLiteral("the output could not be compared with its source (cut)"));
    EXPECT_FALSE(rows().row(0).incomplete);
}

struct Kind {
    const char* name;
    void (*make)(const char* path);
    const char* reason;
};

const Kind kinds[] = {
    {"Link", [](const char* path) { EXPECT_EQ(::symlink("elsewhere", path), 0); }, "is a link: "},
    {"Folder", [](const char* path) { EXPECT_EQ(::mkdir(path, 0700), 0); }, "is a folder: "},
    {"Pipe", [](const char* path) { EXPECT_EQ(::mkfifo(path, 0600), 0); }, "is no ordinary file: "},
    {"ReadOnly",
     [](const char* path) {
         EXPECT_TRUE(writeBytes(QString::fromUtf8(path), "precious"));
         EXPECT_EQ(::chmod(path, 0444), 0);
     },
     "exists and is write-protected: "},
};

class InTheWay : public Outputs, public testing::WithParamInterface<Kind>
{
};

TEST_P(InTheWay, IsLeftAloneWithItsReason)
{
    prepare(3);
    const QByteArray path = output.toUtf8();
    GetParam().make(path.constData());
    struct stat before = {};
    ASSERT_EQ(::lstat(path.constData(), &before), 0);
    controller->setReplacePolicy(1);
    runBatch();
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_TRUE(rows().row(0).reason.contains(QLatin1String(GetParam().reason))) << rows().row(0).reason.toStdString();
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    struct stat after = {};
    ASSERT_EQ(::lstat(path.constData(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
}

INSTANTIATE_TEST_SUITE_P(Publication, InTheWay, testing::ValuesIn(kinds), rowName<Kind>);
