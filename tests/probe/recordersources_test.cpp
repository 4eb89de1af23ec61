// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/recordersources.h"

#include "base/files/fileops.h"
#include "base/store/settings.h"
#include "probe/fakeresources.h"
#include "probe/recordingname.h"
#include "support/alertrecorder.h"
#include "support/qtprinters.h"

#include <QFile>
#include <QFileInfo>

#include <ctime>
#include <sys/stat.h>

namespace tavrix
{

namespace
{

using test::FakeResources;
using test::LogCapture;
using test::TempFolder;

struct TextRow {
    const char* name;
    const char* in;
    const char* out;
};

struct DurationRow {
    const char* name;
    const char* description;
    float seconds;
};

struct DateRow {
    const char* name;
    QByteArray bytes;
    int answer;
    const char* line; // logged line, null: none
};

// Sets the zone of the local time while it lives.
class Zone
{
public:
    explicit Zone(const char* zone) : change_("TZ", zone) { tzset(); }

private:
    test::EnvironmentChange change_;
};

QByteArray dateHead(const char* date, int before = 0)
{
    return QByteArray(before, 'x') + QByteArray::fromHex("ffff1e20") + QByteArray(9, '-') + date;
}

} // namespace

class BundleNames : public testing::TestWithParam<TextRow>
{
};

TEST_P(BundleNames, AreTheBundlesOwn)
{
    EXPECT_TEXT(bundledVideoName(test::text(GetParam().in)), test::text(GetParam().out));
}

INSTANTIATE_TEST_SUITE_P(Paths, BundleNames,
                         testing::Values(TextRow{"Eyetv", "/x/My.eyetv/s.mpg", "My"},
                                         TextRow{"DotsInTheName", "/x/My.v2.eyetv/s.mpg", "My.v2"},
                                         TextRow{"Project", "/x/Film.iMovieProject/Media/a.dv", "Film"},
                                         TextRow{"ProjectFirst", "/x/A.eyetv/B.iMovieProject/c.dv", "B"},
                                         TextRow{"FirstOccurrence", "/x/A.eyetv/B.eyetv/c.mpg", "A"},
                                         TextRow{"Plain", "/x/a.b.mov", "a.b"},
                                         TextRow{"BundleItself", "/x/A.eyetv", "A"}, TextRow{"Empty", "", ""},
                                         TextRow{"Nothing", nullptr, nullptr}),
                         test::rowName<TextRow>);

class EyetvDurations : public testing::TestWithParam<DurationRow>
{
};

TEST_P(EyetvDurations, AreReadFromTheDescription)
{
    EXPECT_EQ(eyetvDurationFromText(test::text(GetParam().description)), GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(
    Descriptions, EyetvDurations,
    testing::Values(
        DurationRow{"Plain", "<key>actual duration</key><real>12.5</real>", 12.5F},
        DurationRow{"OverLines", "<dict>\n\t<key>actual duration</key>\r\n\t<real>36\n00.25</real>", 3600.25F},
        DurationRow{"First", "<key>actual duration</key><real>1</real><key>actual duration</key><real>2</real>", 1.0F},
        DurationRow{"Unclosed", "<key>actual duration</key><real>12.5", 0.0F},
        DurationRow{"BlankBetween", "<key>actual duration</key> <real>12.5</real>", 0.0F},
        DurationRow{"Other", "<key>duration</key><real>12.5</real>", 0.0F},
        DurationRow{"NoNumber", "<key>actual duration</key><real>x</real>", 0.0F}, DurationRow{"Empty", "", 0.0F},
        DurationRow{"Nothing", nullptr, 0.0F}),
    test::rowName<DurationRow>);

TEST(EyetvDuration, IsReadBesideTheStream)
{
    const TempFolder folder;
    const QString stream = folder.makeFile(QStringLiteral("Rec.eyetv/s.mpg"));
    EXPECT_EQ(bundledVideoEyetvDuration(stream), 0.0F);
    folder.makeFile(QStringLiteral("Rec.eyetv/a.eyetvr"), "<key>actual duration</key>\n\t<real>61.5</real>\n");
    EXPECT_EQ(bundledVideoEyetvDuration(stream), 61.5F);
    EXPECT_EQ(bundledVideoEyetvDuration(folder.path(QStringLiteral("Rec/s.mpg"))), 0.0F);
    EXPECT_EQ(bundledVideoEyetvDuration(QString()), 0.0F);
}

TEST(EyetvDuration, UndecodableDescriptionGivesNone)
{
    const TempFolder folder;
    const QString stream = folder.makeFile(QStringLiteral("Rec.eyetv/s.mpg"));
    folder.makeFile(QStringLiteral("Rec.eyetv/a.eyetvr"), "\xFF<key>actual duration</key><real>61.5</real>");
    EXPECT_EQ(bundledVideoEyetvDuration(stream), 0.0F);
}

TEST(EyetvDuration, UnreadableDescriptionIsLogged)
{
    const TempFolder folder;
    const LogCapture log;
    const QString stream = folder.makeFile(QStringLiteral("Rec.eyetv/s.mpg"));
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("missing")), folder.path(QStringLiteral("Rec.eyetv/a.eyetvr"))));
    EXPECT_EQ(bundledVideoEyetvDuration(stream), 0.0F);
    EXPECT_TRUE(log.contains(QStringLiteral("bundledVideoEyetvDura- not readable")));
}

