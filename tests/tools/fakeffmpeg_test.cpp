// SPDX-License-Identifier: GPL-3.0-or-later
// The tool before scripts in the place of ffmpeg, for what the installed one does not do on request.
#include "tools/toolrun.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

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

class FakeFfmpeg : public test::ToolTest
{
protected:
    ToolEnd runWith(const std::string& script, const Words& arguments, test::RunningTool::Options options = {})
    {
        fs::create_directories(name("bin"));
        writeFile(name("bin/ffmpeg"), "#!/bin/sh\n" + script);
        chmod(name("bin/ffmpeg").c_str(), 0755);
        options.environment["PATH"] = name("bin") + ":/usr/bin:/bin";
        return runTool(arguments, options);
    }
    std::string output() const { return name("out.mov"); }
    static std::string writes(const std::string& text)
    {
        return "for o; do :; done\nprintf '" + text + "' > \"${o#file:}\"\n";
    }
};

TEST_F(FakeFfmpeg, GivesItsStatusToTheCaller)
{
    for (const int status : {0, 1, 8, 183, 234}) {
        EXPECT_EQ(runWith("exit " + std::to_string(status), {"-i", "x"}).code, status);
    }
    EXPECT_EQ(runWith("kill -9 $$", {"-i", "x"}).code, 128 + 9);
}

TEST_F(FakeFfmpeg, EndWithoutAReasonIsTold)
{
    EXPECT_TRUE(contains(runWith("kill -SEGV $$", {"-i", "x"}).err, "ffmpeg: ended by signal 11 ("));
    EXPECT_TRUE(contains(runWith("exit 1", {"-i", "x"}).err, "ffmpeg: ended with status 1 and said nothing\n"));
    const Words encode = {"-i", "x", "-y", output()};
    EXPECT_TRUE(contains(runWith("exit 0", encode).err, "ffmpeg: ended with status 0 and said nothing\n"));
    EXPECT_FALSE(contains(runWith("echo 'x: Unknown' >&2; exit 1", encode).err, "ended"));
    EXPECT_FALSE(contains(runWith(writes("data") + "exit 0", encode).err, "ended"));
}

TEST_F(FakeFfmpeg, PublishesAfterAGoodEndOnly)
{
    EXPECT_EQ(runWith(writes("data") + "exit 3", {"-i", "x", "-y", output()}).code, 3);
    EXPECT_FALSE(fs::exists(output()));
    EXPECT_EQ(runWith(writes("data") + "kill -9 $$", {"-i", "x", "-y", output()}).code, 137);
    EXPECT_FALSE(fs::exists(output()));
    EXPECT_EQ(runWith(writes("data") + "exit 0", {"-i", "x", "-y", output()}).code, 0);
    EXPECT_EQ(fileContents(output()), "data");
}

TEST_F(FakeFfmpeg, StatusZeroIsNoProof)
{
    for (const char* message :
         {"Error writing trailer of x: No space left on device", "av_interleaved_write_frame(): Input/output error",
          "Output file is empty, nothing was encoded (check -ss / -t / -frames parameters if used)"}) {
        const std::string script = writes("data") + "echo '" + message + "' >&2; exit 0";
        EXPECT_EQ(runWith(script, {"-i", "x", "-y", output()}).code, 1) << message;
        EXPECT_FALSE(fs::exists(output())) << message;
    }
    EXPECT_EQ(runWith("exit 0", {"-i", "x", "-y", output()}).code, 1);
    EXPECT_FALSE(fs::exists(output()));
}

TEST_F(FakeFfmpeg, SourceThatCannotBeReadToItsEndIsAFailure)
{
    for (const char* message : {"file:x: Input/output error", "file:x: Stale file handle", "file:x: No such device",
                                "[in#0/mpegts @ 0x1] Error during demuxing: Input/output error" /* 7.x, by hand */}) {
        const std::string script = writes("data") + "echo '" + message + "' >&2; exit 0";
        const ToolEnd end = runWith(script, {"-i", "x", "-y", output()});
        EXPECT_EQ(end.code, 1) << message;
        EXPECT_TRUE(contains(end.err, "Output incomplete, discarded: x: ")) << end.err;
        EXPECT_FALSE(fs::exists(output())) << message;
    }
}

