// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/files.h"

#include "sys/errortext.h"
#include "sys/fileidentity.h"
#include "tools/ffmpeg/errorlines.h"
#include "tools/ffmpeg/muxers.h"
#include "tools/ffmpeg/textpieces.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavrix::front
{

namespace
{

// ffmpeg cuts its messages, and loses their line end, at a thousand bytes.
constexpr std::size_t longestPrintedName = 512;

// "-", "pipe:" and "pipe:1"; everything else is the name of a file.
bool isPipe(const std::string& name)
{
    if (name == "-") {
        return true;
    }
    return name.starts_with("pipe:") && name.find_first_not_of("0123456789", 5) == std::string::npos;
}

bool isStandardInput(const std::string& name)
{
    constexpr std::array<std::string_view, 6> names = {"-",          "pipe:",     "pipe:0",
                                                       "/dev/stdin", "/dev/fd/0", "/proc/self/fd/0"};
    return std::ranges::find(names, name) != names.end();
}

// Whether a name stands for something that a process has open ("/dev/stdout"): there is nothing to put under it.
bool isOpenDescriptor(std::string name)
{
    constexpr int longestChain = 40; // where the system gives up, too
    for (int links = 0; links < longestChain; ++links) {
        if (name.starts_with("/dev/fd/") || name.starts_with("/proc/")) {
            return true;
        }
        std::array<char, PATH_MAX> target = {};
        const ssize_t length = readlink(name.c_str(), target.data(), target.size());
        if (length <= 0) {
            return false;
        }
        const auto folder = target.front() == '/' ? 0 : name.rfind('/') + 1;
        name.replace(folder, std::string::npos, target.data(), static_cast<std::size_t>(length));
    }
    return false;
}

bool isStream(const struct stat& info)
{
    return S_ISFIFO(info.st_mode) || S_ISCHR(info.st_mode);
}

// Formats whose "file" is a device or a description.
bool readsNoFile(const FileEntry& input)
{
    constexpr std::array<std::string_view, 12> formats = {"lavfi", "alsa",   "pulse", "x11grab", "v4l2", "video4linux2",
                                                          "oss",   "openal", "fbdev", "kmsgrab", "jack", "sndio"};
    const auto format = optionValue(input.options, OptionTreatment::Container);
    return format && std::ranges::find(formats, *format) != formats.end();
}

bool hasControlCharacter(const std::string& name)
{
    return std::ranges::any_of(name, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; });
}

// The folder of a file and its name in there.
std::pair<std::string, std::string> splitName(const std::string& name)
{
    const auto slash = name.rfind('/');
    if (slash == std::string::npos) {
        return {".", name};
    }
    return {name.substr(0, slash + 1), name.substr(slash + 1)};
}

// Whether numbered pictures would be written over `input`.
bool wouldTouchPicture(const std::string& output, const std::string& input)
{
    const auto [pictures, pattern] = splitName(output);
    const auto [folder, name] = splitName(input);
    return (pattern == name || isPictureOf(pattern, name)) && sameFile(pictures.c_str(), folder.c_str());
}

std::string descriptorUrl(int fd)
{
    return "file:/proc/self/fd/" + std::to_string(fd);
}

bool wantsOneFrame(const FileEntry& output)
{
    return std::ranges::any_of(output.options, [](const Option& option) {
        return optionRule(option.name).treatment == OptionTreatment::FrameCount && option.value == "1";
    });
}

std::vector<std::string> muxerFor(const FileEntry& output, bool& guessed)
{
    const auto format = optionValue(output.options, OptionTreatment::Container);
    guessed = !format;
    if (!format) {
        return muxerArguments(output.name);
    }
    return formatArguments(*format);
}

} // namespace

Result<void> RunFiles::open(const CommandLine& line, const publication::Terms& terms)
{
    terms_ = terms;
    for (const FileEntry& input : line.inputs) {
        if (auto opened = openInput(input); !opened) {
            return opened;
        }
    }
    for (const FileEntry& output : line.outputs) {
        if (auto opened = openOutput(output, line); !opened) {
            return opened;
        }
    }
    return {};
}

Result<void> RunFiles::openInput(const FileEntry& input)
{
    struct stat info = {};
    const bool exists = stat(input.name.c_str(), &info) == 0;
    readsStandardInput_ = readsStandardInput_ || isStandardInput(input.name);
    canBeReadAgain_ = canBeReadAgain_ && !isPipe(input.name) && !(exists && isStream(info));
    if (exists && S_ISREG(info.st_mode)) {
        inputSizes_.push_back({input.name, info.st_size});
    }
    const std::string shown = onOneLine(input.name);
    std::string url = "file:" + input.name;
    if (isPipe(input.name) || readsNoFile(input)) {
        url = input.name;
    } else if (hasControlCharacter(input.name)) {
        // Such a name would break the lines of the transcript.
        const int fd = keep(::tavrix::openFile(input.name.c_str(), O_RDONLY));
        if (fd < 0) {
            const std::string reason = errorText(errno);
            return Failure{shown + ": " +
                           classicOpenFailure(reason).value_or("Error while opening file (" + reason + ')')};
        }
        url = descriptorUrl(fd);
    } else if (input.name.size() > longestPrintedName) {
        const auto [folder, name] = splitName(input.name);
        const int fd = keep(::tavrix::openFile(folder.c_str(), O_PATH | O_DIRECTORY));
        if (fd >= 0) {
            url = descriptorUrl(fd) + '/' + name;
        }
    }
    urls_.inputs.push_back(url);
    inputNames_.push_back({url, shown});
    return {};
}

