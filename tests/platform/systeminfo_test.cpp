// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/systeminfo.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QRegularExpression>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct ItemRow {
    const char* name;
    const char* text;
    const char* delimiter;
    int index;
    const char* item;
};

class Item : public testing::TestWithParam<ItemRow>
{
};

TEST_P(Item, IsTakenByItsIndex)
{
    const ItemRow& row = GetParam();
    EXPECT_TEXT(ASTID(text(row.text), text(row.delimiter), row.index), text(row.item));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Item,
    testing::Values(ItemRow{"Last", "a/b/c", "/", 777, "c"}, ItemRow{"BeforeLast", "a/b/c", "/", 666, "b"},
                    ItemRow{"First", "a/b/c", "/", 0, "a"}, ItemRow{"TooFar", "a/b/c", "/", 3, "a/b/c"},
                    ItemRow{"LastIndex", "a/b/c", "/", 2, "c"}, ItemRow{"BeforeLastOfTwo", "a/b", "/", 666, "a"},
                    ItemRow{"EmptyLast", "ab/", "/", 777, ""}, ItemRow{"Integer", "12", ".", 0, "12"},
                    ItemRow{"NegativeInteger", "-12", "-", 0, "-12"}, ItemRow{"ShortFloat", "1.5", ".", 0, "1"},
                    ItemRow{"CanonicalFloat", "2.500000", ".", 0, "2.500000"},
                    ItemRow{"CanonicalSmallFloat", "0.100000", ".", 1, "0.100000"},
                    ItemRow{"LeadingZero", "012.5", ".", 0, "012"}, ItemRow{"Plus", "+12", "+", 1, "12"},
                    ItemRow{"NegativeIndex", "a/b/c", "/", -1, "a/b/c"},
                    ItemRow{"AbsentDelimiter", "abc", "/", 0, "abc"}, ItemRow{"EmptyDelimiter", "abc", "", 0, "abc"},
                    ItemRow{"NoDelimiter", "a/b", nullptr, 0, "a/b"}, ItemRow{"Nothing", nullptr, "/", 0, ""},
                    ItemRow{"Empty", "", "/", 0, ""}, ItemRow{"LongDelimiter", "aXXXb", "XX", 1, "Xb"}),
    rowName<ItemRow>);

struct VersionRow {
    const char* name;
    const char* version;
    float number;
};

class Version : public testing::TestWithParam<VersionRow>
{
};

