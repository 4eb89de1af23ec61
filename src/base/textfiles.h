#pragma once

#include <QString>

#include <optional>

// Reading and writing text files.
namespace tavrix {

// String-encoding numbers of the platform this program's texts describe (the ones the program names).
using StringEncoding = unsigned int;
inline constexpr StringEncoding encodingAscii = 1;
inline constexpr StringEncoding encodingUtf8 = 4;
inline constexpr StringEncoding encodingUtf16 = 10;
inline constexpr StringEncoding encodingWindows1252 = 12;
inline constexpr StringEncoding encodingUtf32 = 0x8C000100U;

// Text of the bytes in their detected encoding (mark, ASCII, UTF-8, else Windows-1252); nothing when a marked file is
// invalid or a byte is undefined. *encoding receives the number when given.
[[nodiscard]] QString decodedText(const QByteArray& bytes, StringEncoding* encoding = nullptr);

// Whole file in its detected encoding. An undecodable or missing file is copied beside itself with ".txt" appended and
// read as ASCII from there; nothing when that fails too. The copy stays.
[[nodiscard]] QString readContentsTxtUTF8(const QString& path);
// First line, at most limit - 1 bytes, as ASCII; nothing for an unreadable or empty file or a limit below 1.
[[nodiscard]] QString readContentsTxtC(const QString& path, int characterLimit);
// Writes EF BB BF over the first three bytes of an existing file; false only for nothing.
bool writeUtf8Bom(const QString& path);
// Appends, creating the file with a mark when absent; false for nothing or "" in either argument and on failure.
bool writeTextFileUtf8Bom(const QString& path, const QString& text);
// Replaces the file by the text, line ends made "\n", UTF-8 without mark. The number is only logged.
bool ecritureFichier(const QString& path, const QString& text, int flag);
// Name that iconv knows the file's encoding by; "CP1252" by default; nothing for nothing.
[[nodiscard]] QString encodingCharsetIdentify2iconv(const QString& path);
// The same mapping for an encoding number.
[[nodiscard]] QString iconvName(StringEncoding encoding);
// Key whose translation in the strings file equals the text; the text itself when there is none; "" for nothing.
[[nodiscard]] QString str2LocalisationTitle(const QString& text, const QString& stringsFile);

} // namespace tavrix
