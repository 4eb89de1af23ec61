// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/partexport.h"

#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/files/posixfile.h"
#include "base/text/paths.h"
#include "inspect/fileproblem.h"
#include "inspect/readprogress.h"
#include "inspect/words.h"
#include "inspect/workingfolder.h"
#include "judge/judge.h"
#include "media/cliptags.h"
#include "media/headerchange.h"
#include "media/reading.h"
#include "probe/recordingname.h"
#include "quicktime/av/soundunpacking.h"
#include "quicktime/rules/movieedit.h"
#include "quicktime/rules/moviefiles.h"
#include "quicktime/rules/moviequeries.h"
#include "quicktime/rules/movieslots.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <limits>

#include <fcntl.h>

namespace tavrix
{

namespace
{

using Outcome = Result<void, QString>;
using media::Kind;

constexpr qint32 plainMode = 0;
constexpr qint32 flatMode = -1;
constexpr qint32 waveMode = -2;

// What a part starts and ends with, and what was read of it.
struct Survey {
    media::Reading reading;
    media::Span span;
    std::int64_t mediaScale = 0; // of the pictures, units a second
    bool isMovie = false;
    media::ClipTags tags;
};

qint32 modeOf(PartForm form)
{
    return form == PartForm::Wave ? waveMode : form == PartForm::Movie ? plainMode : flatMode;
}

QString obstacle(const PartRequest& request)
{
    if (QString problem = fileProblem(request.source); !problem.isNull()) {
        return problem;
    }
    if (request.part && !request.part->isPossible()) {
        return inspectText("Ins_partEmpty");
    }
    if (isSameFile(request.source, request.destination)) {
        return inspectText("Ins_exportOnItself");
    }
    const QFileInfo there(request.destination);
    const bool plain = there.isFile() && !there.isSymLink();
    if (itemExists(request.destination) && !(request.replaces && plain)) {
        return inspectText("Ins_exportExists", {request.destination});
    }
    return {};
}

// Bytes that are read for it: the source for its pictures' times, the part while it is written and while it is judged.
double expectedReading(const PartRequest& request, const media::SourceFacts& facts)
{
    const auto bytes = static_cast<double>(facts.bytes);
    const double length = facts.duration.value_or(0);
    const double from = request.part ? request.part->from : 0;
    const double to = std::min(request.part && request.part->to ? *request.part->to : length, length);
    const double share = length > 0 ? std::clamp((to - from) / length, 0.0, 1.0) : 1;
    const double reached = length > 0 ? std::clamp(to / length, 0.0, 1.0) : 1;
    const bool isStream = facts.container == "mpegts";
    const double survey = isStream ? 2 : 1;
    const double copying = facts.isMovie ? 0 : reached;
    return bytes * (survey + copying + (request.form == PartForm::Wave ? reached : 2 * share));
}

// From the first picture that begins in the part to the end of the last one; where the pictures begin later or end
// earlier by more than one of them, the sound goes on as asked.
media::Span exactSpan(const media::Span& asked, const media::Reading& reading, bool countsPictures)
{
    const media::StreamReading* const pictures = countsPictures ? reading.chosen(Kind::Picture) : nullptr;
    const media::StreamReading* const sound = reading.chosen(Kind::Sound);
    double end = 0;
    for (const media::StreamReading* stream : {pictures, sound}) {
        end = stream != nullptr && stream->packets > 0 ? std::max(end, stream->end) : end;
    }
    media::Span span{asked.from, std::min(asked.to, end)};
    if (pictures == nullptr || pictures->packets == 0) {
        return span;
    }
    const double picture = 1.5 * pictures->interval;
    if (pictures->first - asked.from <= picture) {
        span.from = pictures->first;
    }
    if (span.to - pictures->end <= picture) {
        span.to = pictures->end;
    }
    return span;
}

Result<Survey, QString> surveyOf(const PartRequest& request)
{
    media::ReadRequest read;
    read.open.path = nativePath(request.source).toStdString();
    const auto input = media::MediaInput::open(read.open);
    if (!input) {
        return Failure{inspectText("Ins_unreadable")};
    }
    Survey survey;
    survey.tags = media::clipTagsOf(**input);
    survey.isMovie = (*input)->isMovie();
    const media::SourceFacts facts = media::sourceFactsOf(**input, read.open.path);
    if (const media::StreamFacts* picture = facts.chosen(Kind::Picture)) {
        survey.mediaScale = (*input)->context()->streams[picture->index]->time_base.den;
    }
    if (request.form == PartForm::Wave && facts.chosen(Kind::Sound) == nullptr) {
        return Failure{inspectText("Ins_exportNoSound")};
    }
    constexpr double always = std::numeric_limits<double>::max();
    media::Span asked{0, always};
    if (request.part) {
        asked = {request.part->from, request.part->to.value_or(always)};
        read.part = asked;
    }
    auto reading = media::readClip(read);
    if (!reading) {
        return Failure{inspectText("Ins_unreadable")};
    }
    survey.reading = std::move(*reading);
    survey.span = exactSpan(asked, survey.reading, request.form != PartForm::Wave);
    const bool empty = std::ranges::all_of(survey.reading.streams,
                                           [](const media::StreamReading& stream) { return stream.packets == 0; });
    if (empty && request.part) {
        return Failure{inspectText("Ins_partBehind", {lengthWords(facts.duration.value_or(0))})};
    }
    return survey;
}

// In a scale in which every picture's time has a whole number.
Outcome cutTo(Movie& movie, const Survey& survey)
{
    constexpr std::int64_t usualScale = 90000;
    const std::int64_t scale =
        survey.mediaScale > usualScale && survey.mediaScale <= INT32_MAX ? survey.mediaScale : usualScale;
    const auto inScale = [scale](double seconds) {
        return std::llround(seconds * static_cast<double>(scale));
    };
    movie.setTimeScale(static_cast<qint32>(scale));
    const std::int64_t whole = movie.duration().timeValue;
    const std::int64_t from = inScale(survey.span.from);
    const double last = static_cast<double>(whole) / static_cast<double>(scale);
    const std::int64_t kept = inScale(std::min(survey.span.to, last)) - from;
    const auto rate = static_cast<qint32>(scale);
    bool cut = kept > 0 && (from <= 0 || movieCut(movie, 0, from, rate));
    const std::int64_t left = movie.duration().timeValue;
    cut = cut && (kept >= left || movieCut(movie, kept, left, rate));
    return cut ? Outcome() : Outcome(Failure{inspectText("Ins_partNotCut")});
}

Outcome writeWhole(const PartRequest& request, const QString& written)
{
    const QSize size = request.size.isEmpty() ? QSize(0, 0) : request.size;
    const bool made =
        movieCutForceSize(request.source, written, 0, 0, size.width(), size.height(), modeOf(request.form));
    return made ? Outcome() : Outcome(Failure{inspectText("Ins_exportNotWritten")});
}

Outcome writeCut(const PartRequest& request, const Survey& survey, const QString& written)
{
    if (!qtkitInstantiate(request.source)) {
        return Failure{inspectText("Ins_unreadable")};
    }
    const std::shared_ptr<Movie> movie = getQTMOVIE();
    movieEditable(*movie);
    if (Outcome cut = cutTo(*movie, survey); !cut) {
        return cut;
    }
    if (!request.size.isEmpty() && !movieForceTracksSize(*movie, request.size.width(), request.size.height())) {
        return Failure{inspectText("Ins_exportNoPicture")};
    }
    if (!exportMovie(*movie, written, modeOf(request.form))) {
        return Failure{inspectText("Ins_exportNotWritten")};
    }
    return {};
}

// A movie brings its own tags along; other containers' are put where movies have them.
void tag(const Survey& survey, const QString& written)
{
    HeaderChange change;
    change.userTexts = media::userTextsOf(survey.tags);
    change.keyTexts = media::keyTextsOf(survey.tags);
    const Descriptor file = openFile(nativePath(written), O_RDWR);
    if (!survey.isMovie && !change.isEmpty() && file.isOpen()) {
        // Without them it is the same part.
        (void)changeMovieHeader(file.get(), change);
    }
}

judge::Verdict judged(const PartRequest& request, Survey& survey, const QString& written)
{
    judge::Case given;
    given.source = nativePath(request.source).toStdString();
    given.output = nativePath(written).toStdString();
    const bool isWave = request.form == PartForm::Wave;
    given.asked.picture = isWave ? judge::Way::Left : judge::Way::Copied;
    const media::StreamReading* const sound = survey.reading.chosen(Kind::Sound);
    const bool unpacked = sound != nullptr && isUnpackedInMovies(sound->facts.codec);
    given.asked.sound = isWave || unpacked ? judge::Way::Encoded : judge::Way::Copied;
    return judge::judgePart(given, survey.span, std::move(survey.reading));
}

Outcome checkSize(const PartRequest& request, const QString& written)
{
    if (request.size.isEmpty()) {
        return {};
    }
    const std::optional<QList<int>> size = movieSizeNaturalDisplayed(written);
    const bool right = size && *size == QList<int>{request.size.width(), request.size.height()};
    return right ? Outcome() : Outcome(Failure{inspectText("Ins_exportOtherSize")});
}

QString failureWords(const judge::Verdict& verdict)
{
    return QString::fromStdString(judge::englishText(verdict));
}

// Forgets the movie at every return.
struct MovieRelease {
    MovieRelease() = default;
    MovieRelease(const MovieRelease&) = delete;
    MovieRelease& operator=(const MovieRelease&) = delete;
    ~MovieRelease() { QTMOVIErelease(); }
};

// Under its name, with the time of the recording. Only what is whole takes the place of an older file.
Outcome publishPart(const WorkingFolder& folder, const PartRequest& request, const QString& written, bool whole)
{
    if (const std::optional<qint64> recorded = recordingName(request.source).seconds) {
        setModificationTime(written, *recorded);
    }
    return folder.publish(written, request.destination, request.replaces && whole);
}

} // namespace

Result<ExportedPart, QString> exportPart(const PartRequest& request)
{
    if (const QString problem = obstacle(request); !problem.isNull()) {
        return Failure{problem};
    }
    const WorkingFolder folder(stringByDeletingLastPathComponent(request.destination));
    if (!folder.isOpen()) {
        return Failure{inspectText("Ins_exportNoFolder")};
    }
    const auto facts = media::readSourceFacts(nativePath(request.source).toStdString());
    std::optional<ReadProgress> progress;
    if (request.tells != nullptr && facts) {
        progress.emplace(request.tells, expectedReading(request, *facts));
    }
    Result<Survey, QString> survey = surveyOf(request);
    if (!survey) {
        return Failure{survey.reason()};
    }
    const MovieRelease release;
    const QString written =
        folder.path(request.form == PartForm::Wave ? QStringLiteral("part.wav") : QStringLiteral("part.mov"));
    const Outcome made = request.part ? writeCut(request, *survey, written) : writeWhole(request, written);
    if (!made) {
        return Failure{made.reason()};
    }
    if (request.form != PartForm::Wave) {
        tag(*survey, written);
    }
    QTMOVIErelease();
    ExportedPart part{QFileInfo(written).size(), survey->span.from, survey->span.to, judged(request, *survey, written)};
    if (part.verdict.outcome == judge::Outcome::Failed) {
        return Failure{failureWords(part.verdict)};
    }
    if (const Outcome size = checkSize(request, written); !size) {
        return Failure{size.reason()};
    }
    const bool whole = part.verdict.outcome == judge::Outcome::Whole;
    if (const Outcome published = publishPart(folder, request, written, whole); !published) {
        return Failure{published.reason()};
    }
    return part;
}

} // namespace tavrix
