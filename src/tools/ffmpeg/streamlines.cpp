// SPDX-License-Identifier: GPL-3.0-or-later
// What is read, without its indentation (three lines of ffmpeg 5, one of 4, one of 7, and one of an output):
//
//   Stream #0:0[0x1011]: Video: h264 (High) (HDMV / 0x564D4448), yuv420p(tv), 1280x720 [SAR 1:1 DAR 16:9], 50 fps
//   Stream #0:1[0x1100](eng): Audio: ac3 (AC-3 / 0x332D4341), 48000 Hz, 5.1(side), fltp, 384 kb/s
//   Stream #0:2[0x3](eng): Data: none (tmcd / 0x64636D74), 0 kb/s (default)
//   Stream #0:0(und): Video: mjpeg (avc1 / 0x31637661), yuvj420p(pc), 640x480, 30 tbr, 30 tbn, 30 tbc (default)
//   Stream #0:0[0x1](und): Video: h264 (High), yuv420p(progressive), 464x848, 30.02 fps, 30.02 tbr, 90k tbn (default)
//   Stream #0:0: Video: mpeg4 (mp4v / 0x7634706D), yuv420p(tv), 480x272, q=2-31, 250 kb/s, 29.97 fps, 30k tbn
#include "tools/ffmpeg/streamlines.h"

#include "tools/ffmpeg/textpieces.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

namespace tavrix::front
{

namespace
{

struct StreamLine {
    std::string file;
    std::string number;
    std::string suffix;      // what follows the number: "[0x1011](eng)"
    std::string kind;        // "Video"
    std::string description; // the fields
};

std::string leadingDigits(std::string_view text)
{
    std::size_t end = 0;
    while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end])) != 0) {
        ++end;
    }
    return std::string(text.substr(0, end));
}

std::optional<StreamLine> parsed(std::string_view line)
{
    constexpr std::string_view head = "Stream #";
    constexpr std::array<std::string_view, 6> kinds = {"Video", "Audio", "Data", "Subtitle", "Attachment", "Unknown"};
    const auto start = line.find_first_not_of(' ');
    if (start == std::string_view::npos || start == 0 || !line.substr(start).starts_with(head)) {
        return std::nullopt;
    }
    std::string_view rest = line.substr(start + head.size());
    StreamLine stream;
    stream.file = leadingDigits(rest);
    rest.remove_prefix(stream.file.size());
    if (stream.file.empty() || rest.empty() || (rest.front() != ':' && rest.front() != '.')) {
        return std::nullopt;
    }
    rest.remove_prefix(1);
    stream.number = leadingDigits(rest);
    rest.remove_prefix(stream.number.size());
    if (stream.number.empty()) {
        return std::nullopt;
    }
    auto first = std::string_view::npos;
    for (const std::string_view kind : kinds) {
        const auto at = rest.find(": " + std::string(kind) + ": ");
        if (at < first) {
            first = at;
            stream.kind = kind;
        }
    }
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    stream.suffix = rest.substr(0, first);
    stream.description = rest.substr(first + stream.kind.size() + 4);
    return stream;
}

// The tag of "none (tmcd / 0x64636D74)", which is all that a classic line has of a codec without a name.
std::string codecTag(const std::string& field)
{
    const auto open = field.rfind('(');
    const auto close = field.find(')', open == std::string::npos ? 0 : open);
    if (open == std::string::npos || close == std::string::npos) {
        return {};
    }
    const std::string inside = field.substr(open + 1, close - open - 1);
    return inside.find(" / 0x") == std::string::npos ? std::string() : inside;
}

std::string classicCodec(const std::string& field)
{
    const std::string name = withoutParentheses(field);
    std::string tag = codecTag(field);
    if ((name == "none" || name == "unknown") && !tag.empty()) {
        return tag;
    }
    if (name == "wrapped_avframe") {
        return "rawvideo";
    }
    return name == "dts" ? "dca" : name;
}

