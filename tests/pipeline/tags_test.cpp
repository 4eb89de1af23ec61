// SPDX-License-Identifier: GPL-3.0-or-later
// What a clip says of itself goes along.
#include "pipeline/clips.h"
#include "pipeline/convert.h"
#include "pipeline/numberedclip.h"
#include "pipeline/words.h"
#include "support/temphome.h"

#include <gtest/gtest.h>

using namespace tavrix::test;

namespace
{

QJsonObject tagsOf(const QString& path)
{
    return probed(path).value(text("format")).toObject().value(text("tags")).toObject();
}

std::string tag(const QJsonObject& tags, const char* key)
{
    return tags.value(text(key)).toString().toStdString();
}

QStringList metadata(const QStringList& pairs)
{
    QStringList arguments;
    for (const QString& pair : pairs) {
        arguments << text("-metadata") << pair;
    }
    return arguments;
}

NumberedClip shortClip(const char* codecs)
{
    NumberedClip clip;
    clip.pictures = 25;
    clip.soundFrom = 0;
    clip.codecs = words(codecs);
    return clip;
}

TEST(Tags, OfAPhoneAreInEveryMovieInBothForms)
{
    TempFolder folder;
    NumberedClip clip =
        shortClip("-c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a aac -movflags use_metadata_tags -f mov");
    clip.codecs = metadata({text("creation_time=2019-07-24T08:25:57.000000Z"),
                            text("com.apple.quicktime.creationdate=2019-07-24T10:25:57+0200"),
                            text("com.apple.quicktime.make=Maker"), text("com.apple.quicktime.model=Phone 6 \u00e9"),
                            text("com.apple.quicktime.software=12.3.1"),
                            text("com.apple.quicktime.location.ISO6709=+48.8577+002.2950/")}) +
                  clip.codecs;
    const QString source = folder.path(text("clip.mov"));
    ASSERT_TRUE(makeNumberedClip(source, clip));
    ASSERT_EQ(tag(tagsOf(source), "com.apple.quicktime.make"), "Maker") << "the clip itself";
    for (const int format : {0, 1, 2, 3}) {
        const Converted converted = convertClip(source, folder.path(), format);
        ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
        const QJsonObject tags = tagsOf(converted.output);
        EXPECT_EQ(tag(tags, "creation_time"), "2019-07-24T08:25:57.000000Z") << "format " << format;
        EXPECT_EQ(tag(tags, "com.apple.quicktime.creationdate"), "2019-07-24T10:25:57+0200") << "format " << format;
        EXPECT_EQ(tag(tags, "com.apple.quicktime.make"), "Maker") << "format " << format;
        EXPECT_EQ(tag(tags, "com.apple.quicktime.model"), "Phone 6 \u00e9") << "format " << format;
        EXPECT_EQ(tag(tags, "com.apple.quicktime.software"), "12.3.1") << "format " << format;
        EXPECT_EQ(tag(tags, "com.apple.quicktime.location.ISO6709"), "+48.8577+002.2950/") << "format " << format;
        // The short form, which galleries of other phones read.
        EXPECT_EQ(tag(tags, "location"), "+48.8577+002.2950/") << "format " << format;
        EXPECT_EQ(tag(tags, "make"), "Maker") << "format " << format;
        EXPECT_EQ(tag(tags, "model"), "Phone 6 \u00e9") << "format " << format;
    }
}

TEST(Tags, TitleCommentAndTimeCodeOfACameraAreKept)
{
    TempFolder folder;
    NumberedClip clip =
        shortClip("-c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a aac -timecode 01:02:03:04 -f mov");
    clip.codecs = metadata({text("title=A walk"), text("comment=By the sea"),
                            text("creation_time=2012-09-10T14:22:31.000000Z")}) +
                  clip.codecs;
    const QString source = folder.path(text("clip.mov"));
    ASSERT_TRUE(makeNumberedClip(source, clip));
    for (const int format : {0, 1, 2, 3}) {
        const Converted converted = convertClip(source, folder.path(), format);
        ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
        const QJsonObject tags = tagsOf(converted.output);
        EXPECT_EQ(tag(tags, "title"), "A walk") << "format " << format;
        EXPECT_EQ(tag(tags, "comment"), "By the sea") << "format " << format;
        EXPECT_EQ(tag(tags, "creation_time"), "2012-09-10T14:22:31.000000Z") << "format " << format;
        const QJsonObject video = streamOf(probed(converted.output), text("video"));
        EXPECT_EQ(tag(video.value(text("tags")).toObject(), "timecode"), "01:02:03:04") << "format " << format;
    }
}

TEST(Tags, OfAMotionJpegMovieAreInTheAvi)
{
    TempFolder folder;
    NumberedClip clip = shortClip("-c:v mjpeg -q:v 4 -pix_fmt yuvj420p -c:a pcm_s16le -f mov");
    clip.rate = text("15");
    clip.codecs = metadata({text("title=A walk"), text("make=Maker"), text("model=Camera"),
                            text("creation_time=2012-09-10T14:22:31.000000Z")}) +
                  clip.codecs;
    const QString source = folder.path(text("clip.mov"));
    ASSERT_TRUE(makeNumberedClip(source, clip));
    const Converted converted = convertClip(source, folder.path(), 2);
    ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
    ASSERT_TRUE(converted.output.endsWith(text(".avi")));
    const QJsonObject tags = tagsOf(converted.output);
    EXPECT_EQ(tag(tags, "title"), "A walk");
    EXPECT_EQ(tag(tags, "date"), "2012-09-10");
    const auto bytes = readBytes(converted.output);
    EXPECT_TRUE(bytes && bytes->contains("Maker Camera"));
    // Its rate was doubled once, with every second picture empty.
    const QJsonObject video = streamOf(probed(converted.output), text("video"));
    EXPECT_EQ(tag(video, "r_frame_rate"), "15/1");
    EXPECT_EQ(tag(video, "nb_frames"), "25");
    EXPECT_EQ(shownPictures(converted.output).size(), std::size_t{25});
}

} // namespace
