// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/numberconversions.h"
#include "base/text/roundingconversions.h"

#include "base/store/settings.h"
#include "support/alertrecorder.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <limits>
#include <vector>

namespace tavrix
{
namespace
{

using test::text;

struct FloatRow {
    const char* input;
    float expected;
};

TEST(NumberConversions, Str2FloatSkipsLettersAtTheFront)
{
    const std::vector<FloatRow> rows = {{"abc12.5xyz", 12.5F},
                                        {"-abc5", 0},
                                        {"a-5", -5},
                                        {"e5", 5},
                                        {"12e3", 12000},
                                        {"1e5k", 100000},
                                        {"N/A", 0},
                                        {"x.5", 0.5F},
                                        {"\u00E9"
                                         "5",
                                         5},
                                        {"e\u0301"
                                         "5",
                                         5},
                                        {"\t5", 0},
                                        {"a1b2", 1},
                                        {"  1 234.5 ", 1234.5F},
                                        {"+e5", 0},
                                        {":5", 0},
                                        {"\u0663", 0},
                                        {"\u00A0"
                                         "5",
                                         0},
                                        {"16777217", 16777216},
                                        {"29.97", 29.97F},
                                        {"\U0001D400"
                                         "7",
                                         7},
                                        {"", 0},
                                        {nullptr, 0},
                                        {"inf", 0},
                                        {"0x10", 0}};
    for (const FloatRow& row : rows) {
        EXPECT_EQ(str2Float(text(row.input)), row.expected) << test::shown(text(row.input));
    }
}

TEST(NumberConversions, Str2FloatSaysWhenThereIsNoNumber)
{
    const test::LogCapture log;
    EXPECT_EQ(str2Float(text("7")), 7);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(str2Float(text("N/A")), 0);
    EXPECT_TEXTS(log.lines(), QStringList{text("mais heuu, c'est meme pas un float :(")});
}

TEST(NumberConversions, Str2FloatOfAHugeNumberIsInfinite)
{
    EXPECT_EQ(str2Float(text("1e300")), std::numeric_limits<float>::infinity());
    EXPECT_EQ(str2Float(text("-1e999")), -std::numeric_limits<float>::infinity());
}

TEST(NumberConversions, Str2IntTruncatesTheFloat)
{
    EXPECT_EQ(str2Int(text("12.9")), 12);
    EXPECT_EQ(str2Int(text("-12.9")), -12);
    EXPECT_EQ(str2Int(text("16777217")), 16777216);
    EXPECT_EQ(str2Int(text("123456789")), 123456792);
    EXPECT_EQ(str2Int(text("1e30")), std::numeric_limits<int>::max());
    EXPECT_EQ(str2Int(text("abc")), 0);
}

TEST(NumberConversions, TruncatedIntSaturates)
{
    EXPECT_EQ(truncatedInt(2.9), 2);
    EXPECT_EQ(truncatedInt(-2.9), -2);
    EXPECT_EQ(truncatedInt(1e300), std::numeric_limits<int>::max());
    EXPECT_EQ(truncatedInt(-1e300), std::numeric_limits<int>::min());
    EXPECT_EQ(truncatedInt(2147483647.5), std::numeric_limits<int>::max());
    EXPECT_EQ(truncatedInt(-2147483648.5), std::numeric_limits<int>::min());
    EXPECT_EQ(truncatedInt(std::numeric_limits<double>::infinity()), std::numeric_limits<int>::max());
    EXPECT_EQ(truncatedInt(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(NumberConversions, Timecodes)
{
    const std::vector<FloatRow> rows = {{"01:02:03.50", 3723.5F},
                                        {"00:00:10,5", 10.5F},
                                        {"00:00:01.12/25", 1.48F},
                                        {"1:00:00:00.0", 90000.0F},
                                        {"1:05:00:00.0", 90000.0F},
                                        {"0.5:00:00:00.0", 43200.0F},
                                        {"00:00:00.04", 0.04F},
                                        {"00:00:01.1/25", 1.4F},
                                        {"00:00:01.1/0", 1.0F},
                                        {"00:00:05", 5.0F},
                                        {"00:00:05.", 5.0F},
                                        {"00:10", 0},
                                        {"12", 0},
                                        {"", 0},
                                        {nullptr, 0},
                                        {"N/A", 0},
                                        {"1:2:3:4:5", 0}};
    for (const FloatRow& row : rows) {
        EXPECT_FLOAT_EQ(timecodeStr2Float(text(row.input)), row.expected) << test::shown(text(row.input));
    }
    const QString endless = text("00:00:01.") + QString(400, u'9');
    EXPECT_FLOAT_EQ(timecodeStr2Float(endless), 1.0F);
}

TEST(NumberConversions, ADoubtfulTimecodeRaisesAnAlertWhileDebugging)
{
    const test::AlertRecorder alerts;
    EXPECT_EQ(timecodeStr2Float(text("12:30")), 0);
    EXPECT_TEXTS(alerts.shown(), QStringList());
    setDEBUG(1);
    EXPECT_EQ(timecodeStr2Float(text("12:30")), 0);
    EXPECT_FLOAT_EQ(timecodeStr2Float(text("00:00:00.04")), 0.04F);
    EXPECT_FLOAT_EQ(timecodeStr2Float(text("00:00:10.00")), 10.0F);
    setDEBUG(0);
    EXPECT_TEXTS(alerts.shown(), QStringList{text("utils > timecodeStr2Float ? :-/: 12:30")});
}

TEST(NumberConversions, MinutesAndSeconds)
{
    struct Row {
        int seconds;
        const char* expected;
    };
    const std::vector<Row> rows = {{125, "2\"05'"}, {5, "00\"05'"}, {0, "00\"00'"},    {59, "00\"59'"},
                                   {60, "1\"00'"},  {70, "1\"10'"}, {3600, "60\"00'"}, {-5, "00\"0-5'"}};
    for (const Row& row : rows) {
        EXPECT_TEXT(secondesInt2Str(row.seconds), text(row.expected));
    }
}

TEST(NumberConversions, MinutesAndSecondsBackAgain)
{
    struct Row {
        const char* input;
        int seconds;
        int variant;
    };
    const std::vector<Row> rows = {{"2\"05'", 125, 122},
                                   {"00\"05'", 5, 0},
                                   {"1\"10", 70, 60},
                                   {"125", 0, 0},
                                   {"", 0, 0},
                                   {nullptr, 0, 0},
                                   {"2'\"05'", 125, 122},
                                   {"99999999\"00'", std::numeric_limits<int>::max(), std::numeric_limits<int>::max()}};
    for (const Row& row : rows) {
        EXPECT_EQ(secondesStr2Int(text(row.input)), row.seconds) << test::shown(text(row.input));
        EXPECT_EQ(str2SecondesInt(text(row.input)), row.variant) << test::shown(text(row.input));
    }
}

TEST(NumberConversions, CutSeconds)
{
    EXPECT_TEXT(secondesCutFloat2Str(0), text(""));
    EXPECT_TEXT(secondesCutFloat2Str(-1), text(""));
    EXPECT_TEXT(secondesCutFloat2Str(std::numeric_limits<float>::quiet_NaN()), text(""));
    EXPECT_TEXT(secondesCutFloat2Str(5.25F), text("-05.2'"));
    EXPECT_TEXT(secondesCutFloat2Str(9.96F), text("-010.0'"));
    EXPECT_TEXT(secondesCutFloat2Str(12.5F), text("-12.5'"));
    EXPECT_EQ(secondesCutStr2Float(text("")), 0);
    EXPECT_EQ(secondesCutStr2Float(QString()), 0);
    EXPECT_EQ(secondesCutStr2Float(text("'")), 0);
    EXPECT_FLOAT_EQ(secondesCutStr2Float(text("-05.2'")), 5.2F);
}

TEST(NumberConversions, ByteUnits)
{
    EXPECT_EQ(octet2unite(1048576, text("M")), 1.0);
    EXPECT_EQ(octet2unite(1048576, text("m")), 1.0);
    EXPECT_EQ(octet2unite(1048576, text("Mo")), 1048576.0);
    EXPECT_EQ(octet2unite(1536, text("K")), 1.5);
    EXPECT_EQ(octet2unite(qint64{3} << 30, text("g")), 3.0);
    EXPECT_EQ(octet2unite(1024, QString()), 1024.0);
    EXPECT_EQ(octet2unite(0, text("K")), 0.0);
    EXPECT_EQ(octet2unite(-2048, text("K")), -2048.0);
}

} // namespace
} // namespace tavrix