TEST_F(FakeFfmpeg, OutputOfAnotherRunThatEndedFirstStays)
{
    const std::string script = writes("late") + "printf first > '" + output() + "'";
    const ToolEnd end = runWith(script, {"-i", "x", output()});
    EXPECT_EQ(end.code, 1);
    EXPECT_TRUE(contains(end.err, output() + ": File exists\n")) << end.err;
    EXPECT_EQ(fileContents(output()), "first");
    EXPECT_EQ(runWith(script, {"-i", "x", "-y", output()}).code, 0);
    EXPECT_EQ(fileContents(output()), "late");
}

TEST_F(FakeFfmpeg, SourceThatShrinksMeanwhileIsAFailure)
{
    const std::string result = name("out.mkv"); // a container whose content is not judged
    const std::string source = name("source.mts");
    const auto run = [&](const std::string& change) {
        writeFile(source, "0123456789");
        return runWith(writes("data") + change + " '" + source + "'", {"-i", source, "-y", result});
    };
    const ToolEnd end = run("printf 1 >");
    EXPECT_EQ(end.code, 1);
    EXPECT_TRUE(contains(end.err, source + " has become shorter meanwhile\n")) << end.err;
    EXPECT_FALSE(fs::exists(result));
    for (const char* harmless : {"printf 1 >>", "rm", "touch"}) {
        EXPECT_EQ(run(harmless).code, 0) << harmless;
        EXPECT_EQ(fileContents(result), "data");
    }
}

TEST_F(FakeFfmpeg, LiesAboutAnOutputAreFoundOut)
{
    const std::string scripts[] = {writes("data") + "exit 0",
                                   "for o; do :; done\nhead -c 300000 /dev/zero > \"${o#file:}\""};
    for (const char* older : {"", "older"}) {
        if (*older != '\0') {
            writeFile(output(), older);
        }
        for (const std::string& script : scripts) {
            const Words words = {"-i", clip("mts"), "-vcodec", "copy", "-acodec", "copy", "-y", output()};
            const ToolEnd end = runWith(script, words);
            EXPECT_EQ(end.code, 1) << script;
            EXPECT_TRUE(contains(end.err, "tavrix-verdict: failed not-readable ")) << end.err;
            EXPECT_TRUE(contains(end.err, "Output discarded: ")) << end.err;
            EXPECT_EQ(fs::exists(output()) ? fileContents(output()) : "", older);
        }
    }
}

TEST_F(FakeFfmpeg, ClipThatIsDamagedAtItsEndIsConvertedAsFarAsItGoes)
{
    const std::string script = writes("data") + "echo 'file:x: Invalid data found when processing input' >&2; exit 0";
    EXPECT_EQ(runWith(script, {"-i", "x", "-y", output()}).code, 0);
    EXPECT_EQ(fileContents(output()), "data");
}

TEST_F(FakeFfmpeg, WordsOfAFailureInANameMeanNothing)
{
    const std::string input = "No space left on device/Error muxing.mts";
    const std::string script =
        writes("data") + "echo \"Input #0, mpegts, from 'file:" + input + "':\" >&2\necho 'Output #0, mov, to '$o >&2";
    const std::string final = name("Conversion failed!.mov");
    const ToolEnd end = runWith(script, {"-i", input, "-y", final});
    EXPECT_EQ(end.code, 0) << end.err;
    EXPECT_TRUE(contains(end.err, "from '" + input + "':\n"));
    EXPECT_EQ(fileContents(final), "data");
}

