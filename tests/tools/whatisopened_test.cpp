// SPDX-License-Identifier: GPL-3.0-or-later
// A file under a clip's name that leads to other files or to addresses is refused.
#include "tools/toolrun.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace tavrix
{

namespace
{

namespace fs = std::filesystem;
using test::clip;
using test::contains;
using test::fileContents;
using test::runTool;
using test::ToolEnd;
using test::Words;
using test::writeFile;

struct Lure {
    const char* name;
    const char* content; // names "other.ts", a clip that could be read
};

void PrintTo(const Lure& lure, std::ostream* stream)
{
    *stream << lure.name;
}

const Lure lures[] = {
    {"playlist_of_a_file", "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nother.ts\n"
                           "#EXT-X-ENDLIST\n"},
    {"playlist_of_an_address", "#EXTM3U\n#EXT-X-VERSION:3\n#EXTINF:10,\nhttp://127.0.0.1:9/x.ts\n#EXT-X-ENDLIST\n"},
    {"concatenation", "ffconcat version 1.0\nfile other.ts\n"},
    {"list_of_segments", "<?xml version=\"1.0\"?>\n<MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" type=\"static\">"
                         "<Period><AdaptationSet mimeType=\"video/mp2t\"><Representation id=\"1\" "
                         "bandwidth=\"1\"><BaseURL>other.ts</BaseURL></Representation></AdaptationSet></Period>"
                         "</MPD>\n"},
    {"session", "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\nm=video 9 RTP/AVP 33\n"},
    {"script_of_frames", "[Main]\nfile=other.ts\n"},
};

class Lures : public test::ToolTest, public testing::WithParamInterface<Lure>
{
};

TEST_P(Lures, AreRefusedUnderEveryClipsName)
{
    fs::copy_file(clip("mts"), name("other.ts"));
    for (const char* extension : {"mts", "mov", "avi", "m3u8"}) {
        const std::string lure = name(std::string("clip.") + extension);
        writeFile(lure, GetParam().content);
        const ToolEnd end = runTool({"-v", "1", "-i", lure, "-vcodec", "copy", "-an", "-y", name("out.mov")});
        EXPECT_NE(end.code, 0) << extension;
        EXPECT_TRUE(contains(end.err, lure + ": Unknown format\n")) << end.err;
        EXPECT_FALSE(contains(end.err, "other.ts")) << end.err;
        EXPECT_FALSE(contains(end.err, "Connection")) << end.err;
        EXPECT_FALSE(fs::exists(name("out.mov")));
        fs::remove(lure);
    }
}

INSTANTIATE_TEST_SUITE_P(Opened, Lures, testing::ValuesIn(lures),
                         [](const auto& lure) { return std::string(lure.param.name); });

class WhatIsOpened : public test::ToolTest
{
};

TEST_F(WhatIsOpened, APictureOrANumberedListUnderAClipsNameIsNoClip)
{
    ASSERT_EQ(runTool({"-vframes", "1", "-i", clip("mov"), "-y", name("p001.jpg")}).code, 0);
    fs::copy_file(name("p001.jpg"), name("clip.mov"));
    for (const char* input : {"clip.mov", "p001.jpg", "p%03d.jpg"}) {
        const ToolEnd end = runTool({"-v", "2", "-i", name(input), "-y", name("out.mov")});
        EXPECT_NE(end.code, 0) << input;
        EXPECT_FALSE(fs::exists(name("out.mov"))) << input;
    }
}

TEST_F(WhatIsOpened, AFormatThatTheCallerNamesIsRead)
{
    ASSERT_EQ(runTool({"-i", clip("mov"), "-vn", "-f", "wav", "-y", name("sound.wav")}).code, 0);
    EXPECT_NE(runTool({"-i", name("sound.wav"), "-y", name("out.mov")}).code, 0);
    EXPECT_EQ(runTool({"-f", "wav", "-i", name("sound.wav"), "-y", name("out.mov")}).code, 0);
}

} // namespace

} // namespace tavrix
