// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/problemreport.h"

#include "inspect/pathshortening.h"
#include "inspecttest.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct PathRow {
    const char* name;
    const char* line;
    const char* shown;
};

class ShortenedPaths : public testing::TestWithParam<PathRow>
{
};

TEST_P(ShortenedPaths, KeepTheLastPartAlone)
{
    EXPECT_EQ(shortenedPaths(text(GetParam().line)), text(GetParam().shown));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ShortenedPaths,
    testing::Values(PathRow{"alone", "/home/ann/a.mov", ".../a.mov"},
                    PathRow{"blanks", "source              : /home/ann/My clips/a b.mov",
                            "source              : .../a b.mov"},
                    PathRow{"quoted", "Input #0, mov, from '/home/ann/a.mov':", "Input #0, mov, from '.../a.mov':"},
                    PathRow{"list", "(ffmpeg, -i, /home/ann/a.mov, -vn)", "(ffmpeg, -i, .../a.mov, -vn)"},
                    PathRow{"two", "mv /home/ann/a.mov /media/b.mov", "mv .../a.mov .../b.mov"},
                    PathRow{"home", "~/Library/Logs", ".../Logs"}, PathRow{"folder", "in /home/ann/", "in .../ann/"},
                    PathRow{"address", "made by https://tavrix.example/x", "made by https://tavrix.example/x"},
                    PathRow{"fraction", "30000/1001 fps, 16/9", "30000/1001 fps, 16/9"}, PathRow{"root", "/", "/"},
                    PathRow{"division", "real time / 0.33", "real time / 0.33"},
                    PathRow{"place", "location        : +54.1843-002.7189/,     location-eng    : +5-2/,   Duration: 1",
                            "location        : ...,     location-eng    : ...,   Duration: 1"},
                    PathRow{"applePlace", "com.apple.quicktime.location.ISO6709: +54.18-002.71+010/",
                            "com.apple.quicktime.location.ISO6709: ..."},
                    PathRow{"neighbours", "lsCocoa             - fin : 2 items : (private.mov, letter.txt)",
                            "lsCocoa             - fin : 2 items : ..."},
                    PathRow{"nothing", "", ""}),
    rowName<PathRow>);

TEST(LastLines, AreTheEndOfAFile)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a.log"), "one\ntwo\nthree\n");
    EXPECT_EQ(lastLines(file, 2), (QStringList{QStringLiteral("two"), QStringLiteral("three")}));
    EXPECT_EQ(lastLines(file, 9).size(), 3);
    EXPECT_TRUE(lastLines(file, 0).isEmpty());
    EXPECT_TRUE(lastLines(folder.path(QStringLiteral("absent")), 5).isEmpty());
    EXPECT_TRUE(lastLines(folder.path(), 5).isEmpty());
}

// Only the end of a long log is read, and no half line is shown.
TEST(LastLines, OfALongFileAreWhole)
{
    const TempFolder folder;
    QByteArray bytes;
    for (int i = 0; i < 200000; ++i) {
        bytes += "line " + QByteArray::number(i) + '\n';
    }
    const QStringList lines = lastLines(folder.makeFile(QStringLiteral("a.log"), bytes), 1000000);
    EXPECT_LT(lines.size(), 200000);
    ASSERT_GT(lines.size(), 1000);
    EXPECT_EQ(lines.last(), QStringLiteral("line 199999"));
    EXPECT_EQ(lines.first(), QStringLiteral("line %1").arg(200000 - lines.size()));
}

TEST(ReportText, ShowsFactsAndLogsWithoutFolders)
{
    const QList<SystemFact> facts{{QStringLiteral("Qt"), QStringLiteral("6.4")},
                                  {QStringLiteral("Memory"), QStringLiteral("1 MiB\x1b[2J")}};
    const QList<ReportLog> logs{{QStringLiteral("Resume.log"), {QStringLiteral("source : /home/ann/a.mov")}}};
    EXPECT_EQ(reportText(facts, logs, false), QStringLiteral("Qt     : 6.4\nMemory : 1 MiB\\x1b[2J\n\n"
                                                             "---- Resume.log ----\nsource : .../a.mov\n"));
    EXPECT_TRUE(reportText(facts, logs, true).contains(QStringLiteral("/home/ann/a.mov")));
}

TEST(SystemFacts, ReadWhatTheSystemWrites)
{
    EXPECT_EQ(processorName(QStringLiteral("processor\t: 0\nmodel name\t: Fast One 3\n")),
              QStringLiteral("Fast One 3"));
    EXPECT_EQ(processorName(QStringLiteral("Hardware\t: BCM2835\n")), QStringLiteral("BCM2835"));
    EXPECT_EQ(processorName(QString()), QStringLiteral(""));
    EXPECT_EQ(memoryWords(QStringLiteral("MemTotal:  8388608 kB\nMemFree: 1 kB\nMemAvailable: 2097152 kB\n")),
              QStringLiteral("8192 MiB, 2048 MiB available"));
    EXPECT_EQ(memoryWords(QString()), QStringLiteral(""));
    EXPECT_EQ(systemName(QStringLiteral("NAME=\"x\"\nPRETTY_NAME=\"Debian 12\"\n")), QStringLiteral("Debian 12"));
    EXPECT_EQ(toolVersion(QStringLiteral("ffmpeg version 5.1.9-0+deb12u1 Copyright (c)\n")),
              QStringLiteral("5.1.9-0+deb12u1"));
    EXPECT_EQ(toolVersion(QStringLiteral("no such thing")), QStringLiteral(""));
}

class SystemReport : public InspectTest
{
};

TEST_F(SystemReport, TellsEveryPartOfTheSystem)
{
    int known = 0;
    for (const SystemFact& fact : systemFacts()) {
        SCOPED_TRACE(fact.label.toStdString());
        EXPECT_FALSE(fact.label.isEmpty());
        known += fact.value.isEmpty() ? 0 : 1;
        if (fact.label == QLatin1String("ffmpeg")) {
            EXPECT_TRUE(fact.value.at(0).isDigit()) << fact.value.toStdString();
        }
        if (fact.label == QLatin1String("Encoders")) {
            EXPECT_TRUE(fact.value.contains(QStringLiteral("icod"))) << fact.value.toStdString();
        }
    }
    EXPECT_GE(known, 10);
}

} // namespace