TEST(EyetvDuration, UnreadableContentsAreLogged)
{
    const TempFolder folder;
    const LogCapture log;
    const QString stream = folder.makeFile(QStringLiteral("Rec.eyetv/s.mpg"));
    folder.makeFolder(QStringLiteral("Rec.eyetv/a.eyetvr"));
    EXPECT_EQ(bundledVideoEyetvDuration(stream), 0.0F);
    EXPECT_TRUE(log.contains(QStringLiteral("bundledVideoEyetvDura- no read")));
}

TEST(EyetvDuration, IsLoggedWhenDebugging)
{
    const TempFolder folder;
    const QString stream = folder.makeFile(QStringLiteral("Rec.eyetv/s.mpg"));
    folder.makeFile(QStringLiteral("Rec.eyetv/a.eyetvr"), "<key>actual duration</key><real>61.5</real>");
    const LogCapture log;
    EXPECT_EQ(bundledVideoEyetvDuration(stream), 61.5F);
    EXPECT_TRUE(log.lines().filter(QStringLiteral("returnFloat")).isEmpty());
    setDEBUG(1);
    EXPECT_EQ(bundledVideoEyetvDuration(stream), 61.5F);
    setDEBUG(0);
    EXPECT_TRUE(log.contains(QStringLiteral("returnFloat          : 61.500000")));
}

