// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakemedialibrary.h"

#include "base/text/format.h"
#include "support/temphome.h"

#include <algorithm>

namespace tavrix::test
{

namespace
{
QString rangeText(const MediaTimeRange& range)
{
    return formatText(QStringLiteral("%lld/%d+%lld/%d"),
                      {range.time.timeValue, range.time.timeScale, range.duration.timeValue, range.duration.timeScale});
}
} // namespace

std::shared_ptr<FakeTrack> FakeMovie::addTrack(const QString& mediaType)
{
    auto track = std::make_shared<FakeTrack>(mediaType, &calls);
    trackList.append(track);
    return track;
}

qint64 FakeMovie::nextInterestingTime(int flags, quint32 mediaType, qint64 from)
{
    interestingFlags.append(flags);
    interestingTypes.append(mediaType);
    const bool edgeCounts = (flags & interesting::nextTimeEdgeOK) != 0;
    const auto next = edgeCounts ? std::lower_bound(sampleTimes.cbegin(), sampleTimes.cend(), from)
                                 : std::upper_bound(sampleTimes.cbegin(), sampleTimes.cend(), from);
    return next == sampleTimes.cend() ? -1 : *next;
}

void FakeMovie::setEditable(bool editable)
{
    calls.append(editable ? QStringLiteral("editable") : QStringLiteral("locked"));
}

void FakeMovie::setTimeScale(qint32 scale)
{
    calls.append(formatText(QStringLiteral("scale %d"), {scale}));
    length = MediaTime{valueInScale(length, scale), scale, 0};
}

void FakeMovie::setApertureMode(ApertureMode mode)
{
    calls.append(formatText(QStringLiteral("mode %d"), {static_cast<int>(mode)}));
}

void FakeMovie::setActive(bool active)
{
    calls.append(active ? QStringLiteral("active") : QStringLiteral("inactive"));
}

void FakeMovie::setPlayHints(quint32 hints, quint32 mask)
{
    calls.append(formatText(QStringLiteral("hints %x/%x"), {hints, mask}));
}

void FakeMovie::deleteSegment(const MediaTimeRange& range)
{
    calls.append(QStringLiteral("delete ") + rangeText(range));
    if (!deletes) {
        return;
    }
    const qint64 start = std::clamp<qint64>(valueInScale(range.time, length.timeScale), 0, length.timeValue);
    const qint64 end =
        std::clamp<qint64>(start + valueInScale(range.duration, length.timeScale), start, length.timeValue);
    length.timeValue -= end - start;
}

void FakeMovie::scaleSegment(const MediaTimeRange& range, const MediaTime& newDuration)
{
    calls.append(formatText(QStringLiteral("scale segment %@ to %lld/%d"),
                            {rangeText(range), newDuration.timeValue, newDuration.timeScale}));
}

bool FakeMovie::writeToFile(const QString& path, const WriteAttributes& attributes)
{
    written.append(attributes);
    writtenPaths.append(path);
    calls.append(QStringLiteral("write"));
    if (writes && leavesFile) {
        writeBytes(path, "movie");
    }
    return writes;
}

FakeLibrary::FakeLibrary()
{
    QTMOVIErelease();
    QTMOVIEVIEWrelease();
    setMediaLibrary(this);
}

FakeLibrary::~FakeLibrary()
{
    setMediaLibrary(nullptr);
    QTMOVIErelease();
    QTMOVIEVIEWrelease();
    setQTMOVIESTR(QString());
    setQTMOVIEVIEWSTR(QString());
}

std::shared_ptr<FakeMovie> FakeLibrary::addMovie(const QString& path)
{
    auto movie = std::make_shared<FakeMovie>(path);
    movies.insert(path, movie);
    return movie;
}

std::shared_ptr<Movie> FakeLibrary::movieWithFile(const QString& path, bool asyncOK)
{
    opened.append(path);
    asyncFlags.append(asyncOK);
    return movies.value(path);
}

} // namespace tavrix::test
