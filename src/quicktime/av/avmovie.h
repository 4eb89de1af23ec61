// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A movie file, opened and edited in memory.

#include "media/movieheader.h"
#include "quicktime/av/avtrack.h"
#include "sys/result.h"

#include <map>

namespace tavrix
{

// A movie file through the FFmpeg libraries and its atoms. Nothing is written before writeToFile: edits are a list over
// the source.
class AvMovie final : public Movie
{
public:
    explicit AvMovie(const std::shared_ptr<MovieSource>& source);

    [[nodiscard]] QString path() const override;
    [[nodiscard]] MediaTime duration() const override;
    [[nodiscard]] QList<std::shared_ptr<Track>> tracks() const override;
    [[nodiscard]] MediaSize currentSize() const override;
    [[nodiscard]] MediaSize naturalSize() const override;
    [[nodiscard]] QVariantMap movieAttributes() const override;
    [[nodiscard]] bool loops() const override { return loops_; }
    [[nodiscard]] float volume() const override { return volume_; }
    [[nodiscard]] qint64 nextInterestingTime(int flags, quint32 mediaType, qint64 from) override;

    void setCurrentSize(const MediaSize& size) override { currentSize_ = size; }
    void setNaturalSize(const MediaSize& size) override { naturalSize_ = size; }
    void setEditable(bool editable) override { editable_ = editable; }
    void setLoops(bool loops) override { loops_ = loops; }
    void setVolume(float volume) override { volume_ = volume; }
    void setTimeScale(qint32 scale) override;
    void setApertureMode(ApertureMode mode) override;
    void generateApertureModeDimensions() override;
    void removeApertureModeDimensions() override;
    void setActive(bool active) override { active_ = active; }
    void setPlayHints(quint32 hints, quint32 mask) override { hints_ = (hints_ & ~mask) | (hints & mask); }
    void deleteSegment(const MediaTimeRange& range) override;
    void scaleSegment(const MediaTimeRange& range, const MediaTime& newDuration) override;
    [[nodiscard]] bool writeToFile(const QString& path, const WriteAttributes& attributes) override;

private:
    struct Sizes {
        MediaSize natural;
        MediaSize current;
    };
    [[nodiscard]] Sizes computedSizes() const;
    [[nodiscard]] const std::vector<std::int64_t>& interestingTimes(quint32 mediaType);
    [[nodiscard]] QString refusal(bool isWave) const;
    [[nodiscard]] Result<void, QString> writeMovie(const QString& path, bool headerFirst) const;
    [[nodiscard]] Result<void, QString> writeFromAtoms(const QString& path, bool headerFirst) const;
    [[nodiscard]] Result<void, QString> writeFromCopy(const QString& path, bool headerFirst) const;
    [[nodiscard]] std::optional<DisplayScale> displayScale() const;

    std::shared_ptr<MovieState> state_;
    std::vector<std::shared_ptr<AvTrack>> tracks_;
    std::map<quint32, std::vector<std::int64_t>> interestingTimes_;
    std::optional<MediaSize> currentSize_;
    std::optional<MediaSize> naturalSize_;
    bool editable_ = false;
    bool loops_ = false;
    bool active_ = false;
    float volume_ = 1.0F;
    quint32 hints_ = 0;
};

} // namespace tavrix
