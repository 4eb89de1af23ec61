// SPDX-License-Identifier: GPL-3.0-or-later
// The recording date names the output, stands in the record with its origin, and is the output's file date.
#include "base/files/fileops.h"
#include "pipeline/batchprogram.h"
#include "pipeline/clips.h"
#include "pipeline/words.h"
#include "support/temphome.h"

#include <gtest/gtest.h>

#include <QFileInfo>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class Dates : public ::testing::TestWithParam<int>
{
};

TEST_P(Dates, TheOutputsFileDateIsThatOfTheRecording)
{
    constexpr qint64 recorded = 1341138896; // 2012-07-01 10:34:56 UTC
    constexpr qint64 copied = 1441138896;
    TempFolder clips;
    TempFolder destination;
    const QString source = clips.path(text("a.mov"));
    ClipRequest request;
    request.size = text("640x480");
    request.rate = text("25");
    request.seconds = 4;
    request.codecs = text("-vf noise=alls=20:allf=t -c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a pcm_s16le "
                          "-metadata creation_time=2012-07-01T10:34:56Z -f mov")
                         .split(QLatin1Char(' '));
    ASSERT_TRUE(makeClip(source, request));
    ASSERT_TRUE(setModificationTime(source, copied));
    BatchProgram program;
    const BatchResult result =
        program.run({text("--format"), QString::number(GetParam()), text("--output"), destination.path(), source});
    ASSERT_EQ(result.outputs().size(), 1);
    const QFileInfo output(result.outputs().first());
    EXPECT_EQ(output.lastModified().toSecsSinceEpoch(), recorded);
    EXPECT_TRUE(output.fileName().contains(text("2012-07-01"))) << output.fileName().toStdString();
    EXPECT_EQ(QFileInfo(source).lastModified().toSecsSinceEpoch(), copied);
    const QList<QJsonObject> rows = result.named(text("accepted"));
    ASSERT_EQ(rows.size(), 1);
    const QJsonObject record = rows.first().value(text("record")).toObject();
    EXPECT_EQ(record.value(text("recordingDateSource")).toString(), text("movieHeader"));
    EXPECT_TRUE(record.value(text("recordingDate")).toString().startsWith(text("2012-07-01")));
}

INSTANTIATE_TEST_SUITE_P(Formats, Dates, ::testing::Values(0, 1, 2, 3, 4, 5));

} // namespace
