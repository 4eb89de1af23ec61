// SPDX-License-Identifier: GPL-3.0-or-later
// The files of a run: how the installed ffmpeg reaches them, and what becomes of the outputs.
#pragma once

#include "sys/descriptor.h"
#include "sys/publication.h"
#include "sys/result.h"
#include "sys/safeoutput.h"
#include "tools/ffmpeg/arguments.h"
#include "tools/ffmpeg/commandline.h"
#include "tools/ffmpeg/transcript.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavrix::front
{

// Opens what has to be open for a run and publishes the outputs after it. The reason of a failure is the line to print.
class RunFiles
{
public:
    RunFiles() = default;
    RunFiles(const RunFiles&) = delete;
    RunFiles& operator=(const RunFiles&) = delete;

    // Fails when a file cannot be used; nothing has been touched then.
    Result<void> open(const CommandLine& line, const publication::Terms& terms = {});

    [[nodiscard]] const FileUrls& urls() const { return urls_; }
    [[nodiscard]] TranscriptNames names() const;
    [[nodiscard]] std::vector<int> inheritedDescriptors() const;
    [[nodiscard]] bool readsStandardInput() const { return readsStandardInput_; }
    // False when an input is a stream that a second reader would find half empty.
    [[nodiscard]] bool canBeReadAgain() const { return canBeReadAgain_; }

    // The descriptor of an output in the making; nothing for one that is written to directly.
    [[nodiscard]] std::optional<int> outputDescriptor(std::size_t output) const;

    // The name of the first input that has become shorter since it was opened: its end cannot have been read.
    [[nodiscard]] std::optional<std::string> shortenedInput() const;
    // The name of the first output that holds not a byte; nothing when all have some.
    [[nodiscard]] std::optional<std::string> emptyOutput() const;
    // Whether the only input is a regular file.
    [[nodiscard]] bool readsRegularFile() const { return inputNames_.size() == 1 && inputSizes_.size() == 1; }
    // Where the only output is written until it takes its name; nothing when it is written to directly.
    [[nodiscard]] std::optional<std::string> writtenFile() const;
    // Its bytes; -1 when they cannot be asked.
    [[nodiscard]] std::int64_t writtenBytes() const;
    // The path that it takes; "" when it is written to directly.
    [[nodiscard]] std::string finalPath() const;
    // From now on publishing fails where something stands under the name.
    void keepOlder();
    // Puts the outputs under their names; fails at the first that cannot be.
    [[nodiscard]] Result<void> publish();

private:
    struct Output {
        std::optional<SafeOutput> file; // nothing: written to directly
        SafeOutput::Durability durability = SafeOutput::Durability::Synced;
        SafeOutput::Existing existing = SafeOutput::Existing::Replaced;
    };

    Result<void> openInput(const FileEntry& input);
    [[nodiscard]] int keep(Descriptor descriptor);
    Result<void> openOutput(const FileEntry& output, const CommandLine& line);
    Result<void> openFile(const std::string& path, std::vector<std::string> muxer, bool overwrites);
    void passOutput(const std::string& url, std::vector<std::string> muxer);

    struct InputSize {
        std::string name;
        std::int64_t bytes = 0;
    };

    publication::Terms terms_;
    FileUrls urls_;
    std::vector<InputSize> inputSizes_; // of the regular files
    std::vector<FileName> inputNames_;
    std::vector<FileName> outputNames_;
    std::vector<Descriptor> openDescriptors_;
    std::vector<Output> outputs_;
    bool readsStandardInput_ = false;
    bool canBeReadAgain_ = true;
};

} // namespace tavrix::front
