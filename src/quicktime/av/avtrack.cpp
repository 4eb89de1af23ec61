// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/avtrack.h"

#include <algorithm>
#include <cmath>

namespace tavrix
{

namespace
{

qint16 wholePixel(double value)
{
    return static_cast<qint16>(std::lround(std::clamp(value, -32768.0, 32767.0)));
}

} // namespace

QString AvTrack::mediaType() const
{
    const std::string& type = source().atoms.mediaType;
    return type.empty() ? QString() : QString::fromLatin1(type.data(), static_cast<qsizetype>(type.size()));
}

MediaSize AvTrack::dimensions() const
{
    return dimensions_.value_or(shownSize(source()));
}

MediaTimeRange AvTrack::range() const
{
    const qint32 scale = state_->timeline.timeScale();
    const auto sourceScale = static_cast<std::uint32_t>(state_->source->timeScale);
    qint64 start = 0;
    qint64 end = 0;
    bool started = false;
    for (const TrackPiece& piece : trackPieces(source().atoms, sourceScale, state_->timeline)) {
        started = started || !piece.empty;
        if (!started) {
            start += piece.shown;
        }
        end += piece.shown;
    }
    return QTMakeTimeRange(QTMakeTime(start, scale), QTMakeTime(end - start, scale));
}

MediaSize AvTrack::apertureModeDimensionsForMode(ApertureMode mode) const
{
    return hasApertures_ ? apertureSize(source(), mode) : dimensions();
}

MediaSize AvTrack::trackDimensions() const
{
    return dimensions();
}

DisplayBox AvTrack::box() const
{
    return mappedBox(dimensions(), source().atoms.matrix);
}

MediaRect AvTrack::boundsRect() const
{
    const DisplayBox bounds = mappedBox(box(), state_->source->atoms.matrix);
    return {wholePixel(bounds.top), wholePixel(bounds.left), wholePixel(bounds.bottom), wholePixel(bounds.right)};
}

SampleDescription AvTrack::sampleDescription() const
{
    return describedSample(source(), state_->source->facts.isAvi);
}

TrackChange AvTrack::change() const
{
    constexpr double mostPixels = 32767.0;
    TrackChange change;
    if (dimensions_) {
        change.size = PixelSize{static_cast<int>(std::clamp(dimensions_->width, 0.0, mostPixels)),
                                static_cast<int>(std::clamp(dimensions_->height, 0.0, mostPixels))};
    }
    change.displayName = displayName_.toStdString();
    return change;
}

} // namespace tavrix
