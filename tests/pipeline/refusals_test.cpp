// SPDX-License-Identifier: GPL-3.0-or-later
// Clips whose pictures cannot come out are refused at the analysis, with the reason.
#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "pipeline/batchprogram.h"
#include "pipeline/clips.h"
#include "pipeline/words.h"
#include "probe/pictureobstacle.h"
#include "support/temphome.h"
#include "testpaths.h"

#include <gtest/gtest.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class Refusals : public ::testing::Test
{
protected:
    Refusals()
    {
        setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
        setLanguage(text("en"));
    }

    // The path of a short clip of that size.
    QString clip(const char* name, const char* size, const char* options)
    {
        ClipRequest request;
        request.size = text(size);
        request.rate = text("25");
        request.seconds = 2;
        request.codecs = words("-c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a aac") << words(options);
        QString path = folder_.path(text(name));
        EXPECT_TRUE(makeClip(path, request));
        return path;
    }
    QString changed(const char* name, const QString& from, const QByteArray& what, const QByteArray& by)
    {
        QByteArray bytes = *readBytes(from);
        EXPECT_TRUE(bytes.contains(what));
        return folder_.makeFile(text(name), bytes.replace(what, by));
    }
    // The reason of the only rejection; "" when there was none, or a row as well.
    QString rejection(const QString& source)
    {
        const BatchResult result = program_.run({text("--json"), text("--output"), folder_.path(text("out")), source});
        const QList<QJsonObject> rejected = result.named(text("rejected"));
        if (rejected.size() != 1 || !result.named(text("row-finished")).isEmpty()) {
            return {};
        }
        EXPECT_EQ(rejected.first().value(text("source")).toString(), source);
        return rejected.first().value(text("reason")).toString();
    }

    TempFolder folder_;
    BatchProgram program_;
};

TEST_F(Refusals, AnEncryptedClip)
{
    const QString source = clip("a.mp4", "640x480",
                                "-encryption_scheme cenc-aes-ctr -encryption_key 76a6c65c5ea762046bd749a2e632ccbb "
                                "-encryption_kid a7e61c373e219033c21091fa607bf3b8");
    EXPECT_EQ(rejection(source), text("the source is encrypted"));
}

TEST_F(Refusals, UprightClipsAreToldAsSuch)
{
    EXPECT_EQ(rejection(clip("a.mov", "464x848", "-f mov")),
              text("upright 464x848: its pictures are stored higher than 720 lines"));
}

TEST_F(Refusals, PicturesThatAreNone)
{
    QByteArray bytes = *readBytes(clip("a.mov", "640x480", "-f mov"));
    const qsizetype data = bytes.indexOf("mdat") + 4;
    bytes.replace(data, bytes.indexOf("moov") - 4 - data, QByteArray(bytes.indexOf("moov") - 4 - data, '\x55'));
    const QString reason = rejection(folder_.makeFile(text("b.mov"), bytes));
    EXPECT_TRUE(reason.startsWith(text("no video that can be read ("))) << reason.toStdString();
}

// A wrong mark alone refuses nothing: the pictures may stand in the file all the same.
TEST_F(Refusals, PicturesElsewhereOnlyWhereNoneCanBeRead)
{
    const QString source = clip("a.mov", "640x480", "-f mov");
    const QString marked = changed("b.mov", source, QByteArray("url \0\0\0\1", 8), QByteArray("url \0\0\0\0", 8));
    EXPECT_TRUE(pictureObstacle(marked, Look::AtHeader).isNull());
    EXPECT_EQ(pictureObstacle(marked, Look::AtPackets), text("the source's pictures are in another file"));
    EXPECT_TRUE(pictureObstacle(source, Look::AtPackets).isNull());
    EXPECT_TRUE(pictureObstacle(folder_.path(text("none.mov")), Look::AtPackets).isNull());
}

TEST_F(Refusals, ARecordingThatWasNotFinishedSaysSo)
{
    const QString source = clip("a.mov", "640x480", "-f mov");
    const QByteArray bytes = *readBytes(source);
    const QString cut = folder_.makeFile(text("cut.mov"), bytes.left(bytes.indexOf("moov") - 100));
    const BatchResult result = program_.run({text("--json"), text("--output"), folder_.path(text("out")), cut});
    const QList<QJsonObject> rows = result.named(text("row-finished"));
    ASSERT_EQ(rows.size(), 1);
    const QString reason = rows.first().value(text("reason")).toString();
    EXPECT_TRUE(
        reason.endsWith(text("cut.mov: its index is missing: the recording was not finished, or the copy is cut")))
        << reason.toStdString();
}

} // namespace
