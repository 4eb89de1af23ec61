// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The media operations that the movie logic needs. The library behind them (the FFmpeg libraries, or a scripted one in
// tests) only supplies values and carries out edits; every rule lives above this interface. Main thread only.

#include "quicktime/model/mediatime.h"

#include <QList>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace tavrix
{

// Width and height in pixels, of which a shown picture may have parts.
struct MediaSize {
    double width = 0;
    double height = 0;
};

// Rectangle on the movie's display, in whole pixels.
struct MediaRect {
    qint16 top = 0;
    qint16 left = 0;
    qint16 bottom = 0;
    qint16 right = 0;
};

enum class ApertureMode {
    Classic,
    Clean,
    Production,
    EncodedPixels,
};

// The first sample description of a track. With an error only the fields that could be read are set.
struct SampleDescription {
    bool error = false;
    quint32 dataFormat = 0;      // four-character code, the first character in the most significant byte
    int channels = 0;            // sound
    int sampleSize = 0;          // sound, bits
    quint64 sampleRateFixed = 0; // sound, 16 fractional bits
};

class Track
{
public:
    virtual ~Track() = default;
    // Four characters, for example "vide" or "soun"; nothing when the track has none.
    [[nodiscard]] virtual QString mediaType() const = 0;
    // Display size of the track, before its matrix.
    [[nodiscard]] virtual MediaSize dimensions() const = 0;
    // Where the track's first media lies in the movie and how long it lasts, in the movie's scale.
    [[nodiscard]] virtual MediaTimeRange range() const = 0;
    [[nodiscard]] virtual MediaSize apertureModeDimensionsForMode(ApertureMode mode) const = 0;
    // Width and height of the track itself, without aperture modes.
    [[nodiscard]] virtual MediaSize trackDimensions() const = 0;
    // Bounding rectangle of the display region.
    [[nodiscard]] virtual MediaRect boundsRect() const = 0;
    [[nodiscard]] virtual SampleDescription sampleDescription() const = 0;

    virtual void generateApertureModeDimensions() = 0;
    virtual void removeApertureModeDimensions() = 0;
    virtual void setApertureMode(ApertureMode mode) = 0;
    virtual void setDimensions(const MediaSize& size) = 0;
    virtual void setDisplayName(const QString& name) = 0;
};

// How a movie is to be written. A member without value is not passed to the writer.
struct WriteAttributes {
    std::optional<bool> flatten;
    std::optional<int> exportNumber;
    std::optional<quint32> exportType;         // four-character code
    std::optional<quint32> exportManufacturer; // four-character code
};

namespace interesting
{
inline constexpr int nextTimeMediaSample = 0x10;
inline constexpr int nextTimeEdgeOK = 0x4000;
} // namespace interesting

class Movie
{
public:
    virtual ~Movie() = default;
    // The file that the movie was opened from.
    [[nodiscard]] virtual QString path() const = 0;
    [[nodiscard]] virtual MediaTime duration() const = 0;
    [[nodiscard]] virtual QList<std::shared_ptr<Track>> tracks() const = 0;
    [[nodiscard]] virtual MediaSize currentSize() const = 0;
    [[nodiscard]] virtual MediaSize naturalSize() const = 0;
    // Everything known of the movie, for the log.
    [[nodiscard]] virtual QVariantMap movieAttributes() const = 0;
    [[nodiscard]] virtual bool loops() const = 0;
    [[nodiscard]] virtual float volume() const = 0;
    // Movie time of the next media sample at a positive rate, later than `from` (or at it with nextTimeEdgeOK);
    // negative when there is none. mediaType 'vide' counts video tracks, 'eyes' every track that can be seen.
    [[nodiscard]] virtual qint64 nextInterestingTime(int flags, quint32 mediaType, qint64 from) = 0;

    virtual void setCurrentSize(const MediaSize& size) = 0;
    virtual void setNaturalSize(const MediaSize& size) = 0;
    virtual void setEditable(bool editable) = 0;
    virtual void setLoops(bool loops) = 0;
    virtual void setVolume(float volume) = 0;
    virtual void setTimeScale(qint32 scale) = 0;
    virtual void setApertureMode(ApertureMode mode) = 0;
    virtual void generateApertureModeDimensions() = 0;
    virtual void removeApertureModeDimensions() = 0;
    virtual void setActive(bool active) = 0;
    // Sets the hints that are in the mask to those of `hints`.
    virtual void setPlayHints(quint32 hints, quint32 mask) = 0;
    // Ranges are clipped to the movie. Nothing happens unless the movie is editable.
    virtual void deleteSegment(const MediaTimeRange& range) = 0;
    virtual void scaleSegment(const MediaTimeRange& range, const MediaTime& newDuration) = 0;
    // False when the file was not written; what stood at the path is then untouched.
    [[nodiscard]] virtual bool writeToFile(const QString& path, const WriteAttributes& attributes) = 0;
};

class MediaLibrary
{
public:
    virtual ~MediaLibrary() = default;
    // Null when the file cannot be read as a movie. asyncOK allows a movie whose size is not known yet.
    [[nodiscard]] virtual std::shared_ptr<Movie> movieWithFile(const QString& path, bool asyncOK) = 0;
};

} // namespace tavrix
