// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/logs.h"
#include "app/mailaddress.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/text/log.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "testpaths.h"
#include "testresources.h"

#include <QDir>
#include <QFile>

#include <cstdio>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class Logs : public testing::Test
{
protected:
    Logs()
    {
        setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
        setLanguage(QStringLiteral("en"));
        QDir(logsFolder()).removeRecursively();
    }

    static QStringList files() { return QDir(logsFolder()).entryList(QDir::Files, QDir::Name); }
    static QString summary() { return QString::fromUtf8(readBytes(logResumePathStr()).value_or(QByteArray())); }
    static QByteArray contents(const char* name)
    {
        return readBytes(logsFolder() + u'/' + QString::fromLatin1(name)).value_or(QByteArray());
    }
};

// Runs the call in a process of its own, since the streams can be redirected once only.
template <typename Call> int inChild(Call call)
{
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0) {
        call();
        std::fflush(stdout);
        ::_exit(0);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child ? status : -1;
}

} // namespace

TEST_F(Logs, StandBelowTheHomeUnderTheProgramsName)
{
    const QString home = qEnvironmentVariable("HOME");
    EXPECT_TEXT(detailsLogPath(), home + QStringLiteral("/Library/Logs/Tavrix/Details.log"));
    EXPECT_TEXT(logResumePathStr(), home + QStringLiteral("/Library/Logs/Tavrix/Resume.log"));
}

TEST_F(Logs, FirstRunMakesNoPreviousFiles)
{
    rotateLogs();
    EXPECT_TRUE(files().isEmpty());
    logResume(QStringLiteral(""));
    EXPECT_TEXTS(files(), QStringList(QStringLiteral("Resume.log")));
    EXPECT_TRUE(summary().startsWith(QLatin1String("start date    : 20")));
    EXPECT_FALSE(summary().contains(u'\n'));
    EXPECT_TRUE(contents("Resume.log").startsWith("\xEF\xBB\xBF"));
}

TEST_F(Logs, SecondRunKeepsTheFirstOnesSummary)
{
    rotateLogs();
    logResume(QStringLiteral("\nfirst run"));
    ASSERT_TRUE(writeBytes(detailsLogPath(), "first details"));
    rotateLogs();
    logResume(QString());
    EXPECT_TEXTS(files(), QStringList({QStringLiteral("Previous-Details.log"), QStringLiteral("Previous-Resume.log"),
                                       QStringLiteral("Resume.log")}));
    EXPECT_TRUE(contents("Previous-Resume.log").endsWith("\nfirst run"));
    EXPECT_EQ(contents("Previous-Details.log"), QByteArray("first details"));
    EXPECT_FALSE(summary().contains(QStringLiteral("first run")));
}

TEST_F(Logs, ThirdRunReplacesThePreviousFiles)
{
    for (const char* run : {"one", "two", "three"}) {
        rotateLogs();
        logResume(QString::fromLatin1(run));
    }
    EXPECT_TRUE(contents("Previous-Resume.log").endsWith("two"));
    EXPECT_TRUE(summary().endsWith(QLatin1String("three")));
}

TEST_F(Logs, EmptyTextsOnlyMakeTheFile)
{
    rotateLogs();
    logResume(QString());
    const QString begun = summary();
    logResume(QStringLiteral(""));
    logResume(QString());
    EXPECT_TEXT(summary(), begun);
}

TEST_F(Logs, TextsAreAppendedAsTheyAre)
{
    rotateLogs();
    logResume(QString::fromUtf8("\n\xC3\xA9t\xC3\xA9 50% %@ %s\n"));
    logResume(QStringLiteral("second"));
    EXPECT_TRUE(summary().endsWith(QString::fromUtf8("\n\xC3\xA9t\xC3\xA9 50% %@ %s\nsecond")));
    EXPECT_EQ(contents("Resume.log").count("\xEF\xBB\xBF"), 1);
}

TEST_F(Logs, SummaryIsMadeAgainWhenItHasVanished)
{
    rotateLogs();
    logResume(QStringLiteral("gone"));
    ASSERT_TRUE(QFile::remove(logResumePathStr()));
    logResume(QStringLiteral("new"));
    EXPECT_TRUE(summary().startsWith(QLatin1String("start date    : ")));
    EXPECT_TRUE(summary().endsWith(QLatin1String("new")));
}

