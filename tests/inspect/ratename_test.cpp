// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/ratename.h"
#include "support/qtprinters.h"

#include <gtest/gtest.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct RateRow {
    const char* name;
    double rate;
    RateKind kind;
    const char* full; // null: unknown
};

class StandardRates : public testing::TestWithParam<RateRow>
{
};

TEST_P(StandardRates, AreKnownByTheVocabulary)
{
    const StandardRate found = standardRate(GetParam().rate);
    EXPECT_EQ(found.kind, GetParam().kind);
    EXPECT_EQ(found.text, text(GetParam().full));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StandardRates,
    testing::Values(
        RateRow{"pal", 25, RateKind::Standard, "25"}, RateRow{"halfOfPal", 12.5, RateKind::Half, "25"},
        RateRow{"twicePal", 50, RateKind::Twice, "25"}, RateRow{"ntscByTbr", 29.97, RateKind::Standard, "29.97"},
        RateRow{"ntscExactly", 30000.0 / 1001, RateKind::Standard, "29.97"},
        RateRow{"twiceNtsc", 59.94, RateKind::Twice, "29.97"}, RateRow{"phone", 30, RateKind::Standard, "30"},
        RateRow{"twicePhone", 60, RateKind::Twice, "30"}, RateRow{"filmForNtsc", 23.976, RateKind::Standard, "23.98"},
        RateRow{"film", 24, RateKind::Standard, "24"},
        // 12 lies a hundredth beside the half of the NTSC film rate.
        RateRow{"halfOfFilm", 12, RateKind::Half, "24"}, RateRow{"halfOfFilmForNtsc", 11.988, RateKind::Half, "23.98"},
        RateRow{"halfOfNtsc", 14.985, RateKind::Half, "29.97"}, RateRow{"fifteen", 15, RateKind::Half, "30"},
        RateRow{"aLittleOver", 30.02, RateKind::Unknown, nullptr}, RateRow{"odd", 18, RateKind::Unknown, nullptr},
        RateRow{"none", 0, RateKind::Unknown, nullptr}, RateRow{"timeBase", 90000, RateKind::Unknown, nullptr}),
    rowName<RateRow>);

} // namespace
