// SPDX-License-Identifier: GPL-3.0-or-later
// The tool in odd surroundings: streams that are closed or nobody's, names that are no files of their own.
#include "sys/descriptor.h"
#include "sys/transfer.h"
#include "tools/toolrun.h"

#include <array>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tavrix
{

namespace
{

namespace fs = std::filesystem;
using test::clip;
using test::contains;
using test::fileContents;
using test::probed;
using test::runTool;
using test::ToolEnd;
using Options = test::RunningTool::Options;
using test::Words;

class FfmpegSurroundings : public test::ToolTest
{
protected:
    static Words copyTo(const std::string& input, const std::string& output)
    {
        return {"-v", "1", "-i", input, "-vcodec", "copy", "-an", "-f", "mpegts", "-y", output};
    }
};

TEST_F(FfmpegSurroundings, EncodeGoesOnWhenNobodyReadsItsMessages)
{
    std::array<int, 2> ends = {-1, -1};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const Descriptor writing(ends[1]);
    close(ends[0]);
    Options options;
    options.errorStream = writing.get();
    EXPECT_EQ(runTool({"-i", clip("mov"), "-vcodec", "mpeg4", "-an", "-y", name("out.mov")}, options).code, 0);
    EXPECT_TRUE(contains(probed(name("out.mov"), "v", "nb_frames"), "nb_frames=25"));
}

TEST_F(FfmpegSurroundings, EveryLineIsWrittenAtOnce)
{
    // Such a pipe keeps what is written at once together, and apart from the rest.
    std::array<int, 2> ends = {-1, -1};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC | O_DIRECT), 0);
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    Options options;
    options.errorStream = writing.get();
    test::RunningTool tool({"-v", "1", "-i", clip("mts"), "-vcodec", "mpeg4", "-y", name("out.mov")}, options);
    writing.reset();
    int lines = 0;
    std::array<char, 4096> buffer = {};
    for (ssize_t size = 0; (size = read(reading.get(), buffer.data(), buffer.size())) > 0; ++lines) {
        const std::string_view text(buffer.data(), static_cast<std::size_t>(size));
        EXPECT_EQ(text.find_first_of("\r\n"), text.size() - 1) << text;
    }
    EXPECT_GT(lines, 10);
    EXPECT_EQ(tool.wait().code, 0);
}

TEST_F(FfmpegSurroundings, ClosedStreamsAreNotTakenForFiles)
{
    for (const std::vector<int>& closed : {std::vector<int>{0}, {1}, {2}, {0, 1, 2}}) {
        Options options;
        options.closedStreams = closed;
        EXPECT_EQ(runTool({"-i", clip("mov"), "-vcodec", "mpeg4", "-an", "-y", name("out.mov")}, options).code, 0);
        EXPECT_TRUE(contains(probed(name("out.mov"), "v", "nb_frames"), "nb_frames=25"));
        fs::remove(name("out.mov"));
    }
}

TEST_F(FfmpegSurroundings, StandardStreamsHaveNamesAmongTheDevices)
{
    Options options;
    options.input = fileContents(clip("mts"));
    for (const char* input : {"/dev/stdin", "/dev/fd/0", "/proc/self/fd/0"}) {
        EXPECT_EQ(runTool(copyTo(input, name("out.ts")), options).code, 0) << input;
    }
    const auto size = fs::file_size(name("out.ts"));
    // The stream is a regular file here, which must be written to and not replaced.
    fs::create_symlink("/proc/self/fd/1", name("link"));
    for (const std::string& output : {std::string("/dev/fd/1"), std::string("/proc/self/fd/1"), name("link")}) {
        const ToolEnd end = runTool(copyTo(clip("mts"), output));
        EXPECT_EQ(end.code, 0) << end.err;
        EXPECT_EQ(end.out.size(), size) << output;
    }
    EXPECT_TRUE(fs::is_symlink(name("link")));
}

TEST_F(FfmpegSurroundings, StreamIsNotReadTwice)
{
    Options options;
    options.input = fileContents(clip("avi"));
    const Words arguments = {"-i", "-", "-vcodec", "copy", "-vbsf", "h264_mp4toannexb", "-an", "-y", name("out.mov")};
    EXPECT_NE(runTool(arguments, options).code, 0);
    EXPECT_TRUE(entries().empty());
}

TEST_F(FfmpegSurroundings, NamedPipesAreWrittenToAndStay)
{
    ASSERT_EQ(mkfifo(name("pipe").c_str(), 0600), 0);
    test::RunningTool writer(copyTo(clip("mts"), name("pipe")), {});
    EXPECT_EQ(runTool(copyTo(name("pipe"), name("out.ts"))).code, 0);
    EXPECT_EQ(writer.wait().code, 0);
    EXPECT_TRUE(fs::is_fifo(name("pipe")));
    EXPECT_TRUE(contains(probed(name("out.ts"), "v", "codec_name"), "codec_name=h264\n"));
}

TEST_F(FfmpegSurroundings, LinkToAFolderIsNotReplaced)
{
    fs::create_directory(name("folder"));
    fs::create_directory_symlink("folder", name("link"));
    const ToolEnd end = runTool(copyTo(clip("mts"), name("link")));
    EXPECT_EQ(end.code, 1);
    EXPECT_TRUE(contains(end.err, name("link") + ": Is a directory\n")) << end.err;
    EXPECT_TRUE(fs::is_symlink(name("link")));
    EXPECT_EQ(entries(), (Words{"folder", "link"}));
}

TEST_F(FfmpegSurroundings, FormatWithoutAFileNeedsNone)
{
    EXPECT_EQ(runTool({"-i", clip("mov"), "-f", "null", name("nothing")}).code, 0);
    EXPECT_TRUE(entries().empty());
}

TEST_F(FfmpegSurroundings, NumberedPicturesSpareTheirSource)
{
    ASSERT_EQ(runTool({"-vframes", "1", "-i", clip("mov"), "-y", name("p001.jpg")}).code, 0);
    const std::string before = fileContents(name("p001.jpg"));
    for (const char* input : {"p001.jpg", "p%03d.jpg"}) {
        const ToolEnd end = runTool({"-i", name(input), "-s", "32x32", "-y", name("p%03d.jpg")});
        EXPECT_EQ(end.code, 1);
        EXPECT_TRUE(contains(end.err, "is also an input")) << end.err;
    }
    EXPECT_EQ(fileContents(name("p001.jpg")), before);
    EXPECT_EQ(runTool({"-f", "image2", "-i", name("p001.jpg"), "-s", "32x32", "-y", name("q%03d.jpg")}).code, 0);
    EXPECT_EQ(entries(), (Words{"p001.jpg", "q001.jpg"}));
}

TEST_F(FfmpegSurroundings, UnknownOptionDoesNotTurnAnInputIntoAnOutput)
{
    fs::copy_file(clip("mts"), name("a.mts"));
    fs::copy_file(clip("mts"), name("b.mts"));
    for (const char* option : {"-nosuchflag", "-xerror"}) {
        (void)runTool({"-y", "-i", name("a.mts"), option, "-i", name("b.mts"), "-vcodec", "copy", name("out.mov")});
    }
    EXPECT_EQ(fileContents(name("a.mts")), fileContents(clip("mts")));
    EXPECT_EQ(fileContents(name("b.mts")), fileContents(clip("mts")));
    EXPECT_EQ(probed(name("out.mov"), "v", "codec_name"), "codec_name=h264\n");
}

} // namespace

} // namespace tavrix
