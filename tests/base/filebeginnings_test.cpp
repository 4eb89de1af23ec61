// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/filebeginnings.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <gtest/gtest.h>

using namespace tavrix;
using namespace tavrix::test;

TEST(FileBeginnings, FirstLineEndsAtEitherLineBreak)
{
    const TempFolder folder;
    EXPECT_TEXT(firstLineOfFile(folder.makeFile(QStringLiteral("a"), "head\nFRAME")), QStringLiteral("head"));
    EXPECT_TEXT(firstLineOfFile(folder.makeFile(QStringLiteral("b"), "head\r\nFRAME")), QStringLiteral("head"));
    EXPECT_TEXT(firstLineOfFile(folder.makeFile(QStringLiteral("c"), "head")), QStringLiteral("head"));
    EXPECT_TRUE(firstLineOfFile(folder.makeFile(QStringLiteral("d"), "")).isEmpty());
}

TEST(FileBeginnings, FirstLineIsBounded)
{
    const TempFolder folder;
    EXPECT_EQ(firstLineOfFile(folder.makeFile(QStringLiteral("long"), QByteArray(100000, 'x'))).size(), 4096);
}

TEST(FileBeginnings, FirstLineOfAMissingFileIsNothing)
{
    const TempFolder folder;
    EXPECT_TEXT(firstLineOfFile(folder.path(QStringLiteral("none"))), QString());
}

namespace
{

struct JpegRow {
    const char* name;
    const char* hex;
    bool valid;
};

class Jpeg : public testing::TestWithParam<JpegRow>
{
};

const JpegRow jpegRows[] = {
    {"Baseline", "ffd8ffe000040000ffc0000b080010002001011100ffd9", true},
    {"Progressive", "ffd8ffc2000b080010002001011100ffd9", true},
    {"NoHeight", "ffd8ffc0000b080000002001011100ffd9", false},
    {"NoWidth", "ffd8ffc0000b080010000001011100ffd9", false},
    {"CutBeforeTheSize", "ffd8ffe000040000ffc0000b08", false},
    {"StartOnly", "ffd8ff", false},
    {"SegmentBeyondTheEnd", "ffd8ffe0ffff0000ffc0000b080010002001011100", false},
    {"Png", "89504e470d0a1a0a", false},
    {"Empty", "", false},
};

} // namespace

TEST_P(Jpeg, IsRecognisedByItsFrameHeader)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("x.jpg"), QByteArray::fromHex(GetParam().hex));
    EXPECT_EQ(isJpegFile(file), GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(FileBeginnings, Jpeg, testing::ValuesIn(jpegRows), rowName<JpegRow>);

TEST(FileBeginnings, SegmentsOfNoLengthDoNotHang)
{
    const TempFolder folder;
    QByteArray bytes = QByteArray::fromHex("ffd8");
    for (int i = 0; i < 1000; ++i) {
        bytes += QByteArray::fromHex("ffe00000");
    }
    EXPECT_FALSE(isJpegFile(folder.makeFile(QStringLiteral("x.jpg"), bytes)));
    EXPECT_FALSE(isJpegFile(folder.path(QStringLiteral("none.jpg"))));
    EXPECT_FALSE(isJpegFile(QString()));
}
