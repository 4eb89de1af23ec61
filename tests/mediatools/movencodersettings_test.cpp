#include "support/temphome.h"
#include "testpaths.h"
#include "tools/movencoder/formatchoice.h"
#include "tools/movencoder/geometry.h"
#include "tools/movencoder/options.h"
#include "tools/movencoder/progress.h"
#include "tools/movencoder/settings.h"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

using namespace tavrix::movencoder;
using tavrix::test::TempFolder;

namespace
{

std::string list(const std::string& content)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + content + "</dict></plist>\n";
}

std::string number(const std::string& key, const std::string& value)
{
    return "<key>" + key + "</key><integer>" + value + "</integer>";
}

std::string section(const std::string& key, const std::string& content)
{
    return "<key>" + key + "</key><dict>" + content + "</dict>";
}

TEST(MovencoderSettings, SectionsAndDefaultAreRead)
{
    std::string error;
    const auto settings =
        parseSettings(list(number("default", "4") +
                           section("4", number("width", "1280") + number("height", "720") +
                                            "<key>letterbox</key><true/>" + number("quantiser", "9")) +
                           section("5", "<key>profile</key><string>hq</string>")),
                      error);
    ASSERT_TRUE(settings) << error;
    EXPECT_EQ(settings->defaultFormat, Format::AppleIntermediate);
    ASSERT_TRUE(settings->appleIntermediate);
    EXPECT_EQ(settings->appleIntermediate->width, 1280);
    EXPECT_EQ(settings->appleIntermediate->height, 720);
    EXPECT_TRUE(settings->appleIntermediate->letterbox);
    EXPECT_EQ(settings->appleIntermediate->quantiser, 9);
    EXPECT_EQ(settings->appleIntermediate->bytesPerFrame, 0);
    ASSERT_TRUE(settings->proRes);
    EXPECT_EQ(settings->proRes->width, 0);
    EXPECT_FALSE(settings->proRes->letterbox);
    EXPECT_EQ(settings->proRes->profile, 3);
}

TEST(MovencoderSettings, BytesPerFrameReplacesTheQuantiser)
{
    std::string error;
    const auto settings =
        parseSettings(list(number("default", "4") + section("4", number("bytesPerFrame", "160000"))), error);
    ASSERT_TRUE(settings) << error;
    EXPECT_EQ(settings->appleIntermediate->bytesPerFrame, 160000);
    EXPECT_FALSE(settings->proRes);
}

struct BadSettings {
    const char* name;
    std::string text;
    const char* complaint;
};

class MovencoderBadSettings : public testing::TestWithParam<BadSettings>
{
};

TEST_P(MovencoderBadSettings, AreRefusedWithTheirReason)
{
    std::string error;
    EXPECT_FALSE(parseSettings(GetParam().text, error));
    EXPECT_NE(error.find(GetParam().complaint), std::string::npos) << error;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, MovencoderBadSettings,
    testing::Values(
        BadSettings{"Empty", "", "property list"},
        BadSettings{"Prose", "these are not settings at all", "property list"},
        BadSettings{"Array", "<plist version=\"1.0\"><array/></plist>", "dictionary"},
        BadSettings{"NoDefault", list(section("4", "")), "\"default\""},
        BadSettings{"DefaultWithoutSection", list(number("default", "5") + section("4", "")), "\"default\""},
        BadSettings{"DefaultOfAnotherFormat", list(number("default", "3") + section("4", "")), "\"default\""},
        BadSettings{"UnknownSection", list(number("default", "4") + section("4", "") + section("6", "")), "\"6\""},
        BadSettings{"SectionIsNoDictionary", list(number("default", "4") + number("4", "1")), "section 4"},
        BadSettings{"UnknownKey", list(number("default", "4") + section("4", number("qualtity", "1"))), "\"qualtity\""},
        BadSettings{"ProfileInTheWrongSection",
                    list(number("default", "4") + section("4", "<key>profile</key><string>hq</string>")),
                    "\"profile\""},
        BadSettings{"UnknownProfile",
                    list(number("default", "5") + section("5", "<key>profile</key><string>best</string>")),
                    "proxy, lt"},
        BadSettings{"QuantiserZero", list(number("default", "4") + section("4", number("quantiser", "0"))), "1 to 255"},
        BadSettings{"QuantiserTooCoarse", list(number("default", "4") + section("4", number("quantiser", "256"))),
                    "1 to 255"},
        BadSettings{
            "TwoQualities",
            list(number("default", "4") + section("4", number("quantiser", "3") + number("bytesPerFrame", "160000"))),
            "only one"},
        BadSettings{"WidthAlone", list(number("default", "4") + section("4", number("width", "1280"))), "\"height\""},
        BadSettings{"OddWidth",
                    list(number("default", "4") + section("4", number("width", "641") + number("height", "480"))),
                    "even"},
        BadSettings{"HugeHeight",
                    list(number("default", "4") + section("4", number("width", "640") + number("height", "5000"))),
                    "16 to 4096"},
        BadSettings{"LetterboxIsText",
                    list(number("default", "4") + section("4", "<key>letterbox</key><string>yes</string>")), "true"}),
    [](const testing::TestParamInfo<BadSettings>& row) { return std::string(row.param.name); });