TEST_P(Version, BecomesAComparableNumber)
{
    EXPECT_EQ(versionStr2Float(text(GetParam().version)), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(Versions, Version,
                         testing::Values(VersionRow{"Three", "7.4.1", 7.0401F},
                                         VersionRow{"System", "10.5.8", 10.0508F}, VersionRow{"Two", "7.6", 7.06F},
                                         VersionRow{"TwoDigits", "7.10", 7.10F}, VersionRow{"TenSix", "10.6", 10.06F},
                                         VersionRow{"One", "7", 7.0F}, VersionRow{"FourthIgnored", "1.2.3.4", 1.0203F},
                                         VersionRow{"NoNumbers", "a.b", 0.0F}, VersionRow{"Empty", "", 0.0F},
                                         VersionRow{"Nothing", nullptr, 0.0F}),
                         rowName<VersionRow>);

TEST(Version, MinorTenRanksAboveNine)
{
    EXPECT_GT(versionStr2Float(QStringLiteral("7.10")), versionStr2Float(QStringLiteral("7.9")));
}

TEST(Version, OfTheMediaLayerComesFromItsWord)
{
    EXPECT_EQ(versionQTFromWord(0x07418000U), 7.0401F);
    EXPECT_EQ(versionQTFromWord(0x07608000U), 7.06F);
    EXPECT_EQ(versionQTFromWord(0x10000000U), 16.0F);
    EXPECT_GE(versionQT(), 7.06F);
}

TEST(Version, OfTheSystemComesFromItsWord)
{
    EXPECT_EQ(versionOSFromWord(0x1058), 10.0508F);
    EXPECT_EQ(versionOSFromWord(0x0610), 6.01F);
    EXPECT_EQ(versionOSFromWord(0x0593), 5.0903F);
}

TEST(Version, ThatIsNotToldIsLoggedAsZero)
{
    const LogCapture log;
    EXPECT_EQ(versionQTFromWord(0), 0.0F);
    EXPECT_EQ(versionOSFromWord(0), 0.0F);
    EXPECT_TEXTS(log.lines(), (QStringList{QStringLiteral("versionQT           :-( echec"),
                                           QStringLiteral("versionOS           :-( echec")}));
}

struct ReleaseRow {
    const char* name;
    const char* release;
    int word;
};

class Release : public testing::TestWithParam<ReleaseRow>
{
};

TEST_P(Release, BecomesAWordWithOneDigitForTheSmallNumbers)
{
    EXPECT_EQ(osWordFromRelease(text(GetParam().release)), GetParam().word);
}

INSTANTIATE_TEST_SUITE_P(Releases, Release,
                         testing::Values(ReleaseRow{"Debian", "6.1.0-13-amd64", 0x0610},
                                         ReleaseRow{"LargeMinor", "5.15.3", 0x0593},
                                         ReleaseRow{"LargeFix", "6.1.55", 0x0619},
                                         ReleaseRow{"TwoDigitMajor", "10.5.8", 0x1058},
                                         ReleaseRow{"NoFix", "6.2", 0x0620}, ReleaseRow{"NoNumber", "x", 0},
                                         ReleaseRow{"Nothing", nullptr, 0}),
                         rowName<ReleaseRow>);

TEST(System, AnswersAboutThisMachine)
{
    const int word = osVersion();
    EXPECT_GT(word, 0);
    EXPECT_EQ(versionOS(), versionOSFromWord(word));
    const LogCapture log;
    EXPECT_GE(nbProcessors(), 1);
    EXPECT_LE(nbProcessors(), 4096);
    EXPECT_EQ(log.lines().filter(QRegularExpression(QStringLiteral("^Processors/Cores    x [0-9]+$"))).size(), 2);
#if defined(__x86_64__) || defined(__i386__)
    EXPECT_TRUE(archIntel());
#else
    EXPECT_FALSE(archIntel());
#endif
    EXPECT_FALSE(appleScript(QStringLiteral("beep")).isValid());
}

TEST(System, OsAsksForARangeOfVersions)
{
    for (const int n : {0, 50, 99, -99}) {
        EXPECT_TRUE(osIsVersion(n, 10.0508F)) << n;
        EXPECT_TRUE(osIsVersion(n, 10.0F)) << n;
        EXPECT_FALSE(osIsVersion(n, 10.2F)) << n;
        EXPECT_FALSE(osIsVersion(n, 9.99F)) << n;
    }
    EXPECT_TRUE(osIsVersion(100, 11.05F));
    EXPECT_FALSE(osIsVersion(100, 10.05F));
    EXPECT_TRUE(osIsVersion(-100, 9.0F));
    EXPECT_EQ(os(0), osIsVersion(0, versionOS()));
}

TEST(System, TheProcessorIsNewerThanG3)
{
    const LogCapture log;
    EXPECT_FALSE(cpuG3());
    EXPECT_TRUE(log.contains(QStringLiteral("cpu > G3            :-)")));
    EXPECT_TRUE(cpuG3FromSubtype(9));
    EXPECT_FALSE(cpuG3FromSubtype(10));
}

TEST(System, AMissingGraphicsCardIsExplained)
{
    const LogCapture log;
    const QStringList explanation = {
        QStringLiteral("Quartz Extreme      :-( not compatible video card"),
        QStringLiteral(
            "INFORMATION         : if you have two graphic cards, the two cards must be Quartz Extreme compatible."),
        QStringLiteral("                      if this is not the case, please remove the non compatible card.")};
    const bool card = quartzExtremeCard();
    EXPECT_TEXTS(log.lines(), card ? QStringList() : explanation);
}

} // namespace
