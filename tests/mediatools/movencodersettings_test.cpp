// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/temphome.h"
#include "testpaths.h"
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
    const auto settings =
        parseSettings(list(number("default", "4") +
                           section("4", number("width", "1280") + number("height", "720") +
                                            "<key>letterbox</key><true/>" + number("quantiser", "9")) +
                           section("5", "<key>profile</key><string>hq</string>")));
    ASSERT_TRUE(settings) << settings.reason();
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
    const auto settings = parseSettings(list(number("default", "4") + section("4", number("bytesPerFrame", "160000"))));
    ASSERT_TRUE(settings) << settings.reason();
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
    const auto settings = parseSettings(GetParam().text);
    EXPECT_FALSE(settings);
    EXPECT_NE(settings.reason().find(GetParam().complaint), std::string::npos) << settings.reason();
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
        const auto settings = readSettings(path);
        ASSERT_TRUE(settings) << settings.reason();
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
    EXPECT_EQ(readSettings(folder.path(QStringLiteral("none")).toStdString()).reason(), "No such file or directory");
    EXPECT_EQ(readSettings(folder.path().toStdString()).reason(), "not a regular file");
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

TEST(MovencoderOptions, PathsAndSettingsAreTaken)
{
    const auto options = parseOptions({"-s", "set", "in", "--", "-out"});
    ASSERT_TRUE(options) << options.reason();
    EXPECT_EQ(options->settings, "set");
    EXPECT_EQ(options->input, "in");
    EXPECT_EQ(options->output, "-out");
    EXPECT_FALSE(options->format);
    EXPECT_EQ(parseOptions({"-f", "aic", "-s", "s", "a", "b"})->format, Format::AppleIntermediate);
    EXPECT_EQ(parseOptions({"-f", "prores", "-s", "s", "a", "b"})->format, Format::ProRes);
    EXPECT_TRUE(parseOptions({"--help"})->help);
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
        const auto options = parseOptions(arguments);
        EXPECT_FALSE(options);
        EXPECT_NE(options.reason().find(complaint), std::string::npos) << options.reason();
    }
}

TEST(MovencoderProgress, LinesAreWholeAndCarryThePercentage)
{
    EXPECT_EQ(progressLine(0), "Processing (0%)\n");
    EXPECT_EQ(progressLine(42), "Processing (42%)\n");
    EXPECT_EQ(progressLine(100), "Processing (100%)\n");
}

} // namespace
