// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/recordingname.h"

#include "base/files/fileops.h"
#include "media/writtendate.h"
#include "probe/fakeresources.h"
#include "support/qtprinters.h"
#include "support_media/builtdates.h"
#include "support_media/cameramessage.h"

#include <QFile>

#include <ctime>
#include <sys/stat.h>

namespace tavrix
{

namespace
{

using test::Bytes;
using test::FakeResources;
using test::TempFolder;
using namespace test::built;

// 2026-01-02 03:04:05 UTC: the day of the copy.
constexpr qint64 copied = 1767323045;

// Sets the zone of the local time while it lives.
class Zone
{
public:
    explicit Zone(const char* zone) : change_("TZ", zone) { tzset(); }

private:
    test::EnvironmentChange change_;
};

QString makeClip(const TempFolder& folder, const QString& name, const Bytes& bytes, qint64 fileSeconds)
{
    const QString clip = folder.makeFile(
        name, QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())));
    EXPECT_TRUE(setModificationTime(clip, fileSeconds));
    return clip;
}

Bytes canonAvi()
{
    return aviFile({list("hdrl", {chunk("IDIT", bytesOf("Mon Sep 10 16:20:01 2012\n"))})});
}

// A movie whose header tells that time, written by a camera or by an iPhone.
Bytes movie(const ClockTime& created, const Bytes& more)
{
    const auto since1904 = static_cast<std::uint64_t>(secondsOfClock(created)) + from1904To1970;
    return test::atomBytes("moov", joined({movieHeaderAtom(since1904, 600, 6000), more}));
}

Bytes phone()
{
    return keysAtom({{"com.apple.quicktime.make", "Apple"}});
}

} // namespace

TEST(RecordingNameTest, ComesFromTheClipBeforeTheFilesDate)
{
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const TempFolder folder;
    const QString clip = makeClip(folder, QStringLiteral("a/b/MVI_0003.AVI"), canonAvi(), copied);
    const RecordingName name = recordingName(clip);
    EXPECT_TEXT(name.name, QStringLiteral("clip-2012-09-10 16;20;01-MVI_0003"));
    EXPECT_TEXT(name.date, QStringLiteral("2012-09-10 16:20:01 +0200"));
    EXPECT_TEXT(name.source, dateSource::aviDate);
    EXPECT_EQ(name.seconds, 1347286801);
}

TEST(RecordingNameTest, KeepsTheZoneWestOfGreenwichAsTheFilesDateDoes)
{
    const Zone zone("EST5");
    const TempFolder folder;
    const QString clip = makeClip(folder, QStringLiteral("a/b/MVI_0003.AVI"), canonAvi(), copied);
    EXPECT_TEXT(recordingName(clip).name, QStringLiteral("clip-2012-09-10 16;20;01 -0500-MVI_0003"));
}

TEST(RecordingNameTest, TellsAMomentByTheLocalClock)
{
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const TempFolder folder;
    const Bytes withZone = keysAtom({{"com.apple.quicktime.creationdate", "2011-09-25T06:09:54-0400"}});
    const QString apple =
        makeClip(folder, QStringLiteral("a/b/IMG_1.MOV"), movie({2012, 1, 1, 0, 0, 0}, withZone), copied);
    EXPECT_TEXT(recordingName(apple).name, QStringLiteral("clip-2011-09-25 12;09;54-IMG_1"));
    EXPECT_TEXT(recordingName(apple).source, dateSource::creationDate);
    const QString header =
        makeClip(folder, QStringLiteral("a/b/IMG_2.MOV"), movie({2019, 7, 24, 8, 25, 57}, phone()), copied);
    EXPECT_TEXT(recordingName(header).name, QStringLiteral("clip-2019-07-24 10;25;57-IMG_2"));
    EXPECT_TEXT(recordingName(header).source, dateSource::movieHeader);
}

