// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the program and `movencoder` must agree on without a word between them: the arguments of the second pass do not
// name the row's format, so the tool reads it in the program's preferences.

#include <string>
#include <string_view>

namespace tavrix::secondpass
{

// The preferences' dictionary on the row being encoded. It is believed only when its output and its intermediate are
// the tool's own.
inline constexpr const char* record = "processEncDico";
inline constexpr const char* output = "dstPathStr";
inline constexpr const char* intermediate = "purgePathStr1";
inline constexpr const char* format = "out"; // number of the output format

// Beside the dictionary: the clip that the row is about, or a word that is no path while the batch is stopping.
inline constexpr const char* clip = "encCurrentProcessingFile";

// End of the intermediate's base name, which is otherwise that of the output.
inline constexpr const char* masterSuffix = "_MASTER";

// The keys of Info.plist, in the resource folder, that the store is named by.
inline constexpr const char* identifierKey = "CFBundleIdentifier";
inline constexpr const char* nameKey = "CFBundleName";

// The preferences file of a program with that identifier and name, either of which may be "".
[[nodiscard]] std::string storePath(const std::string& home, std::string_view identifier, std::string_view name);

} // namespace tavrix::secondpass
