// SPDX-License-Identifier: GPL-3.0-or-later
// An analysis in the tool's own process against the same one by the installed ffmpeg: not a byte may differ.
#include "support/waituntil.h"
#include "sys/descriptor.h"
#include "tools/ffmpeg/analysisversions.h"
#include "tools/toolrun.h"

#include <QRegularExpression>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace tavrix
{

namespace
{

namespace fs = std::filesystem;
using test::fileContents;
using test::runTool;
using test::ToolEnd;
using test::Words;
using test::writeFile;
using Options = test::RunningTool::Options;

// What the machine decides on, goes: addresses, pictures a second, and the progress before the last.
std::string steadyWords(const std::string& said)
{
    QString text = QString::fromLatin1(said.data(), qsizetype(said.size()));
    text.remove(QRegularExpression(QStringLiteral(" @ 0x[0-9a-f]+")));
    text.replace(QRegularExpression(QStringLiteral("fps= *[0-9]+")), QStringLiteral("fps="));
    text.remove(QRegularExpression(QStringLiteral("frame=[^\\r\\n]* size=[^\\r\\n]*\\r")));
    return text.toLatin1().toStdString();
}

std::string pictures(const std::string& size, const std::string& rate, const std::string& seconds = "1")
{
    return "-f lavfi -i testsrc2=size=" + size + ":rate=" + rate + ":duration=" + seconds + ' ';
}

class AnalysisHere : public test::ToolTest
{
protected:
    void SetUp() override
    {
        fs::create_directory(keep());
        fs::permissions(keep(), fs::perms::owner_all);
        // The first run hears what the installed ffmpeg says of itself.
        (void)runTool({"-v", "2", "-i", test::clip("mts")}, here());
        ASSERT_TRUE(fs::exists(keep() + "/kept-banner"));
    }

    std::string keep() const { return name("keep"); }
    Options here() const
    {
        Options options;
        options.environment["TAVRIX_KEEPS"] = keep();
        return options;
    }
    // Left by a run that has made the frames itself.
    bool pictureIsKept() const { return fs::exists(keep() + "/kept-thumbnail"); }

    // A look before the clip's turn: nothing is said or written.
    void lookAhead(const std::string& source) const
    {
        Options options = here();
        options.environment["TAVRIX_AHEAD"] = "1";
        EXPECT_TRUE(run(frames(source), options) == (Result{"", 0, ""})) << source;
    }
    // What such looks have left, without the notes that they were under way.
    Words left() const
    {
        Words names;
        for (const std::string& entry : test::entriesOf(keep())) {
            if (entry.starts_with("kept-ahead-") && !entry.ends_with(".making")) {
                names.push_back(entry);
            }
        }
        return names;
    }

    Words frames(const std::string& source) const
    {
        return {"-v",  "2",  "-i",           source, "-vframes",       "10", "-s", "640x480", "-pix_fmt", "yuv420p",
                "-an", "-f", "yuv4mpegpipe", "-y",   name("frame.yuv")};
    }
    Words picture(const std::string& source, const std::string& size = "320x180") const
    {
        return {"-vframes", "1", "-i", source, "-s", size, "-y", name("picture.jpg")};
    }

    struct Result {
        std::string text;
        int code = -1;
        std::string bytes;

        bool operator==(const Result&) const = default;
    };
    Result run(const Words& words, const Options& options) const
    {
        for (const char* output : {"frame.yuv", "picture.jpg"}) {
            fs::remove(name(output));
        }
        const ToolEnd end = runTool(words, options);
        return {steadyWords(end.err), end.code, fileContents(name("frame.yuv")) + fileContents(name("picture.jpg"))};
    }
    // Not with EXPECT_EQ: nobody reads megabytes of pictures.
    void expectSame(const Words& words, const std::string& what) const { expectSame(run(words, {}), words, what); }
    void expectSame(const Result& far, const Words& words, const std::string& what) const
    {
        const Result near = run(words, here());
        EXPECT_EQ(near.text, far.text) << what;
        EXPECT_EQ(near.code, far.code) << what;
        EXPECT_TRUE(near.bytes == far.bytes)
            << what << ": " << near.bytes.size() << " bytes instead of " << far.bytes.size();
    }

    static void make(const std::string& path, const std::string& arguments)
    {
        const std::string command = "ffmpeg -nostdin -v error -y " + arguments + " '" + path + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }
};

struct ClipRow {
    const char* name;
    std::string made;
    bool here; // whether the tool does it by itself
};

const std::string sound = "-f lavfi -i sine=duration=1 ";
const std::string h264 = "-c:v libx264 -preset ultrafast ";

class AnalysisHereOf : public AnalysisHere, public testing::WithParamInterface<ClipRow>
{
};

std::vector<ClipRow> clipRows()
{
    return {
        {"camera.MTS", pictures("1280x720", "50") + sound + h264 + "-c:a ac3 -f mpegts", true},
        {"ntsc.MTS", pictures("1280x720", "60000/1001") + sound + h264 + "-bf 2 -c:a ac3 -f mpegts", true},
        {"late.MTS", "-itsoffset 0.3 " + pictures("1280x720", "50") + sound + h264 + "-c:a ac3 -f mpegts", true},
        {"late.mov", "-itsoffset 0.3 " + pictures("640x480", "25") + sound + h264 + "-c:a aac", true},
        {"fields.MTS", pictures("1920x1080", "25") + h264 + "-flags +ildct -x264opts interlaced=1 -f mpegts", false},
        {"jpeg422.avi", pictures("640x480", "30") + sound + "-c:v mjpeg -pix_fmt yuvj422p -c:a pcm_s16le", true},
        {"jpeg420.avi", pictures("640x480", "30") + sound + "-c:v mjpeg -pix_fmt yuvj420p -c:a pcm_u8 -ac 1", true},
        {"jpeg.mov", pictures("848x480", "30") + sound + "-c:v mjpeg -c:a pcm_s16be -metadata title=Hi", true},
        {"wide.mov", pictures("720x480", "30000/1001") + sound + h264 + "-c:a aac -aspect 16:9", true},
        {"full.mov", pictures("1280x720", "24000/1001") + h264 + "-color_range pc -pix_fmt yuvj420p", true},
        {"same.mp4", pictures("640x480", "25") + h264 + "-pix_fmt yuv420p", true},
        {"holes.mp4", pictures("640x480", "30", "2") + "-vf select='lt(mod(n\\,3)\\,1)' -vsync vfr " + h264, true},
        {"sounds.mov", pictures("640x480", "25") + sound + sound + "-map 0 -map 1 -map 2 " + h264 + "-c:a aac", true},
        {"fields.ts", pictures("720x576", "25") + "-c:v mpeg2video -flags +ilme+ildct -f mpegts", true},
        {"pictures.mov", pictures("640x480", "25") + pictures("320x240", "25") + "-map 0 -map 1 " + h264, false},
        {"deep.mov", pictures("640x480", "25") + "-c:v prores", false},
        {"short.avi", pictures("640x480", "15", "0.4") + "-c:v mjpeg", false},
        {"sound.mp4", sound + "-c:a ac3", false},
    };
}

TEST_P(AnalysisHereOf, SaysAndWritesWhatTheInstalledDoes)
{
    const std::string source = name(GetParam().name);
    make(source, GetParam().made);
    ASSERT_TRUE(fs::exists(source));
    const Result far = run(frames(source), {});
    expectSame(far, frames(source), "frames");
    const bool large = std::string(GetParam().name) == "fields.MTS";
    const bool isHere = GetParam().here && front::isAnalysisProven();
    EXPECT_EQ(pictureIsKept(), isHere && !large);
    fs::remove(keep() + "/kept-thumbnail");
    lookAhead(source);
    EXPECT_EQ(left().size(), isHere || (large && front::isAnalysisProven()) ? 1U : 0U);
    expectSame(far, frames(source), "frames of a clip that was looked at before");
    EXPECT_TRUE(left().empty());
    EXPECT_EQ(pictureIsKept(), isHere && !large);
    expectSame(picture(source), "wide picture");
    expectSame(picture(source, "240x180"), "classic picture");
}

INSTANTIATE_TEST_SUITE_P(Clips, AnalysisHereOf, testing::ValuesIn(clipRows()), [](const auto& row) {
    std::string name = row.param.name;
    std::ranges::replace(name, '.', '_');
    return name;
});

TEST_F(AnalysisHere, DescribesWithoutMakingPictures)
{
    for (const char* kind : {"mts", "avi", "mov"}) {
        expectSame({"-v", "2", "-i", test::clip(kind)}, kind);
    }
}

TEST_F(AnalysisHere, LeavesTurnedAndDamagedClipsToTheInstalled)
{
    make(name("flat.mov"), pictures("640x480", "25") + h264);
    make(name("turned.mov"), "-i '" + name("flat.mov") + "' -c copy -metadata:s:v rotate=90");
    std::string bytes = fileContents(test::clip("mts"));
    for (std::size_t i = bytes.size() / 20; i < bytes.size() / 4; i += 700) {
        bytes[i] = static_cast<char>(bytes[i] ^ 0x55);
    }
    writeFile(name("damaged.MTS"), bytes);
    writeFile(name("text.mov"), "hello");
    writeFile(name("empty.MTS"), "");
    for (const char* file : {"turned.mov", "damaged.MTS", "text.mov", "empty.MTS", "missing.MTS"}) {
        (void)run(frames(name(file)), here());
        EXPECT_FALSE(pictureIsKept()) << file;
    }
    for (const char* file : {"turned.mov", "text.mov", "empty.MTS", "missing.MTS"}) {
        expectSame(frames(name(file)), file);
        expectSame(picture(name(file)), file);
    }
}

TEST_F(AnalysisHere, KeptPictureIsOfThatClipAsItIs)
{
    const std::string source = name("clip.mov");
    make(source, pictures("1280x720", "25") + h264);
    const Result first = run(frames(source), here());
    const Result red = run(picture(source), {});
    make(name("other.mov"), "-f lavfi -i testsrc=size=1280x720:rate=25:duration=1 " + h264);
    fs::rename(name("other.mov"), source);
    const Result other = run(picture(source), here());
    EXPECT_EQ(first.code, 0);
    EXPECT_FALSE(red.bytes == other.bytes);
    EXPECT_TRUE(other == run(picture(source), {}));
}

TEST_F(AnalysisHere, LookAheadIsOfThatClipAsItIs)
{
    const std::string source = name("clip.mov");
    make(source, pictures("1280x720", "25") + h264);
    lookAhead(source);
    lookAhead(test::clip("avi"));
    lookAhead(name("missing.mov"));
    make(name("other.mov"), "-f lavfi -i testsrc=size=1280x720:rate=25:duration=1 " + h264);
    fs::rename(name("other.mov"), source);
    const Words before = left();
    ASSERT_EQ(before.size(), front::isAnalysisProven() ? 2U : 0U);
    expectSame(frames(source), "the other one");
    EXPECT_EQ(left(), before);
    for (const std::string& file : before) {
        writeFile(keep() + '/' + file, fileContents(keep() + '/' + file) + "7");
    }
    expectSame(frames(test::clip("avi")), "damaged answer");
}

TEST_F(AnalysisHere, LookAheadIsForFramesOnlyAndStartsNoFfmpeg)
{
    Options options = here();
    options.environment["TAVRIX_AHEAD"] = "1";
    const Words before = test::entriesOf(keep());
    EXPECT_TRUE(run(picture(test::clip("mov")), options) == (Result{"", 0, ""}));
    EXPECT_TRUE(run({"-v", "2", "-i", test::clip("mov")}, options) == (Result{"", 0, ""}));
    EXPECT_EQ(test::entriesOf(keep()), before);
    fs::remove(keep() + "/kept-banner");
    lookAhead(test::clip("mov"));
    EXPECT_TRUE(test::entriesOf(keep()).empty());
}

TEST_F(AnalysisHere, WaitsForALookThatIsUnderWay)
{
    if (!front::isAnalysisProven()) {
        GTEST_SKIP() << "not with these versions";
    }
    const std::string source = test::clip("mov");
    lookAhead(source);
    ASSERT_EQ(left().size(), 1U);
    const std::string note = keep() + '/' + left().front() + ".making";
    Descriptor look = openFile(note.c_str(), O_RDWR);
    ASSERT_EQ(flock(look.get(), LOCK_EX | LOCK_NB), 0);
    test::RunningTool tool(frames(source), here());
    const fs::path descriptors = fs::path("/proc") / std::to_string(tool.pid()) / "fd";
    const auto hasNoteOpen = [&] {
        std::error_code gone;
        for (const auto& entry : fs::directory_iterator(descriptors, gone)) {
            if (fs::read_symlink(entry.path(), gone) == fs::path(note)) {
                return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(test::waitUntil(hasNoteOpen));
    EXPECT_FALSE(tool.hasEnded());
    look.reset();
    EXPECT_EQ(tool.wait().code, 0);
    EXPECT_TRUE(left().empty());
    EXPECT_GT(fs::file_size(name("frame.yuv")), 4000000U);
}

TEST_F(AnalysisHere, DamagedKeptFilesAreNone)
{
    const std::string source = test::clip("mov");
    const Result wanted = run(picture(source), {});
    (void)run(frames(source), here());
    for (const std::string& bytes : {std::string(), std::string("5\nab"), std::string("99999999999999999999\nx"),
                                     fileContents(keep() + "/kept-thumbnail") + "7"}) {
        writeFile(keep() + "/kept-thumbnail", bytes);
        EXPECT_TRUE(run(picture(source), here()) == wanted);
        writeFile(keep() + "/kept-banner", bytes);
        EXPECT_TRUE(run(picture(source), here()) == wanted);
    }
}

TEST_F(AnalysisHere, NothingIsLeftWithoutAPrivateFolder)
{
    (void)run(frames(test::clip("mov")), {});
    EXPECT_FALSE(pictureIsKept());
    fs::permissions(keep(), fs::perms::owner_all | fs::perms::others_read);
    fs::remove(keep() + "/kept-banner");
    (void)run(frames(test::clip("mov")), here());
    (void)run(frames(test::clip("mov")), here());
    EXPECT_TRUE(test::entriesOf(keep()).empty());
    fs::create_directory_symlink(keep(), name("link"));
    Options options;
    options.environment["TAVRIX_KEEPS"] = name("link");
    (void)run(frames(test::clip("mov")), options);
    EXPECT_TRUE(test::entriesOf(keep()).empty());
}

TEST_F(AnalysisHere, ScriptInThePlaceOfFfmpegIsAsked)
{
    fs::create_directory(name("bin"));
    writeFile(name("bin/ffmpeg"), "#!/bin/sh\necho asked >> '" + name("asked") + "'\nexec /usr/bin/ffmpeg \"$@\"\n");
    chmod(name("bin/ffmpeg").c_str(), 0755);
    Options options = here();
    options.environment["PATH"] = name("bin") + ":/usr/bin:/bin";
    (void)run({"-v", "2", "-i", test::clip("mov")}, options);
    EXPECT_EQ(run(frames(test::clip("mov")), options).code, 0);
    EXPECT_EQ(fileContents(name("asked")), "asked\nasked\n");
    EXPECT_FALSE(pictureIsKept());
}

TEST_F(AnalysisHere, KeptPictureNeedsNoMediaLibraries)
{
    if (!front::isAnalysisProven()) {
        GTEST_SKIP() << "not with these versions";
    }
    fs::create_directory(name("tools"));
    const fs::path built = fs::path(test::toolPath()).parent_path();
    fs::copy_file(built / "ffmpeg", name("tools/ffmpeg"));
    fs::create_symlink(built / "ffmpeg-media.so", name("tools/ffmpeg-media.so"));
    const auto start = [&](const Words& words) {
        std::string command = "TAVRIX_KEEPS='" + keep() + "' '" + name("tools/ffmpeg") + "'";
        for (const std::string& word : words) {
            command += " '" + word + "'";
        }
        return std::system((command + " 2>>'" + name("said") + "'").c_str());
    };
    EXPECT_EQ(start({"-v", "2", "-i", test::clip("mov")}) >> 8, 1);
    EXPECT_EQ(start(frames(test::clip("mov"))), 0);
    EXPECT_TRUE(pictureIsKept());
    fs::remove(name("tools/ffmpeg-media.so"));
    EXPECT_EQ(start(picture(test::clip("mov"))), 0);
    EXPECT_GT(fs::file_size(name("picture.jpg")), 1000U);
    EXPECT_EQ(start(frames(test::clip("mov"))) >> 8, 127);
    EXPECT_NE(fileContents(name("said")).find("ffmpeg: error while loading shared libraries: "), std::string::npos);
}

} // namespace

} // namespace tavrix
