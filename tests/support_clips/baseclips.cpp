// SPDX-License-Identifier: GPL-3.0-or-later
#include "support_clips/sources.h"

#include "support/clipmaker.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

namespace tavrix::test
{

namespace
{

using Words = std::vector<std::string>;

// Three seconds; "@name" stands for the path of another clip.
struct Base {
    std::string extension;
    Words words;
};

Words operator+(Words left, const Words& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Words picture(const std::string& seconds = "3", const std::string& rate = "25", const std::string& filters = {})
{
    return {"-f", "lavfi", "-i", "testsrc2=s=160x120:r=" + rate + ":d=" + seconds + ",noise=alls=12:allf=t" + filters};
}

Words sound(const std::string& seconds = "3")
{
    return {"-f", "lavfi", "-i", "sine=d=" + seconds + ":r=48000"};
}

// As cameras do: groups of half a second, pictures that are shown before those they stand on.
const Words h264 = {"-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt",      "yuv420p",
                    "-bf",  "2",       "-g",      "12",        "-sc_threshold", "0"};
const Words jpeg = {"-c:v", "mjpeg", "-pix_fmt", "yuvj420p", "-q:v", "5"};
const Words ac3 = {"-c:a", "ac3", "-ac", "2"};
const Words aac = {"-c:a", "aac", "-ac", "2"};
const Words pcm = {"-c:a", "pcm_s16le", "-ac", "2", "-ar", "48000"};
const Words copy = {"-c", "copy"};

std::map<std::string, Base> transportStreams()
{
    return {
        {"mts", {"mts", picture() + sound() + h264 + ac3 + Words{"-f", "mpegts"}}},
        {"m2ts", {"m2ts", picture() + sound() + h264 + ac3 + Words{"-f", "mpegts", "-mpegts_m2ts_mode", "1"}}},
        {"later", {"mts", Words{"-i", "@mts"} + copy + Words{"-output_ts_offset", "100", "-f", "mpegts"}}},
        {"overlap", {"mts", Words{"-i", "@mts"} + copy + Words{"-output_ts_offset", "2.969", "-f", "mpegts"}}},
        {"silent", {"mts", picture() + h264 + Words{"-f", "mpegts"}}},
        {"surround", {"mts", picture() + sound() + h264 + Words{"-c:a", "ac3", "-ac", "6", "-f", "mpegts"}}},
        {"50p", {"mts", picture("3", "50") + sound() + h264 + ac3 + Words{"-f", "mpegts"}}},
        {"59.94p", {"mts", picture("3", "60000/1001") + sound() + h264 + ac3 + Words{"-f", "mpegts"}}},
        {"late sound", {"mts", picture() + Words{"-itsoffset", "0.5"} + sound() + h264 + ac3 + Words{"-f", "mpegts"}}},
        {"late picture",
         {"mts", Words{"-itsoffset", "0.4"} + picture() + sound() + h264 + ac3 + Words{"-f", "mpegts"}}},
        {"short sound", {"mts", picture() + sound("2") + h264 + ac3 + Words{"-f", "mpegts"}}},
        {"short picture", {"mts", picture("2") + sound() + h264 + ac3 + Words{"-f", "mpegts"}}},
        {"one group", {"mts", picture() + sound() + h264 + ac3 + Words{"-g", "250", "-f", "mpegts"}}},
        {"open groups",
         {"mts", picture() + sound() + h264 + ac3 + Words{"-x264-params", "open-gop=1", "-f", "mpegts"}}},
        {"programme",
         {"mpg",
          picture() + sound() + Words{"-c:v", "mpeg2video", "-b:v", "1M", "-g", "12", "-c:a", "mp2", "-f", "vob"}}},
    };
}

std::map<std::string, Base> movies()
{
    const Words first = {"-movflags", "faststart"};
    const Words uneven = {"-vf", "select='lt(n,20)+not(mod(n,3))'", "-vsync", "vfr"};
    return {
        {"mov", {"mov", picture() + sound() + h264 + pcm + first}},
        {"mov, index last", {"mov", picture() + sound() + h264 + aac}},
        {"mp4", {"mp4", picture() + sound() + h264 + aac + first}},
        {"mp4, index last", {"mp4", picture() + sound() + h264 + aac}},
        {"fragments", {"mp4", picture() + sound() + h264 + aac + Words{"-movflags", "frag_keyframe+empty_moov"}}},
        {"jpeg mov", {"mov", picture() + sound() + jpeg + pcm + first}},
        {"mono", {"mp4", picture() + sound() + h264 + Words{"-c:a", "aac", "-ac", "1"}}},
        {"uneven mov", {"mov", picture() + sound() + uneven + h264 + pcm}},
        {"uneven mp4", {"mp4", picture() + sound() + uneven + h264 + aac}},
        {"cut in", {"mov", Words{"-ss", "0.7", "-i", "@mov"} + copy}},
        {"cut in jpeg", {"mov", Words{"-ss", "0.7", "-i", "@jpeg mov"} + copy}},
        {"late picture mov",
         {"mov", Words{"-itsoffset", "1", "-i", "@mov", "-i", "@mov", "-map", "0:v", "-map", "1:a"} + copy}},
        {"late sound mov",
         {"mov", Words{"-itsoffset", "1", "-i", "@mov", "-i", "@mov", "-map", "1:v", "-map", "0:a"} + copy}},
        {"short sound mov", {"mov", picture() + sound("2") + h264 + pcm}},
        {"short picture mp4", {"mp4", picture("2") + sound() + h264 + aac}},
        {"key pictures only", {"mov", picture() + sound() + h264 + pcm + Words{"-g", "1", "-bf", "0"}}},
        {"time code", {"mov", picture() + sound() + h264 + pcm + Words{"-timecode", "01:00:00:00"}}},
        {"two sounds", {"mov", picture() + sound() + Words{"-map", "0", "-map", "1", "-map", "1"} + h264 + pcm}},
        {"hevc",
         {"mp4", picture() + sound() +
                     Words{"-c:v", "libx265", "-preset", "ultrafast", "-x265-params", "log-level=none"} + aac}},
    };
}

std::map<std::string, Base> aviFiles()
{
    return {
        {"avi", {"avi", picture() + sound() + jpeg + pcm}},
        {"h264 avi", {"avi", picture() + sound() + h264 + Words{"-bf", "0"} + pcm}},
        {"15 a second", {"avi", picture("3", "15") + sound() + jpeg + pcm}},
        {"mpeg4 avi", {"avi", picture() + sound() + Words{"-c:v", "mpeg4", "-q:v", "4"} + pcm}},
    };
}

const std::map<std::string, Base>& bases()
{
    static const std::map<std::string, Base> all = [] {
        auto list = transportStreams();
        list.merge(movies());
        list.merge(aviFiles());
        return list;
    }();
    return all;
}

} // namespace

std::string baseClip(const std::string& folder, const std::string& name)
{
    const auto base = bases().find(name);
    if (base == bases().end()) {
        ADD_FAILURE() << "there is no clip " << name;
        return {};
    }
    const std::string path = folder + "/base " + name + '.' + base->second.extension;
    if (std::filesystem::exists(path)) {
        return path;
    }
    Words words = base->second.words;
    for (std::string& word : words) {
        if (word.front() == '@') {
            word = baseClip(folder, word.substr(1));
        }
    }
    words.push_back(path);
    return runFfmpeg(words) ? path : std::string();
}

} // namespace tavrix::test
