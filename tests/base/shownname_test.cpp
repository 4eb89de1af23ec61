// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/shownname.h"
#include "support/qtprinters.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace tavrix;

namespace
{

struct ShownRow {
    const char16_t* text;
    const char16_t* shown;
};

class ShownTexts : public testing::TestWithParam<ShownRow>
{
};

TEST_P(ShownTexts, ShowWhatIsHidden)
{
    EXPECT_EQ(shownText(QString::fromUtf16(GetParam().text)), QString::fromUtf16(GetParam().shown));
}

INSTANTIATE_TEST_SUITE_P(
    All, ShownTexts,
    testing::Values(
        ShownRow{u"holiday.mov", u"holiday.mov"},
        ShownRow{u"\u00e9t\u00e9 \u65e5\u672c \U0001F3A5.mov", u"\u00e9t\u00e9 \u65e5\u672c \U0001F3A5.mov"},
        // A family is four people and three joiners; Persian joins with a non-joiner.
        ShownRow{u"\U0001F468\u200D\U0001F469\u200D\U0001F467.mov", u"\U0001F468\u200D\U0001F469\u200D\U0001F467.mov"},
        ShownRow{u"\u0645\u06CC\u200C\u062E\u0648\u0627\u0647\u0645",
                 u"\u0645\u06CC\u200C\u062E\u0648\u0627\u0647\u0645"},
        ShownRow{u"a\nb\rc\td", u"a\\nb\\rc\\td"}, ShownRow{u"\u001b[2Jcleared", u"\\x1b[2Jcleared"},
        ShownRow{u"\u007f\u0085\u009b31m", u"\\x7f\\x85\\x9b31m"},
        ShownRow{u"clip\u202evom.exe", u"clip\\u202evom.exe"},
        ShownRow{u"\u2028\u2029\u2066\u200f\ufeff", u"\\u2028\\u2029\\u2066\\u200f\\ufeff"},
        ShownRow{u"\U000E0041", u"\\U000e0041"}, ShownRow{u"back\\slash\\n", u"back\\slash\\n"}, ShownRow{u"", u""}));

TEST(ShownText, KeepsNothingApartFromEmpty)
{
    EXPECT_TRUE(shownText(QString()).isNull());
    EXPECT_FALSE(shownText(QStringLiteral("")).isNull());
}

TEST(ShownText, EscapesHalfOfACharacter)
{
    EXPECT_EQ(shownText(QString(QChar(0xD83C)) + u'x'), QStringLiteral("\\ud83cx"));
}

TEST(ShownJson, IsReadBackUnchanged)
{
    const QString name = QString::fromUtf16(u"a\u202eb\u0007\u009b\U000E0041\u00e9\n.mov");
    const QJsonObject object{{QStringLiteral("name"), name}};
    const QByteArray json = shownJson(QJsonDocument(object).toJson(QJsonDocument::Compact));
    EXPECT_EQ(QJsonDocument::fromJson(json).object(), object);
    EXPECT_EQ(QString::fromUtf8(json), shownText(QString::fromUtf8(json)));
}

TEST(ShownJson, KeepsTheLinesOfTheText)
{
    EXPECT_EQ(shownJson("{\n}\n"), QByteArray("{\n}\n"));
}

TEST(ShownLines, KeepTheirLineFeedsOnly)
{
    EXPECT_EQ(shownLines(QStringLiteral("one\ntwo\r\x1b[31m\n")), QStringLiteral("one\ntwo\\r\\x1b[31m\n"));
    EXPECT_EQ(shownLines(QStringLiteral("one\u2028two")), QStringLiteral("one\\u2028two"));
    EXPECT_TRUE(shownLines(QString()).isNull());
}

} // namespace
