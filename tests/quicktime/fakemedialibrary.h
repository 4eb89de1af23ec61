// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/store/settings.h"
#include "quicktime/av/activelibrary.h"
#include "quicktime/rules/movieslots.h"

#include <QHash>

namespace tavrix::test
{

// A track whose values are set by the test. Calls that change it are noted in the movie's list.
class FakeTrack final : public Track
{
public:
    FakeTrack(QString mediaType, QStringList* calls) : type(std::move(mediaType)), calls_(calls) {}

    [[nodiscard]] QString mediaType() const override { return type; }
    [[nodiscard]] MediaSize dimensions() const override { return size; }
    [[nodiscard]] MediaTimeRange range() const override { return trackRange; }
    [[nodiscard]] MediaSize apertureModeDimensionsForMode(ApertureMode mode) const override
    {
        return mode == ApertureMode::EncodedPixels ? encoded : (mode == ApertureMode::Clean ? clean : size);
    }
    [[nodiscard]] MediaSize trackDimensions() const override { return size; }
    [[nodiscard]] MediaRect boundsRect() const override { return bounds; }
    [[nodiscard]] SampleDescription sampleDescription() const override { return description; }
    void generateApertureModeDimensions() override { calls_->append(QStringLiteral("track generate")); }
    void removeApertureModeDimensions() override { calls_->append(QStringLiteral("track remove")); }
    void setApertureMode(ApertureMode mode) override
    {
        calls_->append(QStringLiteral("track mode %1").arg(static_cast<int>(mode)));
    }
    void setDimensions(const MediaSize& newSize) override { size = newSize; }
    void setDisplayName(const QString& name) override { displayName = name; }

    QString type;
    MediaSize size;
    MediaSize encoded;
    MediaSize clean;
    MediaTimeRange trackRange;
    MediaRect bounds;
    SampleDescription description;
    QString displayName;

private:
    QStringList* calls_;
};

// A movie that does what the test says and notes what it was told.
class FakeMovie final : public Movie
{
public:
    explicit FakeMovie(QString filePath) : file(std::move(filePath)) {}

    std::shared_ptr<FakeTrack> addTrack(const QString& mediaType);

    [[nodiscard]] QString path() const override { return file; }
    [[nodiscard]] MediaTime duration() const override { return length; }
    [[nodiscard]] QList<std::shared_ptr<Track>> tracks() const override { return trackList; }
    [[nodiscard]] MediaSize currentSize() const override { return current; }
    [[nodiscard]] MediaSize naturalSize() const override { return natural; }
    [[nodiscard]] QVariantMap movieAttributes() const override { return {{QStringLiteral("fake"), 1}}; }
    [[nodiscard]] bool loops() const override { return looping; }
    [[nodiscard]] float volume() const override { return loudness; }
    [[nodiscard]] qint64 nextInterestingTime(int flags, quint32 mediaType, qint64 from) override;
    void setCurrentSize(const MediaSize& size) override { current = size; }
    void setNaturalSize(const MediaSize& size) override { natural = size; }
    void setEditable(bool editable) override;
    void setLoops(bool loops) override { looping = loops; }
    void setVolume(float volume) override { loudness = volume; }
    void setTimeScale(qint32 scale) override;
    void setApertureMode(ApertureMode mode) override;
    void generateApertureModeDimensions() override { calls.append(QStringLiteral("generate")); }
    void removeApertureModeDimensions() override { calls.append(QStringLiteral("remove")); }
    void setActive(bool active) override;
    void setPlayHints(quint32 hints, quint32 mask) override;
    void deleteSegment(const MediaTimeRange& range) override;
    void scaleSegment(const MediaTimeRange& range, const MediaTime& newDuration) override;
    [[nodiscard]] bool writeToFile(const QString& path, const WriteAttributes& attributes) override;

    QString file;
    MediaTime length{0, 600, 0};
    QList<std::shared_ptr<Track>> trackList;
    MediaSize current;
    MediaSize natural;
    QList<qint64> sampleTimes; // ascending
    QList<int> interestingFlags;
    QList<quint32> interestingTypes;
    bool looping = false;
    float loudness = 1.0F;
    QStringList calls;
    bool writes = true;     // whether writing succeeds
    bool leavesFile = true; // whether a successful write leaves a file
    bool deletes = true;    // whether a deletion changes the duration
    QList<WriteAttributes> written;
    QStringList writtenPaths;
};

// Opens fake movies for the paths that were given one; it becomes the library while it lives, with empty slots before
// and after.
class FakeLibrary final : public MediaLibrary
{
public:
    FakeLibrary();
    ~FakeLibrary() override;
    FakeLibrary(const FakeLibrary&) = delete;
    FakeLibrary& operator=(const FakeLibrary&) = delete;

    std::shared_ptr<FakeMovie> addMovie(const QString& path);
    std::shared_ptr<Movie> movieWithFile(const QString& path, bool asyncOK) override;

    QHash<QString, std::shared_ptr<FakeMovie>> movies;
    QStringList opened;
    QList<bool> asyncFlags;
};

// Debug lines are written while it lives.
class DebugLogging
{
public:
    DebugLogging() : previous_(getDEBUG()) { setDEBUG(1); }
    ~DebugLogging() { setDEBUG(previous_); }
    DebugLogging(const DebugLogging&) = delete;
    DebugLogging& operator=(const DebugLogging&) = delete;

private:
    unsigned char previous_;
};

} // namespace tavrix::test