TEST_F(Logs, ArePrivate)
{
    rotateLogs();
    logResume(QStringLiteral("x"));
    struct stat info = {};
    ASSERT_EQ(::stat(qPrintable(logsFolder()), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0700U);
    ASSERT_EQ(::stat(qPrintable(logResumePathStr()), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0600U);
}

TEST_F(Logs, NothingIsWrittenThroughALink)
{
    const TempFolder folder;
    const QString target = folder.makeFile(QStringLiteral("target"), "kept");
    rotateLogs();
    ASSERT_EQ(::symlink(qPrintable(target), qPrintable(logResumePathStr())), 0);
    logResume(QStringLiteral("x"));
    EXPECT_EQ(readBytes(target), QByteArray("kept"));
    const QString dangling = folder.path(QStringLiteral("none"));
    ASSERT_TRUE(QFile::remove(logResumePathStr()));
    ASSERT_EQ(::symlink(qPrintable(dangling), qPrintable(logResumePathStr())), 0);
    logResume(QStringLiteral("x"));
    EXPECT_FALSE(itemExists(dangling));
}

TEST_F(Logs, RotationMovesALinkAndNotItsTarget)
{
    const TempFolder folder;
    const QString target = folder.makeFile(QStringLiteral("target"), "kept");
    rotateLogs();
    ASSERT_EQ(::symlink(qPrintable(target), qPrintable(logResumePathStr())), 0);
    rotateLogs();
    logResume(QStringLiteral("fresh"));
    EXPECT_EQ(readBytes(target), QByteArray("kept"));
    EXPECT_TRUE(summary().endsWith(QLatin1String("fresh")));
}

TEST_F(Logs, RedirectionAppendsBothStreamsInOrder)
{
    rotateLogs();
    ASSERT_TRUE(writeBytes(detailsLogPath(), "before\n"));
    EXPECT_EQ(inChild([] {
                  redirectLogs2File(detailsLogPath());
                  std::printf("from stdout\n");
                  std::fprintf(stderr, "from stderr\n");
                  std::printf("again\n");
                  logLine(QStringLiteral("a line"));
                  redirectLogs2File(QStringLiteral("/nowhere/else"));
                  std::printf("last\n");
              }),
              0);
    const QByteArray log = contents("Details.log");
    EXPECT_TRUE(log.startsWith("before\nfrom stdout\nfrom stderr\nagain\n")) << log.constData();
    EXPECT_TRUE(log.contains("] a line\n"));
    EXPECT_TRUE(log.contains("] if (newStdout || newStderr)\n"));
    EXPECT_TRUE(log.endsWith("last\n"));
}

TEST_F(Logs, RedirectionToAnImpossiblePlaceLeavesWorkingStreams)
{
    const TempFolder folder;
    const QString proof = folder.path(QStringLiteral("proof"));
    EXPECT_EQ(inChild([&] {
                  redirectLogs2File(folder.path(QStringLiteral("none/x.log")));
                  const bool works = std::printf("x\n") == 2 && std::fflush(stdout) == 0 &&
                                     std::fprintf(stderr, "x\n") == 2 && std::fflush(stderr) == 0;
                  writeBytes(proof, works ? "works" : "broken");
              }),
              0);
    EXPECT_EQ(readBytes(proof), QByteArray("works"));
}

TEST_F(Logs, RedirectionDoesNotFollowALink)
{
    const TempFolder folder;
    const QString target = folder.makeFile(QStringLiteral("target"), "kept");
    const QString link = folder.path(QStringLiteral("Details.log"));
    ASSERT_EQ(::symlink(qPrintable(target), qPrintable(link)), 0);
    EXPECT_EQ(inChild([&] {
                  redirectLogs2File(link);
                  std::printf("x\n");
              }),
              0);
    EXPECT_EQ(readBytes(target), QByteArray("kept"));
}

namespace
{

struct MailRow {
    const char* name;
    const char* version; // of the property list
    const char* field;
    int revision;
    const char* body;
    const char* address;
};

class Mail : public testing::TestWithParam<MailRow>
{
protected:
    const TestResources resources;
};

const MailRow mailRows[] = {
    {"TwoDecimals", "2.1", "2.1", 23134, "",
     "mailto:bugreport@tavrix.example?subject=Tavrix%20-%20v2.10%20(English)&body=2.1-r23134%0A%0A"},
    {"ThreeNumbers", "1.2.3", "1.2.3", 0, "",
     "mailto:bugreport@tavrix.example?subject=Tavrix%20-%20v1.20%20(English)&body=1.2.3-r0%0A%0A"},
    {"RoundedDown", "0.125", "", 1, "",
     "mailto:bugreport@tavrix.example?subject=Tavrix%20-%20v0.12%20(English)&body=-r1%0A%0A"},
    {"WordsCapitalised", "1.0", "beta TWO", 1, "",
     "mailto:bugreport@tavrix.example?subject=Tavrix%20-%20v1.00%20(English)&body=Beta%20Two-r1%0A%0A"},
    {"BodyEscaped", "1.0", "1.0", 1, "\xC3\xA9 50%\n\"x\" [y]",
     "mailto:bugreport@tavrix.example?subject=Tavrix%20-%20v1.00%20(English)&body=1.0-r1%0A%0A%C3%A9%2050%25%0A%22x%22%"
     "20%5By%5D"},
    {"NoPlaceholderInTheBody", "1.0", "1.0", 1, "%@ %d",
     "mailto:bugreport@tavrix.example?subject=Tavrix%20-%20v1.00%20(English)&body=1.0-r1%0A%0A%25@%20%25d"},
};

} // namespace

TEST_P(Mail, AddressIsThatOfTheTable)
{
    setLanguage(QStringLiteral("en"));
    resources.changeInfo("<string>1.0</string>",
                         QByteArray("<string> ").trimmed() + GetParam().version + QByteArray("</string>"));
    EXPECT_TEXT(
        mailAddress(QStringLiteral("bugreport"), text(GetParam().field), GetParam().revision, text(GetParam().body)),
        text(GetParam().address));
}

INSTANTIATE_TEST_SUITE_P(Logs, Mail, testing::ValuesIn(mailRows), rowName<MailRow>);
