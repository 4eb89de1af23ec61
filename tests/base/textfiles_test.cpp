// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/textfiles.h"
#include "base/store/settings.h"
#include "support/alertrecorder.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QFile>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

TEST(TolerantRead, ReadsWhatItCanDecode)
{
    const TempFolder folder;
    const LogCapture log;
    EXPECT_TEXT(readContentsTxtUTF8(folder.makeFile(QStringLiteral("a b"), "h\xC3\xA9\r\n")), QStringLiteral("hé\r\n"));
    EXPECT_TEXT(readContentsTxtUTF8(folder.makeFile(QStringLiteral("b"), "")), QStringLiteral(""));
    EXPECT_TEXT(readContentsTxtUTF8(QString()), QString());
    EXPECT_TEXTS(log.lines(), (QStringList{QStringLiteral("encoding : 4"), QStringLiteral("encoding : 1")}));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("a b.txt"))));
}

TEST(TolerantRead, AnUndecodableFileLeavesACopy)
{
    const TempFolder folder;
    const QByteArray bytes("\xEF\xBB\xBF"
                           "a\xC3");
    const QString file = folder.makeFile(QStringLiteral("x"), bytes);
    const LogCapture log;
    EXPECT_TEXT(readContentsTxtUTF8(file), QString());
    EXPECT_EQ(readBytes(file), bytes);
    EXPECT_EQ(readBytes(file + QStringLiteral(".txt")), bytes);
    EXPECT_TRUE(log.lines().value(1).startsWith(QStringLiteral("Error reading file at path ") + file));
}

TEST(TolerantRead, SaysWhatTheCopyHeldWhileDebugging)
{
    const TempFolder folder;
    setDEBUG(1);
    const LogCapture log;
    EXPECT_TRUE(readContentsTxtUTF8(folder.path(QStringLiteral("missing"))).isEmpty());
    EXPECT_TEXT(log.lines().last(), QStringLiteral("str : "));
    EXPECT_TEXT(readContentsTxtUTF8(folder.makeFile(QStringLiteral("x"), "\x81")), QString());
    setDEBUG(0);
    EXPECT_TEXT(log.lines().last(), QStringLiteral("str : (null)"));
}

TEST(TolerantRead, AMissingFileReadsAsAnEmptyCopy)
{
    const TempFolder folder;
    const QString file = folder.path(QStringLiteral("missing"));
    EXPECT_TRUE(readContentsTxtUTF8(file).isEmpty());
    EXPECT_EQ(readBytes(file + QStringLiteral(".txt")), QByteArray());
    EXPECT_FALSE(itemExists(file));
    EXPECT_TEXT(readContentsTxtUTF8(folder.path(QStringLiteral("no folder/x"))), QString());
}

TEST(TolerantRead, NamesAreDataForTheShell)
{
    const TempFolder folder;
    for (const char* name :
         {"a$(touch pwn)b", "a`touch pwn`b", "$HOME", "\"; touch pwn; \"", "back\\slash", "a;b&c|d", "-n", "it's"}) {
        const QString file = folder.makeFile(text(name), "\x81");
        EXPECT_TEXT(readContentsTxtUTF8(file), QString()) << name;
        EXPECT_EQ(readBytes(file + QStringLiteral(".txt")), QByteArray("\x81")) << name;
    }
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("pwn"))));
    EXPECT_FALSE(itemExists(QStringLiteral("pwn")));
}

TEST(TolerantRead, ACopyIsNeverWrittenThroughALink)
{
    const TempFolder folder;
    const QString precious = folder.makeFile(QStringLiteral("precious"), "p");
    const QString file = folder.makeFile(QStringLiteral("x"), "\x81");
    ASSERT_TRUE(QFile::link(precious, file + QStringLiteral(".txt")));
    EXPECT_TEXT(readContentsTxtUTF8(file), QString());
    EXPECT_EQ(readBytes(precious), QByteArray("p"));
}

TEST(TolerantRead, AFifoNeverBlocks)
{
    const TempFolder folder;
    const QString fifo = folder.path(QStringLiteral("fifo"));
    ASSERT_EQ(mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    EXPECT_TRUE(readContentsTxtUTF8(fifo).isEmpty());
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("fifo.txt"))));
    EXPECT_TEXT(readContentsTxtUTF8(folder.path()), QString());
}

