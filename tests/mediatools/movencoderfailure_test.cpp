// SPDX-License-Identifier: GPL-3.0-or-later
#include "cameramovietest.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix::test;

namespace
{

const QString plain = QStringLiteral("1280x720p");

class MovencoderFailure : public CameraMovieTest<40, false>
{
protected:
    // The tool fails with status 1 and names a file; nothing is in the folder but what was there before.
    void expectFailure(const ToolResult& result, const QString& named) const
    {
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.errors.contains("movencoder: " + QFile::encodeName(named) + ": "))
            << result.errors.constData();
        EXPECT_FALSE(result.output.contains("100%"));
    }
};

TEST_F(MovencoderFailure, InputThatIsNoMovie)
{
    const QString prose = folder_.makeFile(QStringLiteral("prose.mov"), QByteArrayLiteral("not a movie at all"));
    expectFailure(movencode(settingsPath(plain), QString(), prose, output()), prose);
    const QString missing = folder_.path(QStringLiteral("missing.mov"));
    expectFailure(movencode(settingsPath(plain), QString(), missing, output()), missing);
    EXPECT_EQ(entriesOf(folder_.path()), QStringList{QStringLiteral("prose.mov")});
}

TEST_F(MovencoderFailure, InputThatIsNoFile)
{
    const QString pipe = folder_.path(QStringLiteral("pipe.mov"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString& input : {pipe, folder_.path(), QStringLiteral("/dev/null")}) {
        const ToolResult result = movencode(settingsPath(plain), QString(), input, output());
        expectFailure(result, input);
        EXPECT_TRUE(result.errors.contains("not a regular file")) << result.errors.constData();
    }
    EXPECT_EQ(entriesOf(folder_.path()), QStringList{QStringLiteral("pipe.mov")});
}

TEST_F(MovencoderFailure, InputWithoutVideo)
{
    const QString sound = folder_.path(QStringLiteral("sound.mov"));
    ASSERT_TRUE(makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("sine=440:duration=0.1"), sound}));
    expectFailure(movencode(settingsPath(plain), QString(), sound, output()), sound);
    EXPECT_EQ(entriesOf(folder_.path()), QStringList{QStringLiteral("sound.mov")});
}

// A play list under a movie's name must not make the tool reach for other addresses.
TEST_F(MovencoderFailure, PlayListOfAnotherProtocol)
{
    const QString list = folder_.makeFile(
        QStringLiteral("list.mov"),
        QByteArrayLiteral("#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nhttp://127.0.0.1:9/a.ts\n#EXT-X-ENDLIST\n"));
    expectFailure(movencode(settingsPath(plain), QString(), list, output()), list);
}

// The tool must not blame a file that nobody knows.
TEST_F(MovencoderFailure, TheReasonNamesTheClipAndNotTheFirstPass)
{
    const QString firstPass = folder_.makeFile(QStringLiteral("out_MASTER.mov"), QByteArrayLiteral("no movie"));
    const QString clip = folder_.path(QStringLiteral("00001.MTS"));
    const QString list = QStringLiteral("<plist version=\"1.0\"><dict><key>encCurrentProcessingFile</key><string>%3"
                                        "</string><key>processEncDico</key><dict><key>out</key><integer>4</integer>"
                                        "<key>dstPathStr</key><string>%1</string><key>purgePathStr1</key><string>%2"
                                        "</string></dict></dict></plist>")
                             .arg(output(), firstPass, clip);
    folder_.makeFile(QStringLiteral("home/Library/Preferences/org.tavrix.Tavrix.plist"), list.toUtf8());
    const EnvironmentChange change("HOME", folder_.path(QStringLiteral("home")).toUtf8().constData());
    const ToolResult result = movencode(settingsPath(plain), QString(), firstPass, output());
    expectFailure(result, clip);
    EXPECT_FALSE(result.errors.contains("_MASTER")) << result.errors.constData();
}

TEST_F(MovencoderFailure, InputWithoutAnyGoodPicture)
{
    auto bytes = readBytes(camera());
    ASSERT_TRUE(bytes);
    const qsizetype media = bytes->indexOf("mdat") + 4;
    std::fill(bytes->begin() + media, bytes->begin() + bytes->indexOf("moov") - 4, '\xFF');
    const QString empty = folder_.makeFile(QStringLiteral("empty.mov"), *bytes);
    const ToolResult result = movencode(settingsPath(plain), QStringLiteral("aic"), empty, output());
    expectFailure(result, empty);
    EXPECT_TRUE(result.errors.contains("none of its pictures can be decoded")) << result.errors.constData();
    EXPECT_EQ(entriesOf(folder_.path()), QStringList{QStringLiteral("empty.mov")});
}

