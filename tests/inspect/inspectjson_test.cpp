// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/inspectjson.h"

#include "inspecttest.h"

#include <QJsonArray>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

QString key(const char* text)
{
    return QString::fromLatin1(text);
}

class InspectJson : public InspectTest
{
protected:
    Inspection clip = describedClip();
};

TEST_F(InspectJson, NamesWhatIsKnown)
{
    clip.recorder = {RecorderKind::Avchd, QStringLiteral("/card"), QStringLiteral("00001"), 0};
    clip.formats = {FormatPreview{0, 480, 272, 30000.0 / 1001, 235500, QStringLiteral("clip-x.mp4")}};
    const QJsonObject object = inspectionObject(clip);
    EXPECT_EQ(object.value(key("file")).toString(), clip.path);
    EXPECT_EQ(object.value(key("described")).toBool(), true);
    EXPECT_EQ(object.value(key("bytes")).toInteger(), clip.bytes);
    EXPECT_EQ(object.value(key("container")).toObject(), (QJsonObject{{key("name"), key("mpegts")},
                                                                      {key("seconds"), 6.006},
                                                                      {key("start"), 1.428033},
                                                                      {key("kilobitsPerSecond"), 8609}}));
    const QJsonObject picture = object.value(key("pictures")).toArray().at(0).toObject();
    EXPECT_EQ(picture.value(key("codec")).toString(), key("h264"));
    EXPECT_EQ(picture.value(key("rate")).toDouble(), 59.94);
    EXPECT_EQ(picture.value(key("rateKind")).toString(), key("twice"));
    EXPECT_EQ(picture.value(key("standardRate")).toString(), key("29.97"));
    EXPECT_EQ(picture.value(key("fields")).toString(), key("PFF"));
    EXPECT_EQ(picture.value(key("turned")).toInt(-1), 0);
    const QJsonObject sound = object.value(key("sounds")).toArray().at(0).toObject();
    EXPECT_EQ(sound.value(key("channels")).toInt(), 2);
    EXPECT_EQ(sound.value(key("offset")).toObject(),
              (QJsonObject{{key("timeStamps"), 33}, {key("trackRanges"), 31}, {key("agree"), true}}));
    EXPECT_EQ(object.value(key("recorded")).toObject(),
              (QJsonObject{{key("date"), key("2012-05-01 12:34:56 +0200")}, {key("source"), key("file")}}));
    EXPECT_EQ(object.value(key("recorder")).toObject(),
              (QJsonObject{{key("kind"), key("avchd")}, {key("folder"), key("/card")}, {key("name"), key("00001")}}));
    EXPECT_EQ(object.value(key("taken")).toBool(), true);
    EXPECT_EQ(object.value(key("formats")).toArray().at(0).toObject(), (QJsonObject{{key("format"), 0},
                                                                                    {key("name"), key("clip-x.mp4")},
                                                                                    {key("width"), 480},
                                                                                    {key("height"), 272},
                                                                                    {key("rate"), 29.97},
                                                                                    {key("bytes"), 235500}}));
    EXPECT_EQ(object.value(key("record")).toObject().value(key("v0_fps")).toDouble(), 59.94);
}

TEST_F(InspectJson, LeavesOutWhatIsUnknown)
{
    clip.shown.reset();
    clip.offsets.clear();
    clip.interlacing = QString();
    clip.recording = {};
    const QJsonObject object = inspectionObject(clip);
    EXPECT_FALSE(object.contains(key("recorded")));
    EXPECT_FALSE(object.contains(key("recorder")));
    EXPECT_FALSE(object.contains(key("thorough")));
    EXPECT_FALSE(object.contains(key("reason")));
    EXPECT_EQ(object.value(key("container")).toObject().value(key("seconds")).toInt(), 6);
    const QJsonObject picture = object.value(key("pictures")).toArray().at(0).toObject();
    for (const char* absent : {"fields", "turned", "colour", "crop", "countedRate"}) {
        EXPECT_FALSE(picture.contains(key(absent))) << absent;
    }
    EXPECT_FALSE(object.value(key("sounds")).toArray().at(0).toObject().contains(key("offset")));
}

TEST_F(InspectJson, OfAProblemHoldsNothingElse)
{
    Inspection damaged;
    damaged.path = QStringLiteral("a.mov");
    damaged.problem = QStringLiteral("unreadable");
    EXPECT_EQ(
        inspectionObject(damaged),
        (QJsonObject{{key("file"), key("a.mov")}, {key("described"), false}, {key("problem"), key("unreadable")}}));
}

} // namespace
