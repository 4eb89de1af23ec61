// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/avmovie.h"

#include "base/text/log.h"
#include "base/text/paths.h"
#include "quicktime/av/avremux.h"
#include "quicktime/av/moviefilewriter.h"
#include "quicktime/av/waveexport.h"
#include "quicktime/model/componentregistry.h"
#include "sys/safeoutput.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tavrix
{

namespace
{

constexpr quint32 trackEnabled = 1;

bool isPictureType(const QString& mediaType, quint32 wanted)
{
    if (mediaType == QLatin1String("vide")) {
        return true;
    }
    return wanted == fourCharCode("eyes") && (mediaType == QLatin1String("MPEG") ||
                                              mediaType == QLatin1String("flsh") || mediaType == QLatin1String("movi"));
}

// Matrices have 16 fractional bits: a scaled side misses its whole pixels by a hair.
double snapped(double side)
{
    constexpr double steps = 16.0;
    return std::round(side * steps) / steps;
}

MediaSize sizeOf(const DisplayBox& box)
{
    return {snapped(box.right - box.left), snapped(box.bottom - box.top)};
}

QVariant sizeValue(const MediaSize& size)
{
    return QVariantList{size.width, size.height};
}

// What the edits leave of the source; nothing when that is all of it, or nothing at all.
std::optional<CopyRange> rangeLeft(const EditTimeline& timeline)
{
    if (!timeline.edited() || timeline.segments().empty()) {
        return std::nullopt;
    }
    CopyRange range{std::numeric_limits<double>::max(), 0};
    for (const TimelineSegment& segment : timeline.segments()) {
        range.from = std::min(range.from, static_cast<double>(segment.start) / timeline.timeScale());
        range.to = std::max(range.to, static_cast<double>(segment.start + segment.duration) / timeline.timeScale());
    }
    return range;
}

Result<void, QString> writeRewritten(const RewriteRequest& request, MovieFileJob job)
{
    const Result<RewritePlan> plan = RewritePlan::make(request);
    if (!plan) {
        return Failure{QString::fromStdString(plan.reason())};
    }
    job.plan = &*plan;
    return writeMovieFile(job);
}

} // namespace

AvMovie::AvMovie(const std::shared_ptr<MovieSource>& source) : state_(std::make_shared<MovieState>())
{
    state_->source = source;
    state_->timeline = EditTimeline(source->duration, source->timeScale);
    for (std::size_t index = 0; index < source->tracks.size(); ++index) {
        tracks_.push_back(std::make_shared<AvTrack>(state_, index));
    }
}

QString AvMovie::path() const
{
    return state_->source->path;
}

MediaTime AvMovie::duration() const
{
    return QTMakeTime(state_->timeline.duration(), state_->timeline.timeScale());
}

QList<std::shared_ptr<Track>> AvMovie::tracks() const
{
    QList<std::shared_ptr<Track>> list;
    for (const std::shared_ptr<AvTrack>& track : tracks_) {
        list.append(track);
    }
    return list;
}

AvMovie::Sizes AvMovie::computedSizes() const
{
    std::optional<DisplayBox> enabled;
    std::optional<DisplayBox> every;
    for (const std::shared_ptr<AvTrack>& track : tracks_) {
        const DisplayBox box = track->box();
        const MediaSize size = sizeOf(box);
        if (!isPictureType(track->mediaType(), fourCharCode("eyes")) || size.width <= 0 || size.height <= 0) {
            continue;
        }
        every = every ? unitedBox(*every, box) : box;
        if ((track->source().atoms.flags & trackEnabled) != 0) {
            enabled = enabled ? unitedBox(*enabled, box) : box;
        }
    }
    if (!every) {
        return {};
    }
    const DisplayBox shown = enabled.value_or(*every);
    return {sizeOf(shown), sizeOf(mappedBox(shown, state_->source->atoms.matrix))};
}

MediaSize AvMovie::currentSize() const
{
    return currentSize_.value_or(computedSizes().current);
}

MediaSize AvMovie::naturalSize() const
{
    return naturalSize_.value_or(computedSizes().natural);
}

QVariantMap AvMovie::movieAttributes() const
{
    const MovieSource& source = *state_->source;
    QStringList types;
    for (const std::shared_ptr<AvTrack>& track : tracks_) {
        types.append(track->mediaType());
    }
    return {{QStringLiteral("path"), source.path},
            {QStringLiteral("format"), source.facts.format},
            {QStringLiteral("duration"), QTStringFromTime(duration())},
            {QStringLiteral("timeScale"), state_->timeline.timeScale()},
            {QStringLiteral("tracks"), types},
            {QStringLiteral("currentSize"), sizeValue(currentSize())},
            {QStringLiteral("naturalSize"), sizeValue(naturalSize())},
            {QStringLiteral("editable"), editable_},
            {QStringLiteral("active"), active_},
            {QStringLiteral("loops"), loops_},
            {QStringLiteral("volume"), volume_},
            {QStringLiteral("playHints"), hints_},
            {QStringLiteral("savable"), source.atoms.nsav.value_or(0) == 0}};
}

const std::vector<std::int64_t>& AvMovie::interestingTimes(quint32 mediaType)
{
    const auto known = interestingTimes_.find(mediaType);
    if (known != interestingTimes_.end()) {
        return known->second;
    }
    std::vector<std::int64_t>& times = interestingTimes_[mediaType];
    for (std::size_t index = 0; index < tracks_.size(); ++index) {
        if (!isPictureType(tracks_[index]->mediaType(), mediaType)) {
            continue;
        }
        const std::vector<std::int64_t> own = state_->source->sampleTimes(index, state_->timeline);
        times.insert(times.end(), own.begin(), own.end());
    }
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

qint64 AvMovie::nextInterestingTime(int flags, quint32 mediaType, qint64 from)
{
    const std::vector<std::int64_t>& times = interestingTimes(mediaType);
    const bool edgeCounts = (flags & interesting::nextTimeEdgeOK) != 0;
    const auto next = edgeCounts ? std::lower_bound(times.begin(), times.end(), from)
                                 : std::upper_bound(times.begin(), times.end(), from);
    return next == times.end() ? -1 : *next;
}

void AvMovie::setTimeScale(qint32 scale)
{
    state_->timeline.setTimeScale(scale);
    interestingTimes_.clear();
}

void AvMovie::setApertureMode(ApertureMode mode)
{
    for (const std::shared_ptr<AvTrack>& track : tracks_) {
        track->setApertureMode(mode);
    }
}

void AvMovie::generateApertureModeDimensions()
{
    for (const std::shared_ptr<AvTrack>& track : tracks_) {
        track->generateApertureModeDimensions();
    }
}

void AvMovie::removeApertureModeDimensions()
{
    for (const std::shared_ptr<AvTrack>& track : tracks_) {
        track->removeApertureModeDimensions();
    }
}

void AvMovie::deleteSegment(const MediaTimeRange& range)
{
    if (!editable_) {
        return;
    }
    const qint32 scale = state_->timeline.timeScale();
    state_->timeline.deleteRange(valueInScale(range.time, scale), valueInScale(range.duration, scale));
    interestingTimes_.clear();
}

void AvMovie::scaleSegment(const MediaTimeRange& range, const MediaTime& newDuration)
{
    if (!editable_) {
        return;
    }
    const qint32 scale = state_->timeline.timeScale();
    state_->timeline.scaleRange(valueInScale(range.time, scale), valueInScale(range.duration, scale),
                                valueInScale(newDuration, scale));
    interestingTimes_.clear();
}

// A movie shown at another size than its tracks add up to is scaled as a whole.
std::optional<DisplayScale> AvMovie::displayScale() const
{
    const MediaSize computed = computedSizes().current;
    if (!currentSize_ || computed.width <= 0 || computed.height <= 0 || currentSize_->width <= 0 ||
        currentSize_->height <= 0) {
        return std::nullopt;
    }
    const DisplayScale scale{currentSize_->width / computed.width, currentSize_->height / computed.height};
    constexpr double negligible = 1e-4;
    if (std::fabs(scale.x - 1) < negligible && std::fabs(scale.y - 1) < negligible) {
        return std::nullopt;
    }
    return scale;
}

Result<void, QString> AvMovie::writeFromAtoms(const QString& path, bool headerFirst) const
{
    RewriteRequest request;
    request.movie = &state_->source->atoms;
    request.fileSize = state_->source->identity.size;
    request.timeline = state_->timeline;
    request.displayScale = displayScale();
    for (const std::shared_ptr<AvTrack>& track : tracks_) {
        request.changes.push_back(track->change());
    }
    return writeRewritten(request, {state_->source->path, path, nullptr, headerFirst});
}

// Other containers, and QuickTime files whose header cannot be edited, are first copied as they are into a QuickTime
// file on the destination's volume. It never gets a name where the volume allows that, and is gone afterwards.
Result<void, QString> AvMovie::writeFromCopy(const QString& path, bool headerFirst) const
{
    const std::optional<CopyRange> range = rangeLeft(state_->timeline);
    const double whole = static_cast<double>(state_->source->duration) / state_->source->timeScale;
    const double share = range && whole > 0 ? std::clamp((range->to - range->from) / whole, 0.0, 1.0) : 1;
    const auto size = static_cast<double>(state_->source->identity.size);
    if (!hasRoomFor(path, static_cast<std::uint64_t>(2 * share * size))) {
        return Failure{QStringLiteral("not enough space on the volume")};
    }
    const Result<SafeOutput> copy = SafeOutput::open(nativePath(path).toStdString());
    if (!copy) {
        return Failure{QString::fromStdString(copy.reason())};
    }
    const QString copyPath = QFile::decodeName(QByteArray::fromStdString(copy->path()));
    const Result<std::vector<int>, QString> streams =
        remuxToMov(state_->source->path, copyPath, state_->timeline.timeScale(), range);
    if (!streams) {
        return Failure{streams.reason()};
    }
    const auto copySize = static_cast<std::uint64_t>(std::max<std::int64_t>(copy->size(), 0));
    const MovieAtoms atoms = readMovieAtoms(readAtOf(copy->fd()), copySize);
    RewriteRequest request{&atoms, copySize, state_->timeline, {}, displayScale()};
    for (const int stream : *streams) {
        const auto track = std::find_if(tracks_.begin(), tracks_.end(), [stream](const std::shared_ptr<AvTrack>& t) {
            return t->source().stream && t->source().stream->index == stream;
        });
        request.changes.push_back(track == tracks_.end() ? TrackChange() : (*track)->change());
    }
    return writeRewritten(request, {copyPath, path, nullptr, headerFirst});
}

Result<void, QString> AvMovie::writeMovie(const QString& path, bool headerFirst) const
{
    const MovieSource& source = *state_->source;
    const bool fromAtoms = !source.tracks.empty() && source.tracks.front().fromAtoms;
    if (!fromAtoms) {
        return writeFromCopy(path, headerFirst);
    }
    Result<void, QString> written = writeFromAtoms(path, headerFirst);
    if (!written) {
        logDebug(QStringLiteral("movie               :-/ copied first, as %@ : %@"), {written.reason(), source.path});
        written = writeFromCopy(path, headerFirst);
    }
    return written;
}

// Why the movie cannot be written; nothing when it can be tried.
QString AvMovie::refusal(bool isWave) const
{
    const MovieSource& source = *state_->source;
    if (source.atoms.nsav.value_or(0) != 0 && !isWave) {
        return QStringLiteral("the movie forbids to be saved");
    }
    if (fileIdentity(source.path) != source.identity) {
        return QStringLiteral("the source has changed since it was opened");
    }
    // libavformat would look for such media in the movie file itself.
    for (const TrackAtoms& track : source.atoms.tracks) {
        const bool matters = track.mediaType == "soun" || (track.mediaType == "vide" && !isWave);
        if (matters && !track.selfContained) {
            return QStringLiteral("media lie in other files");
        }
    }
    return {};
}

bool AvMovie::writeToFile(const QString& path, const WriteAttributes& attributes)
{
    const MovieSource& source = *state_->source;
    const bool isWave = attributes.exportNumber.value_or(0) != 0 && attributes.exportType == fourCharCode("WAVE");
    Result<void, QString> written;
    if (const QString reason = refusal(isWave); !reason.isNull()) {
        written = Failure{reason};
    } else if (isWave) {
        written = exportWave(source.path, path, state_->timeline);
    } else {
        written = writeMovie(path, attributes.flatten.value_or(false));
    }
    if (!written) {
        logLine(QStringLiteral("movie               :-( %@ : %@"), {written.reason(), path});
    }
    return written.hasValue();
}

} // namespace tavrix