TEST_F(MovencoderFailure, SettingsThatCannotBeRead)
{
    const QString missing = folder_.path(QStringLiteral("none"));
    expectFailure(movencode(missing, QString(), camera(), output()), missing);
    const QString bad = folder_.makeFile(QStringLiteral("bad"), QByteArrayLiteral("size=1280x720\n"));
    expectFailure(movencode(bad, QString(), camera(), output()), bad);
    EXPECT_FALSE(itemExists(output()));
}

TEST_F(MovencoderFailure, OutputThatIsTheInput)
{
    const QString copy = folder_.makeFile(QStringLiteral("a.mov"), *readBytes(camera()));
    const QString link = folder_.path(QStringLiteral("b.mov"));
    const QString symbolic = folder_.path(QStringLiteral("c.mov"));
    ASSERT_EQ(::link(QFile::encodeName(copy).constData(), QFile::encodeName(link).constData()), 0);
    ASSERT_TRUE(QFile::link(copy, symbolic));
    for (const QString& same : {copy, link, symbolic}) {
        expectFailure(movencode(settingsPath(plain), QString(), copy, same), same);
    }
    EXPECT_TRUE(readBytes(copy) == readBytes(camera()));
    EXPECT_EQ(entriesOf(folder_.path()).size(), 3);
}

TEST_F(MovencoderFailure, OutputThatCannotBeWritten)
{
    const QString nowhere = folder_.path(QStringLiteral("none/out.mov"));
    expectFailure(movencode(settingsPath(plain), QString(), camera(), nowhere), nowhere);
    expectFailure(movencode(settingsPath(plain), QString(), camera(), folder_.path()), folder_.path());
    EXPECT_EQ(entriesOf(folder_.path()), QStringList());
}

TEST_F(MovencoderFailure, NoMoreSpaceLeavesTheOldFile)
{
    const QByteArray old("the file of last week");
    ASSERT_TRUE(writeBytes(output(), old));
    const auto limit = [] {
        const rlimit size{300'000, 300'000};
        setrlimit(RLIMIT_FSIZE, &size);
    };
    const ToolResult result = movencode(settingsPath(plain), QStringLiteral("aic"), camera(), output(), limit);
    expectFailure(result, output());
    EXPECT_TRUE(result.errors.contains("File too large")) << result.errors.constData();
    EXPECT_TRUE(readBytes(output()) == old);
    EXPECT_EQ(entriesOf(folder_.path()), QStringList{QStringLiteral("out.mov")});
}

TEST_F(MovencoderFailure, ExistingOutputIsReplacedOnSuccess)
{
    ASSERT_TRUE(writeBytes(output(), QByteArrayLiteral("old")));
    ASSERT_EQ(movencode(settingsPath(plain), QStringLiteral("aic"), camera(), output()).status, 0);
    EXPECT_GT(QFileInfo(output()).size(), 100'000);
    EXPECT_EQ(entriesOf(folder_.path()), QStringList{QStringLiteral("out.mov")});
}

TEST_F(MovencoderFailure, KilledInTheMiddleLeavesNothing)
{
    // Long enough for a progress line to come well before the end on any machine.
    const TempFolder sources;
    const QString longClip = sources.path(QStringLiteral("long.mov"));
    ASSERT_TRUE(makeMedia({QStringLiteral("-stream_loop"), QStringLiteral("50"), QStringLiteral("-i"), camera(),
                           QStringLiteral("-c"), QStringLiteral("copy"), longClip}));
    for (const int number : {SIGKILL, SIGTERM}) {
        QProcess process;
        process.start(movencoderPath(), {QStringLiteral("-s"), settingsPath(plain), QStringLiteral("-f"),
                                         QStringLiteral("prores"), longClip, output()});
        ASSERT_TRUE(process.waitForReadyRead(60'000)) << "no progress line came";
        EXPECT_TRUE(process.readAllStandardOutput().startsWith("Processing ("));
        ASSERT_EQ(kill(static_cast<pid_t>(process.processId()), number), 0);
        ASSERT_TRUE(process.waitForFinished(60'000));
        ASSERT_EQ(process.exitStatus(), QProcess::CrashExit);
        EXPECT_EQ(entriesOf(folder_.path()), QStringList());
    }
}

TEST_F(MovencoderFailure, UsageIsAnsweredWithStatusTwo)
{
    const ToolResult wrong = runProgram(movencoderPath(), {QStringLiteral("--fast")});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_TRUE(wrong.errors.contains("--help"));
    const ToolResult help = runProgram(movencoderPath(), {QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.startsWith("Usage: movencoder -s SETTINGS"));
    EXPECT_EQ(help.errors.toStdString(), "");
}

} // namespace
