// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/shownvalues.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/text/cliptime.h"
#include "support/qtprinters.h"
#include "testpaths.h"

#include <QDateTime>

#include <gtest/gtest.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct SizeCase {
    const char* name;
    qint64 bytes;
    const char* english;
    const char* french;
};

class ShownSize : public testing::TestWithParam<SizeCase>
{
protected:
    ShownSize() : before_(resourcePath()) { setResourcePath(QStringLiteral(TAVRIX_SOURCE_DIR "/resources")); }
    ~ShownSize() override
    {
        setLanguage(QStringLiteral("en"));
        setResourcePath(before_);
    }

private:
    const QString before_;
};

TEST_P(ShownSize, IsWrittenAsTheLanguageDoes)
{
    setLanguage(text("en"));
    EXPECT_TEXT(shownSize(GetParam().bytes), text(GetParam().english));
    setLanguage(text("fr"));
    EXPECT_TEXT(shownSize(GetParam().bytes), text(GetParam().french));
}

INSTANTIATE_TEST_SUITE_P(Sizes, ShownSize,
                         testing::Values(SizeCase{"belowNothing", -1, "0 kB", "0\u202fko"},
                                         SizeCase{"bytes", 499, "0 kB", "0\u202fko"},
                                         SizeCase{"kilobytes", 204800, "205 kB", "205\u202fko"},
                                         SizeCase{"nearlyAMegabyte", 999499, "999 kB", "999\u202fko"},
                                         SizeCase{"neverAThousand", 999500, "1.0 MB", "1,0\u202fMo"},
                                         SizeCase{"fewMegabytes", 2900000, "2.9 MB", "2,9\u202fMo"},
                                         SizeCase{"nearlyTen", 9949999, "9.9 MB", "9,9\u202fMo"},
                                         SizeCase{"ten", 9950000, "10 MB", "10\u202fMo"},
                                         SizeCase{"many", 420400000, "420 MB", "420\u202fMo"},
                                         SizeCase{"gigabytes", 12345678901, "12.3 GB", "12,3\u202fGo"},
                                         SizeCase{"terabytes", 2000000000000000, "2000.0 TB", "2000,0\u202fTo"}),
                         rowName<SizeCase>);

TEST(ShownClipTime, HasTheDecimalSignOfTheLanguage)
{
    setLanguage(QStringLiteral("fr"));
    EXPECT_TEXT(shownClipTime(8.44), QStringLiteral("0:08,44"));
    EXPECT_NEAR(clipTime(shownClipTime(8.44)).value_or(-1), 8.44, 1e-9);
    setLanguage(QStringLiteral("en"));
    EXPECT_TEXT(shownClipTime(8.44), QStringLiteral("0:08.44"));
}

TEST(ShownDate, HasTheFormOfTheLanguage)
{
    const qint64 seconds = QDateTime(QDate(2011, 7, 2), QTime(10, 12)).toSecsSinceEpoch();
    setLanguage(QStringLiteral("de"));
    EXPECT_TRUE(shownDate(seconds).startsWith(QStringLiteral("02.07.11"))) << shownDate(seconds).toStdString();
    EXPECT_TRUE(shownDate(seconds).contains(QStringLiteral("10:12")));
    setLanguage(QStringLiteral("en"));
    EXPECT_TRUE(shownDate(seconds).contains(QStringLiteral("10:12"))) << shownDate(seconds).toStdString();
}

} // namespace
