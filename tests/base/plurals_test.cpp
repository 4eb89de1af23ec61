// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/plurals.h"

#include "base/dialogue/localisation.h"
#include "support/qtprinters.h"

#include <gtest/gtest.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct CountCase {
    const char* language;
    qint64 number;
    bool singular;
};

class CountedText : public testing::TestWithParam<CountCase>
{
protected:
    ~CountedText() override { setLanguage(QStringLiteral("en")); }
};

// A key that no table holds is its own text.
TEST_P(CountedText, TakesTheSingularWhereTheLanguageDoes)
{
    setLanguage(text(GetParam().language));
    EXPECT_TEXT(countedText("Nowhere", GetParam().number, text("Batch")),
                text(GetParam().singular ? "Nowhere_one" : "Nowhere"));
}

INSTANTIATE_TEST_SUITE_P(Numbers, CountedText,
                         testing::Values(CountCase{"en", 0, false}, CountCase{"en", 1, true}, CountCase{"en", 2, false},
                                         CountCase{"fr", 0, true}, CountCase{"fr", 1, true}, CountCase{"fr", 2, false},
                                         CountCase{"de", 0, false}, CountCase{"de", 1, true}),
                         [](const auto& entry) {
                             return std::string(entry.param.language) + std::to_string(entry.param.number);
                         });

} // namespace
