// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/analysis.h"

#include "tools/ffmpeg/analysisversions.h"
#include "tools/ffmpeg/clippictures.h"
#include "tools/ffmpeg/libraryremarks.h"
#include "tools/ffmpeg/pictureoutput.h"
#include "tools/ffmpeg/picturespacing.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace tavrix::front
{

namespace
{

using Kind = AnalysisTask::Kind;

// ffmpeg writes a file in pieces of this size.
constexpr std::int64_t writtenPiece = 262144;

double secondsNow()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

template <class... Values> std::string printed(const char* format, Values... values)
{
    std::array<char, 256> text = {};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

struct Progress {
    std::int64_t pictures = 0;
    std::int64_t bytes = -1; // negative: not known
    AVRational rate = {1, 1};
    double quantiser = 0;
    double seconds = 0; // that it took so far
    std::int64_t repeated = 0;
    std::int64_t dropped = 0;
    bool last = false;
};

std::string progressLine(const Progress& progress)
{
    const std::int64_t time = av_rescale_q(progress.pictures, av_inv_q(progress.rate), AV_TIME_BASE_Q);
    const double speed = progress.seconds > 1 ? static_cast<double>(progress.pictures) / progress.seconds : 0;
    std::string line = printed("frame=%5lld fps=%3.*f q=%3.1f ", static_cast<long long>(progress.pictures),
                               speed < 9.95 ? 1 : 0, speed, progress.quantiser);
    line += progress.last ? "L" : "";
    line += progress.bytes < 0 ? "size=N/A" : printed("size=%8.0fkB", static_cast<double>(progress.bytes) / 1024);
    const long long whole = time / AV_TIME_BASE;
    line += printed(" time=%02lld:%02lld:%02lld.%02lld ", whole / 3600, whole / 60 % 60, whole % 60,
                    static_cast<long long>(time % AV_TIME_BASE) * 100 / AV_TIME_BASE);
    line += progress.bytes < 0 ? "bitrate=N/A"
                               : printed("bitrate=%6.1fkbits/s",
                                         static_cast<double>(progress.bytes) * 8 / (static_cast<double>(time) / 1000));
    if (progress.repeated > 0 || progress.dropped > 0) {
        line += printed(" dup=%lld drop=%lld", static_cast<long long>(progress.repeated),
                        static_cast<long long>(progress.dropped));
    }
    return line + " speed=1x    " + (progress.last ? '\n' : '\r');
}

std::string summaryLine(std::int64_t packetBytes, std::int64_t bytes)
{
    std::string line =
        printed("video:%1.0fkB audio:0kB subtitle:0kB other streams:0kB global headers:0kB muxing overhead: ",
                static_cast<double>(packetBytes) / 1024);
    if (bytes <= 0 || bytes < packetBytes) {
        return line + "unknown\n";
    }
    const double above = 100.0 * static_cast<double>(bytes - packetBytes) / static_cast<double>(packetBytes);
    return line + printed("%f%%\n", static_cast<double>(static_cast<float>(above)));
}

// One output with its part of the transcript.
class AnswerMaker
{
public:
    AnswerMaker(const AnalysisTask& task, double begin) : task_(task), spacing_(task.pictures), begin_(begin) {}

    // False when it cannot be done as ffmpeg does it.
    [[nodiscard]] bool add(const ClipPictures& clip, const ClipPictures::Picture& picture)
    {
        const bool first = !output_;
        if (first) {
            output_ = PictureOutput::make(task_, clip, picture.frame);
            firstPacket_ = picture.packet;
            stream_ = clip.stream().index;
        }
        if (!output_) {
            return false;
        }
        if (picture.packet != firstPacket_) {
            reportFirst();
        }
        const auto shown = spacing_.add(picture.place, picture.length);
        const std::int64_t before = first ? 0 : shown.previous;
        return output_->repeat(before) && output_->write(picture.frame, shown.own + shown.previous - before) &&
               !spacing_.isAbsurd();
    }

    [[nodiscard]] bool isComplete() const { return spacing_.count() >= task_.pictures; }

    // `input`: what is said of the clip.
    [[nodiscard]] std::optional<AnalysisAnswer> answer(LibraryRemarks& remarks, const std::string& input)
    {
        reportFirst();
        if (!isComplete() || !output_->finish()) {
            return std::nullopt;
        }
        const std::string head = std::string("Output #0, ") + (isJpeg() ? "image2" : "yuv4mpegpipe") + ", to '";
        const std::string described = output_->description(remarks, "");
        if (!described.starts_with(head)) {
            return std::nullopt;
        }
        AnalysisAnswer answer;
        answer.said = input + "Stream mapping:\n  Stream #0:" + std::to_string(stream_) + " -> #0:0\n" + head;
        answer.bytes = output_->bytes();
        Progress last = progress();
        last.last = true;
        last.bytes = isJpeg() ? -1 : static_cast<std::int64_t>(answer.bytes.size());
        last.dropped = spacing_.droppedAtEnd();
        answer.saidBehindName = described.substr(head.size()) + first_ + progressLine(last) +
                                summaryLine(output_->packetBytes(), last.bytes);
        return answer;
    }

private:
    [[nodiscard]] bool isJpeg() const { return task_.kind == Kind::Thumbnail; }

    [[nodiscard]] Progress progress() const
    {
        Progress now;
        now.pictures = spacing_.count();
        now.rate = output_->rate();
        now.quantiser = output_->quantiser();
        now.seconds = secondsNow() - begin_;
        now.repeated = spacing_.repeated();
        now.dropped = spacing_.dropped();
        return now;
    }

    // After all pictures that came by the first packet that brought one.
    void reportFirst()
    {
        if (!first_.empty() || !output_) {
            return;
        }
        Progress now = progress();
        if (!isJpeg()) {
            const std::int64_t bytes = output_->bytesSoFar();
            now.bytes = bytes >= writtenPiece ? bytes / writtenPiece * writtenPiece : bytes;
        }
        first_ = progressLine(now);
    }

    AnalysisTask task_;
    PictureSpacing spacing_;
    double begin_;
    std::unique_ptr<PictureOutput> output_;
    int firstPacket_ = 0;
    int stream_ = 0;
    std::string first_;
};

// The picture that is asked for after the frames of such a clip; nothing for one that is too large for a row.
std::optional<AnalysisTask> thumbnailAfter(const AnalysisTask& task, const AVCodecParameters& picture)
{
    constexpr double wide = 1.7;
    constexpr double tolerance = 0.1;
    const bool wanted = task.kind == Kind::Frames && picture.width > 0 && picture.width <= 1280 && picture.height > 0 &&
                        picture.height <= 720;
    if (!wanted) {
        return std::nullopt;
    }
    const double aspect = static_cast<double>(picture.width) / picture.height;
    return AnalysisTask{Kind::Thumbnail, task.source, std::fabs(aspect - wide) < tolerance ? 320 : 240, 180, 1};
}

std::optional<AnalysisAnswers> picturesOf(const AnalysisTask& task, ClipPictures& clip, LibraryRemarks& remarks,
                                          const std::string& input, double begin)
{
    AnswerMaker asked(task, begin);
    std::optional<AnswerMaker> thumbnail;
    AnalysisAnswers answers;
    bool usual = true;
    const bool decoded = clip.decode([&](const ClipPictures::Picture& picture) {
        usual = asked.add(clip, picture);
        if (usual && picture.isFirst) {
            answers.thumbnailTask = thumbnailAfter(task, *clip.stream().codecpar);
            if (answers.thumbnailTask) {
                usual = thumbnail.emplace(*answers.thumbnailTask, begin).add(clip, picture);
            }
        }
        return usual && !asked.isComplete();
    });
    auto answer = decoded && usual ? asked.answer(remarks, input) : std::nullopt;
    if (thumbnail && answer) {
        answers.thumbnail = thumbnail->answer(remarks, input);
    }
    if (!answer || remarks.any()) {
        return std::nullopt;
    }
    answers.asked = std::move(*answer);
    return answers;
}

} // namespace

std::optional<AnalysisAnswers> analyse(const AnalysisTask& task, const std::string& url)
{
    if (!isAnalysisProven()) {
        return std::nullopt;
    }
    const double begin = secondsNow();
    LibraryRemarks remarks;
    const auto clip = ClipPictures::open(url);
    if (!clip || remarks.any()) {
        return std::nullopt;
    }
    const std::string input = clip->remarks() + remarks.description(clip->container(), url.c_str(), false);
    if (task.kind != Kind::Description) {
        return picturesOf(task, *clip, remarks, input, begin);
    }
    AnalysisAnswers answers;
    answers.asked = {input + "At least one output file must be specified\n", "", "", 1};
    return remarks.any() ? std::nullopt : std::optional(std::move(answers));
}

} // namespace tavrix::front
