// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/temphome.h"
#include "tools/movencoder/runningrow.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

using namespace tavrix::movencoder;
using tavrix::test::TempFolder;

namespace
{

std::string list(const std::string& content)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + content + "</dict></plist>\n";
}

std::string section(const std::string& key, const std::string& content)
{
    return "<key>" + key + "</key><dict>" + content + "</dict>";
}

struct ChoiceRow {
    const char* name;
    std::string record;
    std::optional<Format> format;
};

class MovencoderRunningRow : public testing::TestWithParam<ChoiceRow>
{
};

std::string record(const std::string& output, const std::string& input, const std::string& out)
{
    return section("processEncDico", "<key>dstPathStr</key><string>" + output +
                                         "</string><key>purgePathStr1</key><string>" + input +
                                         "</string><key>out</key>" + out);
}

TEST_P(MovencoderRunningRow, BelievesOnlyTheRowOfTheseFiles)
{
    const TempFolder folder;
    const QString path = folder.makeFile(QStringLiteral("p.plist"), QByteArray::fromStdString(list(GetParam().record)));
    const auto row = runningRow(path.toStdString(), "/m/clip_MASTER.mov", "/m/clip é&.mov");
    EXPECT_EQ(row ? row->format : std::nullopt, GetParam().format);
}

INSTANTIATE_TEST_SUITE_P(
    Records, MovencoderRunningRow,
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
        ChoiceRow{"NoRecord", "<key>out</key><integer>4</integer>", std::nullopt}),
    [](const testing::TestParamInfo<ChoiceRow>& row) { return std::string(row.param.name); });

TEST(MovencoderRunningRowFile, MissingOrDamagedPreferencesSayNothing)
{
    const TempFolder folder;
    EXPECT_FALSE(runningRow(folder.path(QStringLiteral("none")).toStdString(), "a", "b"));
    const QString damaged = folder.makeFile(QStringLiteral("p"), QByteArrayLiteral("<plist><dict><key>processEnc"));
    EXPECT_FALSE(runningRow(damaged.toStdString(), "a", "b"));
}

struct ClipRow {
    const char* name;
    std::string told;
    std::string clip;
};

class MovencoderRowClip : public testing::TestWithParam<ClipRow>
{
};

TEST_P(MovencoderRowClip, IsTheOneThatTheBatchIsAt)
{
    const TempFolder folder;
    const QString path =
        folder.makeFile(QStringLiteral("p.plist"),
                        QByteArray::fromStdString(
                            list(GetParam().told + record("/m/a.mov", "/m/a_MASTER.mov", "<integer>4</integer>"))));
    const auto row = runningRow(path.toStdString(), "/m/a_MASTER.mov", "/m/a.mov");
    ASSERT_TRUE(row);
    EXPECT_EQ(row->clip, GetParam().clip);
}

INSTANTIATE_TEST_SUITE_P(
    Records, MovencoderRowClip,
    testing::Values(ClipRow{"Told", "<key>encCurrentProcessingFile</key><string>/c/00001.MTS</string>", "/c/00001.MTS"},
                    ClipRow{"Stopping", "<key>encCurrentProcessingFile</key><string>cancel</string>", ""},
                    ClipRow{"Empty", "<key>encCurrentProcessingFile</key><string></string>", ""},
                    ClipRow{"NoText", "<key>encCurrentProcessingFile</key><integer>3</integer>", ""},
                    ClipRow{"Missing", "", ""}),
    [](const testing::TestParamInfo<ClipRow>& row) { return std::string(row.param.name); });

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

} // namespace