struct LineRow {
    std::string name;
    QByteArray bytes;
    int limit;
    const char* expected;
};

class FirstLine : public testing::TestWithParam<LineRow>
{
};

TEST_P(FirstLine, IsBounded)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a"), GetParam().bytes);
    EXPECT_TEXT(readContentsTxtC(file, GetParam().limit), text(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Files, FirstLine,
                         testing::Values(LineRow{"LimitOne", "abc", 1, ""}, LineRow{"LimitZero", "abc", 0, nullptr},
                                         LineRow{"LimitNegative", "abc", -5, nullptr},
                                         LineRow{"Empty", "", 100, nullptr}, LineRow{"OneByte", "a", 100, ""},
                                         LineRow{"TenBytes", "0123456789", 100, "012345678"},
                                         LineRow{"LineFeedDoesNotFit", "abc\n", 100, "abc"},
                                         LineRow{"LineFeedFits", "abc\ndef", 100, "abc\n"},
                                         LineRow{"LimitCuts", "abcdef\n", 4, "abc"},
                                         LineRow{"CarriageReturnStays", "a\r\nb", 100, "a\r\n"},
                                         LineRow{"NulEndsIt", QByteArray("ab\0cd\n", 6), 100, "ab"},
                                         LineRow{"NotAscii", "a\xC3\xA9\nbcd", 100, nullptr},
                                         LineRow{"NotAsciiBehindTheLine", "ab\n\xC3\xA9", 100, "ab\n"},
                                         LineRow{"VideoHeader", "YUV4MPEG2 W640 H480 F25:1 It A1:1\nFRAME\n\xFF\xFF",
                                                 500, "YUV4MPEG2 W640 H480 F25:1 It A1:1\n"}),
                         rowName<LineRow>);

TEST(FirstLineOf, NothingMissingAndFolders)
{
    const TempFolder folder;
    EXPECT_TEXT(readContentsTxtC(QString(), 100), QString());
    EXPECT_TEXT(readContentsTxtC(folder.path(QStringLiteral("missing")), 100), QString());
    EXPECT_TEXT(readContentsTxtC(folder.path(), 100), QString());
    const LogCapture log;
    EXPECT_TEXT(readContentsTxtC(folder.makeFile(QStringLiteral("a"), "0123456789"), 100), QStringLiteral("012345678"));
    EXPECT_TEXTS(log.lines(),
                 (QStringList{QStringLiteral("poidsFile(srcPathStr, o) : 10.000000"), QStringLiteral("charInt = 10")}));
}

TEST(FirstLineOf, AHugeFileIsReadNoFurtherThanTheLimit)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a"), QByteArray(20000, 'x') + '\n');
    EXPECT_EQ(readContentsTxtC(file, 10000).size(), 9999);
    EXPECT_EQ(readContentsTxtC(file, 1000000).size(), 20000);
}

TEST(Mark, OverwritesTheFirstThreeBytes)
{
    const TempFolder folder;
    const LogCapture log;
    const QString file = folder.makeFile(QStringLiteral("a"), "123456");
    EXPECT_TRUE(writeUtf8Bom(file));
    EXPECT_EQ(readBytes(file), QByteArray("\xEF\xBB\xBF"
                                          "456"));
    EXPECT_TRUE(log.contains(QStringLiteral("Fixed BOM           :-) ") + file));
    const QString shorter = folder.makeFile(QStringLiteral("b"), "1");
    EXPECT_TRUE(writeUtf8Bom(shorter));
    EXPECT_EQ(readBytes(shorter), QByteArray("\xEF\xBB\xBF"));
    EXPECT_FALSE(writeUtf8Bom(QString()));
}

TEST(Mark, AMissingFileIsNotMade)
{
    const TempFolder folder;
    const QString file = folder.path(QStringLiteral("missing"));
    const LogCapture log;
    EXPECT_TRUE(writeUtf8Bom(file));
    EXPECT_FALSE(itemExists(file));
    EXPECT_TEXT(log.lines().last(), QStringLiteral("Fixed BOM           :-) ") + file);
}

