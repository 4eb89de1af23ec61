// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/aspectratios.h"

#include "support/qtprinters.h"

namespace tavrix::test
{

namespace
{

struct DarParRow {
    const char* name;
    int sizes[4];
    const char* dar;
    const char* par;
};

class DarParTest : public testing::TestWithParam<DarParRow>
{
};

} // namespace

TEST_P(DarParTest, gives)
{
    const DarParRow& row = GetParam();
    EXPECT_TEXTS(DarPar(row.sizes[0], row.sizes[1], row.sizes[2], row.sizes[3]),
                 QStringList({text(row.dar), text(row.par)}));
}

INSTANTIATE_TEST_SUITE_P(Sizes, DarParTest,
                         testing::Values(DarParRow{"wideSquareOf625Lines", {720, 405, 720, 576}, "16:9", "64:45"},
                                         DarParRow{"squareStandard", {640, 480, 640, 480}, "4:3", "1:1"},
                                         DarParRow{"narrowedHighDefinition", {1920, 1080, 1440, 1080}, "16:9", "4:3"},
                                         DarParRow{"encodedSizeNotKnown", {640, 480, 1, 1}, "4:3", "1:1"},
                                         DarParRow{"standardOf525Lines", {640, 480, 720, 480}, "4:3", "8:9"},
                                         DarParRow{"wideOf525Lines", {854, 480, 720, 480}, "16:9", "32:27"},
                                         DarParRow{"standardOf625Lines", {768, 576, 720, 576}, "4:3", "16:15"},
                                         DarParRow{"neitherRatio", {800, 500, 800, 500}, "8:5", "1:1"},
                                         DarParRow{"cinema", {1920, 800, 1920, 800}, "12:5", "1:1"},
                                         DarParRow{"doubleWidth", {1280, 480, 640, 480}, "8:3", "2:1"},
                                         DarParRow{"oddPixelAspect", {1500, 1000, 1000, 1000}, "3:2", "3:2"},
                                         DarParRow{"nearlySquare", {641, 480, 640, 480}, "4:3", "1:1"},
                                         DarParRow{"portrait", {480, 640, 480, 640}, "3:4", "1:1"},
                                         DarParRow{"primeSizes", {997, 499, 997, 499}, "997:499", "1:1"}),
                         rowName<DarParRow>);

TEST(DarParTest, cannotTellOfSizesOfNothing)
{
    EXPECT_TRUE(DarPar(640, 0, 640, 480).isEmpty());
    EXPECT_TRUE(DarPar(640, 480, 0, 480).isEmpty());
    EXPECT_TRUE(DarPar(640, 480, 640, 0).isEmpty());
}

} // namespace tavrix::test
