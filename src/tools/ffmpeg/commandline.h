// SPDX-License-Identifier: GPL-3.0-or-later
// The classic command line, taken apart.
#pragma once

#include "tools/ffmpeg/optionrules.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrix::front
{

struct Option {
    std::string name; // as given, without the dash
    std::optional<std::string> value;

    bool operator==(const Option&) const = default;
};

struct FileEntry {
    std::string name;
    std::vector<Option> options;

    bool operator==(const FileEntry&) const = default;
};

struct CommandLine {
    std::vector<Option> globals; // without those that have a field of their own
    std::vector<FileEntry> inputs;
    std::vector<FileEntry> outputs;
    int verbosity = 1;
    bool overwrite = false;      // -y
    bool neverOverwrite = false; // -n
    bool timestampDebug = false; // -fdebug
    bool reportOnly = false;     // asks ffmpeg about itself
    std::string missingValueFor; // the option that ends the line without its value; empty when all is well
};

// Takes the words after the program's name apart. Every option is attached to the file that it concerned in the classic
// dialect, where options were global variables: those of the output may stand before an input.
[[nodiscard]] CommandLine parseCommandLine(const std::vector<std::string>& words);

// The value of the last option with that treatment; nothing when there is none.
[[nodiscard]] std::optional<std::string> optionValue(const std::vector<Option>& options, OptionTreatment treatment);
[[nodiscard]] bool hasOption(const std::vector<Option>& options, OptionTreatment treatment);

} // namespace tavrix::front