TEST(RecorderPipes, NobodyWaitsForTheirWriters)
{
    const TempFolder folder;
    const QString stream = folder.makeFile(QStringLiteral("Rec.eyetv/s.mpg"));
    const QString pipe = folder.path(QStringLiteral("Rec.eyetv/a.eyetvr"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(bundledVideoEyetvDuration(stream), 0.0F);
    EXPECT_EQ(readVideoCreationDate(pipe), 0);
}

TEST(OutputName, CommandIsExactAndNamesAreData)
{
    EXPECT_TEXT(timestampCommand(QStringLiteral("/R/tools"), QStringLiteral("/M/BDMV/PLAYLIST/")),
                QStringLiteral("\"/R/tools/\"gettimestamps '/M/BDMV/PLAYLIST/'"));
    EXPECT_TEXT(timestampCommand(QStringLiteral("/R$x/tools"), QStringLiteral("/Bob's;touch x'/PLAYLIST/")),
                QStringLiteral("\"/R\\$x/tools/\"gettimestamps '/Bob'\\''s;touch x'\\''/PLAYLIST/'"));
}

TEST(OutputName, ComesFromThePlaylist)
{
    const FakeResources resources(QStringLiteral("Bob's $HOME \"card\""));
    const QString card = QStringLiteral("it's;touch x/BDMV/");
    const QString clip = resources.folder().makeFile(card + QStringLiteral("STREAM/00001.MTS"));
    resources.folder().makeFolder(card + QStringLiteral("PLAYLIST"));
    resources.makeTool(QStringLiteral("gettimestamps"),
                       "echo '00000 : clip-2010-04-01 01;02;03'\necho '00001 : clip-2010-05-01 12;34;56'\n"
                       "echo '00001 : clip-2011-05-01 12;34;56'\n");
    EXPECT_TEXT(dateCreation2iMovieName(clip), QStringLiteral("clip-2010-05-01 12;34;56-00001"));
    EXPECT_EQ(resources.toolArguments(QStringLiteral("gettimestamps")),
              QStringList{resources.folder().path(card + QStringLiteral("PLAYLIST/"))});
}

TEST(OutputName, FallsBackToTheFileDate)
{
    const Zone zone("CET-1");
    const FakeResources resources;
    const QString clip = resources.folder().makeFile(QStringLiteral("BDMV/STREAM/00002.MTS"));
    ASSERT_TRUE(setModificationTime(clip, 1299230430));
    resources.folder().makeFolder(QStringLiteral("BDMV/PLAYLIST"));
    resources.makeTool(QStringLiteral("gettimestamps"), "echo '00001 : clip-2010-05-01 12;34;56'\necho junk\n");
    EXPECT_TEXT(dateCreation2iMovieName(clip), QStringLiteral("clip-2011-03-04 10;20;30-00002"));
}

TEST(OutputName, EastOfGreenwichLosesTheZone)
{
    const TempFolder folder;
    const QString clip = folder.makeFile(QStringLiteral("a/b/holiday.mov"));
    ASSERT_TRUE(setModificationTime(clip, 1299230430));
    {
        const Zone zone("CET-1");
        EXPECT_TEXT(dateCreation2iMovieName(clip), QStringLiteral("clip-2011-03-04 10;20;30-holiday"));
    }
    {
        const Zone zone("EST5");
        EXPECT_TEXT(dateCreation2iMovieName(clip), QStringLiteral("clip-2011-03-04 04;20;30 -0500-holiday"));
    }
    {
        const Zone zone("IST-5:30");
        EXPECT_TEXT(dateCreation2iMovieName(clip), QStringLiteral("clip-2011-03-04 14;50;30-holiday"));
    }
    tzset();
}

TEST(OutputName, IsShownToDevelopers)
{
    const test::AlertRecorder alerts;
    const TempFolder folder;
    const QString clip = folder.path(QStringLiteral("a/b/x.mov"));
    EXPECT_TEXT(dateCreation2iMovieName(clip), QStringLiteral("clip-(null)-x"));
    EXPECT_TEXTS(alerts.shown(), QStringList());
    setDEBUGDEVForTests(1);
    EXPECT_TEXT(dateCreation2iMovieName(clip), QStringLiteral("clip-(null)-x"));
    setDEBUGDEVForTests(0);
    EXPECT_TEXTS(alerts.shown(), QStringList{QStringLiteral("dstPathNameStr :: clip-(null)-x")});
}

TEST(OutputName, MissingFileStillGetsAName)
{
    const TempFolder folder;
    EXPECT_TEXT(dateCreation2iMovieName(folder.path(QStringLiteral("a/b/x:y.mov"))), QStringLiteral("clip-(null)-x;y"));
    EXPECT_TEXT(dateCreation2iMovieName(QString()), QString());
}

class DateHeads : public testing::TestWithParam<DateRow>
{
};

TEST_P(DateHeads, AreReadAndLogged)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a.bin"), GetParam().bytes);
    const LogCapture log;
    EXPECT_EQ(readVideoCreationDate(file), GetParam().answer);
    EXPECT_EQ(log.lines().join(u'|'), QString::fromUtf8(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(Heads, DateHeads,
                         testing::Values(DateRow{"YearFirst", dateHead("2010.05.07"), 1, "07 / 05 / 2010"},
                                         DateRow{"DayFirst", dateHead("07.05.2010", 100), 1, "07 / 05 / 2010"},
                                         DateRow{"Unknown", dateHead("7/5/2010  "), 1, "date us / en :-("},
                                         DateRow{"PointElsewhere", dateHead("2.10.05.07"), 1, "date us / en :-("},
                                         DateRow{"TooShort", dateHead("2010.05.0"), 0, nullptr},
                                         DateRow{"BeyondTheHead", dateHead("2010.05.07", 1000), 0, nullptr},
                                         DateRow{"AcrossTheHead", dateHead("2010.05.07", 980), 0, nullptr},
                                         DateRow{"NoMarker", QByteArray(200, 'x'), 0, nullptr},
                                         DateRow{"Empty", QByteArray(), 0, nullptr},
                                         DateRow{"MarkerAlone", QByteArray::fromHex("ffff1e20"), 0, nullptr}),
                         test::rowName<DateRow>);

TEST(DateHead, MissingFileAnswersZero)
{
    EXPECT_EQ(readVideoCreationDate(QStringLiteral("/nowhere/x")), 0);
}

} // namespace tavrix
