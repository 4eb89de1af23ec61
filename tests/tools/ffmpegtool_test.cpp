// SPDX-License-Identifier: GPL-3.0-or-later
// The tool before the installed ffmpeg, on real clips.
#include "tools/toolrun.h"

#include <QProcess>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavrix
{

namespace
{

namespace fs = std::filesystem;
using test::clip;
using test::contains;
using test::entriesOf;
using test::fileContents;
using test::probed;
using test::runTool;
using test::ToolEnd;
using test::Words;
using test::writeFile;

class FfmpegTool : public test::ToolTest
{
};

TEST_F(FfmpegTool, WithoutArgumentsNamesItsRevision)
{
    const ToolEnd end = runTool({});
    EXPECT_EQ(end.code, 1);
    EXPECT_TRUE(contains(end.err, "git-N-25800-g"));
    EXPECT_TRUE(contains(end.err, "usage: ffmpeg"));
}

TEST_F(FfmpegTool, ExplainsItself)
{
    const ToolEnd end = runTool({"--help"});
    EXPECT_EQ(end.code, 0);
    EXPECT_TRUE(contains(end.out, "usage: ffmpeg"));
    EXPECT_TRUE(end.err.empty());
}

TEST_F(FfmpegTool, PassesQuestionsAboutFfmpegOn)
{
    const ToolEnd end = runTool({"-version"});
    EXPECT_EQ(end.code, 0);
    EXPECT_TRUE(end.out.starts_with("ffmpeg version "));
}

TEST_F(FfmpegTool, DescribesAClipWhateverTheVerbosity)
{
    for (const char* level : {"-1", "0", "1", "2", "3", "10"}) {
        const ToolEnd end = runTool({"-v", level, "-i", clip("mts")});
        EXPECT_EQ(end.code, 1);
        EXPECT_TRUE(contains(end.err, "Input #0, mpegts, from '" + clip("mts") + "':\n")) << level;
        EXPECT_TRUE(contains(end.err, "At least one output file must be specified\n")) << level;
        EXPECT_TRUE(contains(end.err, ": Video: h264, yuv420p, 640x360 [PAR 1:1 DAR 16:9], ")) << level;
        EXPECT_TRUE(contains(end.err, "59.94 tbr, 90k tbn, 119.88 tbc\n")) << level;
    }
}

TEST_F(FfmpegTool, DecodesTenFramesForTheAnalysis)
{
    const ToolEnd end = runTool({"-v", "2", "-i", clip("mts"), "-vframes", "10", "-s", "640x480", "-pix_fmt", "yuv420p",
                                 "-an", "-f", "yuv4mpegpipe", "-y", name("frame.yuv")});
    EXPECT_EQ(end.code, 0);
    EXPECT_TRUE(contains(end.err, "Output #0, yuv4mpegpipe, to '" + name("frame.yuv") + "':\n"));
    const std::string frames = fileContents(name("frame.yuv"));
    EXPECT_TRUE(frames.starts_with("YUV4MPEG2 W640 H480 ") && contains(frames.substr(0, 100), " Ip "));
    EXPECT_GE(frames.size(), std::size_t{10 * 640 * 480 * 3 / 2});
    EXPECT_EQ(entries(), Words{"frame.yuv"});
}

TEST_F(FfmpegTool, GrabsOnePictureWithAPercentSignInItsName)
{
    const ToolEnd end =
        runTool({"-vframes", "1", "-i", clip("mts"), "-s", "320x180", "-y", name("clip%d %03d.mts.jpg")});
    EXPECT_EQ(end.code, 0) << end.err;
    EXPECT_EQ(entries(), Words{"clip%d %03d.mts.jpg"});
    EXPECT_TRUE(fileContents(name("clip%d %03d.mts.jpg")).starts_with("\xff\xd8\xff"));
}

TEST_F(FfmpegTool, EncodesWithTheRateHalvedAndTheAspectRight)
{
    const ToolEnd end =
        runTool({"-v",         "1",       "-i",      clip("mts"),    "-vsync", "0",   "-r",
                 "30000/1001", "-vcodec", "mpeg4",   "-vb",          "250k",   "-vf", "scale=480:272,setdar=16:9",
                 "-acodec",    "aac",     "-strict", "experimental", "-ab",    "64k", "-ac",
                 "2",          "-ar",     "44100",   "-g",           "25",     "-y",  name("out.mp4")});
    EXPECT_EQ(end.code, 0) << end.err;
    EXPECT_EQ(probed(name("out.mp4"), "v", "codec_name,width,height,display_aspect_ratio,r_frame_rate"),
              "codec_name=mpeg4\nwidth=480\nheight=272\ndisplay_aspect_ratio=16:9\nr_frame_rate=30000/1001\n");
    EXPECT_EQ(probed(name("out.mp4"), "a", "codec_name,sample_rate,channels"),
              "codec_name=aac\nsample_rate=44100\nchannels=2\n");
    EXPECT_TRUE(contains(end.err, " time=1.0")) << end.err;
    EXPECT_TRUE(contains(end.err, "Press [q] to stop encoding\n"));
}

TEST_F(FfmpegTool, EncodesH264WithTheAspectOfEveryFrameSize)
{
    struct {
        const char* filter;
        const char* aspect;
    } const rows[] = {
        {"scale=640:368,setdar=16:9", "16:9"}, {"scale=480:368,setdar=4:3", "4:3"}, {"'setdar=4:3'", "4:3"}};
    for (const auto& row : rows) {
        const ToolEnd end =
            runTool({"-v",        "1",        "-i",      clip("mov"), "-vsync", "0",        "-preset",
                     "ultrafast", "-vcodec",  "libx264", "-vb",       "1400k",  "-maxrate", "1500k",
                     "-vf",       row.filter, "-an",     "-g",        "25",     "-y",       name("out.m4v")});
        EXPECT_EQ(end.code, 0) << end.err;
        EXPECT_EQ(probed(name("out.m4v"), "v", "codec_name,display_aspect_ratio"),
                  std::string("codec_name=h264\ndisplay_aspect_ratio=") + row.aspect + '\n');
        EXPECT_TRUE(contains(probed(name("out.m4v"), "v", "nb_frames"), "nb_frames=25")) << row.filter;
    }
}

TEST_F(FfmpegTool, CopiesH264ThroughTheBitstreamFilter)
{
    const ToolEnd end =
        runTool({"-v", "1", "-i", clip("mts"), "-vsync", "0", "-vcodec", "copy", "-vbsf", "h264_mp4toannexb", "-acodec",
                 "pcm_s16le", "-ac", "2", "-ar", "48000", "-y", name("out.mov")});
    EXPECT_EQ(end.code, 0) << end.err;
    EXPECT_EQ(probed(name("out.mov"), "v", "codec_name,width"), "codec_name=h264\nwidth=640\n");
    EXPECT_EQ(probed(name("out.mov"), "a", "codec_name"), "codec_name=pcm_s16le\n");
}

TEST_F(FfmpegTool, CopiesMotionJpegWithoutTheBitstreamFilter)
{
    const ToolEnd end =
        runTool({"-v", "1", "-i", clip("avi"), "-vsync", "0", "-vcodec", "copy", "-vbsf", "h264_mp4toannexb", "-acodec",
                 "pcm_s16le", "-ac", "2", "-ar", "48000", "-y", name("out.mov")});
    EXPECT_EQ(end.code, 0) << end.err;
    EXPECT_EQ(probed(name("out.mov"), "v", "codec_name"), "codec_name=mjpeg\n");
    EXPECT_FALSE(contains(end.err, "bitstream filter"));
    EXPECT_EQ(end.err.find("FFmpeg version"), end.err.rfind("FFmpeg version"));
}

TEST_F(FfmpegTool, RewrapsIntoAviAndM4v)
{
    EXPECT_EQ(runTool({"-v", "1", "-i", clip("avi"), "-vsync", "0", "-vcodec", "copy", "-acodec", "pcm_s16le", "-ac",
                       "2", "-ar", "48000", "-y", name("out.avi")})
                  .code,
              0);
    EXPECT_EQ(runTool({"-v",      "1",
                       "-i",      clip("mts"),
                       "-vsync",  "0",
                       "-vcodec", "copy",
                       "-vbsf",   "h264_mp4toannexb",
                       "-acodec", "aac",
                       "-strict", "experimental",
                       "-ab",     "192k",
                       "-ac",     "2",
                       "-ar",     "44100",
                       "-y",      name("out.m4v")})
                  .code,
              0);
    EXPECT_EQ(entries(), (Words{"out.avi", "out.m4v"}));
    EXPECT_EQ(probed(name("out.avi"), "v", "codec_name"), "codec_name=mjpeg\n");
    EXPECT_EQ(probed(name("out.m4v"), "a", "codec_name,sample_rate"), "codec_name=aac\nsample_rate=44100\n");
}

TEST_F(FfmpegTool, MeasuresADuration)
{
    const ToolEnd end = runTool({"-i", clip("mov"), "-vcodec", "copy", "-an", "-f", "null", "-y", "/dev/null"});
    EXPECT_EQ(end.code, 0);
    const auto time = end.err.rfind("time=");
    ASSERT_NE(time, std::string::npos);
    EXPECT_NEAR(std::strtod(end.err.c_str() + time + 5, nullptr), 0.96, 0.05);
}

TEST_F(FfmpegTool, TellsPacketTimesUnderTheirOldNames)
{
    const ToolEnd end = runTool({"-fdebug", "ts", "-i", clip("mts")});
    EXPECT_TRUE(contains(end.err, " av_read_frame_internal stream=0, pts="));
    EXPECT_TRUE(contains(end.err, " av_read_packet stream=1, pts="));
    EXPECT_TRUE(contains(end.err, ", 1/90000: Video: h264, yuv420p, 640x360 "));
    EXPECT_TRUE(contains(end.err, "At least one output file must be specified"));
}

TEST_F(FfmpegTool, WritesToStandardOutputUntouched)
{
    const ToolEnd end = runTool(
        {"-vframes", "1", "-i", clip("mov"), "-s", "640x480", "-pix_fmt", "yuv420p", "-f", "yuv4mpegpipe", "-"});
    EXPECT_EQ(end.code, 0);
    EXPECT_TRUE(end.out.starts_with("YUV4MPEG2 W640 H480 "));
}

TEST_F(FfmpegTool, ReadsStandardInputOnlyAsAnInput)
{
    test::RunningTool::Options options;
    options.input = "qqqq";
    const ToolEnd end = runTool({"-i", clip("mov"), "-vcodec", "mpeg4", "-an", "-y", name("out.avi")}, options);
    EXPECT_EQ(end.code, 0);
    EXPECT_TRUE(contains(probed(name("out.avi"), "v", "nb_frames"), "nb_frames=25"));
    options.input = fileContents(clip("mts"));
    EXPECT_EQ(runTool({"-f", "mpegts", "-i", "-", "-vcodec", "copy", "-an", "-y", name("in.mov")}, options).code, 0);
}

TEST_F(FfmpegTool, FailsInTheOldWords)
{
    writeFile(name("empty.MTS"), "");
    writeFile(name("broken.MTS"), std::string(50000, 'x'));
    writeFile(name("truncated.mov"), fileContents(clip("long")).substr(0, 40000));
    struct {
        const char* file;
        const char* reason;
    } const rows[] = {{"empty.MTS", "Unknown format"},
                      {"broken.MTS", "Unknown format"},
                      {"truncated.mov", "Unknown format"},
                      {"nosuch.MTS", "No such file or directory"},
                      {"", "Error while opening file (Is a directory)"}};
    for (const auto& row : rows) {
        const ToolEnd end = runTool({"-v", "2", "-i", name(row.file), "-y", name("out.mov")});
        EXPECT_NE(end.code, 0);
        EXPECT_FALSE(end.bySignal);
        EXPECT_TRUE(contains(end.err, name(row.file) + ": " + row.reason + "\n")) << end.err;
        EXPECT_FALSE(fs::exists(name("out.mov")));
    }
}

TEST_F(FfmpegTool, LeavesAnExistingOutputAloneWhenItFails)
{
    writeFile(name("out.mov"), "old");
    writeFile(name("broken.MTS"), std::string(50000, 'x'));
    EXPECT_NE(runTool({"-i", name("broken.MTS"), "-y", name("out.mov")}).code, 0);
    EXPECT_NE(runTool({"-i", clip("mov"), "-vcodec", "nosuchcodec", "-y", name("out.mov")}).code, 0);
    EXPECT_EQ(fileContents(name("out.mov")), "old");
    EXPECT_EQ(entries(), (Words{"broken.MTS", "out.mov"}));
}

TEST_F(FfmpegTool, AsksNobodyBeforeOverwriting)
{
    writeFile(name("out.mov"), "old");
    const ToolEnd end = runTool({"-i", clip("mov"), "-vcodec", "copy", name("out.mov")});
    EXPECT_EQ(end.code, 1);
    EXPECT_TRUE(contains(end.err, "File '" + name("out.mov") +
                                      "' already exists. Overwrite ? [y/N] Not overwriting - exiting\n"));
    EXPECT_EQ(fileContents(name("out.mov")), "old");
    EXPECT_EQ(runTool({"-i", clip("mov"), "-vcodec", "copy", "-y", name("out.mov")}).code, 0);
    EXPECT_NE(fileContents(name("out.mov")), "old");
}

TEST_F(FfmpegTool, RefusesAnOutputThatIsAnInput)
{
    fs::copy_file(clip("mov"), name("a.mov"));
    fs::create_hard_link(name("a.mov"), name("hard.mov"));
    fs::create_symlink("a.mov", name("soft.mov"));
    const std::string before = fileContents(name("a.mov"));
    for (const char* output : {"a.mov", "hard.mov", "soft.mov", "../" /* a folder */}) {
        const ToolEnd end = runTool({"-i", name("a.mov"), "-vcodec", "copy", "-y", name(output)});
        EXPECT_EQ(end.code, 1);
        EXPECT_TRUE(contains(end.err, "is also an input") || contains(end.err, "Is a directory")) << end.err;
    }
    EXPECT_EQ(fileContents(name("a.mov")), before);
    EXPECT_TRUE(fs::is_symlink(name("soft.mov")));
}

TEST_F(FfmpegTool, TakesADiskWithoutRoomAsAFailure)
{
    writeFile(name("out.mov"), "old");
    for (const char* output : {"out.mov", "new.avi"}) {
        test::RunningTool::Options options;
        options.fileSizeLimit = 100000;
        const ToolEnd end =
            runTool({"-i", clip("mts"), "-vcodec", "copy", "-acodec", "pcm_s16le", "-y", name(output)}, options);
        EXPECT_NE(end.code, 0) << end.err;
    }
    EXPECT_EQ(fileContents(name("out.mov")), "old");
    EXPECT_EQ(entries(), Words{"out.mov"});
}

TEST_F(FfmpegTool, TakesAFullDiskAsAFailureThoughFfmpegEndsWithZero)
{
    // A file system of its own that holds too little; only some users may make one.
    const std::string disk = name("disk");
    fs::create_directory(disk);
    const std::string script = "mount -t tmpfs -o size=200k none '" + disk +
                               "' || exit 99\n\"$0\" \"$@\"\nstatus=$?\nls -A '" + disk + "'\nexit $status";
    Words words = {"-m",   "sh",      "-c",        script, test::toolPath(), "-i", clip("mts"), "-vcodec",
                   "copy", "-acodec", "pcm_s16le", "-y",   disk + "/out.mov"};
    QStringList list;
    for (const std::string& word : words) {
        list.append(QString::fromStdString(word));
    }
    QProcess process;
    process.start(QStringLiteral("/usr/bin/unshare"), list);
    process.waitForFinished(60000);
    if (process.exitStatus() != QProcess::NormalExit || process.error() == QProcess::FailedToStart ||
        process.exitCode() == 99 || contains(process.readAllStandardError().toStdString(), "unshare failed")) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    EXPECT_NE(process.exitCode(), 0);
    EXPECT_EQ(process.readAllStandardOutput().toStdString(), "");
}

TEST_F(FfmpegTool, TakesAnOutputWithoutFramesAsAFailure)
{
    for (const Words& words :
         {Words{"-ss", "3600", "-vframes", "1", "-i", clip("mov"), "-y", name("out.jpg")},
          Words{"-i", clip("mts"), "-ss", "3600", "-vcodec", "copy", "-an", "-y", name("out.mov")},
          Words{"-i", clip("mts"), "-ss", "3600", "-vcodec", "copy", "-acodec", "aac", "-y", name("out.m4v")},
          Words{"-i", clip("mts"), "-t", "0", "-y", name("out.mp4")}}) {
        const ToolEnd end = runTool(words);
        EXPECT_NE(end.code, 0) << end.err;
    }
    EXPECT_TRUE(entries().empty());
}

TEST_F(FfmpegTool, TakesAnyFileNameAsData)
{
    const std::string folder = name("$(touch x) `id`;& 'q' \"d\"\né😀");
    fs::create_directory(folder);
    const Words names = {"-an.mts",
                         "%d clip%03d.mts",
                         "a:b.mts",
                         "pipe:x.mts",
                         "http:..host.mts",
                         "new\nline.mts",
                         "re\rturn.mts",
                         "tab\there.mts",
                         "'q'\"d\"\\.mts",
                         "$(touch x);&|.mts",
                         "caf\xc3\xa9 \xf0\x9f\x98\x80.mts",
                         "latin\xe9.mts",
                         " .mts",
                         std::string(251, 'n') + ".mts"};
    test::RunningTool::Options options;
    options.workingFolder = folder;
    const auto inFolder = [&](const std::string& file) {
        return (fs::path(folder) / file).string();
    };
    for (const std::string& file : names) {
        fs::copy_file(clip("mts"), inFolder(file));
        const std::string output = file.substr(0, file.size() - 4) + ".mov";
        for (const std::string& prefix : {std::string(), folder + '/'}) {
            const ToolEnd end =
                runTool({"-v", "1", "-i", prefix + file, "-vcodec", "copy", "-an", "-y", prefix + output}, options);
            EXPECT_EQ(end.code, 0) << file << '\n' << end.err;
            EXPECT_EQ(probed(inFolder(output), "v", "codec_name"), "codec_name=h264\n") << file;
            EXPECT_TRUE(contains(end.err, "Input #0, mpegts, from '")) << file;
        }
    }
    EXPECT_EQ(entriesOf(folder).size(), names.size() * 2);
}

TEST_F(FfmpegTool, DescribesAFileAtTheEndOfALongPath)
{
    std::string deep = folderPath();
    while (deep.size() < 1500) {
        deep += '/' + std::string(200, 'd');
        fs::create_directory(deep);
    }
    fs::copy_file(clip("mts"), deep + "/clip.mts");
    const ToolEnd end =
        runTool({"-v", "1", "-i", deep + "/clip.mts", "-vcodec", "copy", "-an", "-y", deep + "/out.mov"});
    EXPECT_EQ(end.code, 0) << end.err;
    EXPECT_TRUE(contains(end.err, "from '" + deep + "/clip.mts':\n  Duration: "));
    EXPECT_TRUE(contains(end.err, "to '" + deep + "/out.mov':\n"));
}

TEST_F(FfmpegTool, NeedsAnInputAndAnOutput)
{
    EXPECT_TRUE(contains(runTool({"-y", name("out.mov")}).err, "At least one input file must be specified"));
    EXPECT_TRUE(contains(runTool({"-y"}).err, "At least one output file must be specified"));
    EXPECT_TRUE(contains(runTool({"-i"}).err, "missing argument for option '-i'"));
}

TEST_F(FfmpegTool, TranscriptIsCompleteWhenTheShellReturns)
{
    for (int i = 0; i < 5; ++i) {
        const std::string command =
            '"' + test::toolPath() + "\" -v 2 -i \"" + clip("mov") + "\" 2>" + name("cap") + " 1>&2";
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
        EXPECT_TRUE(fileContents(name("cap")).ends_with("At least one output file must be specified\n"));
    }
}

} // namespace

} // namespace tavrix