TEST(RecordingNameTest, ReadsACamerasHeaderTheWayThatAgreesWithTheFile)
{
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const TempFolder folder;
    const Bytes header = movie({2018, 5, 1, 9, 0, 0}, {});
    const QString copy = makeClip(folder, QStringLiteral("a/b/1.MOV"), header, copied);
    EXPECT_TEXT(recordingName(copy).name, QStringLiteral("clip-2018-05-01 09;00;00-1"));
    const qint64 inUtc = secondsOfClock({2018, 5, 1, 9, 0, 11});
    const QString utc = makeClip(folder, QStringLiteral("a/b/2.MOV"), header, inUtc);
    EXPECT_TEXT(recordingName(utc).name, QStringLiteral("clip-2018-05-01 11;00;00-2"));
    const QString local = makeClip(folder, QStringLiteral("a/b/3.MOV"), header, inUtc - 7200);
    EXPECT_TEXT(recordingName(local).name, QStringLiteral("clip-2018-05-01 09;00;00-3"));
    EXPECT_EQ(recordingName(local).seconds, inUtc - 7200 - 11);
}

TEST(RecordingNameTest, ComesFromThePlaylistBeforeThePictures)
{
    const Zone zone("CET-1");
    const FakeResources resources;
    const Bytes stream = cameraStream({2021, 1, 17, 17, 33, 17}, 192);
    const QString clip = makeClip(resources.folder(), QStringLiteral("BDMV/STREAM/00001.MTS"), stream, copied);
    EXPECT_TEXT(recordingName(clip).name, QStringLiteral("clip-2021-01-17 17;33;17-00001"));
    EXPECT_TEXT(recordingName(clip).source, dateSource::pictureStream);
    resources.folder().makeFolder(QStringLiteral("BDMV/PLAYLIST"));
    resources.makeTool(QStringLiteral("gettimestamps"), "echo '00001 : clip-2010-05-01 12;34;56'\n");
    const RecordingName name = recordingName(clip);
    EXPECT_TEXT(name.name, QStringLiteral("clip-2010-05-01 12;34;56-00001"));
    EXPECT_TEXT(name.source, dateSource::playlist);
    EXPECT_TEXT(name.date, QStringLiteral("2010-05-01 12:34:56 +0100"));
    EXPECT_EQ(name.seconds, 1272713696);
    resources.makeTool(QStringLiteral("gettimestamps"), "echo '00001 : clip-20FF-05-01 12;34;56'\n");
    const RecordingName damaged = recordingName(clip);
    EXPECT_TEXT(damaged.name, QStringLiteral("clip-20FF-05-01 12;34;56-00001"));
    EXPECT_TEXT(damaged.date, QString());
    EXPECT_FALSE(damaged.seconds);
}

TEST(RecordingNameTest, FallsBackToTheFilesDate)
{
    const Zone zone("CET-1");
    const TempFolder folder;
    const Bytes neverSet = movie({1904, 1, 1, 0, 0, 0}, {});
    for (const Bytes& bytes : {Bytes(), Bytes(1000, 'x'), neverSet, movie({2037, 1, 1, 0, 0, 0}, phone())}) {
        const QString clip = makeClip(folder, QStringLiteral("a/b/x.mov"), bytes, copied);
        const RecordingName name = recordingName(clip);
        EXPECT_TEXT(name.name, QStringLiteral("clip-2026-01-02 04;04;05-x"));
        EXPECT_TEXT(name.source, dateSource::file);
        EXPECT_EQ(name.seconds, copied);
    }
}

TEST(RecordingNameTest, NobodyWaitsForThePipesWriter)
{
    const TempFolder folder;
    folder.makeFolder(QStringLiteral("a/b"));
    const QString pipe = folder.path(QStringLiteral("a/b/x.mts"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_TEXT(recordingName(pipe).source, dateSource::file);
}

TEST(RecordingNameTest, OfNothingAndOfAMissingFile)
{
    EXPECT_TEXT(recordingName(QString()).name, QString());
    const RecordingName missing = recordingName(QStringLiteral("/nowhere/a/x.mov"));
    EXPECT_TEXT(missing.name, QStringLiteral("clip-(null)-x"));
    EXPECT_TEXT(missing.date, QString());
    EXPECT_TEXT(missing.source, QString());
    EXPECT_FALSE(missing.seconds);
}

} // namespace tavrix