TEST(MovencoderSettings, ShippedFilesHoldBothFormatsAt1280By720)
{
    for (const bool letterbox : {false, true}) {
        const std::string path =
            std::string(TAVRIX_SOURCE_DIR "/resources/tools/presets/1280x720p") + (letterbox ? "Letterbox" : "");
        std::string error;
        const auto settings = readSettings(path, error);
        ASSERT_TRUE(settings) << error;
        for (const Format format : {Format::AppleIntermediate, Format::ProRes}) {
            ASSERT_TRUE(settings->of(format)) << path;
            EXPECT_EQ(settings->of(format)->width, 1280);
            EXPECT_EQ(settings->of(format)->height, 720);
            EXPECT_EQ(settings->of(format)->letterbox, letterbox);
        }
    }
}

TEST(MovencoderSettings, FilesThatCannotBeReadGiveTheReason)
{
    const TempFolder folder;
    std::string error;
    EXPECT_FALSE(readSettings(folder.path(QStringLiteral("none")).toStdString(), error));
    EXPECT_EQ(error, "No such file or directory");
    EXPECT_FALSE(readSettings(folder.path().toStdString(), error));
    EXPECT_EQ(error, "not a regular file");
}

struct FitRow {
    const char* name;
    int width;
    int height;
    Ratio pixelAspect;
    bool letterbox;
    Fit fit;
};

class MovencoderFit : public testing::TestWithParam<FitRow>
{
};

TEST_P(MovencoderFit, PlacesThePicture)
{
    const FitRow& row = GetParam();
    FormatSettings settings;
    settings.width = 1280;
    settings.height = 720;
    settings.letterbox = row.letterbox;
    const Fit fit = fitPicture(row.width, row.height, row.pixelAspect, settings);
    EXPECT_EQ(fit.width, 1280);
    EXPECT_EQ(fit.height, 720);
    EXPECT_EQ(fit.x, row.fit.x);
    EXPECT_EQ(fit.y, row.fit.y);
    EXPECT_EQ(fit.pictureWidth, row.fit.pictureWidth);
    EXPECT_EQ(fit.pictureHeight, row.fit.pictureHeight);
    EXPECT_EQ(fit.pixelAspect.num, row.fit.pixelAspect.num);
    EXPECT_EQ(fit.pixelAspect.den, row.fit.pixelAspect.den);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, MovencoderFit,
    testing::Values(FitRow{"SameSize", 1280, 720, {1, 1}, true, {1280, 720, 0, 0, 1280, 720, {1, 1}}},
                    FitRow{"UnknownPixelAspect", 1280, 720, {0, 1}, false, {1280, 720, 0, 0, 1280, 720, {1, 1}}},
                    FitRow{"FullHd", 1920, 1080, {1, 1}, true, {1280, 720, 0, 0, 1280, 720, {1, 1}}},
                    FitRow{"FullHdWithUncutLines", 1920, 1088, {1, 1}, true, {1280, 720, 0, 0, 1280, 720, {1, 1}}},
                    FitRow{"Anamorphic1440", 1440, 1080, {4, 3}, false, {1280, 720, 0, 0, 1280, 720, {1, 1}}},
                    FitRow{"FourByThreeBoxed", 640, 480, {1, 1}, true, {1280, 720, 160, 0, 960, 720, {1, 1}}},
                    FitRow{"FourByThreeStretched", 640, 480, {1, 1}, false, {1280, 720, 0, 0, 1280, 720, {3, 4}}},
                    FitRow{"PalFourByThree", 720, 576, {16, 15}, true, {1280, 720, 160, 0, 960, 720, {1, 1}}},
                    FitRow{"PalSixteenByNine", 720, 576, {64, 45}, true, {1280, 720, 0, 0, 1280, 720, {1, 1}}},
                    FitRow{"NtscFourByThree", 720, 480, {8, 9}, true, {1280, 720, 160, 0, 960, 720, {1, 1}}},
                    FitRow{"WideScreenBoxed", 1920, 800, {1, 1}, true, {1280, 720, 0, 92, 1280, 534, {1, 1}}},
                    FitRow{"UprightBoxed", 720, 1280, {1, 1}, true, {1280, 720, 436, 0, 406, 720, {1, 1}}}),
    [](const testing::TestParamInfo<FitRow>& row) { return std::string(row.param.name); });

