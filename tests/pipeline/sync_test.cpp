// SPDX-License-Identifier: GPL-3.0-or-later
// Every output picture belongs to its source time, and to the sound.
#include "pipeline/clips.h"
#include "pipeline/convert.h"
#include "pipeline/numberedclip.h"
#include "pipeline/words.h"
#include "support/temphome.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <ostream>

using namespace tavrix::test;

namespace
{

double valueOf(const char* rate)
{
    const QStringList parts = text(rate).split(QLatin1Char('/'));
    return parts.value(0).toDouble() / parts.value(1, text("1")).toDouble();
}

struct SyncRow {
    const char* name;
    const char* rate;       // of the source
    const char* outputRate; // of formats 0 and 1
    const char* extension;
    int pictures;
    int shown; // of formats 0 and 1
};

std::ostream& operator<<(std::ostream& out, const SyncRow& row)
{
    return out << row.name;
}

const SyncRow rows[] = {
    {"mts50p", "50", "25", "MTS", 150, 75},
    {"mts5994p", "60000/1001", "30000/1001", "MTS", 149, 75},
    {"mov5994p", "60000/1001", "30000/1001", "mov", 149, 75},
    {"mts60p", "60", "30000/1001", "MTS", 180, 90},
    {"mov60p", "60", "30000/1001", "mov", 180, 90},
    {"mov48p", "48", "25", "mov", 144, 75},
    {"mov120p", "120", "30000/1001", "mov", 360, 90},
    {"mts25p", "25", "25", "MTS", 75, 75},
    {"mts2997p", "30000/1001", "30000/1001", "MTS", 90, 90},
    {"avi30p", "30", "30", "avi", 90, 90},
    {"mov2398p", "24000/1001", "24000/1001", "mov", 72, 72},
};

QStringList codecsFor(const char* extension)
{
    if (text(extension) == text("avi")) {
        return words("-c:v mjpeg -q:v 3 -pix_fmt yuvj420p -c:a pcm_s16le -f avi");
    }
    const QStringList picture = words("-c:v libx264 -preset ultrafast -bf 2 -qp 20 -pix_fmt yuv420p");
    const bool stream = text(extension) == text("MTS");
    return picture + (stream ? words("-c:a ac3 -f mpegts") : words("-c:a aac -f mov"));
}

// When the source shows each picture and when its sound sets in, counted from its start.
struct SourceTimes {
    std::map<int, double> pictures;
    double sound = 0;
};

SourceTimes timesOf(const QString& source)
{
    const std::vector<ShownPicture> pictures = shownPictures(source);
    const ShownSound sound = shownSound(source);
    SourceTimes times;
    if (pictures.empty()) {
        return times;
    }
    const double origin = std::min(pictures.front().time, sound.start);
    for (const ShownPicture& picture : pictures) {
        times.pictures[picture.number] = picture.time - origin;
    }
    times.sound = sound.onset() - origin;
    return times;
}

// How far the output is off, in seconds without the sign.
struct Delays {
    double largest = 0; // of all pictures
    double sound = 0;
    int unknown = 0; // pictures that the source does not have
};

Delays delaysOf(const QString& output, const SourceTimes& source)
{
    Delays delays;
    for (const ShownPicture& picture : shownPictures(output)) {
        const auto known = source.pictures.find(picture.number);
        if (known == source.pictures.end() || picture.number < 0) {
            ++delays.unknown;
        } else {
            delays.largest = std::max(delays.largest, std::fabs(picture.time - known->second));
        }
    }
    delays.sound = std::fabs(shownSound(output).onset() - source.sound);
    return delays;
}

class Sync : public ::testing::TestWithParam<SyncRow>
{
protected:
    TempFolder folder;
};

TEST_P(Sync, PicturesAndSoundKeepTheirTimes)
{
    const SyncRow& row = GetParam();
    NumberedClip clip;
    clip.rate = text(row.rate);
    clip.pictures = row.pictures;
    clip.codecs = codecsFor(row.extension);
    const QString source = folder.path(text("clip.") + text(row.extension));
    ASSERT_TRUE(makeNumberedClip(source, clip));
    const SourceTimes times = timesOf(source);
    ASSERT_EQ(int(times.pictures.size()), row.pictures);
    for (const int format : {0, 1, 3}) {
        const Converted converted = convertClip(source, folder.path(), format);
        ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
        const Delays delays = delaysOf(converted.output, times);
        const double allowed = format == 3 ? 0.0011 : 0.5 / valueOf(row.outputRate);
        EXPECT_EQ(delays.unknown, 0) << "format " << format;
        EXPECT_LE(delays.largest, allowed) << "format " << format;
        EXPECT_LE(delays.sound, 0.003) << "format " << format;
        const auto shown = int(shownPictures(converted.output).size());
        EXPECT_EQ(shown, format == 3 ? row.pictures : row.shown) << "format " << format;
        const QString rate = streamOf(probed(converted.output), text("video")).value(text("r_frame_rate")).toString();
        EXPECT_EQ(valueOf(rate.toLatin1().constData()), valueOf(format == 3 ? row.rate : row.outputRate))
            << "format " << format;
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, Sync, ::testing::ValuesIn(rows),
                         [](const auto& row) { return std::string(row.param.name); });

// Clips whose pictures come at uneven times, or do not begin with the sound.
struct UnevenRow {
    const char* name;
    const char* extension;
    const char* pictureFilter;
    const char* options; // of the output
};

std::ostream& operator<<(std::ostream& out, const UnevenRow& row)
{
    return out << row.name;
}

const UnevenRow unevenRows[] = {
    {"everyThirdAndFifth", "mov", "select='not(mod(n,3)*mod(n,5))'", ""},
    {"tick90k", "mov", "settb=1/90000,setpts='N*3600+mod(N*7919,997)'",
     "-enc_time_base 1/90000 -video_track_timescale 90000"},
    {"pictureLate", "MTS", "setpts=PTS+0.37/TB", ""},
    {"soundLateMovie", "mov", "null", "-af asetpts=PTS+0.23/TB"},
    {"clockLate", "MTS", "null", "-output_ts_offset 1000"},
};

class UnevenSync : public ::testing::TestWithParam<UnevenRow>
{
protected:
    TempFolder folder;
};

// Each picture from when it first appears: where the source rests, the output repeats.
std::vector<ShownPicture> firstAppearances(const std::vector<ShownPicture>& shown)
{
    std::vector<ShownPicture> first;
    for (const ShownPicture& picture : shown) {
        if (first.empty() || first.back().number != picture.number) {
            first.push_back(picture);
        }
    }
    return first;
}

TEST_P(UnevenSync, PicturesAppearWithinHalfAnOutputPicture)
{
    const UnevenRow& row = GetParam();
    NumberedClip clip;
    clip.pictures = 50;
    clip.pictureFilter = {text("-vf"), text(row.pictureFilter), text("-vsync"), text("passthrough")};
    clip.codecs = codecsFor(row.extension) + text(row.options).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const QString source = folder.path(text("clip.") + text(row.extension));
    ASSERT_TRUE(makeNumberedClip(source, clip));
    const SourceTimes times = timesOf(source);
    ASSERT_GE(times.pictures.size(), 20U);
    for (const int format : {0, 1}) {
        const Converted converted = convertClip(source, folder.path(), format);
        ASSERT_TRUE(converted.ok) << converted.transcript.toStdString();
        const QString rate = streamOf(probed(converted.output), text("video")).value(text("r_frame_rate")).toString();
        const double half = 0.5 / valueOf(rate.toLatin1().constData());
        const std::vector<ShownPicture> shown = firstAppearances(shownPictures(converted.output));
        // Two source pictures within one output picture leave one of them out.
        EXPECT_GE(shown.size(), times.pictures.size() * 9 / 10) << "format " << format;
        for (const ShownPicture& picture : shown) {
            const auto known = times.pictures.find(picture.number);
            ASSERT_NE(known, times.pictures.end()) << "format " << format << " picture " << picture.number;
            EXPECT_NEAR(picture.time, known->second, half + 0.001) << "format " << format << " " << picture.number;
        }
        EXPECT_NEAR(shownSound(converted.output).onset(), times.sound, 0.005) << "format " << format;
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, UnevenSync, ::testing::ValuesIn(unevenRows),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
