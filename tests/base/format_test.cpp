// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/format.h"

#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QDateTime>

#include <clocale>
#include <limits>
#include <vector>

namespace tavrix
{
namespace
{

using test::text;

TEST(Format, FloatsRoundLikeTheCLibrary)
{
    struct Row {
        const char* format;
        double number;
        const char* expected;
    };
    const std::vector<Row> rows = {{"%.1f", 5.25, "5.2"},     {"%.1f", 0.25, "0.2"},
                                   {"%.1f", 0.75, "0.8"},     {"%.0f", 0.5, "0"},
                                   {"%.0f", 2.5, "2"},        {"%.0f", 3.5, "4"},
                                   {"%.2f", 0.125, "0.12"},   {"%.02f", 1.5, "1.50"},
                                   {"%.1f", 9.96, "10.0"},    {"%5.1f", 2.25, "  2.2"},
                                   {"%f", 1.5, "1.500000"},   {"%-6.1f|", 1.5, "1.5   |"},
                                   {"%06.1f", 1.5, "0001.5"}, {"%+.1f", 1.5, "+1.5"},
                                   {"%.0f", -0.083, "-0"},    {"%.3f", 1e15, "1000000000000000.000"},
                                   {"%lf", 0.5, "0.500000"},  {"%.0f %%", 49.6, "50 %"}};
    for (const Row& row : rows) {
        EXPECT_TEXT(formatText(text(row.format), {row.number}), text(row.expected)) << row.format;
    }
}

TEST(Format, Integers)
{
    EXPECT_TEXT(formatText(text("%d"), {-7}), text("-7"));
    EXPECT_TEXT(formatText(text("%i"), {7}), text("7"));
    EXPECT_TEXT(formatText(text("%.3d"), {7}), text("007"));
    EXPECT_TEXT(formatText(text("%.2d:%.2d"), {5, 123}), text("05:123"));
    EXPECT_TEXT(formatText(text("%.2X"), {10}), text("0A"));
    EXPECT_TEXT(formatText(text("%x"), {255}), text("ff"));
    EXPECT_TEXT(formatText(text("%x"), {-1}), text("ffffffff"));
    EXPECT_TEXT(formatText(text("%u"), {-1}), text("4294967295"));
    EXPECT_TEXT(formatText(text("%5d|%-5d|%05d"), {42, 42, 42}), text("   42|42   |00042"));
    EXPECT_TEXT(formatText(text("%lld %qi %ld"), {qint64{1} << 40, qint64{-1} << 40, qint64{3}}),
                text("1099511627776 -1099511627776 3"));
    EXPECT_TEXT(formatText(text("%llu"), {std::numeric_limits<quint64>::max()}), text("18446744073709551615"));
    EXPECT_TEXT(formatText(text("%hd %hhu"), {65537, 257}), text("1 1"));
    EXPECT_TEXT(formatText(text("%d"), {size_t{9}}), text("9"));
}

TEST(Format, ConversionsBetweenKinds)
{
    EXPECT_TEXT(formatText(text("%d"), {2.9}), text("2"));
    EXPECT_TEXT(formatText(text("%d"), {text("12abc")}), text("12"));
    EXPECT_TEXT(formatText(text("%.1f"), {text("1.5x")}), text("1.5"));
    EXPECT_TEXT(formatText(text("%.1f"), {3}), text("3.0"));
    EXPECT_TEXT(formatText(text("%d %.1f"), {QString(), QVariant()}), text("0 0.0"));
    EXPECT_TEXT(formatText(text("%d"), {true}), text("1"));
    EXPECT_TEXT(formatText(text("%lld"), {1e300}), text("9223372036854775807"));
    EXPECT_TEXT(formatText(text("%lld"), {9223372036854775808.0}), text("9223372036854775807"));
    EXPECT_TEXT(formatText(text("%lld"), {-1e300}), text("-9223372036854775808"));
    EXPECT_TEXT(formatText(text("%d"), {std::numeric_limits<double>::quiet_NaN()}), text("0"));
}

TEST(Format, InsertedTexts)
{
    EXPECT_TEXT(formatText(text("clip-%@-%@"), {QString(), text("h")}), text("clip-(null)-h"));
    EXPECT_TEXT(formatText(text("%@/%@"), {QString(), QString()}), text("(null)/(null)"));
    EXPECT_TEXT(formatText(text("'%@'"), {text("")}), text("''"));
    EXPECT_TEXT(formatText(text("%@ %@"), {text("%@ %d %1 %%"), text("b")}), text("%@ %d %1 %% b"));
    EXPECT_TEXT(formatText(text("%@"), {"\xC3\xA9"}), text("\u00E9"));
    EXPECT_TEXT(formatText(text("%@"), {static_cast<const char*>(nullptr)}), text("(null)"));
    EXPECT_TEXT(formatText(text("%@"), {42}), text("42"));
    EXPECT_TEXT(formatText(text("\u00E9%@\u00E9"), {text("b")}), text("\u00E9b\u00E9"));
}

TEST(Format, MissingAndExtraArguments)
{
    EXPECT_TEXT(formatText(text("%@-%d-%.1f|"), {}), text("--|"));
    EXPECT_TEXT(formatText(text("%@-%@"), {text("a")}), text("a-"));
    EXPECT_TEXT(formatText(text("%@"), {text("a"), text("b")}), text("a"));
    EXPECT_TEXT(formatText(text("none"), {1}), text("none"));
    EXPECT_TEXT(formatText(text("")), text(""));
    EXPECT_TEXT(formatText(text("%@-%@"), QList<FormatArg>{FormatArg(1), FormatArg(2)}), text("1-2"));
}

TEST(Format, WhatIsNoPlaceStays)
{
    EXPECT_TEXT(formatText(text("100%")), text("100%"));
    EXPECT_TEXT(formatText(text("%s %c %y %*d"), {1}), text("%s %c %y %*d"));
    EXPECT_TEXT(formatText(text("%.")), text("%."));
    EXPECT_TEXT(formatText(text("%y%@"), {text("a")}), text("%ya"));
    EXPECT_TEXT(formatText(text("%%%d%%"), {5}), text("%5%"));
    EXPECT_TEXT(formatText(text("%\u0663d"), {5}), text("%\u0663d"));
    EXPECT_EQ(formatText(text("%99999999999d"), {5}).size(), 512);
}

TEST(Format, TextOfValues)
{
    EXPECT_TEXT(textOf(QVariant(1.77F)), text("1.77"));
    EXPECT_TEXT(textOf(QVariant(29.97F)), text("29.97"));
    EXPECT_TEXT(textOf(QVariant(100000.0F)), text("100000"));
    EXPECT_TEXT(textOf(QVariant(1000000.0F)), text("1000000"));
    EXPECT_TEXT(textOf(QVariant(-2500000.0F)), text("-2500000"));
    EXPECT_TEXT(textOf(QVariant(1234567.5F)), text("1234567.5"));
    EXPECT_TEXT(textOf(QVariant(1e10F)), text("1e+10"));
    EXPECT_TEXT(textOf(QVariant(16777216.0F)), text("16777216"));
    EXPECT_TEXT(textOf(QVariant(25.0F)), text("25"));
    EXPECT_TEXT(textOf(QVariant(0.1)), text("0.1"));
    EXPECT_TEXT(textOf(QVariant(1564.0)), text("1564"));
    EXPECT_TEXT(textOf(QVariant(true)), text("1"));
    EXPECT_TEXT(textOf(QVariant(false)), text("0"));
    EXPECT_TEXT(textOf(QVariant(-3)), text("-3"));
    EXPECT_TEXT(textOf(QVariant(qint64{1} << 40)), text("1099511627776"));
    EXPECT_TEXT(textOf(QVariant(text("a"))), text("a"));
    EXPECT_TEXT(textOf(QVariant(text(""))), text(""));
    EXPECT_TEXT(textOf(QVariant(QString())), QString());
    EXPECT_TEXT(textOf(QVariant()), QString());
    EXPECT_TEXT(textOf(QVariant(QByteArray("\x01\xAB"))), text("<01ab>"));
    EXPECT_TEXT(formatText(text("%@"), {1.77F}), text("1.77"));
}

TEST(Format, ListsAndDictionariesPrintOnOneLine)
{
    EXPECT_TEXT(formatText(text("%@"), {QStringList{text("a"), text("b c")}}), text("(a, b c)"));
    EXPECT_TEXT(formatText(text("%@"), {QStringList()}), text("()"));
    const QVariantMap inner = {{text("k"), 1.5}};
    const QVariantMap outer = {{text("a"), inner}, {text("b"), QVariantList{1, QVariant()}}};
    EXPECT_TEXT(formatText(text("%@"), {outer}), text("{a = {k = 1.5;}; b = (1, (null));}"));
    EXPECT_TEXT(textOf(QVariantMap()), text("{}"));
}

TEST(Format, DatesAreLocalAndWhole)
{
    const test::EnvironmentChange zone("TZ", "Europe/Paris");
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(1299230430999).toUTC();
    EXPECT_TEXT(textOf(date), text("2011-03-04 10:20:30 +0100"));
}

TEST(Format, FixedText)
{
    EXPECT_TEXT(fixedText(5.25, 1), text("5.2"));
    EXPECT_TEXT(fixedText(2.5, 0), text("2"));
    EXPECT_TEXT(fixedText(-1.005, 2), text("-1.00"));
    EXPECT_TEXT(fixedText(1.0, -1), text("1"));
}

// A French environment must not turn "5.2" into "5,2", in texts or in what is read back.
TEST(Format, NumbersIgnoreTheLocaleOfTheEnvironment)
{
    const QByteArray previous = std::setlocale(LC_NUMERIC, nullptr);
    const bool comma = std::setlocale(LC_NUMERIC, "de_DE.UTF-8") || std::setlocale(LC_NUMERIC, "fr_FR.UTF-8") ||
                       std::setlocale(LC_NUMERIC, "tr_TR.UTF-8");
    if (!comma) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    EXPECT_TEXT(fixedText(5.25, 1), text("5.2"));
    EXPECT_TEXT(textOf(QVariant(1.77F)), text("1.77"));
    EXPECT_TEXT(formatText(text("%.1f"), {text("1.5")}), text("1.5"));
    std::setlocale(LC_NUMERIC, previous.constData());
}

} // namespace
} // namespace tavrix