TEST(Append, MarksANewFileAndOnlyAppendsLater)
{
    const TempFolder folder;
    const QString file = folder.path(QStringLiteral("é à.log"));
    const LogCapture log;
    EXPECT_TRUE(writeTextFileUtf8Bom(file, QStringLiteral("é\n")));
    EXPECT_TRUE(writeTextFileUtf8Bom(file, QStringLiteral("b")));
    EXPECT_EQ(readBytes(file), QByteArray("\xEF\xBB\xBF\xC3\xA9\nb"));
    EXPECT_TEXTS(log.lines(), (QStringList{QStringLiteral("Fixed BOM           :-) ") + file,
                                           QStringLiteral("ecrit               :-) ") + file,
                                           QStringLiteral("ecrit               :-) ") + file}));
    const QString plain = folder.makeFile(QStringLiteral("plain"), "x");
    EXPECT_TRUE(writeTextFileUtf8Bom(plain, QStringLiteral("y")));
    EXPECT_EQ(readBytes(plain), QByteArray("xy"));
}

TEST(Append, RefusesNothingAndEmpty)
{
    const TempFolder folder;
    const QString file = folder.path(QStringLiteral("a"));
    EXPECT_FALSE(writeTextFileUtf8Bom(QString(), QStringLiteral("x")));
    EXPECT_FALSE(writeTextFileUtf8Bom(QStringLiteral(""), QStringLiteral("x")));
    EXPECT_FALSE(writeTextFileUtf8Bom(file, QString()));
    EXPECT_FALSE(writeTextFileUtf8Bom(file, QStringLiteral("")));
    EXPECT_FALSE(itemExists(file));
}

TEST(Append, SaysOnTheErrorStreamThatAFileCannotBeMade)
{
    const TempFolder folder;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(writeTextFileUtf8Bom(folder.path(QStringLiteral("no folder/a")), QStringLiteral("x")));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Impossible to create destination file !\n");
}

TEST(Append, ShowsDevelopersAFileThatIsMade)
{
    const TempFolder folder;
    const QString file = folder.path(QStringLiteral("a b.log"));
    const AlertRecorder alerts;
    setDEBUGDEVForTests(1);
    EXPECT_TRUE(writeTextFileUtf8Bom(file, QStringLiteral("x")));
    EXPECT_TRUE(writeTextFileUtf8Bom(file, QStringLiteral("y")));
    setDEBUGDEVForTests(0);
    EXPECT_TRUE(writeTextFileUtf8Bom(folder.path(QStringLiteral("b")), QStringLiteral("x")));
    EXPECT_TEXTS(alerts.shown(), QStringList{file + QStringLiteral(": created")});
}

TEST(Append, LoneSurrogatesAreLossyButWritten)
{
    const TempFolder folder;
    const QString file = folder.path(QStringLiteral("a"));
    EXPECT_TRUE(writeTextFileUtf8Bom(file, QStringLiteral("a") + QChar(0xD800) + QStringLiteral("b")));
    const QByteArray bytes = readBytes(file).value();
    EXPECT_TRUE(bytes.startsWith("\xEF\xBB\xBF"
                                 "a"));
    EXPECT_TRUE(bytes.endsWith('b'));
}

TEST(Writers, NeverFollowLinks)
{
    const TempFolder folder;
    const QString precious = folder.makeFile(QStringLiteral("precious"), "p");
    const QString link = folder.path(QStringLiteral("link"));
    const QString dangling = folder.path(QStringLiteral("dangling"));
    ASSERT_TRUE(QFile::link(precious, link));
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("new")), dangling));
    for (const QString& path : {link, dangling}) {
        EXPECT_FALSE(writeTextFileUtf8Bom(path, QStringLiteral("x")));
        EXPECT_FALSE(ecritureFichier(path, QStringLiteral("x"), 0));
        writeUtf8Bom(path);
    }
    EXPECT_EQ(readBytes(precious), QByteArray("p"));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("new"))));
}

struct EndingRow {
    std::string name;
    const char* text;
    const char* expected;
};

class LineEnds : public testing::TestWithParam<EndingRow>
{
};

