// The files of a run: how the installed ffmpeg reaches them, and what becomes of the outputs.
#pragma once

#include "sys/descriptor.h"
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

// Opens what has to be open for a run and publishes the outputs after it. A failure is told in one line.
class RunFiles
{
public:
    RunFiles() = default;
    RunFiles(const RunFiles&) = delete;
    RunFiles& operator=(const RunFiles&) = delete;

    // False, with the line to print in `error`, when a file cannot be used; nothing has been touched then.
    [[nodiscard]] bool open(const CommandLine& line, std::string& error);

    [[nodiscard]] const FileUrls& urls() const { return urls_; }
    [[nodiscard]] TranscriptNames names() const;
    [[nodiscard]] std::vector<int> inheritedDescriptors() const;
    [[nodiscard]] bool readsStandardInput() const { return readsStandardInput_; }
    // False when an input is a stream that a second reader would find half empty.
    [[nodiscard]] bool canBeReadAgain() const { return canBeReadAgain_; }

    // The name of the first input that has become shorter since it was opened: its end cannot have been read.
    [[nodiscard]] std::optional<std::string> shortenedInput() const;
    // The name of the first output that holds not a byte; nothing when all have some.
    [[nodiscard]] std::optional<std::string> emptyOutput() const;
    // Puts the outputs under their names. False, with the line to print, at the first that cannot be.
    [[nodiscard]] bool publish(std::string& error);

private:
    struct Output {
        std::optional<SafeOutput> file; // nothing: written to directly
        SafeOutput::Durability durability = SafeOutput::Durability::Synced;
        SafeOutput::Existing existing = SafeOutput::Existing::Replaced;
    };

    [[nodiscard]] bool openInput(const FileEntry& input, std::string& error);
    [[nodiscard]] int keep(Descriptor descriptor);
    [[nodiscard]] bool openOutput(const FileEntry& output, const CommandLine& line, std::string& error);
    [[nodiscard]] bool openFile(const std::string& name, std::vector<std::string> muxer, bool overwrites,
                                std::string& error);
    void passOutput(const std::string& url, std::vector<std::string> muxer);

    struct InputSize {
        std::string name;
        std::int64_t bytes = 0;
    };

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