// "119.88": twice or once the value of a rate field, without the loss of its two decimals for the NTSC rates.
std::string rateText(const std::string& field, double factor)
{
    const double printed = std::strtod(field.c_str(), nullptr);
    const auto unit = field.find_first_not_of("0123456789.");
    const bool thousands = unit != std::string::npos && field[unit] == 'k';
    const double whole = std::round(printed * 1.001);
    const bool ntsc = printed != std::round(printed) && std::fabs(whole / 1.001 - printed) < 0.006;
    double value = (ntsc ? whole / 1.001 : printed) * factor * (thousands ? 1000 : 1);
    std::array<char, 64> text = {};
    if (value >= 1000 && std::fabs(value / 1000 - std::round(value / 1000)) < 1e-9) {
        std::snprintf(text.data(), text.size(), "%.0fk", value / 1000);
    } else if (std::fabs(value - std::round(value)) < 1e-9) {
        std::snprintf(text.data(), text.size(), "%.0f", value);
    } else {
        std::snprintf(text.data(), text.size(), "%.2f", value);
    }
    return text.data();
}

// Phones print the rate they reached instead of the one they aim at ("30.02"), and a rule that compares it with 30
// would halve it.
std::string standardRate(const std::string& field)
{
    constexpr std::array rates = {
        std::pair{24000 / 1001.0, "23.98"}, std::pair{24.0, "24"}, std::pair{25.0, "25"},
        std::pair{30000 / 1001.0, "29.97"}, std::pair{30.0, "30"}, std::pair{50.0, "50"},
        std::pair{60000 / 1001.0, "59.94"}, std::pair{60.0, "60"},
    };
    constexpr double tolerance = 0.005;
    const auto unit = field.find_first_not_of("0123456789.");
    if (unit == std::string::npos || field[unit] != ' ') {
        return field;
    }
    const double rate = std::strtod(field.c_str(), nullptr);
    const auto* const nearest = std::ranges::min_element(
        rates, [rate](const auto& a, const auto& b) { return std::fabs(a.first - rate) < std::fabs(b.first - rate); });
    const bool standard = std::fabs(nearest->first - rate) <= nearest->first * tolerance;
    return standard ? nearest->second + field.substr(unit) : field;
}

bool isPictureSize(const std::string& field)
{
    const std::string width = leadingDigits(field);
    return !width.empty() && field.size() > width.size() + 1 && field[width.size()] == 'x' &&
           std::isdigit(static_cast<unsigned char>(field[width.size() + 1])) != 0;
}

std::string classicAspect(const std::string& field)
{
    return replacedAll(field, "SAR ", "PAR ");
}

std::string classicBitRate(const std::string& field)
{
    constexpr std::string_view maximum = "max. ";
    return field.starts_with(maximum) ? field.substr(maximum.size()) : field;
}

// Classic rates count two fields per frame for the codecs that may be interlaced inside.
bool countsFields(const std::string& codec)
{
    return codec == "h264" || codec.starts_with("mpeg1video") || codec.starts_with("mpeg2video") ||
           codec == "mpegvideo" || codec == "vc1";
}

struct VideoFields {
    std::string codec;
    std::string pixelFormat;
    std::vector<std::string> shape; // size, aspect, quality range, bit rate
    std::string averageRate;
    std::string baseRate;
    std::string timeBase;
    std::string codecTimeBase;
};

void sortVideoField(VideoFields& fields, const std::string& field)
{
    if (field.ends_with(" fps")) {
        fields.averageRate = field;
    } else if (field.ends_with(" tbr")) {
        fields.baseRate = standardRate(field);
    } else if (field.ends_with(" tbn")) {
        fields.timeBase = field;
    } else if (field.ends_with(" tbc")) {
        fields.codecTimeBase = field;
    } else if (field.ends_with(" kb/s")) {
        fields.shape.push_back(classicBitRate(field));
    } else if (isPictureSize(field) || field.starts_with("SAR ") || field.starts_with("PAR ")) {
        fields.shape.push_back(classicAspect(field));
    } else if (field.starts_with("q=")) {
        fields.shape.push_back(field);
    }
    // A field of any other form would be read as the pixel format if it were kept.
    else if (fields.pixelFormat.empty() && fields.shape.empty() && field.find_first_of(" /.") == std::string::npos) {
        fields.pixelFormat = field;
    }
}

