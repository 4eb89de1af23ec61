// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/run.h"

#include "judge/publication.h"
#include "judge/verdictline.h"
#include "sys/publication.h"
#include "tools/common/childprocess.h"
#include "tools/ffmpeg/analysis.h"
#include "tools/ffmpeg/analysisdelivery.h"
#include "tools/ffmpeg/arguments.h"
#include "tools/ffmpeg/attempt.h"
#include "tools/ffmpeg/banner.h"
#include "tools/ffmpeg/errorstream.h"
#include "tools/ffmpeg/files.h"
#include "tools/ffmpeg/installedlibraries.h"
#include "tools/ffmpeg/judgement.h"
#include "tools/ffmpeg/start.h"
#include "tools/ffmpeg/textpieces.h"

#include <csignal>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavrix::front
{

namespace
{

constexpr int aheadNiceness = 5;

class Run
{
public:
    explicit Run(StartedRun started)
        : program_(std::move(started.program)), self_(std::move(started.self)), chain_(std::move(started.chain)),
          line_(std::move(started.line)), task_(std::move(started.task)), kept_(std::move(started.kept)),
          isAhead_(started.isAhead)
    {
    }

    int execute()
    {
        if (isAhead_) {
            return lookAhead();
        }
        if (const auto opened = files_.open(line_, terms_); !opened) {
            printLine(classicBanner());
            printLine(opened.reason());
            return 1;
        }
        if (const auto status = analyseHere()) {
            return *status;
        }
        announceOutput();
        watchForInterruption();
        readSource();
        // An encode does not end because nobody reads its messages any more.
        std::signal(SIGPIPE, SIG_IGN);
        return runFfmpeg();
    }

private:
    // What an analysis that needs no other program finds in the clip as it was in that state.
    std::optional<FramesAnswer> answerHere(const std::string& state)
    {
        const bool hasOutput = !line_.outputs.empty();
        const auto banner = kept_ && canDeliver(files_, task_->source, hasOutput) ? kept_->banner() : std::nullopt;
        if (!banner || !standsOnOwnLibraries(program_, *banner)) {
            return std::nullopt;
        }
        auto answers = analyse(*task_, files_.urls().inputs.front());
        if (!answers || state != KeptAnswers::stateOf(*task_)) {
            return std::nullopt;
        }
        const auto delivery = [&](AnalysisAnswer& answer) {
            return AnalysisDelivery{*banner + answer.said, std::move(answer.saidBehindName), std::move(answer.bytes),
                                    answer.status};
        };
        FramesAnswer answer = {delivery(answers->asked), answers->thumbnailTask, std::nullopt};
        if (answers->thumbnail) {
            answer.thumbnail = delivery(*answers->thumbnail);
        }
        return answer;
    }

    // The exit status of an analysis that needs no other program.
    std::optional<int> analyseHere()
    {
        const std::string state = task_ ? KeptAnswers::stateOf(*task_) : std::string();
        const auto answer = answerHere(state);
        if (!answer) {
            return std::nullopt;
        }
        if (answer->thumbnail) {
            kept_->storeThumbnail(*answer->thumbnailTask, state, *answer->thumbnail);
        }
        return deliver(files_, answer->frames);
    }

    int lookAhead()
    {
        // The clip whose turn it is, and the window, come first.
        (void)nice(aheadNiceness);
        const std::string state = KeptAnswers::stateOf(*task_);
        const auto answer = files_.open(line_) ? answerHere(state) : std::nullopt;
        if (answer) {
            kept_->storeFrames(*task_, state, *answer);
        }
        return 0;
    }

    // Before anything can have a name: the program that has given the terms deletes nothing but this file.
    void announceOutput() const
    {
        const auto output = files_.outputDescriptor(0);
        struct stat status = {};
        if (terms_.given && output && fstat(*output, &status) == 0) {
            printLine(publication::outputLine(status));
        }
    }

    void readSource()
    {
        job_ = clipJob(line_, files_.urls());
        if (job_) {
            source_ = readClipSource(line_.inputs.front().name, *job_);
        }
    }

    [[nodiscard]] SpawnRequest request(const InstalledDialect& dialect) const
    {
        SpawnRequest request;
        request.program = program_;
        request.arguments = installedArguments(line_, files_.urls(), dialect, source_);
        request.arguments.insert(request.arguments.begin(), self_);
        request.environment = {{"LC_ALL", "C"}, {"AV_LOG_FORCE_NOCOLOR", "1"}, {chainVariable, chain_}};
        request.removedVariables = {"AV_LOG_FORCE_COLOR", "AV_LOG_FORCE_256COLOR", "FFREPORT"};
        request.inheritedDescriptors = files_.inheritedDescriptors();
        if (files_.readsStandardInput()) {
            request.input = SpawnRequest::inherited;
        }
        return request;
    }

    int runFfmpeg()
    {
        const TranscriptNames names = files_.names();
        const auto hear = [this](std::string_view line) {
            if (kept_) {
                kept_->hear(line);
            }
        };
        const Attempt::Task task{line_, names, source_, files_.canBeReadAgain(), hear};
        Attempt first(task, Attempt::Turn::First);
        first.run(request({}));
        const auto other = first.otherDialect();
        if (!other) {
            return conclude(first);
        }
        Attempt last(task, Attempt::Turn::Last);
        last.run(request(*other));
        return conclude(last);
    }

    int conclude(const Attempt& attempt)
    {
        if (interruptingSignal() != 0) {
            return 128 + interruptingSignal();
        }
        const auto& end = attempt.end();
        if (!end) {
            printLine(program_ + ": " + end.reason());
            return notInstalled;
        }
        if (end->bySignal) {
            tellEnd(*end, attempt.hasSpoken());
            return 128 + end->code;
        }
        if (end->code != 0) {
            explain(attempt.findings());
            tellEnd(*end, attempt.hasSpoken());
            return end->code;
        }
        if (const auto unfit = publishable(attempt.findings()); !unfit) {
            printLine(unfit.reason());
            explain(attempt.findings());
            tellEnd(*end, attempt.hasSpoken());
            return 1;
        }
        if (const auto finished = finish(); !finished) {
            printLine(finished.reason());
            return 1;
        }
        return judgeAndPublish(attempt.findings());
    }

    int judgeAndPublish(const Findings& findings)
    {
        auto verdict = judgement(line_, files_, findings);
        const bool judged = verdict.has_value();
        if (!judged && job_ && files_.writtenFile()) {
            verdict = judge::unjudged("the source is no regular file");
        }
        if (verdict) {
            verdict = judge::besideOlder(std::move(*verdict), files_.finalPath(), files_.writtenBytes(), terms_);
        }
        if (interruptingSignal() != 0) {
            return 128 + interruptingSignal();
        }
        if (verdict && verdict->outcome == judge::Outcome::Incomplete) {
            files_.keepOlder();
        }
        const bool failed = verdict && verdict->outcome == judge::Outcome::Failed;
        const auto published = failed ? Result<void>(Failure{"Output discarded: " + englishText(*verdict)})
                                      : unjudgedFailure(judged, findings);
        const auto done = published ? files_.publish() : published;
        if (verdict && !failed && !done) {
            verdict = judge::notPublished(std::move(*verdict), files_.finalPath(), done.reason(), terms_);
        }
        if (verdict) {
            printLine(judge::verdictLine(*verdict));
        }
        if (!done) {
            printLine(done.reason());
        }
        return done ? 0 : 1;
    }

    // What only ffmpeg's own words tell of an output that was not judged.
    [[nodiscard]] Result<void> unjudgedFailure(bool judged, const Findings& findings) const
    {
        if (judged) {
            return {};
        }
        if (!findings.readFailure.empty()) {
            return Failure{"Output incomplete, discarded: " + findings.readFailure};
        }
        if (findings.outputIsEmpty() && !files_.inheritedDescriptors().empty()) {
            return Failure{"Output without content, discarded"};
        }
        return {};
    }

    // Of an end that ffmpeg itself has given no reason for.
    static void tellEnd(const ChildEnd& end, bool ffmpegHasSpoken)
    {
        if (end.bySignal) {
            printLine("ffmpeg: " + endText(end));
        } else if (!ffmpegHasSpoken) {
            printLine("ffmpeg: " + endText(end) + " and said nothing");
        }
    }

    // The last line is the one that a person reads: ffmpeg's own often says only that it failed.
    void explain(const Findings& findings) const
    {
        if (line_.inputs.empty()) {
            return;
        }
        std::string reason = source_ ? unusablePictures(source_->facts) : std::string();
        if (reason.empty() && findings.undecodable) {
            reason = "none of its pictures can be decoded";
        }
        if (reason.empty() && findings.indexMissing) {
            reason = "its index is missing: the recording was not finished, or the copy is cut";
        }
        if (!reason.empty()) {
            printLine(onOneLine(line_.inputs.front().name) + ": " + reason);
        }
    }

    Result<void> finish() const
    {
        const auto output = files_.outputDescriptor(0);
        if (!source_ || !output || !job_->isMovie()) {
            return {};
        }
        const auto finished = finishMovie(*output, *source_, *job_);
        return finished ? Result<void>() : Failure{"Output incomplete, discarded: " + finished.reason()};
    }

    // Whether the outputs may be published; ffmpeg's status 0 is no proof.
    [[nodiscard]] Result<void> publishable(const Findings& findings) const
    {
        if (line_.outputs.empty()) {
            return {};
        }
        if (!findings.writeFailure.empty()) {
            return Failure{"Output incomplete, discarded: " + findings.writeFailure};
        }
        if (const auto shortened = files_.shortenedInput()) {
            return Failure{"Output incomplete, discarded: " + *shortened + " has become shorter meanwhile"};
        }
        if (const auto empty = files_.emptyOutput()) {
            return Failure{*empty + ": nothing was written"};
        }
        return {};
    }

    std::string program_;
    std::string self_;
    std::string chain_;
    CommandLine line_;
    std::optional<AnalysisTask> task_;
    std::optional<KeptAnswers> kept_;
    bool isAhead_ = false;
    publication::Terms terms_ = publication::termsFromEnvironment();
    RunFiles files_;
    std::optional<OutputJob> job_;
    Source source_;
};

} // namespace

int runTool(const std::string& startedAs, const std::vector<std::string>& words)
{
    Start start = startRun(startedAs, words);
    if (const int* const status = std::get_if<int>(&start)) {
        return *status;
    }
    return Run(std::move(std::get<StartedRun>(start))).execute();
}

} // namespace tavrix::front
