// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/colourtags.h"

#include <gtest/gtest.h>

#include <string>

using namespace tavrix::movencoder;

namespace
{

// Numbers as in the movie: primaries, transfer, matrix; 2 is unknown.
struct Numbers {
    int primaries;
    int transfer;
    int matrix;
};

ColourTags tagsOf(const Numbers& numbers)
{
    return {static_cast<AVColorPrimaries>(numbers.primaries),
            static_cast<AVColorTransferCharacteristic>(numbers.transfer), static_cast<AVColorSpace>(numbers.matrix)};
}

struct TagRow {
    const char* name;
    Numbers source;
    int height;
    int outputHeight;
    bool rgb;
    Numbers output;
};

class MovencoderTags : public testing::TestWithParam<TagRow>
{
};

TEST_P(MovencoderTags, AreTrueAndKnownToQuickTime)
{
    const TagRow& row = GetParam();
    EXPECT_EQ(outputTags(tagsOf(row.source), row.height, row.outputHeight, row.rgb), tagsOf(row.output));
}

INSTANTIATE_TEST_SUITE_P(Rows, MovencoderTags,
                         testing::Values(TagRow{"HighDefinition", {1, 1, 1}, 720, 720, false, {1, 1, 1}},
                                         TagRow{"UntaggedHighDefinitionStaysSo", {2, 2, 2}, 720, 720, false, {2, 2, 2}},
                                         TagRow{"MatrixOfHighDefinitionAlone", {2, 2, 1}, 720, 720, false, {1, 1, 1}},
                                         TagRow{"MotionJpeg", {2, 2, 5}, 480, 720, false, {6, 1, 6}},
                                         TagRow{"MotionJpegInHighDefinition", {2, 2, 5}, 720, 720, false, {6, 1, 6}},
                                         TagRow{"EuropeanMotionJpeg", {2, 2, 5}, 576, 720, false, {5, 1, 6}},
                                         TagRow{"European", {5, 6, 5}, 576, 576, false, {5, 1, 6}},
                                         TagRow{"EuropeanWithoutTransfer", {5, 2, 5}, 576, 720, false, {5, 1, 6}},
                                         TagRow{"American", {6, 6, 6}, 480, 480, false, {6, 1, 6}},
                                         TagRow{"UntaggedEnlarged", {2, 2, 2}, 480, 720, false, {6, 1, 6}},
                                         TagRow{"UntaggedEuropeanEnlarged", {2, 2, 2}, 576, 720, false, {5, 1, 6}},
                                         TagRow{"UntaggedAtItsSize", {2, 2, 2}, 480, 480, false, {2, 2, 2}},
                                         TagRow{"Rgb", {1, 13, 0}, 720, 720, true, {1, 13, 6}},
                                         TagRow{"ScreenTransfer", {1, 13, 1}, 720, 720, false, {1, 13, 1}},
                                         TagRow{"PlainGamma", {1, 4, 5}, 480, 720, false, {1, 4, 6}},
                                         TagRow{"HighDynamicRange", {9, 16, 9}, 1080, 720, false, {9, 16, 9}}),
                         [](const testing::TestParamInfo<TagRow>& row) { return std::string(row.param.name); });

} // namespace
