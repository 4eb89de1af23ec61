// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/run.h"

#include "judge/publication.h"
#include "judge/verdictline.h"
#include "sys/publication.h"
#include "tools/common/childprocess.h"
#include "tools/ffmpeg/analysis.h"
#include "tools/ffmpeg/analysisdelivery.h"
#include "tools/ffmpeg/arguments.h"
#include "tools/ffmpeg/banner.h"
#include "tools/ffmpeg/errorstream.h"
#include "tools/ffmpeg/files.h"
#include "tools/ffmpeg/installedlibraries.h"
#include "tools/ffmpeg/judgement.h"
#include "tools/ffmpeg/linesplitter.h"
#include "tools/ffmpeg/start.h"
#include "tools/ffmpeg/textpieces.h"
#include "tools/ffmpeg/transcript.h"

#include <csignal>
#include <optional>
#include <sys/stat.h>
#include <utility>

namespace tavrix::front
{

namespace
{

// Prints lines, or keeps them while another start of ffmpeg may still replace them.
class Printer
{
public:
    void add(const std::vector<TranscriptLine>& lines)
    {
        for (const TranscriptLine& line : lines) {
            if (holding_) {
                held_.push_back(line);
            } else {
                printLine(line.text, line.end);
            }
        }
    }
    void hold() { holding_ = true; }
    void drop() { held_.clear(); }
    void release()
    {
        holding_ = false;
        add(std::exchange(held_, {}));
    }

private:
    std::vector<TranscriptLine> held_;
    bool holding_ = false;
};

struct Attempt {
    std::optional<ChildEnd> end;
    Findings findings;
    bool spoke = false; // ffmpeg has written a line
    std::string error;
};

class Run
{
public:
    explicit Run(StartedRun started)
        : program_(std::move(started.program)), self_(std::move(started.self)), chain_(std::move(started.chain)),
          line_(std::move(started.line)), task_(std::move(started.task)), kept_(std::move(started.kept))
    {
    }

    int execute()
    {
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
        Attempt attempt = once({});
        const Dialect next = dialectAfter(attempt.findings);
        if (next != Dialect() && interruptingSignal() == 0) {
            attempt = once(next);
        }
        return conclude(attempt);
    }

private:
    // The exit status of an analysis that needs no other program.
    std::optional<int> analyseHere()
    {
        const bool hasOutput = !line_.outputs.empty();
        const auto banner = kept_ && canDeliver(files_, task_->source, hasOutput) ? kept_->banner() : std::nullopt;
        if (!banner || !standsOnOwnLibraries(program_, *banner)) {
            return std::nullopt;
        }
        const std::string before = KeptAnswers::stateOf(*task_);
        auto answers = analyse(*task_, files_.urls().inputs.front());
        if (!answers || before != KeptAnswers::stateOf(*task_)) {
            return std::nullopt;
        }
        const auto delivery = [&](AnalysisAnswer& answer) {
            return AnalysisDelivery{*banner + answer.said, std::move(answer.saidBehindName), std::move(answer.bytes),
                                    answer.status};
        };
        if (answers->thumbnail) {
            kept_->storeThumbnail(*answers->thumbnailTask, before, delivery(*answers->thumbnail));
        }
        return deliver(files_, delivery(answers->asked));
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

    [[nodiscard]] Dialect dialectAfter(const Findings& findings) const
    {
        Dialect next = dialectAfterRefusal({}, findings.refusedOption, findings.version);
        next.mirrors = mirrorsPictures(findings.version, source_);
        // A second start would miss what the first has taken out of a pipe.
        next.annexBFilter = !findings.annexBRefused || !files_.canBeReadAgain();
        return next;
    }

    [[nodiscard]] SpawnRequest request(const Dialect& dialect) const
    {
        SpawnRequest request;
        request.program = program_;
        request.arguments = modernArguments(line_, files_.urls(), dialect, source_);
        request.arguments.insert(request.arguments.begin(), self_);
        request.environment = {{"LC_ALL", "C"}, {"AV_LOG_FORCE_NOCOLOR", "1"}, {chainVariable, chain_}};
        request.removedVariables = {"AV_LOG_FORCE_COLOR", "AV_LOG_FORCE_256COLOR", "FFREPORT"};
        request.inheritedDescriptors = files_.inheritedDescriptors();
        if (files_.readsStandardInput()) {
            request.input = SpawnRequest::inherited;
        }
        return request;
    }

    // Lines that would contradict those of a second start are kept back until it is clear that there is none.
    [[nodiscard]] bool isSettled(const Findings& findings) const
    {
        return mayRefuseAnnexB(line_) ? findings.outputDescribed : findings.inputDescribed;
    }

    Attempt once(const Dialect& dialect)
    {
        Attempt attempt;
        Transcript transcript(files_.names(), levelsAreMarked(line_));
        Printer printer;
        printer.hold();
        const bool first = dialect == Dialect();
        LineSplitter splitter([&](std::string_view line, char end) {
            attempt.spoke = true;
            if (kept_) {
                kept_->hear(line);
            }
            printer.add(transcript.translate(line, end));
            const Findings& findings = transcript.findings();
            if (first && dialectAfter(findings) != dialect) {
                killChild();
            } else if (!first || isSettled(findings)) {
                printer.release();
            }
        });
        const auto end = runChild(request(dialect), [&](std::string_view bytes) { splitter.feed(bytes); });
        if (end) {
            attempt.end = *end;
        } else {
            attempt.error = end.reason();
        }
        splitter.finish();
        printer.add(transcript.finish(!attempt.end || attempt.end->bySignal ? 1 : attempt.end->code));
        attempt.findings = transcript.findings();
        const bool repeated = first && dialectAfter(attempt.findings) != dialect && interruptingSignal() == 0;
        if (repeated) {
            printer.drop();
        }
        printer.release();
        return attempt;
    }

    int conclude(const Attempt& attempt)
    {
        if (interruptingSignal() != 0) {
            return 128 + interruptingSignal();
        }
        if (!attempt.end) {
            printLine(program_ + ": " + attempt.error);
            return notInstalled;
        }
        if (attempt.end->bySignal) {
            tellEnd(attempt);
            return 128 + attempt.end->code;
        }
        if (attempt.end->code != 0) {
            explain(attempt.findings);
            tellEnd(attempt);
            return attempt.end->code;
        }
        if (const auto unfit = publishable(attempt.findings); !unfit) {
            printLine(unfit.reason());
            explain(attempt.findings);
            tellEnd(attempt);
            return 1;
        }
        if (const auto finished = finish(); !finished) {
            printLine(finished.reason());
            return 1;
        }
        return judgeAndPublish(attempt.findings);
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
    static void tellEnd(const Attempt& attempt)
    {
        if (attempt.end->bySignal) {
            printLine("ffmpeg: " + endText(*attempt.end));
        } else if (!attempt.spoke) {
            printLine("ffmpeg: " + endText(*attempt.end) + " and said nothing");
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
