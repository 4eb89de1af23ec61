// SPDX-License-Identifier: GPL-3.0-or-later
// From the classic command line to that of the installed ffmpeg.
#include "tools/ffmpeg/arguments.h"
#include "tools/ffmpeg/commandline.h"
#include "tools/ffmpeg/filters.h"
#include "tools/ffmpeg/muxers.h"
#include "tools/ffmpeg/optionrules.h"
#include "tools/ffmpeg/picturefilters.h"
#include "tools/ffmpeg/textpieces.h"

#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace tavrix::front
{

namespace
{

std::vector<std::string> words(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> list;
    for (std::string word; stream >> word;) {
        list.push_back(word);
    }
    return list;
}

// One text, with "GUARD" for what limits an input to the containers and protocols handled, and "LOCAL" for the latter
// alone.
std::string joined(const std::vector<std::string>& list)
{
    std::string text;
    for (const std::string& word : list) {
        text += (text.empty() ? "" : " ") + word;
    }
    const std::string local = "-protocol_whitelist file,pipe,fd";
    text =
        replacedAll(text, "-format_whitelist mpegts,mov,mp4,m4a,3gp,3g2,mj2,avi,mpeg,mpegvideo,dv " + local, "GUARD");
    return replacedAll(text, local, "LOCAL");
}

FileUrls urlsOf(const CommandLine& line)
{
    FileUrls urls;
    for (const FileEntry& input : line.inputs) {
        urls.inputs.push_back("<" + input.name + ">");
    }
    for (const FileEntry& output : line.outputs) {
        const auto format = optionValue(output.options, OptionTreatment::Container);
        urls.outputs.push_back(
            {"<" + output.name + ">", format ? formatArguments(*format) : muxerArguments(output.name)});
    }
    return urls;
}

struct Row {
    const char* name;
    const char* classic;
    const char* installed; // behind "-nostdin -v info"
};

const std::vector<Row>& rows()
{
    static const std::vector<Row> list = {
        {"information", "-v 2 -i X", "GUARD -i <X>"},
        {"analysis", "-v 2 -i X -vframes 10 -s 640x480 -pix_fmt yuv420p -an -f yuv4mpegpipe -y P",
         "-y GUARD -i <X> -f yuv4mpegpipe -frames:v 10 -s 640x480 -pix_fmt yuv420p -an <P>"},
        {"thumbnail_frames_before_the_input", "-vframes 1 -i X -s 320x180 -y P.jpg",
         "-y GUARD -i <X> -c:v mjpeg -f image2 -update 1 -frames:v 1 -s 320x180 <P.jpg>"},
        {"interlacing", "-vframes 1 -i X -s 640x480 -pix_fmt yuv420p -f yuv4mpegpipe -",
         "-y GUARD -i <X> -f yuv4mpegpipe -frames:v 1 -s 640x480 -pix_fmt yuv420p <->"},
        {"small_screen_halved",
         "-v 1 -i X -vsync 0 -r 30000/1001 -vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 -acodec aac -strict "
         "experimental -ab 64k -ac 2 -ar 44100 -g 25 -y O.mp4",
         "-y GUARD -i <X> -f mp4 -vcodec mpeg4 -b:v 250k -acodec aac -strict experimental -b:a 64k -ac 2 -ar 44100 "
         "-g 25 -vf settb=1/720000,setpts=PTS-11532,fps=fps=30000/1001:round=up,scale=480:272,setdar=16/9 -vsync vfr "
         "<O.mp4>"},
        {"small_screen_as_it_is",
         "-v 1 -i X -vsync 0 -vcodec mpeg4 -vb 250k -vf scale=368:272,setdar=4:3 -acodec aac -ab 64k -y O.mp4",
         "-y GUARD -i <X> -f mp4 -vcodec mpeg4 -b:v 250k "
         "-acodec aac -b:a 64k -vf scale=368:272,setdar=4/3 -vsync vfr <O.mp4>"},
        {"presets_before_the_codec",
         "-v 1 -i X -vsync 0 -crf 20 -me_range 16 -vcodec libx264 -vb 1400k -maxrate 1500k -vf "
         "scale=640:368,setdar=16:9 "
         "-g 25 -y O.m4v",
         "-y GUARD -i <X> -f ipod -crf 20 -me_range 16 -vcodec libx264 -b:v 1400k -maxrate "
         "1500k -g 25 -vf scale=640:368,setdar=16/9 -vsync vfr <O.m4v>"},
        {"rewrap_to_avi", "-v 1 -i X -vsync 0 -vcodec copy -acodec pcm_s16le -ac 2 -ar 48000 -y O.avi",
         "-y GUARD -i <X> -f avi -vcodec copy -acodec pcm_s16le -ac 2 -ar 48000 <O.avi>"},
        {"copy_with_bitstream_filter",
         "-v 1 -i X -vsync 0 -vcodec copy -vbsf h264_mp4toannexb -acodec pcm_s16le -ac 2 -ar 48000 -y O.mov",
         "-y GUARD -i <X> -f mov -vcodec copy -bsf:v h264_mp4toannexb -acodec pcm_s16le -ac "
         "2 "
         "-ar 48000 <O.mov>"},
        {"quoted_filter", "-i X -vf 'setdar=16:9' -y O.mp4", "-y GUARD -i <X> -f mp4 -vf setdar=16/9 <O.mp4>"},
        {"aspect_option", "-i X -aspect 16:9 -y O.mp4", "-y GUARD -i <X> -f mp4 -aspect 16:9 <O.mp4>"},
        {"sound_check", "-t 5 -i X -vn -f wav -y /dev/null", "-y GUARD -i <X> -f wav -t 5 -vn </dev/null>"},
        {"sound_check_forced", "-t 5 -f mpeg -i X -vn -f wav -y /dev/null",
         "-y -f mpeg LOCAL -i <X> -f wav -t 5 -vn </dev/null>"},
        {"digital_video", "-f dv -i X", "-f dv LOCAL -i <X>"},
        {"yuv_from_a_pipe", "-f yuv4mpegpipe -i - -vcodec mpeg4 -y O.avi",
         "-y -f yuv4mpegpipe LOCAL -i <-> -f avi -vcodec mpeg4 <O.avi>"},
        {"duration", "-i X -vcodec copy -an -f null -y /dev/null",
         "-y GUARD -i <X> -f null -vcodec copy -an </dev/null>"},
        {"size_before_an_input_is_what_the_file_says", "-s 320x240 -r 10 -i X -y O.avi",
         "-y GUARD -i <X> -f avi <O.avi>"},
        {"size_of_a_raw_input_stays", "-f rawvideo -s 320x240 -pix_fmt yuv420p -i X -y O.avi",
         "-y -f rawvideo -s 320x240 -pix_fmt yuv420p LOCAL -i <X> -f avi <O.avi>"},
        {"maps_with_dots", "-i X -map 0.0 -map 0.2 -y O.mov", "-y GUARD -i <X> -f mov -map 0:0 -map 0:2 <O.mov>"},
        {"two_inputs", "-i X -i Z -vcodec copy -y O.mov",
         "-y GUARD -i <X> GUARD -i <Z> -f mov -vcodec copy "
         "<O.mov>"},
        {"output_named_like_an_option", "-i X -y -clip.mp4", "-y GUARD -i <X> -f mp4 <-clip.mp4>"},
        {"input_named_like_an_option", "-i -y -an -y O.mov", "-y GUARD -i <-y> -f mov -an <O.mov>"},
        {"quality", "-i X -qscale 3 -b 2000k -y O.avi", "-y GUARD -i <X> -f avi -q:v 3 -b:v 2000k <O.avi>"},
        {"messages_cannot_be_turned_off", "-nostats -hide_banner -loglevel quiet -i X", "GUARD -i <X>"},
        {"constant_rate", "-i X -vsync 1 -vcodec mpeg4 -y O.avi",
         "-y GUARD -i <X> -f avi -vcodec mpeg4 -vsync cfr <O.avi>"},
        {"unknown_extension", "-i X -y O.nosuch", "-y GUARD -i <X> <O.nosuch>"},
    };
    return list;
}

class ClassicArguments : public testing::TestWithParam<Row>
{
};

TEST_P(ClassicArguments, BecomeInstalledOnes)
{
    const CommandLine line = parseCommandLine(words(GetParam().classic));
    const std::string installed = joined(installedArguments(line, urlsOf(line), {}));
    EXPECT_EQ(installed, std::string("-nostdin -v info ") + GetParam().installed);
}

INSTANTIATE_TEST_SUITE_P(Table, ClassicArguments, testing::ValuesIn(rows()),
                         [](const auto& row) { return std::string(row.param.name); });

// A clip of one picture and one sound stream, as its facts would be read.
ClipSource clipOf(const char* container)
{
    ClipSource clip;
    clip.facts.container = container;
    clip.facts.isMovie = std::string_view(container).starts_with("mov");
    media::StreamFacts picture;
    picture.kind = media::Kind::Picture;
    picture.codec = "h264";
    picture.width = 568;
    picture.height = 320;
    picture.nominalRate = {30, 1};
    picture.meanRate = {30, 1};
    media::StreamFacts sound;
    sound.index = 1;
    sound.kind = media::Kind::Sound;
    sound.channels = 2;
    clip.facts.streams = {picture, sound};
    return clip;
}

std::string convertedWith(const char* classic, const ClipSource& clip, const InstalledDialect& dialect = {})
{
    const CommandLine line = parseCommandLine(words(classic));
    return joined(installedArguments(line, urlsOf(line), dialect, clip));
}

TEST(ArgumentsForAClip, ATurnedPictureIsFittedIntoTheFrame)
{
    ClipSource clip = clipOf("mov");
    constexpr const char* encode = "-i X -vsync 0 -vcodec libx264 -vf scale=640:368,setdar=16:9 -an -y O.m4v";
    EXPECT_NE(convertedWith(encode, clip).find("-vf scale=640:368,setdar=16/9 "), std::string::npos);
    clip.facts.streams[0].turning = {90, false};
    EXPECT_NE(convertedWith(encode, clip).find("-vf scale=202:368,pad=640:368:218:0:black,setdar=16/9 "),
              std::string::npos)
        << convertedWith(encode, clip);
    clip.facts.streams[0].turning = {180, false};
    EXPECT_NE(convertedWith(encode, clip).find("-vf scale=640:368,setdar=16/9 "), std::string::npos);
    clip.facts.streams[0].turning = {0, true};
    InstalledDialect forgetful;
    forgetful.mirrors = false;
    EXPECT_NE(convertedWith(encode, clip, forgetful).find("-vf vflip,scale=640:368,"), std::string::npos);
}

TEST(ClassicArguments, TheEncodersOwnOptionsOfAPresetLineGetTheirEqualsSigns)
{
    const CommandLine line =
        parseCommandLine({"-i", "X", "-x264opts", "keyint 250:open-gop", "-vcodec", "libx264", "-g", "25", "O.m4v"});
    EXPECT_EQ(joined(installedArguments(line, urlsOf(line), {}, {})),
              "-nostdin -v info -y GUARD -i <X> -f ipod -x264opts keyint=250:open-gop -vcodec libx264 -g 25 <O.m4v>");
}

// FFmpeg 7 gives the encoder the time base of the last filter, and MPEG-4 refuses one of 1/720000.
TEST(ArgumentsForAClip, OfSeveralPiecesEndsWithATimeBaseThatEveryEncoderCanStore)
{
    media::StreamFacts picture;
    picture.edits.pieces = 2;
    picture.nominalRate = {25, 1};
    picture.shownPackets = 50;
    picture.duration = 2.0;
    picture.start = 0;
    EXPECT_EQ(respacedFilters(picture, 0, true), "settb=1/720000,setpts=0+N*720000*1/25,fps=fps=25/1");
    EXPECT_EQ(respacedFilters(picture, 0, false), "settb=1/720000,setpts=0+N*720000*1/25");
}

TEST(ArgumentsForAClip, SoundKeepsItsLevel)
{
    ClipSource clip = clipOf("mov");
    constexpr const char* copy = "-i X -vsync 0 -vcodec copy -acodec pcm_s16le -ac 2 -ar 48000 -y O.mov";
    EXPECT_NE(convertedWith(copy, clip).find(" -af aresample=async=1 "), std::string::npos);
    clip.facts.streams[1].channels = 1;
    EXPECT_NE(convertedWith(copy, clip).find("-af pan=stereo|FL=FC+FL|FR=FC+FR,aresample=async=1 "), std::string::npos);
    clip.facts.streams[1].channels = 6;
    EXPECT_NE(convertedWith(copy, clip).find("alimiter="), std::string::npos);
}

TEST(ArgumentsForAClip, CopiesKeepTheirRate)
{
    ClipSource clip = clipOf("mov,mp4");
    clip.facts.streams[0].nominalRate = {15, 1};
    constexpr const char* avi = "-i X -vsync 0 -vcodec copy -acodec pcm_s16le -ac 2 -ar 48000 -y O.avi";
    EXPECT_NE(convertedWith(avi, clip).find(" -r 15/1 "), std::string::npos);
    ClipSource stream = clipOf("mpegts");
    constexpr const char* mov = "-i X -vsync 0 -vcodec copy -acodec pcm_s16le -ac 2 -ar 48000 -y O.mov";
    EXPECT_EQ(convertedWith(mov, stream).find("-video_track_timescale"), std::string::npos);
    stream.facts.streams[0].nominalRate = {60000, 1001};
    EXPECT_NE(convertedWith(mov, stream).find("-video_track_timescale 60000 "), std::string::npos);
    stream.facts.streams[0].nominalRate = {30000, 1001};
    EXPECT_EQ(convertedWith(mov, stream).find("-video_track_timescale"), std::string::npos) << "3003 parts of 90000";
}

TEST(ArgumentsForAClip, ACopyWithSeveralPiecesReadsAllPicturesAndTheSoundAsItIsPlayed)
{
    ClipSource clip = clipOf("mov");
    clip.edits = CopyEdits();
    clip.edits->way = CopyEdits::Way::OwnList;
    clip.edits->mediaScale = 12800;
    clip.edits->soundStream = 1;
    constexpr const char* copy = "-i X -vsync 0 -vcodec copy -acodec pcm_s16le -ac 2 -ar 48000 -y O.mov";
    const std::string own = convertedWith(copy, clip);
    EXPECT_NE(own.find("-ignore_editlist 1 GUARD -i <X> GUARD -i <X> "), std::string::npos) << own;
    EXPECT_NE(own.find("-video_track_timescale 12800 -map 0:0 -map 1:1 <O.mov>"), std::string::npos) << own;
    clip.edits->way = CopyEdits::Way::CutEnd;
    clip.edits->shownSeconds = 2.02;
    EXPECT_NE(convertedWith(copy, clip).find(" -t 2.020000 <O.mov>"), std::string::npos);
}

TEST(ClassicArguments, VerboseProbeSeesRepeatedFramesAndDiscontinuities)
{
    const CommandLine line =
        parseCommandLine(words("-v 3 -vframes 35 -i X -s 320x240 -pix_fmt yuv420p -an -f null -y /dev/null"));
    EXPECT_TRUE(levelsAreMarked(line));
    EXPECT_EQ(joined(installedArguments(line, urlsOf(line), {})),
              "-nostdin -v level+debug -y GUARD -i <X> -f null -frames:v 35 -s 320x240 "
              "-pix_fmt yuv420p -an -vsync cfr </dev/null>");
}

TEST(ClassicArguments, TimestampDebuggingRaisesTheLevel)
{
    const CommandLine line = parseCommandLine(words("-fdebug ts -i X"));
    EXPECT_FALSE(levelsAreMarked(line));
    EXPECT_EQ(joined(installedArguments(line, urlsOf(line), {})), "-nostdin -v debug -fdebug ts GUARD -i <X>");
}

TEST(ClassicArguments, BitstreamFilterIsLeftOutForOtherCodecs)
{
    const CommandLine line = parseCommandLine(words("-i X -vcodec copy -vbsf h264_mp4toannexb -y O.mov"));
    EXPECT_TRUE(mayRefuseAnnexB(line));
    InstalledDialect dialect;
    dialect.annexBFilter = false;
    EXPECT_EQ(joined(installedArguments(line, urlsOf(line), dialect)),
              "-nostdin -v info -y GUARD -i <X> -f mov -vcodec copy <O.mov>");
    const CommandLine other = parseCommandLine(words("-i X -vcodec copy -vbsf h264_mp4toannexb,noise -y O.mov"));
    EXPECT_EQ(joined(installedArguments(other, urlsOf(other), dialect)),
              "-nostdin -v info -y GUARD -i <X> -f mov -vcodec copy -bsf:v noise <O.mov>");
    EXPECT_FALSE(mayRefuseAnnexB(parseCommandLine(words("-i X -vcodec copy -y O.mov"))));
}

TEST(ClassicArguments, FrameSpacingHasTheNameThatTheVersionKnows)
{
    InstalledDialect dialect;
    dialect.frameRateMode = true;
    for (const char* spacing : {"-vsync 0", "-fps_mode passthrough"}) {
        const CommandLine line =
            parseCommandLine(words(std::string("-i X ") + spacing + " -r 25 -vcodec mpeg4 -y O.mp4"));
        EXPECT_EQ(joined(installedArguments(line, urlsOf(line), dialect)),
                  "-nostdin -v info -y GUARD -i <X> -f mp4 -vcodec mpeg4 "
                  "-vf settb=1/720000,setpts=PTS-13824,fps=fps=25:round=up -fps_mode vfr <O.mp4>");
    }
}

TEST(InstalledDialect, IsThatWhichWasNotRefused)
{
    ClipSource mirrored = clipOf("mov");
    mirrored.facts.streams[0].turning = {0, true};
    const InstalledDialect usual;
    const InstalledDialect spaced{true, true, true};
    const InstalledDialect unfiltered{false, false, true};
    const InstalledDialect unmirrored{true, false, false};
    struct {
        const char* version;
        const char* refusedOption;
        bool annexBRefused;
        bool readableAgain;
        Source source;
        InstalledDialect dialect;
    } const rows[] = {
        {"5.1.9-0+deb12u1", "vsync", false, true, {}, spaced},
        {"7.1.5", "vsync", false, true, {}, spaced},
        {"8.0", "vsync", false, true, {}, spaced},
        {"8.0", "vsync", false, false, {}, spaced},
        {"N-118000-gabcdef", "vsync", false, true, {}, spaced},
        {"4.4.2", "vsync", false, true, {}, usual},
        {"8.0", "nosuch", false, true, {}, usual},
        {"8.0", "", false, true, {}, usual},
        {"5.1.9", "", true, true, {}, unfiltered},
        {"5.1.9", "", true, false, {}, usual},
        {"4.3.9", "", false, true, mirrored, unmirrored},
        {"4.3.9", "", false, true, clipOf("mov"), usual},
        {"4.3.9", "", false, true, {}, usual},
        {"5.1.9", "", false, true, mirrored, usual},
        {"N-118000-gabcdef", "", false, true, mirrored, usual},
    };
    for (const auto& row : rows) {
        Findings findings;
        findings.version = row.version;
        findings.refusedOption = row.refusedOption;
        findings.annexBRefused = row.annexBRefused;
        EXPECT_TRUE(dialectAfter({findings, row.source, row.readableAgain}) == row.dialect)
            << row.version << ' ' << row.refusedOption << ' ' << row.annexBRefused;
    }
}

TEST(CommandLine, OptionThatIsNotKnownTakesNoOptionForItsValue)
{
    struct {
        const char* text;
        const char* input;
        const char* output;
    } const rows[] = {
        {"-nosuch -i X O.mp4", "X", "O.mp4"},       {"-nosuch value -i X O.mp4", "X", "O.mp4"},
        {"-i X -nosuch -an O.mp4", "X", "O.mp4"},   {"-i X -nosuch -1 O.mp4", "X", "O.mp4"},
        {"-i X -xerror O.mp4", "X", "O.mp4"},       {"-i X -sameq O.mp4", "X", "O.mp4"},
        {"-i X -metadata -an O.mp4", "X", "O.mp4"},
    };
    for (const auto& row : rows) {
        const CommandLine line = parseCommandLine(words(row.text));
        ASSERT_EQ(line.inputs.size(), 1U) << row.text;
        ASSERT_EQ(line.outputs.size(), 1U) << row.text;
        EXPECT_EQ(line.inputs.front().name, row.input) << row.text;
        EXPECT_EQ(line.outputs.front().name, row.output) << row.text;
    }
}

TEST(CommandLine, TellsAMissingValue)
{
    EXPECT_EQ(parseCommandLine(words("-v 2 -i")).missingValueFor, "i");
    EXPECT_EQ(parseCommandLine(words("-i X -vcodec")).missingValueFor, "vcodec");
    EXPECT_EQ(parseCommandLine(words("-i X -y O.mp4")).missingValueFor, "");
}

TEST(CommandLine, KnowsWhatAsksFfmpegAboutItself)
{
    for (const char* option : {"-version", "-codecs", "-h", "-formats", "-encoders"}) {
        EXPECT_TRUE(parseCommandLine({option}).reportOnly) << option;
    }
    EXPECT_FALSE(parseCommandLine(words("-i X")).reportOnly);
}

TEST(CommandLine, OverwritesOnlyWhenAsked)
{
    EXPECT_TRUE(parseCommandLine(words("-i X -y O")).overwrite);
    EXPECT_FALSE(parseCommandLine(words("-i X O")).overwrite);
    EXPECT_TRUE(parseCommandLine(words("-n -i X O")).neverOverwrite);
}

TEST(Filters, AspectRatiosBecomeFractions)
{
    struct {
        const char* classic;
        const char* installed;
    } const cases[] = {
        {"setdar=16:9", "setdar=16/9"},
        {"'setdar=16:9'", "setdar=16/9"},
        {"\"setdar=4:3\"", "setdar=4/3"},
        {"scale=480:272,setdar=16:9", "scale=480:272,setdar=16/9"},
        {"setdar=16:9,scale=480:272", "setdar=16/9,scale=480:272"},
        {"aspect=16:9", "setdar=16/9"},
        {"pixelaspect=4:3", "setsar=4/3"},
        {"setsar=1:1,setdar=16:9", "setsar=1/1,setdar=16/9"},
        {"setdar=1.777", "setdar=1.777"},
        {"setdar=16/9", "setdar=16/9"},
        {"setdar=dar=16/9", "setdar=dar=16/9"},
        {"setdar=16:9:5", "setdar=16:9:5"},
        {"scale=16:9", "scale=16:9"},
        {"drawtext=text='a,setdar=4:3'", "drawtext=text='a,setdar=4:3'"},
        {"'a'b'", "'a'b'"},
        {"", ""},
        {"yadif", "yadif"},
        {"setdar", "setdar"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(installedFilters(row.classic), row.installed) << row.classic;
    }
}

TEST(OptionRules, KeepStreamSpecifiers)
{
    EXPECT_EQ(optionRule("codec:v").installedName, "codec:v");
    EXPECT_EQ(optionRule("b:a").installedName, "b:a");
    EXPECT_EQ(optionRule("vb").installedName, "b:v");
    EXPECT_EQ(optionRule("b").installedName, "b:v");
    EXPECT_EQ(optionRule("bsf:a").treatment, OptionTreatment::Plain);
    EXPECT_EQ(optionRule("bsf:v").treatment, OptionTreatment::BitstreamFilters);
    EXPECT_TRUE(optionRule("nosuchoption").takesValue);
}

TEST(OptionRules, SayOfEachOptionOnceWhatIsDoneAndWhy)
{
    std::set<std::string_view> names;
    for (const OptionRow& row : optionTable()) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name << " has two rows";
        EXPECT_FALSE(row.reason.empty()) << row.name;
        EXPECT_FALSE(row.reason.ends_with('.')) << row.name;
        EXPECT_NE(row.name, row.installedName);
    }
    for (const OptionRow& row : optionTable()) {
        const std::string_view installed = row.installedName.empty() ? row.name : row.installedName;
        EXPECT_EQ(optionRule(installed).treatment, row.treatment) << "two spellings of one option: " << row.name;
    }
}

} // namespace

} // namespace tavrix::front
