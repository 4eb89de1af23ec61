// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/outputformats.h"
#include "inspecttest.h"
#include "testpaths.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <csignal>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct Answer {
    int exitCode = -1;
    QString output;
    QString errors;
};

// The real program, in a folder and a home of its own.
class InspectProgram : public InspectTest
{
protected:
    void prepare(QProcess& process) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), folder.path());
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        environment.remove(QStringLiteral("LANGUAGE"));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(folder.path());
        process.setStandardInputFile(QProcess::nullDevice());
        process.setProgram(QStringLiteral(TAVRIX_BUILD_BIN "/tavrix-inspect"));
    }

    [[nodiscard]] Answer run(const QStringList& arguments) const
    {
        QProcess process;
        prepare(process);
        process.setArguments(arguments);
        process.start();
        EXPECT_TRUE(process.waitForFinished(-1));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
};

TEST_F(InspectProgram, DescribesFilesInWords)
{
    ASSERT_TRUE(makeTransportClip(folder.path(QStringLiteral("00001.MTS")), 0.5));
    ASSERT_TRUE(makeAviClip(folder.path(QStringLiteral("b.avi"))));
    const Answer answer = run({QStringLiteral("00001.MTS"), QStringLiteral("b.avi")});
    EXPECT_EQ(answer.exitCode, 0);
    EXPECT_EQ(answer.errors, QString(QStringLiteral("")));
    EXPECT_TRUE(answer.output.startsWith(QStringLiteral("00001.MTS\n  File ")));
    EXPECT_TRUE(answer.output.contains(QStringLiteral("\n\nb.avi\n  File ")));
    EXPECT_TRUE(answer.output.contains(QStringLiteral("yes, as a camera clip")));
}

TEST_F(InspectProgram, DescribesFilesInJsonLines)
{
    ASSERT_TRUE(makeAviClip(folder.path(QStringLiteral("b.avi"))));
    folder.makeFile(QStringLiteral("damaged.mov"), "x");
    const Answer answer = run({QStringLiteral("--json"), QStringLiteral("b.avi"), QStringLiteral("damaged.mov")});
    EXPECT_EQ(answer.exitCode, 1);
    const QStringList lines = answer.output.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    const QJsonObject clip = QJsonDocument::fromJson(lines.at(0).toUtf8()).object();
    EXPECT_TRUE(clip.value(QStringLiteral("taken")).toBool());
    EXPECT_EQ(clip.value(QStringLiteral("formats")).toArray().size(), outputFormatCount);
    const QJsonObject damaged = QJsonDocument::fromJson(lines.at(1).toUtf8()).object();
    EXPECT_FALSE(damaged.value(QStringLiteral("described")).toBool(true));
    EXPECT_FALSE(damaged.value(QStringLiteral("problem")).toString().isEmpty());
}

TEST_F(InspectProgram, DescribesTheClipsOfAFolder)
{
    ASSERT_TRUE(makeAviClip(folder.path(QStringLiteral("b.avi"))));
    folder.makeFolder(QStringLiteral("clips/deep"));
    ASSERT_TRUE(QFile::copy(folder.path(QStringLiteral("b.avi")), folder.path(QStringLiteral("clips/deep/c.avi"))));
    folder.makeFile(QStringLiteral("clips/notes.txt"), "x");
    folder.makeFolder(QStringLiteral("nothing"));
    const Answer answer = run({QStringLiteral("clips"), QStringLiteral("nothing")});
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_TRUE(answer.output.startsWith(QStringLiteral("c.avi\n")));
    EXPECT_FALSE(answer.output.contains(QStringLiteral("notes")));
    EXPECT_TRUE(answer.output.endsWith(QStringLiteral("no file of a known type in this folder\n")));
}

TEST_F(InspectProgram, ShowsHostileNamesAsEscapes)
{
    const QString name = QString::fromUtf8("-e\x1b]0;title\x07\n$(touch x)`touch y`\xe2\x80\xae'\".mov");
    folder.makeFile(name, "x");
    const Answer answer = run({QStringLiteral("--"), name});
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_TRUE(answer.output.contains(QStringLiteral("-e\\x1b]0;title\\x07\\n$(touch x)`touch y`\\u202e'\".mov")));
    for (const QChar character : answer.output) {
        EXPECT_TRUE(character == u'\n' || character.isPrint()) << int{character.unicode()};
    }
    EXPECT_FALSE(QFile::exists(folder.path(QStringLiteral("x"))));
    EXPECT_FALSE(QFile::exists(folder.path(QStringLiteral("y"))));
}