// Holds a descriptor open until the end and gives its number; -1, with errno, for one that is not open.
int RunFiles::keep(Descriptor descriptor)
{
    Descriptor kept = aboveStandardStreams(std::move(descriptor));
    if (!kept.isOpen()) {
        return -1;
    }
    openDescriptors_.push_back(std::move(kept));
    return openDescriptors_.back().get();
}

Result<void> RunFiles::openOutput(const FileEntry& output, const CommandLine& line)
{
    bool guessed = false;
    std::vector<std::string> muxer = muxerFor(output, guessed);
    const std::string shown = onOneLine(output.name);
    outputNames_.push_back({output.name, shown});
    if (isPipe(output.name)) {
        passOutput(output.name, guessed ? std::vector<std::string>() : muxer);
        return {};
    }
    const std::string& path = terms_.place.empty() ? output.name : terms_.place;
    struct stat info = {};
    const bool exists = stat(path.c_str(), &info) == 0;
    if (exists && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode)) {
        // A program that has asked for a file does not wait for the reader of a pipe.
        if (terms_.given) {
            return Failure{shown + ": not a regular file"};
        }
        passOutput("file:" + path, std::move(muxer));
        return {};
    }
    const bool sequence = isPictureSequence(path) && !wantsOneFrame(output);
    const auto touches = [&](const FileEntry& input) {
        return sequence ? wouldTouchPicture(path, input.name) : sameFile(path.c_str(), input.name.c_str());
    };
    if (std::ranges::any_of(line.inputs, touches)) {
        return Failure{"Output file '" + shown + "' is also an input - exiting"};
    }
    const bool descriptor = isOpenDescriptor(path);
    const bool overwrites = line.overwrite && !line.neverOverwrite;
    if (exists && !sequence && !descriptor && !overwrites) {
        return Failure{"File '" + shown + "' already exists. Overwrite ? [y/N] Not overwriting - exiting"};
    }
    if (sequence) {
        muxer = guessed ? std::vector<std::string>() : std::vector<std::string>{"-f", "image2"};
    }
    if (!sequence && !descriptor && !writesOtherFiles(muxer)) {
        return openFile(path, std::move(muxer), overwrites);
    }
    passOutput("file:" + path, std::move(muxer));
    return {};
}

Result<void> RunFiles::openFile(const std::string& path, std::vector<std::string> muxer, bool overwrites)
{
    // A name that says nothing to this tool may say something to ffmpeg, if it can see the extension.
    const auto style = muxer.empty() ? SafeOutput::Style::Hidden : SafeOutput::Style::Anonymous;
    auto file = SafeOutput::open(path, style);
    if (!file) {
        return Failure{outputNames_.back().shown + ": " + file.reason()};
    }
    const std::string url = "file:" + file->path();
    outputNames_.back().url = url;
    Output made;
    made.file = std::move(*file);
    if (isScratchFormat(muxer)) {
        made.durability = SafeOutput::Durability::Unsynced;
    }
    if (terms_.replaceable) {
        made.file->replaceOnly(*terms_.replaceable);
    }
    // Another run may publish the same name while this one works.
    if (!overwrites || (terms_.given && !terms_.replaceable)) {
        made.existing = SafeOutput::Existing::Kept;
    }
    outputs_.push_back(std::move(made));
    urls_.outputs.push_back({url, std::move(muxer)});
    return {};
}

void RunFiles::passOutput(const std::string& url, std::vector<std::string> muxer)
{
    outputNames_.back().url = url;
    outputs_.emplace_back();
    urls_.outputs.push_back({url, std::move(muxer)});
}

TranscriptNames RunFiles::names() const
{
    return {inputNames_, outputNames_};
}

std::vector<int> RunFiles::inheritedDescriptors() const
{
    std::vector<int> descriptors;
    for (const Descriptor& kept : openDescriptors_) {
        descriptors.push_back(kept.get());
    }
    for (const Output& output : outputs_) {
        if (output.file) {
            descriptors.push_back(output.file->fd());
        }
    }
    return descriptors;
}

std::optional<int> RunFiles::outputDescriptor(std::size_t output) const
{
    const bool made = output < outputs_.size() && outputs_[output].file;
    return made ? std::optional(outputs_[output].file->fd()) : std::nullopt;
}

std::optional<std::string> RunFiles::shortenedInput() const
{
    for (const InputSize& input : inputSizes_) {
        struct stat info = {};
        if (stat(input.name.c_str(), &info) == 0 && S_ISREG(info.st_mode) && info.st_size < input.bytes) {
            return onOneLine(input.name);
        }
    }
    return std::nullopt;
}

std::optional<std::string> RunFiles::emptyOutput() const
{
    for (std::size_t i = 0; i < outputs_.size(); ++i) {
        if (outputs_[i].file && outputs_[i].file->size() <= 0) {
            return outputNames_[i].shown;
        }
    }
    return std::nullopt;
}

std::optional<std::string> RunFiles::writtenFile() const
{
    const bool one = outputs_.size() == 1 && outputs_.front().file;
    return one ? std::optional(outputs_.front().file->path()) : std::nullopt;
}

std::int64_t RunFiles::writtenBytes() const
{
    return writtenFile() ? outputs_.front().file->size() : -1;
}

std::string RunFiles::finalPath() const
{
    return writtenFile() ? outputs_.front().file->finalPath() : std::string();
}

void RunFiles::keepOlder()
{
    for (Output& output : outputs_) {
        output.existing = SafeOutput::Existing::Kept;
    }
}

Result<void> RunFiles::publish()
{
    for (std::size_t i = 0; i < outputs_.size(); ++i) {
        if (!outputs_[i].file) {
            continue;
        }
        const auto published = outputs_[i].file->commit(outputs_[i].durability, outputs_[i].existing);
        if (!published) {
            return Failure{outputNames_[i].shown + ": " + published.reason()};
        }
    }
    return {};
}

} // namespace tavrix::front
