// SPDX-License-Identifier: GPL-3.0-or-later
// Which container an output gets, by its name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrix::front
{

// The arguments that make ffmpeg write what it would write into a file of this name ("-f", "ipod" for "x.m4v"), for a
// file that has no name of its own yet. Empty when the extension says nothing.
[[nodiscard]] std::vector<std::string> muxerArguments(std::string_view fileName);

// The arguments for an explicit format, which may need one more to write a single picture file.
[[nodiscard]] std::vector<std::string> formatArguments(const std::string& format);

// Whether `fileName` asks for numbered pictures ("x%03d.jpg").
[[nodiscard]] bool isPictureSequence(std::string_view fileName);

// Whether `name` is one of the numbered pictures that `pattern` stands for; both without their folder.
[[nodiscard]] bool isPictureOf(std::string_view pattern, std::string_view name);

// Whether the format writes no file of the output's name, or others beside it that are found by that name.
[[nodiscard]] bool writesOtherFiles(const std::vector<std::string>& muxer);

// Whether a file of that format is scratch material that a crash of the machine may take.
[[nodiscard]] bool isScratchFormat(const std::vector<std::string>& muxer);

} // namespace tavrix::front
