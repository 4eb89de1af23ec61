// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/outputname.h"

#include "base/text/listconversions.h"
#include "base/text/paths.h"
#include "support/qtprinters.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct FolderRow {
    const char* name;
    const char* typed;
    const char* folder; // "~" stands for the home folder
};

class EventsFolder : public testing::TestWithParam<FolderRow>
{
};

const FolderRow folderRows[] = {
    {"Plain", "/d/movies", "/d/movies/Tavrix events"},
    {"SlashBehind", "/d/movies/", "/d/movies/Tavrix events"},
    {"Root", "/", "/Tavrix events"},
    {"Tilde", "~/Movies", "~/Movies/Tavrix events"},
    {"TildeAlone", "~", "~/Tavrix events"},
    {"TildeInside", "/d/~/x", "/d/~/x/Tavrix events"},
};

struct NameRow {
    const char* name;
    const char* base;
    int out;
    const char* codec;
    const char* expected;
};

class OutputName : public testing::TestWithParam<NameRow>
{
};

const NameRow nameRows[] = {
    {"Format0", "clip-2010-05-01 12;34;56-00001", 0, "h264", "clip-2010-05-01 12;34;56-00001.mp4"},
    {"Format1", "a", 1, "h264", "a.m4v"},
    {"Format2OfH264", "a", 2, "h264", "a.m4v"},
    {"Format2OfMotionJpeg", "a", 2, "mjpeg", "a.avi"},
    {"Format2OfNoCodec", "a", 2, nullptr, "a.m4v"},
    {"Format3", "a.b", 3, "h264", "a.b.mov"},
    {"Format5", "a", 5, nullptr, "a.mov"},
};

} // namespace

TEST_P(EventsFolder, IsInsideTheDestination)
{
    QString expected = text(GetParam().folder);
    if (expected.startsWith(u'~')) {
        expected.replace(0, 1, homeFolder());
    }
    EXPECT_TEXT(eventsFolder(text(GetParam().typed)), expected);
}

INSTANTIATE_TEST_SUITE_P(Outputs, EventsFolder, testing::ValuesIn(folderRows), rowName<FolderRow>);

TEST_P(OutputName, IsBaseAndExtension)
{
    const NameRow& row = GetParam();
    EXPECT_TEXT(outputName(text(row.base), row.out, text(row.codec)), text(row.expected));
    EXPECT_TEXT(outputPath(text("~/Movies"), text(row.base), row.out, text(row.codec)),
                homeFolder() + text("/Movies/Tavrix events/") + text(row.expected));
}

INSTANTIATE_TEST_SUITE_P(Outputs, OutputName, testing::ValuesIn(nameRows), rowName<NameRow>);

TEST(OutputNames, LongOnesAreCutInFrontOfTheExtension)
{
    const QString name = outputName(QString(300, u'x'), 3, text("h264"));
    EXPECT_TEXT(name, QString(251, u'x') + text(".mov"));
    EXPECT_TEXT(outputPath(text("/d"), QString(300, u'x'), 3, text("h264")), text("/d/Tavrix events/") + name);
}

TEST(IntermediateName, IsTheMasterName)
{
    const QString output = text("/d/Tavrix events/clip-2010-05-01 12;34;56-00001.mov");
    EXPECT_TEXT(intermediateName(output), oldSrcPathStr2DstPathStr(output));
    EXPECT_TRUE(intermediateName(output).contains(text("_MASTER")));
    EXPECT_TEXT(intermediateName(QString()), QString());
}

TEST(FittedBaseName, OrdinaryNamesStay)
{
    const QString name = QStringLiteral("clip-2010-05-01 12;34;56-00001");
    EXPECT_TEXT(fittedBaseName(name, QStringLiteral("mov")), name);
    EXPECT_TEXT(fittedBaseName(QStringLiteral(""), QStringLiteral("mov")), QStringLiteral(""));
}

TEST(FittedBaseName, LongNamesFitWithTheirExtension)
{
    const QString mov = QStringLiteral("mov");
    EXPECT_EQ(fittedBaseName(QString(251, u'x'), mov).size(), 251);
    EXPECT_EQ(fittedBaseName(QString(252, u'x'), mov).size(), 251);
    EXPECT_EQ(fittedBaseName(QString(252, u'x'), QStringLiteral("")).size(), 252);
}

TEST(FittedBaseName, CutsWholeCharacters)
{
    const QString accents(200, QChar(0xE9));
    const QString fitted = fittedBaseName(accents, QStringLiteral("mov"));
    EXPECT_EQ(fitted.toUtf8().size(), 250);
    EXPECT_TEXT(fitted, accents.left(125));
    QString faces;
    for (int i = 0; i < 80; ++i) {
        faces += QString::fromUtf8("\xF0\x9F\x98\x80");
    }
    EXPECT_EQ(fittedBaseName(faces, QStringLiteral("mov")).toUtf8().size(), 248);
    EXPECT_TRUE(fittedBaseName(faces, QStringLiteral("mov")).isValidUtf16());
}
