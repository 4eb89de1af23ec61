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

bool takePath(Options& options, const std::string& path, std::string& error)
{
    std::string& place = options.input.empty() ? options.input : options.output;
    if (path.empty() || !place.empty()) {
        error = path.empty() ? "a file name is empty" : "unexpected argument \"" + path + "\"";
        return false;
    }
    place = path;
    return true;
}

bool checkComplete(const Options& options, std::string& error)
{
    if (options.help) {
        return true;
    }
    if (options.settings.empty()) {
        error = "no settings file is given";
    } else if (options.input.empty()) {
        error = "no input is given";
    } else if (options.output.empty()) {
        error = "no output is given";
    }
    return error.empty();
}

} // namespace

std::optional<Options> parseOptions(const std::vector<std::string>& arguments, std::string& error)
{
    Options options;
    bool onlyPaths = false;
    error.clear();
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool option = !onlyPaths && argument.size() > 1 && argument[0] == '-';
        if (!option) {
            if (!takePath(options, argument, error)) {
                return std::nullopt;
            }
        } else if (argument == "--") {
            onlyPaths = true;
        } else if (argument == "--help" || argument == "-h") {
            options.help = true;
        } else if ((argument == "-s" || argument == "-f") && i + 1 < arguments.size()) {
            const std::string& value = arguments[++i];
            if (argument == "-s") {
                options.settings = value;
            } else if (!(options.format = formatNamed(value))) {
                error = "unknown format \"" + value + "\"";
                return std::nullopt;
            }
        } else {
            error = argument == "-s" || argument == "-f" ? argument + " needs a value" : "unknown option " + argument;
            return std::nullopt;
        }
    }
    if (!checkComplete(options, error)) {
        return std::nullopt;
    }
    return options;
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
