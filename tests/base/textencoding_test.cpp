// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/textfiles.h"
#include "base/text/textencoding.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <gtest/gtest.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct DecodeRow {
    std::string name;
    QByteArray bytes;
    const char* expected; // null = nothing
    StringEncoding encoding;
};

class Decoding : public testing::TestWithParam<DecodeRow>
{
};

TEST_P(Decoding, GivesTextAndNumber)
{
    StringEncoding encoding = 99;
    EXPECT_TEXT(decodedText(GetParam().bytes, &encoding), text(GetParam().expected));
    EXPECT_EQ(encoding, GetParam().encoding);
    EXPECT_TEXT(decodedText(GetParam().bytes), text(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, Decoding,
    testing::Values(
        DecodeRow{"Empty", "", "", encodingAscii}, DecodeRow{"Ascii", "abc\r\n", "abc\r\n", encodingAscii},
        DecodeRow{"Utf8", "\xC3\xA9", "é", encodingUtf8},
        DecodeRow{"Utf8Mark",
                  "\xEF\xBB\xBF"
                  "ab",
                  "ab", encodingUtf8},
        DecodeRow{"OnlyMark", "\xEF\xBB\xBF", "", encodingUtf8},
        DecodeRow{"BrokenBehindMark",
                  "\xEF\xBB\xBF"
                  "a\xC3",
                  nullptr, 0},
        DecodeRow{"Windows", "\xE9t\xE9 \x80\x99", "été €™", encodingWindows1252},
        DecodeRow{"WindowsFirstAboveAscii", "\x80", "€", encodingWindows1252},
        DecodeRow{"WindowsUndefined81", "\x81", nullptr, 0}, DecodeRow{"WindowsUndefined8D", "\x8D", nullptr, 0},
        DecodeRow{"WindowsUndefined8F", "\x8F", nullptr, 0}, DecodeRow{"WindowsUndefined90", "\x90", nullptr, 0},
        DecodeRow{"WindowsUndefined9D", "a\x9D", nullptr, 0},
        DecodeRow{"TruncatedUtf8IsWindows", "a\xC3", "aÃ", encodingWindows1252},
        DecodeRow{"Utf16Little", QByteArray("\xFF\xFE\xE9\x00", 4), "é", encodingUtf16},
        DecodeRow{"Utf16Big", QByteArray("\xFE\xFF\x00\xE9", 4), "é", encodingUtf16},
        DecodeRow{"Utf16Odd", QByteArray("\xFF\xFE\xE9", 3), nullptr, 0},
        DecodeRow{"Utf32Little", QByteArray("\xFF\xFE\0\0\xE9\0\0\0", 8), "é", encodingUtf32},
        DecodeRow{"Utf32Big", QByteArray("\0\0\xFE\xFF\0\0\0\xE9", 8), "é", encodingUtf32},
        DecodeRow{"Utf32LastCodePoint", QByteArray("\xFF\xFE\0\0\xFF\xFF\x10\0", 8), "\U0010FFFF", encodingUtf32},
        DecodeRow{"Utf32OutOfRange", QByteArray("\0\0\xFE\xFF\x7F\0\0\0", 8), nullptr, 0},
        // Its surrogates, reckoned without the upper bits, would be those of U+10000.
        DecodeRow{"Utf32OutOfRangeWrapped", QByteArray("\xFF\xFE\0\0\0\0\x01\x04", 8), nullptr, 0},
        DecodeRow{"Utf32Surrogate", QByteArray("\xFF\xFE\0\0\0\xD8\0\0", 8), nullptr, 0},
        DecodeRow{"Utf16LoneSurrogate", QByteArray("\xFF\xFE\0\xD8", 4), nullptr, 0},
        DecodeRow{"Utf32Odd", QByteArray("\0\0\xFE\xFF\0", 5), nullptr, 0}),
    rowName<DecodeRow>);

struct CharsetRow {
    std::string name;
    QByteArray bytes;
    const char* expected;
};

class FileCharset : public testing::TestWithParam<CharsetRow>
{
};

TEST_P(FileCharset, HasAnIconvName)
{
    const TempFolder folder;
    EXPECT_TEXT(encodingCharsetIdentify2iconv(folder.makeFile(QStringLiteral("a"), GetParam().bytes)),
                text(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Files, FileCharset,
                         testing::Values(CharsetRow{"Ascii", "plain", "ANSI_X3.4-1968"},
                                         CharsetRow{"Empty", "", "ANSI_X3.4-1968"},
                                         CharsetRow{"Utf8", "\xC3\xA9", "UTF-8"},
                                         CharsetRow{"Windows", "\xE9", "CP1252"},
                                         CharsetRow{"Utf16", QByteArray("\xFE\xFF\0a", 4), "UTF-16"},
                                         CharsetRow{"Utf32", QByteArray("\xFF\xFE\0\0a\0\0\0", 8), "UTF-32"},
                                         CharsetRow{"Undecodable", "\x81", "CP1252"}),
                         rowName<CharsetRow>);

TEST(Charset, FailuresAreLogged)
{
    const TempFolder folder;
    const LogCapture log;
    EXPECT_TEXT(encodingCharsetIdentify2iconv(folder.path(QStringLiteral("missing"))), QStringLiteral("CP1252"));
    EXPECT_TEXTS(log.lines(), (QStringList{QStringLiteral("encoding             : 0"),
                                           QStringLiteral("encodingCharsetIdenti:-( ") + missingFileText()}));
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("missing.txt"))));
    EXPECT_TEXT(encodingCharsetIdentify2iconv(QString()), QString());
}

struct NumberRow {
    StringEncoding number;
    const char* expected;
    const char* logged; // null = no line
};

TEST(Charset, EveryNumberHasItsName)
{
    const char* unknown = "ch'sais même pô à quoi ça correspond :-( ";
    const NumberRow rows[] = {{1, "ANSI_X3.4-1968", nullptr},
                              {2, "NEXTSTEP", nullptr},
                              {3, "EUC-JP", nullptr},
                              {4, "UTF-8", nullptr},
                              {5, "CP819", nullptr},
                              {6, "CP1252", unknown},
                              {7, "CP1252", unknown},
                              {8, "MS_KANJI", "Pô sûr de à quoi ça correspond :-/ "},
                              {9, "ISO-8859-2", nullptr},
                              {10, "UTF-16", nullptr},
                              {11, "CP1251", nullptr},
                              {12, "CP1252", nullptr},
                              {13, "CP1253", nullptr},
                              {14, "CP1254", nullptr},
                              {15, "CP1250", nullptr},
                              {21, "ISO-2022-JP", nullptr},
                              {30, "MACROMAN", nullptr},
                              {0x10000, "CP1252", unknown},
                              {0x8C000100U, "UTF-32", nullptr},
                              {0x90000100U, "UTF-16BE", nullptr},
                              {0x94000100U, "UTF-16LE", nullptr},
                              {0x98000100U, "UTF-32BE", nullptr},
                              {0x9C000100U, "UTF-32LE", nullptr},
                              {0, "CP1252", nullptr},
                              {16, "CP1252", nullptr},
                              {0xFFFFFFFFU, "CP1252", nullptr}};
    for (const NumberRow& row : rows) {
        const LogCapture log;
        EXPECT_TEXT(iconvName(row.number), text(row.expected)) << row.number;
        const QStringList expected =
            row.logged ? QStringList{text(row.logged) + QString::number(row.number)} : QStringList();
        EXPECT_TEXTS(log.lines(), expected) << row.number;
    }
}

} // namespace
