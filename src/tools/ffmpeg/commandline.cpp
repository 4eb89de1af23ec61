// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/commandline.h"

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
            if (!isOption(word)) {
                addOutput(word);
                continue;
            }
            const std::string name = word.substr(1);
            const OptionRule rule = optionRule(name);
            if (!rule.takesValue || (!rule.known && startsOption(words, i + 1))) {
                addOption({name, std::nullopt}, rule);
            } else if (i + 1 < words.size()) {
                addOption({name, words[++i]}, rule);
            } else if (rule.known) {
                line_.missingValueFor = name;
            } else {
                // A last word that only looks like an option is the output's name.
                addOutput(word);
            }
        }
        return std::move(line_);
    }

private:
    static bool isOption(const std::string& word) { return word.size() > 1 && word.front() == '-'; }

    // Whether a word can only be the next option, and not the value of one that is not known.
    static bool startsOption(const std::vector<std::string>& words, std::size_t i)
    {
        return i < words.size() && isOption(words[i]) && optionRule(std::string_view(words[i]).substr(1)).known;
    }

    void addOption(Option option, const OptionRule& rule)
    {
        switch (rule.treatment) {
        case OptionTreatment::Ignored:
            return;
        case OptionTreatment::Input:
            addInput(option.value.value_or(""));
            return;
        case OptionTreatment::Overwrite:
            line_.overwrite = true;
            return;
        case OptionTreatment::KeepExisting:
            line_.neverOverwrite = true;
            return;
        case OptionTreatment::Verbosity:
            line_.verbosity = std::atoi(option.value.value_or("").c_str());
            return;
        case OptionTreatment::TimestampDebug:
            line_.timestampDebug = true;
            break;
        default:
            break;
        }
        if (rule.side == OptionSide::Report) {
            line_.reportOnly = true;
        } else if (rule.side == OptionSide::Global) {
            line_.globals.push_back(std::move(option));
        } else {
            pending_.push_back(std::move(option));
        }
    }

    void addInput(const std::string& name)
    {
        FileEntry input{name, {}};
        std::vector<Option> forOutput;
        const bool containerNamed = hasOption(pending_, OptionTreatment::Container);
        for (Option& option : pending_) {
            const OptionSide side = optionRule(option.name).side;
            if (side == OptionSide::Output) {
                forOutput.push_back(std::move(option));
            } else if (side == OptionSide::Following || (side == OptionSide::Shape && containerNamed)) {
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

std::optional<std::string> optionValue(const std::vector<Option>& options, OptionTreatment treatment)
{
    const auto found = std::find_if(options.rbegin(), options.rend(), [&](const Option& option) {
        return optionRule(option.name).treatment == treatment;
    });
    return found == options.rend() ? std::nullopt : found->value;
}

bool hasOption(const std::vector<Option>& options, OptionTreatment treatment)
{
    return std::ranges::any_of(options,
                               [&](const Option& option) { return optionRule(option.name).treatment == treatment; });
}

} // namespace tavrix::front
