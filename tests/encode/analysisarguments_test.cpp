// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/analysisarguments.h"

#include "support/qtprinters.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct Row {
    const char* name;
    const char* source;
};

class AnalysisArguments : public testing::TestWithParam<Row>
{
};

// Every name is one argument, whatever it holds.
const Row rows[] = {
    {"Plain", "/c/00001.MTS"},
    {"Blank", "/c/my clip.MTS"},
    {"Quotes", "/c/it's \"x\".mov"},
    {"Dash", "-y.avi"},
};

} // namespace

TEST_P(AnalysisArguments, OfTheDecoding)
{
    const QString source = text(GetParam().source);
    EXPECT_TEXTS(decodeArguments(text("/t/ffmpeg"), source, text("/tmp/frame.yuv")),
                 QStringList({text("/t/ffmpeg"), text("-v"), text("2"), text("-i"), source, text("-vframes"),
                              text("10"), text("-s"), text("640x480"), text("-pix_fmt"), text("yuv420p"), text("-an"),
                              text("-f"), text("yuv4mpegpipe"), text("-y"), text("/tmp/frame.yuv")}));
}

TEST_P(AnalysisArguments, OfTheThumbnail)
{
    const QString source = text(GetParam().source);
    for (const QString& size : {text("320x180"), text("240x180")}) {
        EXPECT_TEXTS(thumbnailArguments(text("/t/ffmpeg"), source, size, text("/tmp/x.jpg")),
                     QStringList({text("/t/ffmpeg"), text("-vframes"), text("1"), text("-i"), source, text("-s"), size,
                                  text("-y"), text("/tmp/x.jpg")}));
    }
}

INSTANTIATE_TEST_SUITE_P(Encode, AnalysisArguments, testing::ValuesIn(rows), rowName<Row>);
