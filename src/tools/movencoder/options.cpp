// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/options.h"

namespace tavrix::movencoder
{

namespace
{

std::optional<Format> formatNamed(const std::string& name)
{
    if (name == "aic" || name == "4") {
        return Format::AppleIntermediate;
    }
    if (name == "prores" || name == "5") {
        return Format::ProRes;
    }
    return std::nullopt;
}

Result<void> takePath(Options& options, const std::string& path)
{
    std::string& place = options.input.empty() ? options.input : options.output;
    if (path.empty()) {
        return Failure{"a file name is empty"};
    }
    if (!place.empty()) {
        return Failure{"unexpected argument \"" + path + "\""};
    }
    place = path;
    return {};
}

Result<void> takeValue(Options& options, const std::string& option, const std::string& value)
{
    if (option == "-s") {
        options.settings = value;
        return {};
    }
    options.format = formatNamed(value);
    if (!options.format) {
        return Failure{"unknown format \"" + value + "\""};
    }
    return {};
}

Result<Options> checkComplete(const Options& options)
{
    if (options.help) {
        return options;
    }
    if (options.settings.empty()) {
        return Failure{"no settings file is given"};
    }
    if (options.input.empty()) {
        return Failure{"no input is given"};
    }
    if (options.output.empty()) {
        return Failure{"no output is given"};
    }
    return options;
}

} // namespace

Result<Options> parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    bool onlyPaths = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool option = !onlyPaths && argument.size() > 1 && argument[0] == '-';
        const bool takesValue = argument == "-s" || argument == "-f";
        Result<void> taken;
        if (!option) {
            taken = takePath(options, argument);
        } else if (argument == "--") {
            onlyPaths = true;
        } else if (argument == "--help" || argument == "-h") {
            options.help = true;
        } else if (takesValue && i + 1 < arguments.size()) {
            taken = takeValue(options, argument, arguments[++i]);
        } else {
            taken = Failure{takesValue ? argument + " needs a value" : "unknown option " + argument};
        }
        if (!taken) {
            return Failure{taken.reason()};
        }
    }
    return checkComplete(options);
}

std::string helpText()
{
    return "Usage: movencoder -s SETTINGS [-f FORMAT] [--] INPUT OUTPUT\n"
           "\n"
           "Encodes the video of INPUT and writes it, with the sound as it is, to the QuickTime movie OUTPUT.\n"
           "\n"
           "  -s SETTINGS  settings file: size, letterboxing and quality of each format\n"
           "  -f FORMAT    aic (Apple Intermediate Codec) or prores (Apple ProRes 422); otherwise the format\n"
           "               of the row that Tavrix is encoding into OUTPUT, or else the settings file's default\n"
           "  --help       this text\n"
           "\n"
           "Lines like \"Processing (42%)\" tell how far it is. OUTPUT appears, or is replaced, only when the\n"
           "whole movie has been written.\n"
           "\n"
           "Exit status: 0 the movie is written, 1 it is not, 2 wrong usage.\n";
}

} // namespace tavrix::movencoder