TEST_F(InspectProgram, TellsWrongUsageInTwoLines)
{
    const Answer answer = run({QStringLiteral("--jsn"), QStringLiteral("a.mov")});
    EXPECT_EQ(answer.exitCode, 2);
    EXPECT_EQ(answer.output, QString(QStringLiteral("")));
    EXPECT_EQ(answer.errors, QStringLiteral("tavrix-inspect: unknown option --jsn\nTry 'tavrix-inspect --help'.\n"));
    EXPECT_EQ(run({QStringLiteral("--help")}).exitCode, 0);
    EXPECT_TRUE(run({QStringLiteral("--help")}).output.startsWith(QStringLiteral("Usage: tavrix-inspect")));
    EXPECT_TRUE(run({QStringLiteral("--version")}).output.startsWith(QStringLiteral("tavrix-inspect 1.")));
}

TEST_F(InspectProgram, LeavesNothingInTheHome)
{
    ASSERT_TRUE(makeAviClip(folder.path(QStringLiteral("b.avi"))));
    EXPECT_EQ(run({QStringLiteral("b.avi")}).exitCode, 0);
    EXPECT_TEXTS(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("b.avi")});
}

TEST_F(InspectProgram, ExportsTheSound)
{
    ASSERT_TRUE(makeAviClip(folder.path(QStringLiteral("b.avi"))));
    const Answer answer = run({QStringLiteral("--export"), QStringLiteral("wav"), QStringLiteral("b.avi")});
    EXPECT_EQ(answer.exitCode, 0);
    EXPECT_EQ(answer.output, QStringLiteral("b.wav: 0:01.00, 32 kB\n"));
    const Answer again = run({QStringLiteral("--export"), QStringLiteral("wav"), QStringLiteral("b.avi")});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(again.errors.contains(QStringLiteral("already exists")));
}

TEST_F(InspectProgram, AnInterruptedExportLeavesNothingBehind)
{
    // Long enough for a signal to come in between.
    ASSERT_TRUE(makeMedia(folder.path(QStringLiteral("long.mov")),
                          QStringLiteral("-f lavfi -i anullsrc=r=8000:cl=mono:d=7200 -c:a pcm_u8 -f mov")));
    QProcess process;
    prepare(process);
    process.setArguments({QStringLiteral("--export"), QStringLiteral("wav"), QStringLiteral("long.mov")});
    process.start();
    ASSERT_TRUE(process.waitForStarted(-1));
    const QDir place(folder.path());
    const auto hidden = [&place] {
        return place.entryList({QStringLiteral(".tavrix-*")}, QDir::Dirs | QDir::Hidden);
    };
    while (hidden().isEmpty() && process.state() == QProcess::Running) {
        process.waitForFinished(1);
    }
    ASSERT_EQ(process.state(), QProcess::Running);
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGTERM), 0);
    ASSERT_TRUE(process.waitForFinished(-1));
    EXPECT_EQ(process.exitCode(), 128 + SIGTERM);
    EXPECT_TEXTS(place.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("long.mov")});
}

TEST_F(InspectProgram, PrintsTheSystemAndTheLogs)
{
    folder.makeFile(QStringLiteral("Library/Logs/Tavrix/Resume.log"), "source : /home/ann/a.mov\n");
    const Answer cut = run({QStringLiteral("--system")});
    EXPECT_EQ(cut.exitCode, 0);
    EXPECT_TRUE(cut.errors.isEmpty()) << cut.errors.toStdString();
    EXPECT_TRUE(cut.output.startsWith(QStringLiteral("Program "))) << cut.output.toStdString();
    EXPECT_TRUE(cut.output.contains(QStringLiteral("source : .../a.mov\n")));
    EXPECT_FALSE(cut.output.contains(QStringLiteral("/home/ann")));
    EXPECT_TRUE(run({QStringLiteral("--system"), QStringLiteral("--full-paths")})
                    .output.contains(QStringLiteral("source : /home/ann/a.mov\n")));
}

} // namespace