TEST(MovencoderFitWithoutSize, KeepsThePictureAsItIs)
{
    const Fit fit = fitPicture(1440, 1080, {4, 3}, FormatSettings{});
    EXPECT_EQ(fit.width, 1440);
    EXPECT_EQ(fit.pictureHeight, 1080);
    EXPECT_EQ(fit.pixelAspect.num, 4);
    EXPECT_EQ(fit.pixelAspect.den, 3);
}

struct ChoiceRow {
    const char* name;
    std::string record;
    std::optional<Format> format;
};

class MovencoderFormatChoice : public testing::TestWithParam<ChoiceRow>
{
};

std::string record(const std::string& output, const std::string& input, const std::string& out)
{
    return section("processEncDico", "<key>dstPathStr</key><string>" + output +
                                         "</string><key>purgePathStr1</key><string>" + input +
                                         "</string><key>out</key>" + out);
}

TEST_P(MovencoderFormatChoice, BelievesOnlyTheRowOfTheseFiles)
{
    const TempFolder folder;
    const QString path = folder.makeFile(QStringLiteral("p.plist"), QByteArray::fromStdString(list(GetParam().record)));
    EXPECT_EQ(formatOfRunningRow(path.toStdString(), "/m/clip_MASTER.mov", "/m/clip é&.mov"), GetParam().format);
}

INSTANTIATE_TEST_SUITE_P(
    Records, MovencoderFormatChoice,
    testing::Values(
        ChoiceRow{"Four", record("/m/clip é&amp;.mov", "/m/clip_MASTER.mov", "<integer>4</integer>"),
                  Format::AppleIntermediate},
        ChoiceRow{"Five", record("/m/clip é&amp;.mov", "/m/clip_MASTER.mov", "<integer>5</integer>"), Format::ProRes},
        ChoiceRow{"FourAsText", record("/m/clip é&amp;.mov", "/m/clip_MASTER.mov", "<string>4</string>"),
                  Format::AppleIntermediate},
        ChoiceRow{"AnotherFormat", record("/m/clip é&amp;.mov", "/m/clip_MASTER.mov", "<integer>3</integer>"),
                  std::nullopt},
        ChoiceRow{"NoNumber", record("/m/clip é&amp;.mov", "/m/clip_MASTER.mov", "<string>4x</string>"), std::nullopt},
        ChoiceRow{"AnotherOutput", record("/m/other.mov", "/m/clip_MASTER.mov", "<integer>4</integer>"), std::nullopt},
        ChoiceRow{"AnotherInput", record("/m/clip é&amp;.mov", "/m/clip.mov", "<integer>4</integer>"), std::nullopt},
        ChoiceRow{"EmptyRecord", section("processEncDico", ""), std::nullopt},
        ChoiceRow{"RecordIsText", "<key>processEncDico</key><string>4</string>", std::nullopt},
        ChoiceRow{"NoRecord", number("out", "4"), std::nullopt}),
    [](const testing::TestParamInfo<ChoiceRow>& row) { return std::string(row.param.name); });

