// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/movencoder.h"

#include "judge/judge.h"
#include "judge/publication.h"
#include "judge/verdictline.h"
#include "sys/fileidentity.h"
#include "sys/publication.h"
#include "sys/safeoutput.h"
#include "sys/transfer.h"
#include "tools/movencoder/conversion.h"
#include "tools/movencoder/decoderlog.h"
#include "tools/movencoder/options.h"
#include "tools/movencoder/progress.h"
#include "tools/movencoder/runningrow.h"

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrix::movencoder
{

namespace
{

void complain(const std::string& message)
{
    // There is nowhere left to tell that standard error cannot be written.
    static_cast<void>(writeAll(STDERR_FILENO, "movencoder: " + message + "\n"));
}

// Opening a pipe would wait for a writer, and a movie is read back and forth. A missing file is told by the reader.
bool isNoFile(const std::string& path)
{
    const auto status = followedStatus(path.c_str());
    return status && !S_ISREG(status->st_mode);
}

// Whether `output` may be written: it must not be one of the files that are read, nor anything but a file.
Result<void> outputAllowed(const Options& options)
{
    const auto target = followedStatus(options.output.c_str());
    if (!target) {
        return {};
    }
    if (!S_ISREG(target->st_mode)) {
        return Failure{options.output + ": not a regular file"};
    }
    for (const std::string* path : {&options.input, &options.settings}) {
        const auto source = followedStatus(path->c_str());
        if (source && sameFile(*source, *target)) {
            return Failure{options.output + ": output and " + (path == &options.input ? "input" : "settings") +
                           " are the same file"};
        }
    }
    return {};
}

// The row's first pass loses its name at once: should this tool and its program be killed, nobody is left to remove it.
// Where that fails the file is read and, at the end of the row, removed by its name.
void openNameless(InputMovie& input, Descriptor& file)
{
    file = openFile(input.path.c_str(), O_RDONLY);
    if (file.isOpen() && unlink(input.path.c_str()) == 0) {
        input.path = "/proc/self/fd/" + std::to_string(file.get());
    }
}

struct Task {
    Format format = Format::ProRes;
    FormatSettings settings;
    InputMovie input;
    Descriptor firstPass; // open when it has no name any more
};

Result<void> prepare(const Options& options, Task& task)
{
    auto format = options.format;
    task.input = {options.input, options.input};
    const auto row = format ? std::nullopt : runningRow(preferencesPath(), options.input, options.output);
    if (row && !row->clip.empty()) {
        task.input.name = row->clip;
    }
    if (isNoFile(options.input)) {
        return Failure{task.input.name + ": not a regular file"};
    }
    if (auto allowed = outputAllowed(options); !allowed) {
        return allowed;
    }
    if (row && row->format) {
        format = row->format;
        if (isFirstPassOf(options.output, options.input)) {
            openNameless(task.input, task.firstPass);
        }
    }
    const auto settings = readSettings(options.settings);
    if (!settings) {
        return Failure{options.settings + ": " + settings.reason()};
    }
    task.format = format.value_or(settings->defaultFormat);
    const auto& section = settings->of(task.format);
    if (!section) {
        return Failure{options.settings + ": there is no section for " + formatName(task.format)};
    }
    task.settings = *section;
    return {};
}

// The second look at what was written, by eyes that had no part in it.
judge::Verdict judged(const Task& task, const SafeOutput& output, const Conversion& done)
{
    judge::Case given;
    given.source = task.input.path;
    given.output = "/proc/self/fd/" + std::to_string(output.fd());
    given.asked = {judge::Way::Encoded, judge::Way::Copied, std::nullopt};
    given.writer = {done.packetsRead, done.decoded, done.damagedPictures, done.written};
    judge::Verdict verdict = judge::judge(given);
    // The judge's decoder shows damaged pictures of Motion-JPEG without a word.
    if (verdict.outcome == judge::Outcome::Whole && done.strictlyDamaged > 0) {
        verdict.outcome = judge::Outcome::Incomplete;
        verdict.findings.insert(verdict.findings.begin(),
                                {.cause = judge::Cause::DamagedPictures, .count = done.strictlyDamaged});
    }
    return verdict;
}

void printLine(const std::string& line)
{
    static_cast<void>(writeAll(STDERR_FILENO, line + "\n"));
}

// Gives the output its name when it may have it. Half a recording is better than nothing, and nothing more: it replaces
// nothing.
judge::Verdict published(judge::Verdict verdict, SafeOutput& output)
{
    const publication::Terms terms = publication::termsFromEnvironment();
    verdict = judge::besideOlder(std::move(verdict), output.finalPath(), output.size(), terms);
    if (verdict.outcome == judge::Outcome::Failed) {
        return verdict;
    }
    if (terms.replaceable) {
        output.replaceOnly(*terms.replaceable);
    }
    const bool mayReplace = verdict.outcome == judge::Outcome::Whole && (!terms.given || terms.replaceable);
    const auto existing = mayReplace ? SafeOutput::Existing::Replaced : SafeOutput::Existing::Kept;
    const std::string path = output.finalPath();
    const auto done = output.commit(SafeOutput::Durability::Synced, existing);
    return done ? verdict : judge::notPublished(std::move(verdict), path, done.reason(), terms);
}

// The verdict on an output; it has its name unless it has failed.
Result<judge::Verdict> work(const Options& options, Task& task)
{
    if (auto prepared = prepare(options, task); !prepared) {
        return Failure{prepared.reason()};
    }
    auto output = SafeOutput::open(options.output);
    if (!output) {
        return Failure{options.output + ": " + output.reason()};
    }
    struct stat status = {};
    if (publication::termsFromEnvironment().given && fstat(output->fd(), &status) == 0) {
        printLine(publication::outputLine(status));
    }
    const auto done = convertMovie(task.input, options.output, output->fd(), task.format, task.settings);
    if (!done) {
        return Failure{done.reason()};
    }
    return published(judged(task, *output, *done), *output);
}

} // namespace

int run(const std::vector<std::string>& arguments)
{
    // A full disk, a size limit and a reader that went away are answered by the calls themselves.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    listenToDecoders();
    const auto options = parseOptions(arguments);
    if (!options) {
        complain(options.reason() + "\nTry \"movencoder --help\".");
        return exitUsage;
    }
    if (options->help) {
        return writeAll(STDOUT_FILENO, helpText()) ? exitDone : exitFailed;
    }
    Task task;
    const auto verdict = work(*options, task);
    if (!verdict) {
        complain(verdict.reason());
        return exitFailed;
    }
    if (!verdict->findings.empty()) {
        complain(task.input.name + ": " + judge::englishText(*verdict));
    }
    if (!verdict->findings.empty() || publication::termsFromEnvironment().given) {
        printLine(judge::verdictLine(*verdict));
    }
    if (verdict->outcome == judge::Outcome::Failed) {
        return exitFailed;
    }
    Progress::complete();
    return exitDone;
}

} // namespace tavrix::movencoder
