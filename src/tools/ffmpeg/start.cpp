// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/start.h"

#include "sys/errortext.h"
#include "sys/keepfolder.h"
#include "sys/publication.h"
#include "sys/transfer.h"
#include "tools/ffmpeg/analysisdelivery.h"
#include "tools/ffmpeg/banner.h"
#include "tools/ffmpeg/errorstream.h"
#include "tools/ffmpeg/files.h"
#include "tools/ffmpeg/locate.h"

#include <cerrno>
#include <cstdlib>
#include <unistd.h>
#include <utility>

namespace tavrix::front
{

namespace
{

// Becomes the installed ffmpeg, for what needs no bridge.
int becomeInstalled(const std::string& program, const std::string& self, const std::vector<std::string>& words)
{
    std::vector<char*> arguments = {const_cast<char*>(self.c_str())};
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    execv(program.c_str(), arguments.data());
    printLine(program + ": " + errorText(errno));
    return notInstalled;
}

// What needs neither a clip nor an installed ffmpeg.
std::optional<int> answerUsage(const std::vector<std::string>& words)
{
    if (words.empty()) {
        for (const std::string& line : usageLines()) {
            printLine(line);
        }
        return 1;
    }
    if (words.front() == "--help") {
        return writeAll(STDOUT_FILENO, helpText()) ? 0 : 1;
    }
    return std::nullopt;
}

Result<void> rightUsage(const CommandLine& line)
{
    if (!line.missingValueFor.empty()) {
        return Failure{"ffmpeg: missing argument for option '-" + line.missingValueFor + "'"};
    }
    if (line.inputs.empty()) {
        return Failure{line.outputs.empty() ? "At least one output file must be specified"
                                            : "At least one input file must be specified"};
    }
    return {};
}

std::optional<int> deliverAnswer(const StartedRun& run, const AnalysisDelivery& answer)
{
    RunFiles files;
    if (!files.open(run.line) || !canDeliver(files, run.task->source, true)) {
        return std::nullopt;
    }
    return deliver(files, answer);
}

// What an earlier run has left for this one.
std::optional<int> deliverKept(const StartedRun& run)
{
    if (!run.kept) {
        return std::nullopt;
    }
    if (run.task->kind == AnalysisTask::Kind::Thumbnail) {
        const auto answer = run.kept->thumbnail(*run.task);
        return answer ? deliverAnswer(run, *answer) : std::nullopt;
    }
    const auto answer = run.task->kind == AnalysisTask::Kind::Frames ? run.kept->frames(*run.task) : std::nullopt;
    const auto status = answer ? deliverAnswer(run, answer->frames) : std::nullopt;
    if (status && answer->thumbnail) {
        run.kept->storeThumbnail(*answer->thumbnailTask, KeptAnswers::stateOf(*run.task), *answer->thumbnail);
    }
    if (status) {
        run.kept->forgetFrames(*run.task);
    }
    return status;
}

// Nothing is to be said about a clip that is not asked for: where it cannot be looked at, its own run will tell.
Start startAhead(StartedRun run)
{
    if (!run.kept || run.task->kind != AnalysisTask::Kind::Frames || !run.kept->banner()) {
        return 0;
    }
    run.isAhead = true;
    run.line.outputs.clear();
    run.announced = run.kept->announceFrames(*run.task);
    return run;
}

} // namespace

Start startRun(const std::string& startedAs, const std::vector<std::string>& words)
{
    if (const auto status = answerUsage(words)) {
        return *status;
    }
    const char* const path = std::getenv("PATH");
    const char* const before = std::getenv(chainVariable);
    const std::string ownIdentity = fileIdentity("/proc/self/exe");
    StartedRun run;
    run.self = ownPath(startedAs);
    run.chain = before == nullptr ? ownIdentity : ownIdentity + ' ' + before;
    const auto program = installedFfmpeg(path == nullptr ? "" : path, run.chain);
    if (!program || ownIdentity.empty()) {
        printLine(classicBanner());
        printLine("ffmpeg: no installed ffmpeg was found in PATH, /usr/bin or /usr/local/bin");
        return notInstalled;
    }
    run.program = *program;
    run.line = parseCommandLine(words);
    if (run.line.reportOnly || before != nullptr) {
        setenv(chainVariable, run.chain.c_str(), 1);
        return becomeInstalled(run.program, run.self, words);
    }
    if (const auto usage = rightUsage(run.line); !usage) {
        printLine(classicBanner());
        printLine(usage.reason());
        return 1;
    }
    run.task = analysisTask(words);
    auto keep = run.task && !publication::termsFromEnvironment().given ? AnalysisKeep::fromEnvironment() : std::nullopt;
    if (keep) {
        run.kept.emplace(std::move(*keep), run.program);
    }
    if (std::getenv(aheadVariable) != nullptr) {
        return startAhead(std::move(run));
    }
    if (const auto status = deliverKept(run)) {
        return *status;
    }
    return run;
}

} // namespace tavrix::front
