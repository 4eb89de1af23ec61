// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/text.h"

#include "support/qtprinters.h"

#include <cmath>
#include <string>
#include <vector>

namespace tavrix
{
namespace
{

using test::text;

TEST(Text, LeadingIntegerReadsTheHeadOfAText)
{
    struct Row {
        const char* input;
        int expected;
    };
    const std::vector<Row> rows = {{"5 kb/s", 5},
                                   {"  12x", 12},
                                   {"\t7", 7},
                                   {"\r\n\x01 7", 7},
                                   {"\u00A0\u2003\u200B\u30008", 8},
                                   {"+5", 5},
                                   {"-5", -5},
                                   {"--5", 0},
                                   {"- 5", 0},
                                   {"0x10", 0},
                                   {"1e3", 1},
                                   {"08", 8},
                                   {"1,234", 1},
                                   {"99999999999", 2147483647},
                                   {"2147483647", 2147483647},
                                   {"2147483648", 2147483647},
                                   {"-2147483648", -2147483647 - 1},
                                   {"-99999999999999999999999999", -2147483647 - 1},
                                   {"", 0},
                                   {nullptr, 0},
                                   {".5", 0},
                                   {"x5", 0},
                                   {"-", 0},
                                   {"\u0663", 0}};
    for (const Row& row : rows) {
        EXPECT_EQ(leadingInteger(text(row.input)), row.expected) << test::shown(text(row.input));
    }
}

struct FloatRow {
    const char* input;
    double expected;
    bool read;
};

TEST(Text, FloatPrefixReadsAsCDoesWithoutItsExtras)
{
    const std::vector<FloatRow> rows = {{"29.97 tbr", 29.97, true},
                                        {".5", 0.5, true},
                                        {"5.", 5, true},
                                        {"1e3", 1000, true},
                                        {"1e", 1, true},
                                        {"1e+", 1, true},
                                        {"inf", 0, false},
                                        {"nan", 0, false},
                                        {"0x10", 0, true},
                                        {"1,5", 1, true},
                                        {"--1", 0, false},
                                        {"12-3", 12, true},
                                        {"1.2.3", 1.2, true},
                                        {"- 5", 0, false},
                                        {" \t\n7.5", 7.5, true},
                                        {"-2.5e-1", -0.25, true},
                                        {"", 0, false},
                                        {nullptr, 0, false},
                                        {"abc", 0, false},
                                        {"1e999", HUGE_VAL, true},
                                        {"e5", 0, false},
                                        {"\u0663", 0, false},
                                        {"+.", 0, false}};
    for (const FloatRow& row : rows) {
        bool read = !row.read;
        EXPECT_DOUBLE_EQ(floatPrefix(text(row.input), &read), row.expected) << test::shown(text(row.input));
        EXPECT_EQ(read, row.read) << test::shown(text(row.input));
    }
}

TEST(Text, FloatAtStartSkipsNothing)
{
    bool read = true;
    EXPECT_DOUBLE_EQ(floatAtStart(u" 5", &read), 0);
    EXPECT_FALSE(read);
    EXPECT_DOUBLE_EQ(floatAtStart(u"5 ", &read), 5);
    EXPECT_TRUE(read);
}

TEST(Text, FindingNeverFindsAnEmptyNeedle)
{
    const QString haystack = text("a, b, c");
    EXPECT_EQ(findText(haystack, text(", ")), 1);
    EXPECT_EQ(findText(haystack, text(", "), 2), 4);
    EXPECT_EQ(findText(haystack, text(", "), 5), -1);
    EXPECT_EQ(findText(haystack, text(", "), 100), -1);
    EXPECT_EQ(findText(haystack, text("a"), -3), 0);
    EXPECT_EQ(findText(haystack, text("")), -1);
    EXPECT_EQ(findText(haystack, QString()), -1);
    EXPECT_EQ(findText(text(""), text("")), -1);
    EXPECT_EQ(findText(QString(), text("a")), -1);
    EXPECT_EQ(findText(haystack, text("A")), -1);
    EXPECT_TRUE(containsText(haystack, text("b")));
    EXPECT_FALSE(containsText(haystack, text("")));
}

TEST(Text, PiecesBetweenSeparators)
{
    struct Row {
        const char* input;
        const char* separator;
        QStringList expected;
    };
    const std::vector<Row> rows = {{"", ", ", {text("")}},
                                   {nullptr, ", ", {}},
                                   {"a, ", ", ", {text("a"), text("")}},
                                   {", a", ", ", {text(""), text("a")}},
                                   {"aXXXb", "XX", {text("a"), text("Xb")}},
                                   {"a b", ", ", {text("a b")}},
                                   {"ab", "", {text("ab")}},
                                   {"ab", nullptr, {text("ab")}},
                                   {"a::b", ":", {text("a"), text(""), text("b")}},
                                   {":", ":", {text(""), text("")}}};
    for (const Row& row : rows) {
        EXPECT_TEXTS(componentsSeparated(text(row.input), text(row.separator)), row.expected)
            << test::shown(text(row.input));
    }
}

TEST(Text, TextAfterAMarker)
{
    struct Row {
        const char* input;
        const char* marker;
        const char* end;
        const char* expected;
    };
    const std::vector<Row> rows = {{"start: 1.5, x", "start: ", ",", "1.5"},
                                   {"start: 1.5", "start: ", ",", "1.5"},
                                   {"start: 1.5", "start: ", nullptr, "1.5"},
                                   {"start: 1.5", "start: ", "", "1.5"},
                                   {"a=", "a=", nullptr, ""},
                                   {"a=,b", "a=", ",", ""},
                                   {"a=1,a=2", "a=", nullptr, "1,a=2"},
                                   {"b,a=1", "a=", ",", "1"},
                                   {"b", "a=", nullptr, nullptr},
                                   {"b", "", nullptr, nullptr},
                                   {nullptr, "a", nullptr, nullptr}};
    for (const Row& row : rows) {
        EXPECT_TEXT(textAfter(text(row.input), text(row.marker), text(row.end)), text(row.expected))
            << test::shown(text(row.input));
    }
}

TEST(Text, TextBeforeAMarker)
{
    EXPECT_TEXT(textBefore(text("a +b"), text(" +")), text("a"));
    EXPECT_TEXT(textBefore(text("a"), text(" +")), text("a"));
    EXPECT_TEXT(textBefore(text("+a"), text("+")), text(""));
    EXPECT_TEXT(textBefore(text("a"), text("")), text("a"));
    EXPECT_TEXT(textBefore(QString(), text("+")), QString());
    EXPECT_TEXT(textBefore(text(""), text("+")), text(""));
}

TEST(Text, NewlineSet)
{
    for (const char16_t unit : std::u16string(u"\n\v\f\r\u0085\u2028\u2029")) {
        EXPECT_TRUE(isNewline(QChar(unit))) << static_cast<unsigned>(unit);
    }
    for (const char16_t unit : std::u16string(u"\t\u000E\u001C \u0084\u0086\u00A0\u2027\u202A")) {
        EXPECT_FALSE(isNewline(QChar(unit))) << static_cast<unsigned>(unit);
    }
}

TEST(Text, StrictUtf8)
{
    struct Row {
        QByteArray bytes;
        QString expected;
    };
    const std::vector<Row> rows = {{QByteArray(), text("")},
                                   {QByteArray(""), text("")},
                                   {QByteArray("abc"), text("abc")},
                                   {QByteArray("\xC3\xA9t\xC3\xA9"), text("\u00E9t\u00E9")},
                                   {QByteArray("\xEF\xBB\xBF"
                                               "ab"),
                                    text("ab")},
                                   {QByteArray("\xEF\xBB\xBF"), text("")},
                                   {QByteArray("\xF0\x9F\x98\x80"), QString::fromUcs4(U"\U0001F600", 1)},
                                   {QByteArray("ok\xFF"), QString()},
                                   {QByteArray("a\xC3"), QString()},
                                   {QByteArray("\xED\xA0\x80"), QString()},
                                   {QByteArray("\xC0\xAF"), QString()}};
    for (const Row& row : rows) {
        EXPECT_TEXT(decodedUtf8(row.bytes), row.expected) << row.bytes.toHex().toStdString();
    }
    EXPECT_EQ(decodedUtf8(QByteArray("a\0b", 3)).size(), 3);
}

TEST(Text, Capitalized)
{
    EXPECT_TEXT(capitalized(text("hELLO world")), text("Hello world"));
    EXPECT_TEXT(capitalized(text("\u00E9T\u00C9")), text("\u00C9t\u00E9"));
    EXPECT_TEXT(capitalized(text("i")), text("I"));
    EXPECT_TEXT(capitalized(text("")), text(""));
    EXPECT_TEXT(capitalized(QString()), QString());
}

} // namespace
} // namespace tavrix
