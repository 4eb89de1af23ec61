// SPDX-License-Identifier: GPL-3.0-or-later
#include "pipeline/numberedclip.h"

#include "pipeline/clips.h"
#include "support/temphome.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>

namespace tavrix::test
{

namespace
{

// The strip in the middle of a picture: white, black, then the number's bits, the highest first. White and black tell
// which way the strip is read; above it the picture is bright, below it is dark.
constexpr int bits = 10;
constexpr int bars = bits + 2;
constexpr double stripTop = 0.35;
constexpr double stripBottom = 0.65;
constexpr int white = 220;
constexpr int black = 30;
constexpr int soundRate = 48000;

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

bool barIsWhite(int bar, int number)
{
    return bar == 0 || (bar >= 2 && ((number >> (bars - 1 - bar)) & 1) != 0);
}

QByteArray picture(int width, int height, int number)
{
    QByteArray luma(width * height, char(0));
    for (int y = 0; y < height; ++y) {
        const double place = double(y) / height;
        for (int x = 0; x < width; ++x) {
            int value = place < stripTop ? 170 : 70;
            if (place >= stripTop && place < stripBottom) {
                value = barIsWhite(x * bars / width, number) ? white : black;
            }
            luma[y * width + x] = char(value);
        }
    }
    return luma + QByteArray(width * height / 2, char(128));
}

bool writePictures(const QString& path, const NumberedClip& clip)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    const QString rate = clip.rate.contains(QLatin1Char('/')) ? clip.rate : clip.rate + QStringLiteral("/1");
    file.write(QStringLiteral("YUV4MPEG2 W%1 H%2 F%3 Ip A1:1 C420jpeg\n")
                   .arg(clip.width)
                   .arg(clip.height)
                   .arg(QString(rate).replace(QLatin1Char('/'), QLatin1Char(':')))
                   .toLatin1());
    for (int number = 0; number < clip.pictures; ++number) {
        file.write("FRAME\n");
        file.write(picture(clip.width, clip.height, number));
    }
    return file.flush();
}

double valueOfRate(const QString& rate)
{
    const QStringList parts = rate.split(QLatin1Char('/'));
    return parts.value(0).toDouble() / parts.value(1, QStringLiteral("1")).toDouble();
}

bool writeSound(const QString& path, const NumberedClip& clip)
{
    const double seconds = clip.soundLength > 0 ? clip.soundLength : clip.pictures / valueOfRate(clip.rate);
    const auto frames = std::lround(seconds * soundRate);
    std::vector<float> samples;
    samples.reserve(std::size_t(frames) * std::size_t(clip.channels));
    for (long frame = 0; frame < frames; ++frame) {
        const double time = double(frame) / soundRate;
        const bool sounds = time >= clip.soundFrom && time < clip.soundTo;
        const double value = sounds ? clip.amplitude * std::cos(2 * std::numbers::pi * 997 * time) : 0;
        for (int channel = 0; channel < clip.channels; ++channel) {
            const bool silent =
                !clip.sounding.empty() && std::ranges::find(clip.sounding, channel) == clip.sounding.end();
            samples.push_back(silent ? 0.0F : float(value));
        }
    }
    return writeBytes(
        path, QByteArray(reinterpret_cast<const char*>(samples.data()), qsizetype(samples.size() * sizeof(float))));
}

int numberIn(const std::array<int, bars>& values)
{
    constexpr int middle = (white + black) / 2;
    if (values[0] < middle || values[1] > middle) {
        return -1;
    }
    int number = 0;
    for (int bar = 2; bar < bars; ++bar) {
        number = number * 2 + (values[std::size_t(bar)] > middle ? 1 : 0);
    }
    return number;
}

constexpr int readWidth = 480;
constexpr int readHeight = 270;
using GreyPicture = std::array<unsigned char, std::size_t(readWidth) * readHeight>;

double meanOf(const GreyPicture& grey, const PictureArea& area)
{
    const int left = int(area.left * readWidth);
    const int right = std::max(left + 1, int(area.right * readWidth));
    const int top = int(area.top * readHeight);
    const int bottom = std::max(top + 1, int(area.bottom * readHeight));
    double sum = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            sum += grey[std::size_t(y) * readWidth + std::size_t(x)];
        }
    }
    return sum / ((right - left) * (bottom - top));
}

// A part of the area, in shares of it.
PictureArea within(const PictureArea& area, const PictureArea& part)
{
    const double width = area.right - area.left;
    const double height = area.bottom - area.top;
    return {area.left + part.left * width, area.top + part.top * height, area.left + part.right * width,
            area.top + part.bottom * height};
}

int readNumber(const GreyPicture& grey, const PictureArea& area)
{
    std::array<int, bars> values = {};
    for (int bar = 0; bar < bars; ++bar) {
        const PictureArea part = {(bar + 0.3) / bars, 0.45, (bar + 0.7) / bars, 0.55};
        values[std::size_t(bar)] = int(meanOf(grey, within(area, part)));
    }
    const double above = meanOf(grey, within(area, {0.1, 0.1, 0.9, 0.25}));
    const double below = meanOf(grey, within(area, {0.1, 0.75, 0.9, 0.9}));
    return above > below ? numberIn(values) : -1;
}

std::vector<GreyPicture> greyPictures(const QString& path)
{
    QByteArray output;
    QStringList arguments = words("-nostdin -v error -i") << QStringLiteral("file:") + path;
    arguments << words("-map 0:v:0 -vsync passthrough -vf")
              << QStringLiteral("scale=%1:%2").arg(readWidth).arg(readHeight) << words("-pix_fmt gray -f rawvideo -");
    if (!runTool(QStringLiteral("/usr/bin/ffmpeg"), arguments, &output)) {
        return {};
    }
    std::vector<GreyPicture> pictures(std::size_t(output.size()) / sizeof(GreyPicture));
    std::memcpy(pictures.data(), output.constData(), pictures.size() * sizeof(GreyPicture));
    return pictures;
}

