// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A track of a movie file.

#include "media/trackrewrite.h"
#include "quicktime/av/trackgeometry.h"

namespace tavrix
{

// Edits over a source, shared by a movie and its tracks.
struct MovieState {
    std::shared_ptr<MovieSource> source;
    EditTimeline timeline;
};

// One track of a movie file. What is set stays in memory until the movie is written.
class AvTrack final : public Track
{
public:
    AvTrack(const std::shared_ptr<MovieState>& state, std::size_t index) : state_(state), index_(index) {}

    [[nodiscard]] QString mediaType() const override;
    [[nodiscard]] MediaSize dimensions() const override;
    [[nodiscard]] MediaTimeRange range() const override;
    [[nodiscard]] MediaSize apertureModeDimensionsForMode(ApertureMode mode) const override;
    [[nodiscard]] MediaSize trackDimensions() const override;
    [[nodiscard]] MediaRect boundsRect() const override;
    [[nodiscard]] SampleDescription sampleDescription() const override;

    void generateApertureModeDimensions() override { hasApertures_ = true; }
    void removeApertureModeDimensions() override { hasApertures_ = false; }
    void setApertureMode(ApertureMode mode) override { apertureMode_ = mode; }
    void setDimensions(const MediaSize& size) override { dimensions_ = size; }
    void setDisplayName(const QString& name) override { displayName_ = name; }

    [[nodiscard]] ApertureMode apertureMode() const { return apertureMode_; }
    // Where the track lies on the movie's display, before the movie's own matrix.
    [[nodiscard]] DisplayBox box() const;
    // What was set, as the writer takes it.
    [[nodiscard]] TrackChange change() const;
    [[nodiscard]] const SourceTrack& source() const { return state_->source->tracks[index_]; }

private:
    std::shared_ptr<MovieState> state_;
    std::size_t index_;
    bool hasApertures_ = true;
    ApertureMode apertureMode_ = ApertureMode::Clean;
    std::optional<MediaSize> dimensions_;
    QString displayName_;
};

} // namespace tavrix
