// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/oldtools.h"
#include "base/bundle/bundle.h"
#include "support/qtprinters.h"
#include "support/waituntil.h"
#include "testresources.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <csignal>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct CommandRow {
    const char* name;
    const char* folder;
    const char* command;
};

class Command : public testing::TestWithParam<CommandRow>
{
};

const CommandRow commandRows[] = {
    {"Ordinary", "/usr/lib/tavrix/tools",
     "/bin/ps -awwx | /usr/bin/strings | /usr/bin/grep \"/usr/lib/tavrix/tools\"/ffmpeg | /usr/bin/grep -v grep | "
     "/usr/bin/awk '{print $1}'"},
    {"Blank", "/home/a b/tools",
     "/bin/ps -awwx | /usr/bin/strings | /usr/bin/grep \"/home/a b/tools\"/ffmpeg | /usr/bin/grep -v grep | "
     "/usr/bin/awk '{print $1}'"},
    {"Quote", "/a\"b/tools", nullptr},
    {"Dollar", "/a$b/tools", nullptr},
    {"Backslash", "/a\\b/tools", nullptr},
    {"Backquote", "/a`b/tools", nullptr},
};

// A process of the system's own sleep under the tool's name, or with the tool's path among its arguments.
class LeftOver : public testing::Test
{
protected:
    LeftOver() { tool = resources.makeTool(QStringLiteral("ffmpeg"), "exit 0\n"); }

    // Puts the real program in the tool's place, so that the process truly runs the tool.
    void makeToolAProgram()
    {
        QFile::remove(tool);
        ASSERT_TRUE(QFile::copy(QStringLiteral("/usr/bin/sleep"), tool));
        ASSERT_TRUE(
            QFile::setPermissions(tool, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
    }

    static void start(QProcess& process, const QString& program, const QStringList& arguments)
    {
        process.start(program, arguments);
        ASSERT_TRUE(process.waitForStarted());
        // The process shows its own command line only after it has become the program.
        ASSERT_TRUE(waitUntil([&] {
            return QFileInfo(QStringLiteral("/proc/%1/exe").arg(process.processId())).symLinkTarget() ==
                   QFileInfo(program).canonicalFilePath();
        }));
    }

    // As the program that had that process id has started it.
    static void ownedBy(QProcess& process, qint64 program)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(ownerVariable), QString::number(program));
        process.setProcessEnvironment(environment);
    }

    // The id of a process that has ended.
    static qint64 endedProgram()
    {
        QProcess program;
        program.start(QStringLiteral("/bin/true"), {});
        const qint64 pid = program.processId();
        program.waitForFinished();
        return pid;
    }

    static void finish(QProcess& process)
    {
        process.kill();
        process.waitForFinished();
    }

    const TestResources resources{QStringLiteral("res ources")};
    QString tool;
};

const QString longTime = QStringLiteral("1000");

} // namespace

TEST_P(Command, IsThatOfTheTable)
{
    EXPECT_TEXT(leftOverToolCommand(text(GetParam().folder), QStringLiteral("ffmpeg")), text(GetParam().command));
}

INSTANTIATE_TEST_SUITE_P(OldTools, Command, testing::ValuesIn(commandRows), rowName<CommandRow>);

TEST_F(LeftOver, ToolIsFoundAndKilled)
{
    makeToolAProgram();
    QProcess process;
    ownedBy(process, endedProgram());
    start(process, tool, {longTime});
    const int pid = static_cast<int>(process.processId());
    EXPECT_EQ(leftOverToolPids(QStringLiteral("ffmpeg")), QList<int>{pid});
    EXPECT_TRUE(leftOverToolPids(QStringLiteral("movencoder")).isEmpty());
    killLeftOverTool(pid);
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_TRUE(leftOverToolPids(QStringLiteral("ffmpeg")).isEmpty());
}

TEST_F(LeftOver, ToolIsFoundAsTheShellsListingFindsIt)
{
    makeToolAProgram();
    QProcess process;
    ownedBy(process, endedProgram());
    start(process, tool, {longTime});
    QProcess listing;
    listing.start(QStringLiteral("/bin/sh"),
                  {QStringLiteral("-c"), leftOverToolCommand(QFileInfo(tool).path(), QStringLiteral("ffmpeg"))});
    ASSERT_TRUE(listing.waitForFinished());
    QList<int> listed;
    for (const QByteArray& line : listing.readAllStandardOutput().split('\n')) {
        // The shell itself has the path among its arguments.
        if (line.toInt() == process.processId()) {
            listed << line.toInt();
        }
    }
    EXPECT_EQ(listed.size(), 1);
    EXPECT_EQ(leftOverToolPids(QStringLiteral("ffmpeg")), listed);
    finish(process);
}

// Whoever ran the second pass's tool in a terminal lost it when the program was started.
TEST_F(LeftOver, ToolThatIsRunByHandIsSpared)
{
    makeToolAProgram();
    QProcess process;
    start(process, tool, {longTime});
    EXPECT_TRUE(leftOverToolPids(QStringLiteral("ffmpeg")).isEmpty());
    finish(process);
}

TEST_F(LeftOver, ToolOfAProgramThatRunsIsSpared)
{
    makeToolAProgram();
    QProcess process;
    ownedBy(process, QCoreApplication::applicationPid());
    start(process, tool, {longTime});
    EXPECT_TRUE(leftOverToolPids(QStringLiteral("ffmpeg")).isEmpty());
    finish(process);
}

TEST_F(LeftOver, ProcessThatMerelyNamesTheToolIsSpared)
{
    makeToolAProgram();
    QProcess process;
    ownedBy(process, endedProgram());
    start(process, QFileInfo(QStringLiteral("/bin/sh")).canonicalFilePath(),
          {QStringLiteral("-c"), QStringLiteral("read x"), tool});
    EXPECT_TRUE(leftOverToolPids(QStringLiteral("ffmpeg")).isEmpty());
    finish(process);
}

TEST_F(LeftOver, ToolOfAnotherHomeIsSpared)
{
    makeToolAProgram();
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), QStringLiteral("/home/another"));
    environment.insert(QString::fromLatin1(ownerVariable), QString::number(endedProgram()));
    process.setProcessEnvironment(environment);
    start(process, tool, {longTime});
    EXPECT_TRUE(leftOverToolPids(QStringLiteral("ffmpeg")).isEmpty());
    finish(process);
}

TEST_F(LeftOver, ProcessThatIsGoneIsNoError)
{
    QProcess process;
    process.start(QStringLiteral("/bin/true"), {});
    ASSERT_TRUE(process.waitForFinished());
    const LogCapture log;
    killLeftOverTool(static_cast<int>(process.processId() > 0 ? process.processId() : 0x3FFFFF));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(OldTools, FolderThatCannotBeQuotedIsSkippedWithALine)
{
    const TestResources resources(QStringLiteral("a$b"));
    const LogCapture log;
    EXPECT_TRUE(leftOverToolPids(QStringLiteral("ffmpeg")).isEmpty());
    EXPECT_TRUE(log.contains(QStringLiteral("vieux process       :-( ") + resources.root() + QStringLiteral("/tools")));
}
