// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/commandline.h"

#include "tools/ffmpeg/optionrules.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tavrix::front
{

namespace
{

class Parser
{
public:
    CommandLine parse(const std::vector<std::string>& words)
    {
        for (std::size_t i = 0; i < words.size(); ++i) {
            const std::string& word = words[i];
            const bool isOption = word.size() > 1 && word.front() == '-';
            if (!isOption) {
                addOutput(word);
                continue;
            }
            const std::string name = word.substr(1);
            const OptionRule rule = optionRule(name);
            const bool isFlag = !rule.takesValue || (!isKnownOption(name) && startsOption(words, i + 1));
            if (name != "i" && isFlag) {
                addOption({name, std::nullopt}, rule.side);
                continue;
            }
            if (i + 1 < words.size()) {
                addValued(name, words[++i], rule.side);
                continue;
            }
            // A last word that only looks like an option is the output's name.
            if (name == "i" || isKnownOption(name)) {
                line_.missingValueFor = name;
            } else {
                addOutput(word);
            }
        }
        return std::move(line_);
    }

private:
    // Whether a word can only be the next option, and not the value of one that is not known.
    static bool startsOption(const std::vector<std::string>& words, std::size_t i)
    {
        return i < words.size() && words[i].starts_with('-') &&
               (words[i] == "-i" || isKnownOption(std::string_view(words[i]).substr(1)));
    }

    void addValued(const std::string& name, const std::string& value, OptionSide side)
    {
        if (name == "i") {
            addInput(value);
        } else {
            addOption({name, value}, side);
        }
    }

    void addOption(Option option, OptionSide side)
    {
        switch (side) {
        case OptionSide::Report:
            line_.reportOnly = true;
            break;
        case OptionSide::Global:
            addGlobal(std::move(option));
            break;
        case OptionSide::Output:
        case OptionSide::Shape:
        case OptionSide::Following:
            line_.timestampDebug = line_.timestampDebug || option.name == "fdebug";
            pending_.push_back(std::move(option));
            break;
        }
    }

    void addGlobal(Option option)
    {
        if (option.name == "y") {
            line_.overwrite = true;
        } else if (option.name == "n") {
            line_.neverOverwrite = true;
        } else if (option.name == "v" || option.name == "loglevel") {
            line_.verbosity = option.name == "v" ? std::atoi(option.value->c_str()) : line_.verbosity;
        } else if (!concernsTranscript(option.name)) {
            line_.globals.push_back(std::move(option));
        }
    }

    // The transcript has to appear whatever these say, and nobody answers on standard input.
    static bool concernsTranscript(const std::string& name)
    {
        return name == "stats" || name == "nostats" || name == "hide_banner" || name == "stdin" || name == "nostdin";
    }

    void addInput(const std::string& name)
    {
        FileEntry input{name, {}};
        std::vector<Option> forOutput;
        const bool formatGiven = hasOption(pending_, "f");
        for (Option& option : pending_) {
            const OptionSide side = optionRule(option.name).side;
            if (side == OptionSide::Output) {
                forOutput.push_back(std::move(option));
            } else if (side == OptionSide::Following || (formatGiven && option.name != "aspect")) {
                input.options.push_back(std::move(option));
            }
        }
        pending_ = std::move(forOutput);
        line_.inputs.push_back(std::move(input));
    }

    void addOutput(const std::string& name) { line_.outputs.push_back({name, std::exchange(pending_, {})}); }

    CommandLine line_;
    std::vector<Option> pending_; // waiting for their file
};

} // namespace

CommandLine parseCommandLine(const std::vector<std::string>& words)
{
    return Parser().parse(words);
}

std::optional<std::string> optionValue(const std::vector<Option>& options, const std::string& name)
{
    const auto found = std::find_if(options.rbegin(), options.rend(), [&](const Option& o) { return o.name == name; });
    return found == options.rend() ? std::nullopt : found->value;
}

bool hasOption(const std::vector<Option>& options, const std::string& name)
{
    return std::ranges::any_of(options, [&](const Option& option) { return option.name == name; });
}

} // namespace tavrix::front
