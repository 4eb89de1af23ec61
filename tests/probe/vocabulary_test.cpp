// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/vocabulary.h"

#include "support/qtprinters.h"

namespace tavrix
{

TEST(Vocabulary, FrameRatesAreSinglePrecisionInPairs)
{
    const QList<float> expected = {12.5F, 25.0F, 11.99F, 23.98F, 12.0F, 24.0F, 14.98F, 29.97F, 15.0F, 30.0F};
    EXPECT_EQ(standardsFpsArray(), expected);
    EXPECT_TRUE(standardsFpsArray().at(7) == 29.97F);
    EXPECT_FALSE(static_cast<double>(standardsFpsArray().at(7)) == 29.97);
}

TEST(Vocabulary, StreamExtensions)
{
    EXPECT_EQ(elementariesStreamsArray().join(u' '), QStringLiteral("m2v mpv m1v"));
    EXPECT_EQ(multiplexedStreamsArray().join(u' '), QStringLiteral("mpg mpeg mod tod vob vro ts"));
}

struct KindRow {
    const char* name;
    const char* kind;
    const char* first;
};

class QtExtensions : public testing::TestWithParam<KindRow>
{
};

TEST_P(QtExtensions, BeginWithTheKindsOwn)
{
    const QStringList list = qtExtensionsHandledArray(test::text(GetParam().kind));
    EXPECT_EQ(list.join(u' '), test::text(GetParam().first) + QStringLiteral(" mov 3ivx unsupportedVideoCodecFfmpeg"));
}

INSTANTIATE_TEST_SUITE_P(Kinds, QtExtensions,
                         testing::Values(KindRow{"Lower", "a", "dv"}, KindRow{"Upper", "A", "dv"},
                                         KindRow{"Longer", "AA", "ffts"}, KindRow{"Blank", "A ", "ffts"},
                                         KindRow{"Other", "b", "ffts"}, KindRow{"Empty", "", "ffts"},
                                         KindRow{"Nothing", nullptr, "ffts"}),
                         test::rowName<KindRow>);

} // namespace tavrix
