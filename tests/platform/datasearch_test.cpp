// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/datasearch.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QBuffer>
#include <QFile>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct HexRow {
    const char* name;
    const char* text;
    QByteArray bytes;
};

class HexText : public testing::TestWithParam<HexRow>
{
};

TEST_P(HexText, GivesTwoDigitsAByte)
{
    EXPECT_EQ(toDataFromHexString(text(GetParam().text)), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Texts, HexText,
                         testing::Values(HexRow{"MixedCase", "0a1B", QByteArray("\x0A\x1B")},
                                         HexRow{"Limits", "00fF", QByteArray("\x00\xFF", 2)},
                                         HexRow{"Empty", "", QByteArray()},
                                         // "G" is 16 and "/" is -1: 16 * 16 - 1, of which a byte keeps the lowest part.
                                         HexRow{"NotHexadecimal", "G/", QByteArray("\xFF")},
                                         HexRow{"Letters", "zZ", QByteArray("\x53")}),
                         rowName<HexRow>);

TEST(HexText, AnOddLengthIsAProgrammingError)
{
    try {
        const QByteArray bytes = toDataFromHexString(QStringLiteral("abc"));
        FAIL() << "no error but " << bytes.size() << " bytes";
    } catch (const HexDataError& error) {
        EXPECT_STREQ(error.what(), "String length is odd !");
        EXPECT_STREQ(error.file(), "HexData");
        EXPECT_EQ(error.line(), 17);
    }
}

struct SearchRow {
    const char* name;
    QByteArray buffer;
    QByteArray pattern;
    unsigned int offset;
};

class Search : public testing::TestWithParam<SearchRow>
{
};

TEST_P(Search, FindsTheFirstOccurrence)
{
    const SearchRow& row = GetParam();
    EXPECT_EQ(offsetOfData(row.buffer, row.pattern), row.offset);
    QBuffer device;
    device.setData(row.buffer);
    ASSERT_TRUE(device.open(QIODevice::ReadOnly));
    device.seek(row.buffer.size() / 2);
    EXPECT_EQ(offsetOfData_NSFileHandle(device, row.pattern), row.offset);
    EXPECT_EQ(device.pos(), row.buffer.size() / 2);
}

INSTANTIATE_TEST_SUITE_P(
    Buffers, Search,
    testing::Values(SearchRow{"Middle", "ABCBC", "BC", 1}, SearchRow{"Start", "ABC", "AB", 0},
                    SearchRow{"End", "ABC", "C", 2}, SearchRow{"Whole", "ABC", "ABC", 0},
                    SearchRow{"TooLong", "ABC", "ABCD", dataNotFound}, SearchRow{"Absent", "ABC", "X", dataNotFound},
                    SearchRow{"SelfOverlap", "AAAB", "AAB", 1}, SearchRow{"PartialAtEnd", "xAA", "AAB", dataNotFound},
                    SearchRow{"Nulls", QByteArray("a\0b\0c", 5), QByteArray("\0c", 2), 3},
                    SearchRow{"HighBytes", "\x01\xFF\xFF\x1E\x20", "\xFF\xFF\x1E\x20", 1},
                    SearchRow{"EmptyPattern", "ABC", "", dataNotFound}, SearchRow{"EmptyBuffer", "", "A", dataNotFound},
                    SearchRow{"BothEmpty", "", "", dataNotFound}),
    rowName<SearchRow>);

struct BorderRow {
    const char* name;
    QByteArray pattern;
    qsizetype before; // bytes of the pattern in front of the border
    QByteArray prefix;
};

class ChunkBorder : public testing::TestWithParam<BorderRow>
{
};

TEST_P(ChunkBorder, DoesNotHideAnOccurrence)
{
    const BorderRow& row = GetParam();
    for (const int chunk : {1, 2}) {
        const qsizetype border = chunk * (row.pattern.size() + 2000000);
        const qsizetype offset = border - row.before;
        QByteArray content(offset - row.prefix.size(), 'x');
        content += row.prefix + row.pattern + QByteArray(1000, 'y');
        const TempFolder folder;
        QFile file(folder.makeFile(QStringLiteral("recording"), content));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        file.seek(77);
        EXPECT_EQ(offsetOfData_NSFileHandle(file, row.pattern), static_cast<unsigned int>(offset));
        EXPECT_EQ(file.pos(), 77);
        EXPECT_EQ(offsetOfData_NSFileHandle(file, row.pattern + "z"), dataNotFound);
        EXPECT_EQ(file.pos(), 77);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Places, ChunkBorder,
    testing::Values(BorderRow{"Across", "PATTERN", 3, ""}, BorderRow{"OneByteBefore", "PATTERN", 1, ""},
                    BorderRow{"AllButOneBefore", "PATTERN", 6, ""}, BorderRow{"EndsAtBorder", "PATTERN", 7, ""},
                    BorderRow{"StartsAtBorder", "PATTERN", 0, ""},
                    // A false start runs into the true occurrence.
                    BorderRow{"Overlapping", "AAB", 1, "A"}, BorderRow{"FalseStartBefore", "PATTERN", 2, "PATT"}),
    rowName<BorderRow>);

class StreamDevice : public QBuffer
{
public:
    [[nodiscard]] bool isSequential() const override { return true; }
};

TEST(Search, ADeviceWithoutPositionsIsRefused)
{
    StreamDevice stream;
    stream.setData("a");
    ASSERT_TRUE(stream.open(QIODevice::ReadOnly));
    EXPECT_EQ(offsetOfData_NSFileHandle(stream, "a"), dataNotFound);
}

TEST(Search, AClosedDeviceIsRefused)
{
    QBuffer closed;
    closed.setData("a");
    EXPECT_EQ(offsetOfData_NSFileHandle(closed, "a"), dataNotFound);
}

TEST(Replace, TheFirstOccurrenceOnly)
{
    const LogCapture log;
    QByteArray buffer = "ABCABC";
    EXPECT_EQ(replaceDataWithData(buffer, "BC", "x"), 1U);
    EXPECT_EQ(buffer, QByteArray("AxABC"));
    EXPECT_EQ(replaceDataWithData(buffer, "BC", "long"), 3U);
    EXPECT_EQ(buffer, QByteArray("AxAlong"));
    EXPECT_EQ(replaceDataWithData(buffer, "BC", "x"), dataNotFound);
    EXPECT_EQ(buffer, QByteArray("AxAlong"));
    EXPECT_EQ(log.lines().count(QStringLiteral("replaceData")), 3);
}

TEST(Replace, AllOccurrencesAreCounted)
{
    const LogCapture log;
    QByteArray buffer = "AAA";
    EXPECT_EQ(replaceAllDataWithData(buffer, "A", "BB"), 3U);
    EXPECT_EQ(buffer, QByteArray("BBBBBB"));
    EXPECT_EQ(replaceAllDataWithData(buffer, "BB", ""), 3U);
    EXPECT_EQ(buffer, QByteArray());
    EXPECT_EQ(replaceAllDataWithData(buffer, "", "x"), 0U);
    EXPECT_EQ(log.lines().count(QStringLiteral("replaceAllData")), 3);
}

} // namespace