// The times of the frames or packets that ffprobe lists for the first stream of a kind.
std::vector<double> frameTimes(const QString& path, const char* stream)
{
    QByteArray output;
    QStringList arguments = words("-v error -of json -show_entries frame=best_effort_timestamp_time -select_streams");
    arguments << QString::fromLatin1(stream) << QStringLiteral("file:") + path;
    std::vector<double> times;
    if (runTool(QStringLiteral("/usr/bin/ffprobe"), arguments, &output)) {
        const QJsonArray frames = QJsonDocument::fromJson(output).object().value(QLatin1String("frames")).toArray();
        for (const auto& frame : frames) {
            times.push_back(frame.toObject().value(QLatin1String("best_effort_timestamp_time")).toString().toDouble());
        }
    }
    return times;
}

} // namespace

bool makeNumberedClip(const QString& path, const NumberedClip& clip)
{
    TempFolder folder;
    const QString pictures = folder.path(QStringLiteral("pictures.y4m"));
    const QString sound = folder.path(QStringLiteral("sound.f32"));
    if (!writePictures(pictures, clip) || !writeSound(sound, clip)) {
        return false;
    }
    QStringList arguments = words("-nostdin -v error -y -i") << pictures;
    if (clip.channels > 0) {
        arguments << words("-f f32le -ar 48000 -ac") << QString::number(clip.channels) << QStringLiteral("-i") << sound;
    }
    arguments << clip.pictureFilter << clip.codecs << QStringLiteral("file:") + path;
    return runTool(QStringLiteral("/usr/bin/ffmpeg"), arguments);
}

std::vector<ShownPicture> shownPictures(const QString& path, const PictureArea& area)
{
    const std::vector<double> times = frameTimes(path, "v:0");
    const std::vector<GreyPicture> pictures = greyPictures(path);
    std::vector<ShownPicture> shown;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        shown.push_back({i < times.size() ? times[i] : -1, readNumber(pictures[i], area)});
    }
    return times.size() == pictures.size() ? shown : std::vector<ShownPicture>();
}

double brightness(const QString& path, const PictureArea& area)
{
    const std::vector<GreyPicture> pictures = greyPictures(path);
    return pictures.empty() ? -1 : meanOf(pictures.front(), area);
}

double ShownSound::duration() const
{
    return channels.empty() || rate <= 0 ? 0 : double(channels.front().size()) / rate;
}

double ShownSound::onset(std::size_t channel) const
{
    if (channel >= channels.size()) {
        return -1;
    }
    const auto& samples = channels[channel];
    const auto first = std::ranges::find_if(samples, [](float value) { return std::fabs(value) > 0.05F; });
    return first == samples.end() ? -1 : start + double(first - samples.begin()) / rate;
}

double ShownSound::peak(std::size_t channel) const
{
    double largest = 0;
    for (const float value : channels.at(channel)) {
        largest = std::max(largest, double(std::fabs(value)));
    }
    return largest;
}

double ShownSound::level(std::size_t channel, double from, double to) const
{
    const auto& samples = channels.at(channel);
    double sum = 0;
    long count = 0;
    for (auto i = std::lround((from - start) * rate); i < std::lround((to - start) * rate); ++i) {
        if (i >= 0 && std::size_t(i) < samples.size()) {
            sum += double(samples[std::size_t(i)]) * double(samples[std::size_t(i)]);
            ++count;
        }
    }
    return count == 0 ? 0 : std::sqrt(sum / double(count));
}

ShownSound shownSound(const QString& path)
{
    const QJsonObject stream = streamOf(probed(path), QStringLiteral("audio"));
    const int count = stream.value(QLatin1String("channels")).toInt();
    const std::vector<double> times = frameTimes(path, "a:0");
    QByteArray output;
    const QStringList arguments = words("-nostdin -v error -i")
                                  << QStringLiteral("file:") + path << words("-map 0:a:0 -f f32le -");
    ShownSound sound;
    if (count <= 0 || times.empty() || !runTool(QStringLiteral("/usr/bin/ffmpeg"), arguments, &output)) {
        return sound;
    }
    sound.start = times.front();
    sound.rate = stream.value(QLatin1String("sample_rate")).toString().toInt();
    sound.channels.resize(std::size_t(count));
    std::vector<float> samples(std::size_t(output.size()) / sizeof(float));
    std::memcpy(samples.data(), output.constData(), samples.size() * sizeof(float));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        sound.channels[i % std::size_t(count)].push_back(samples[i]);
    }
    return sound;
}

bool turnMovie(const QString& path, int a, int b, int c, int d)
{
    auto bytes = readBytes(path);
    if (!bytes) {
        return false;
    }
    constexpr int matrixOffset = 4 + 40; // behind the type, in a header with times of 32 bits
    constexpr int sizeOffset = 4 + 76;
    bool found = false;
    for (auto at = bytes->indexOf("tkhd"); at >= 0; at = bytes->indexOf("tkhd", at + 1)) {
        if (bytes->mid(at + sizeOffset, 4) == QByteArray(4, 0)) {
            continue; // sound has no size
        }
        const std::array values = {a, b, 0, c, d};
        for (std::size_t i = 0; i < values.size(); ++i) {
            const auto fixed = quint32(values[i] * 65536);
            for (int byte = 0; byte < 4; ++byte) {
                (*bytes)[at + matrixOffset + int(i) * 4 + byte] = char((fixed >> (24 - 8 * byte)) & 0xff);
            }
        }
        found = true;
    }
    return found && writeBytes(path, *bytes);
}

} // namespace tavrix::test