std::string classicVideo(const std::vector<std::string>& words, bool ofOutput)
{
    VideoFields fields;
    fields.codec = classicCodec(words.front());
    for (std::size_t i = 1; i < words.size(); ++i) {
        sortVideoField(fields, withoutParentheses(words[i]));
    }
    std::vector<std::string> parts = {fields.codec};
    if (!fields.pixelFormat.empty() && fields.pixelFormat != "none") {
        parts.push_back(fields.pixelFormat);
    }
    parts.insert(parts.end(), fields.shape.begin(), fields.shape.end());
    if (ofOutput) {
        if (fields.codecTimeBase.empty() && !fields.averageRate.empty()) {
            fields.codecTimeBase = rateText(fields.averageRate, 1) + " tbc";
        }
        fields.averageRate.clear();
        fields.baseRate.clear();
    } else if (fields.codecTimeBase.empty() && !fields.baseRate.empty()) {
        fields.codecTimeBase = rateText(fields.baseRate, countsFields(fields.codec) ? 2 : 1) + " tbc";
    }
    for (const std::string& rate : {fields.averageRate, fields.baseRate, fields.timeBase, fields.codecTimeBase}) {
        if (!rate.empty()) {
            parts.push_back(rate);
        }
    }
    std::string text = parts.front();
    for (std::size_t i = 1; i < parts.size(); ++i) {
        text += ", " + parts[i];
    }
    return text;
}

std::string classicSampleFormat(const std::string& codec, const std::string& format)
{
    if (codec.starts_with("pcm_")) {
        return format;
    }
    // Installed decoders work in floating point where classic ones delivered 16-bit integers.
    return format == "fltp" || format == "flt" || format == "s16p" ? "s16" : format;
}

std::string classicLayout(const std::string& field)
{
    struct Row {
        std::string_view name;
        std::string_view count;
    };
    constexpr std::array rows = {
        Row{"quad", "4 channels"},        Row{"hexagonal", "6 channels"},      Row{"octagonal", "8 channels"},
        Row{"cube", "8 channels"},        Row{"hexadecagonal", "16 channels"}, Row{"downmix", "stereo"},
        Row{"ambisonic 1", "4 channels"},
    };
    const auto* const row = std::ranges::find(rows, field, &Row::name);
    return row == rows.end() ? field : std::string(row->count);
}

std::string classicAudio(const std::vector<std::string>& words)
{
    const std::string codec = classicCodec(words.front());
    std::string text = codec;
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string field = classicBitRate(withoutParentheses(words[i]));
        const bool isLogDetail = field.find('/') != std::string::npos && !field.ends_with(" kb/s");
        if (!field.empty() && !isLogDetail && !field.starts_with("delay ") && !field.starts_with("padding ")) {
            text += ", " + classicSampleFormat(codec, classicLayout(field));
        }
    }
    return text;
}

std::string classicOther(const std::vector<std::string>& words)
{
    std::string text = classicCodec(words.front());
    for (std::size_t i = 1; i < words.size(); ++i) {
        text += ", " + withoutParentheses(words[i]);
    }
    return text;
}

std::string classicSuffix(std::string suffix, const StreamLineContext& context)
{
    const bool identified = suffix.starts_with("[0x");
    const auto close = suffix.find(']');
    if (identified && close != std::string::npos && (context.ofOutput || !context.showsIdentifiers)) {
        suffix.erase(0, close + 1);
    }
    return suffix;
}

} // namespace

std::optional<std::string> classicStreamLine(std::string_view line, const StreamLineContext& context)
{
    const auto stream = parsed(line);
    if (!stream) {
        return std::nullopt;
    }
    const std::vector<std::string> words = topLevelFields(stream->description);
    std::string description;
    if (stream->kind == "Video") {
        description = classicVideo(words, context.ofOutput);
    } else if (stream->kind == "Audio") {
        description = classicAudio(words);
    } else {
        description = classicOther(words);
    }
    return "    Stream #" + stream->file + '.' + stream->number + classicSuffix(stream->suffix, context) + ": " +
           stream->kind + ": " + description;
}

std::optional<int> describedStream(std::string_view line)
{
    const auto stream = parsed(line);
    if (!stream) {
        return std::nullopt;
    }
    int number = 0;
    const auto result = std::from_chars(stream->number.data(), stream->number.data() + stream->number.size(), number);
    return result.ec == std::errc() ? std::optional<int>(number) : std::nullopt;
}

bool formatShowsIdentifiers(std::string_view formatNames)
{
    return formatNames == "mpegts" || formatNames == "mpeg";
}

} // namespace tavrix::front
