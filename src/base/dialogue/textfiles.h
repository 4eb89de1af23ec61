// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Reading and writing text files.

#include "base/text/textencoding.h"

#include <QString>

namespace tavrix
{

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
// Key whose translation in the strings file equals the text; the text itself when there is none; "" for nothing.
[[nodiscard]] QString str2LocalisationTitle(const QString& text, const QString& stringsFile);

} // namespace tavrix