TEST(MovencoderFormatChoiceFile, MissingOrDamagedPreferencesSayNothing)
{
    const TempFolder folder;
    EXPECT_EQ(formatOfRunningRow(folder.path(QStringLiteral("none")).toStdString(), "a", "b"), std::nullopt);
    const QString damaged = folder.makeFile(QStringLiteral("p"), QByteArrayLiteral("<plist><dict><key>processEnc"));
    EXPECT_EQ(formatOfRunningRow(damaged.toStdString(), "a", "b"), std::nullopt);
}

TEST(MovencoderFirstPass, IsKnownByItsName)
{
    const std::string output = "/m/Tavrix events/clip-a.b.mov";
    EXPECT_TRUE(isFirstPassOf(output, "/m/Tavrix events/clip-a.b_MASTER.mov"));
    EXPECT_TRUE(isFirstPassOf(output, "/m/Tavrix events/clip_MASTER.mov")) << "long names are cut";
    EXPECT_TRUE(isFirstPassOf("clip.mov", "clip_MASTER.mov"));
    EXPECT_FALSE(isFirstPassOf(output, "/m/clip-a.b_MASTER.mov"));
    EXPECT_FALSE(isFirstPassOf(output, "/m/Tavrix events/clip-a.b_MASTER.MTS"));
    EXPECT_FALSE(isFirstPassOf(output, "/m/Tavrix events/clip_MASTER-2.mov"));
    EXPECT_FALSE(isFirstPassOf(output, "/m/Tavrix events/00001.mov"));
    EXPECT_FALSE(isFirstPassOf("/m/a_MASTER/clip.mov", "/m/a_MASTER/clip.mov"));
    EXPECT_FALSE(isFirstPassOf("/m/a_MASTER.mov", "/m/a_MASTER.mov"));
}

TEST(MovencoderOptions, PathsAndSettingsAreTaken)
{
    std::string error;
    const auto options = parseOptions({"-s", "set", "in", "--", "-out"}, error);
    ASSERT_TRUE(options) << error;
    EXPECT_EQ(options->settings, "set");
    EXPECT_EQ(options->input, "in");
    EXPECT_EQ(options->output, "-out");
    EXPECT_FALSE(options->format);
    EXPECT_EQ(parseOptions({"-f", "aic", "-s", "s", "a", "b"}, error)->format, Format::AppleIntermediate);
    EXPECT_EQ(parseOptions({"-f", "prores", "-s", "s", "a", "b"}, error)->format, Format::ProRes);
    EXPECT_TRUE(parseOptions({"--help"}, error)->help);
}

TEST(MovencoderOptions, WrongUsageIsNamed)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> rows{
        {{}, "no settings"},
        {{"-s"}, "-s needs a value"},
        {{"-s", "set"}, "no input"},
        {{"-s", "set", "in"}, "no output"},
        {{"-s", "set", "in", "out", "more"}, "unexpected argument \"more\""},
        {{"-s", "set", "in", ""}, "empty"},
        {{"-f", "dv", "-s", "set", "in", "out"}, "unknown format \"dv\""},
        {{"--fast", "-s", "set", "in", "out"}, "unknown option --fast"}};
    for (const auto& [arguments, complaint] : rows) {
        std::string error;
        EXPECT_FALSE(parseOptions(arguments, error));
        EXPECT_NE(error.find(complaint), std::string::npos) << error;
    }
}

TEST(MovencoderProgress, LinesAreWholeAndCarryThePercentage)
{
    EXPECT_EQ(progressLine(0), "Processing (0%)\n");
    EXPECT_EQ(progressLine(42), "Processing (42%)\n");
    EXPECT_EQ(progressLine(100), "Processing (100%)\n");
}

} // namespace