TEST_F(FakeFfmpeg, FailureIsSeenAlsoWhereTheCallerIgnoresTheSignalOfItsChildren)
{
    test::RunningTool::Options options;
    options.ignoredSignals = {SIGCHLD};
    EXPECT_EQ(runWith(writes("half") + "exit 3", {"-i", "x", "-y", output()}, options).code, 3);
    EXPECT_EQ(runWith(writes("half") + "kill -9 $$", {"-i", "x", "-y", output()}, options).code, 128 + 9);
    EXPECT_FALSE(fs::exists(output()));
    EXPECT_EQ(runWith(writes("data") + "exit 0", {"-i", "x", "-y", output()}, options).code, 0);
    EXPECT_EQ(fileContents(output()), "data");
}

TEST_F(FakeFfmpeg, WritesNumbersInTheCLocale)
{
    EXPECT_TRUE(contains(runWith("echo \"<$LC_ALL>\" >&2", {"-i", "x"}).err, "<C>\n"));
}

TEST_F(FakeFfmpeg, LaterVersionsGetTheNewNameOfAnOption)
{
    const std::string script =
        "echo 'ffmpeg version 8.0 Copyright' >&2\n"
        "case \" $* \" in *' -vsync '*) echo \"Unrecognized option 'vsync'.\" >&2; exit 8;; esac\n"
        "echo \"got $*\" >&2\n" +
        writes("data");
    const ToolEnd end = runWith(script, {"-i", "x", "-vsync", "0", "-vcodec", "mpeg4", "-y", output()});
    EXPECT_EQ(end.code, 0) << end.err;
    EXPECT_TRUE(contains(end.err, "-fps_mode vfr"));
    EXPECT_FALSE(contains(end.err, "Unrecognized"));
    EXPECT_EQ(fileContents(output()), "data");
}

TEST_F(FakeFfmpeg, AnotherHolderOfTheStreamDoesNotDelayTheEnd)
{
    const ToolEnd end =
        runWith("sleep 60 & echo $! > '" + name("holder") + "'; echo last words >&2; exit 5", {"-i", "x"});
    const pid_t holder = std::atoi(fileContents(name("holder")).c_str());
    ASSERT_GT(holder, 0);
    EXPECT_TRUE(test::isAlive(holder));
    kill(holder, SIGKILL);
    EXPECT_EQ(end.code, 5);
    EXPECT_TRUE(end.err.ends_with("last words\n"));
}

TEST_F(FakeFfmpeg, UndecodableBytesAreReplaced)
{
    EXPECT_TRUE(contains(runWith("printf 'caf\\351\\n' >&2", {"-i", "x"}).err, "caf\xef\xbf\xbd\n"));
}

TEST_F(FakeFfmpeg, LongLinesArriveWhole)
{
    const ToolEnd end = runWith("head -c 300000 /dev/zero | tr '\\0' y >&2; echo >&2", {"-i", "x"});
    EXPECT_EQ(end.err, std::string(300000, 'y') + '\n');
}

TEST_F(FakeFfmpeg, TwoCopiesOfTheToolDoNotCallEachOther)
{
    fs::create_directories(name("a"));
    fs::create_directories(name("b"));
    fs::copy_file(test::toolPath(), name("a/ffmpeg"));
    fs::copy_file(test::toolPath(), name("b/ffmpeg"));
    test::RunningTool::Options options;
    options.environment["PATH"] = name("a") + ':' + name("b") + ":/usr/bin:/bin";
    const ToolEnd end = runTool({"-v", "2", "-i", clip("mov")}, options);
    EXPECT_EQ(end.code, 1);
    EXPECT_TRUE(contains(end.err, "At least one output file must be specified\n"));
}

TEST_F(FakeFfmpeg, IsNeverFoundThroughARelativeFolder)
{
    fs::create_directories(name("bin"));
    writeFile(name("bin/ffmpeg"), "#!/bin/sh\nexit 77\n");
    chmod(name("bin/ffmpeg").c_str(), 0755);
    test::RunningTool::Options options;
    options.environment["PATH"] = "bin:.:";
    options.workingFolder = name("");
    EXPECT_EQ(runTool({"-v", "2", "-i", clip("mov")}, options).code, 1);
}

} // namespace

} // namespace tavrix