TEST_P(LineEnds, AreSingleLineFeeds)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a"), "something much longer than the text");
    EXPECT_TRUE(ecritureFichier(file, text(GetParam().text), 3));
    EXPECT_EQ(readBytes(file), QByteArray(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Texts, LineEnds,
                         testing::Values(EndingRow{"Pair", "a\r\nb", "a\nb"},
                                         EndingRow{"PairAndLone", "\r\n\r", "\n\n"},
                                         EndingRow{"Lone", "a\rb\r", "a\nb\n"},
                                         EndingRow{"LoneAndPair", "\r\r\n", "\n\n"},
                                         EndingRow{"Feeds", "a\n\nb", "a\n\nb"}, EndingRow{"Accents", "é\r", "é\n"},
                                         EndingRow{"Empty", "", ""}),
                         rowName<EndingRow>);

TEST(WholeWrite, RefusesNothingAndReportsFailure)
{
    const TempFolder folder;
    EXPECT_FALSE(ecritureFichier(QString(), QStringLiteral("x"), 0));
    EXPECT_FALSE(ecritureFichier(folder.path(QStringLiteral("a")), QString(), 0));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("a"))));
    const LogCapture log;
    const QString path = folder.path(QStringLiteral("no folder/a"));
    EXPECT_FALSE(ecritureFichier(path, QStringLiteral("x"), 7));
    EXPECT_TEXTS(log.lines(), (QStringList{QStringLiteral("7"), QStringLiteral("Error writing file at ") + path +
                                                                    QLatin1Char('\n') + missingFileText()}));
}

TEST(WholeWrite, SaysThatItHasWrittenWhileDebugging)
{
    const TempFolder folder;
    const QString file = folder.path(QStringLiteral("a"));
    const LogCapture log;
    EXPECT_TRUE(ecritureFichier(file, QStringLiteral("x"), 1));
    setDEBUG(1);
    EXPECT_TRUE(ecritureFichier(file, QStringLiteral("x"), 2));
    setDEBUG(0);
    EXPECT_TEXTS(log.lines(),
                 (QStringList{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("ecritureFichier     :-)")}));
}

TEST(WholeWrite, KeepsTheOtherNamesOfTheFile)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a"), "old");
    const QString other = folder.path(QStringLiteral("b"));
    ASSERT_EQ(::link(QFile::encodeName(file).constData(), QFile::encodeName(other).constData()), 0);
    EXPECT_TRUE(ecritureFichier(file, QStringLiteral("new"), 0));
    EXPECT_EQ(readBytes(other), QByteArray("new"));
}

TEST(ReverseLookUp, FindsTheKeyOfAText)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("t.strings"), "/* comment = \"no\" */\n"
                                                                      "no quotes = here;\r\n"
                                                                      "\"one\" = \"first\";\n"
                                                                      "\"a=b\" = \"second\";\n"
                                                                      "\"two\" = \"été\";\n"
                                                                      "\"three\" = \"first\";\n"
                                                                      "\"lonely\n"
                                                                      "\"empty\" = \"\";\n");
    const QString stem = folder.path(QStringLiteral("t"));
    EXPECT_TEXT(str2LocalisationTitle(QStringLiteral("first"), file), QStringLiteral("one"));
    EXPECT_TEXT(str2LocalisationTitle(QStringLiteral("été"), stem), QStringLiteral("two"));
    EXPECT_TEXT(str2LocalisationTitle(QStringLiteral(""), file), QStringLiteral("empty"));
    const LogCapture log;
    EXPECT_TEXT(str2LocalisationTitle(QStringLiteral("second"), file), QStringLiteral("second"));
    EXPECT_TRUE(log.contains(QStringLiteral("str2LocalisationTitl:-(")));
}

TEST(ReverseLookUp, NothingAndMissingTables)
{
    EXPECT_TEXT(str2LocalisationTitle(QString(), QStringLiteral("t")), QStringLiteral(""));
    EXPECT_TEXT(str2LocalisationTitle(QString(), QString()), QStringLiteral(""));
    EXPECT_TEXT(str2LocalisationTitle(QStringLiteral("x"), QString()), QStringLiteral("x"));
    EXPECT_TEXT(str2LocalisationTitle(QStringLiteral("x"), QStringLiteral("noSuchTable")), QStringLiteral("x"));
}

} // namespace
