// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/appdelegate.h"
#include "app/stepflags.h"
#include "base/store/preferences.h"
#include "support/qtprinters.h"

using namespace Qt::StringLiterals;
using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct FlagRow {
    const char* name;
    QVariant value; // invalid: the key is missing
    bool set;
};

class Flag : public testing::TestWithParam<FlagRow>
{
};

const FlagRow flagRows[] = {
    {"Missing", {}, false},      {"One", 1, true},          {"Zero", 0, false},
    {"Two", 2, false},           {"TextOne", u"1"_s, true}, {"TextOneAndMore", u"1x"_s, true},
    {"EmptyText", u""_s, false}, {"Word", u"yes"_s, false}, {"True", true, true},
};

const QString key = QStringLiteral("flagOfTheTest");

} // namespace

TEST_P(Flag, IsSetByOne)
{
    prefDelete(key);
    if (GetParam().value.isValid()) {
        prefWrite(key, GetParam().value);
    }
    EXPECT_EQ(isFlagSet(key), GetParam().set);
    EXPECT_EQ(takeFlag(key), GetParam().set);
    EXPECT_FALSE(isFlagSet(key));
    prefDelete(key);
}

INSTANTIATE_TEST_SUITE_P(StepFlags, Flag, testing::ValuesIn(flagRows), rowName<FlagRow>);

TEST(StepFlags, AreTakenOnce)
{
    setFlag(key);
    EXPECT_TRUE(isFlagSet(key));
    EXPECT_TRUE(takeFlag(key));
    EXPECT_FALSE(takeFlag(key));
    EXPECT_FALSE(prefAllKeys().contains(key));
}

TEST(StepFlags, StopListsKeepTheirOrder)
{
    EXPECT_TEXTS(appDelegate::analysisArray(),
                 QStringList({QStringLiteral("analysisFfmpeg"), QStringLiteral("analysisFfmpegParse"),
                              QStringLiteral("analysisFin")}));
    EXPECT_TEXTS(appDelegate::encArray(),
                 QStringList({QStringLiteral("encBatch"), QStringLiteral("encDeb"), QStringLiteral("encPart"),
                              QStringLiteral("encQtEnc"), QStringLiteral("encFin")}));
}
