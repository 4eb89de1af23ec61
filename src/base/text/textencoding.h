// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Detection and names of text encodings.

#include <QByteArray>
#include <QString>

namespace tavrix
{

// Number of a string encoding, as the texts of this program count them (the ones the program names).
using StringEncoding = unsigned int;
inline constexpr StringEncoding encodingAscii = 1;
inline constexpr StringEncoding encodingUtf8 = 4;
inline constexpr StringEncoding encodingUtf16 = 10;
inline constexpr StringEncoding encodingWindows1252 = 12;
inline constexpr StringEncoding encodingUtf32 = 0x8C000100U;

// Text of the bytes in their detected encoding (mark, ASCII, UTF-8, else Windows-1252); nothing when a marked file is
// invalid or a byte is undefined. *encoding receives the number when given, 0 with nothing.
[[nodiscard]] QString decodedText(const QByteArray& bytes, StringEncoding* encoding = nullptr);
// Text of plain ASCII bytes; nothing when one is above 127.
[[nodiscard]] QString decodedAscii(const QByteArray& bytes);

// Name that iconv knows the encoding by; "CP1252" for all that it has no name for.
[[nodiscard]] QString iconvName(StringEncoding encoding);

} // namespace tavrix
