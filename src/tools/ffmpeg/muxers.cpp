// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/muxers.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace tavrix::front
{

namespace
{

struct Row {
    std::string_view extension;
    std::string_view format;
};

constexpr std::array rows = {
    Row{"mp4", "mp4"},        Row{"m4v", "ipod"},         Row{"m4a", "ipod"},     Row{"mov", "mov"},
    Row{"3gp", "3gp"},        Row{"avi", "avi"},          Row{"mkv", "matroska"}, Row{"webm", "webm"},
    Row{"mpg", "mpeg"},       Row{"mpeg", "mpeg"},        Row{"vob", "svcd"},     Row{"ts", "mpegts"},
    Row{"mts", "mpegts"},     Row{"m2t", "mpegts"},       Row{"m2ts", "mpegts"},  Row{"dv", "dv"},
    Row{"flv", "flv"},        Row{"wmv", "asf"},          Row{"asf", "asf"},      Row{"mxf", "mxf"},
    Row{"nut", "nut"},        Row{"wav", "wav"},          Row{"mp3", "mp3"},      Row{"mp2", "mp2"},
    Row{"aac", "adts"},       Row{"ac3", "ac3"},          Row{"aiff", "aiff"},    Row{"aif", "aiff"},
    Row{"flac", "flac"},      Row{"ogg", "ogg"},          Row{"h264", "h264"},    Row{"264", "h264"},
    Row{"m2v", "mpeg2video"}, Row{"m1v", "mpeg1video"},   Row{"mjpg", "mjpeg"},   Row{"mjpeg", "mjpeg"},
    Row{"gif", "gif"},        Row{"y4m", "yuv4mpegpipe"}, Row{"yuv", "rawvideo"}, Row{"jpg", "image2"},
    Row{"jpeg", "image2"},    Row{"png", "image2"},       Row{"bmp", "image2"},   Row{"tif", "image2"},
    Row{"tiff", "image2"},    Row{"ppm", "image2"},       Row{"m3u8", "hls"},     Row{"mpd", "dash"},
};

std::string lowerExtension(std::string_view fileName)
{
    const auto slash = fileName.rfind('/');
    const std::string_view name = slash == std::string_view::npos ? fileName : fileName.substr(slash + 1);
    const auto dot = name.rfind('.');
    std::string extension(dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1));
    for (char& c : extension) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return extension;
}

std::size_t leadingDigits(std::string_view text)
{
    const auto end = text.find_first_not_of("0123456789");
    return end == std::string_view::npos ? text.size() : end;
}

// The length of "%d" or "%03d" at the start of `text`; 0 when there is none.
std::size_t numberFieldLength(std::string_view text)
{
    if (!text.starts_with('%')) {
        return 0;
    }
    const std::size_t digits = leadingDigits(text.substr(1));
    return text.size() > digits + 1 && text[digits + 1] == 'd' ? digits + 2 : 0;
}

std::string_view pictureCodec(std::string_view extension)
{
    if (extension == "png" || extension == "bmp" || extension == "ppm") {
        return extension;
    }
    return extension.starts_with("tif") ? "tiff" : "mjpeg";
}

std::string_view formatFor(const std::string& extension)
{
    const auto* const row = std::ranges::find(rows, extension, &Row::extension);
    return row == rows.end() ? std::string_view() : row->format;
}

} // namespace

std::vector<std::string> muxerArguments(std::string_view fileName)
{
    const std::string extension = lowerExtension(fileName);
    const std::string_view format = formatFor(extension);
    if (format.empty()) {
        return {};
    }
    std::vector<std::string> arguments = formatArguments(std::string(format));
    if (extension == "m2ts") {
        arguments.insert(arguments.end(), {"-mpegts_m2ts_mode", "1"});
    } else if (format == "image2") {
        // The muxer would choose the codec by the name, which it does not see.
        arguments.insert(arguments.begin(), {"-c:v", std::string(pictureCodec(extension))});
    }
    return arguments;
}

std::vector<std::string> formatArguments(const std::string& format)
{
    if (format == "image2") {
        return {"-f", format, "-update", "1"};
    }
    return {"-f", format};
}

bool isPictureSequence(std::string_view fileName)
{
    if (formatFor(lowerExtension(fileName)) != "image2") {
        return false;
    }
    for (auto i = fileName.find('%'); i != std::string_view::npos; i = fileName.find('%', i + 1)) {
        if (numberFieldLength(fileName.substr(i)) > 0) {
            return true;
        }
    }
    return false;
}

bool isPictureOf(std::string_view pattern, std::string_view name)
{
    while (!pattern.empty()) {
        const std::size_t field = numberFieldLength(pattern);
        const std::size_t digits = field > 0 ? leadingDigits(name) : 0;
        if (field > 0 && digits == 0) {
            return false;
        }
        if (pattern.starts_with("%%")) {
            pattern.remove_prefix(1);
        }
        if (field == 0 && (name.empty() || name.front() != pattern.front())) {
            return false;
        }
        pattern.remove_prefix(field > 0 ? field : 1);
        name.remove_prefix(field > 0 ? digits : 1);
    }
    return name.empty();
}

bool writesOtherFiles(const std::vector<std::string>& muxer)
{
    constexpr std::array<std::string_view, 7> formats = {"null", "segment", "stream_segment", "ssegment",
                                                         "hls",  "dash",    "smoothstreaming"};
    return std::ranges::any_of(
        muxer, [&](const std::string& word) { return std::ranges::find(formats, word) != formats.end(); });
}

bool isScratchFormat(const std::vector<std::string>& muxer)
{
    return std::ranges::any_of(muxer, [](const std::string& word) {
        return word == "yuv4mpegpipe" || word == "rawvideo" || word == "image2";
    });
}

} // namespace tavrix::front
