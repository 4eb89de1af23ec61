// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/movencoderstep.h"

#include "base/bundle/bundle.h"
#include "base/bundle/propertylist.h"
#include "base/files/fileinfo.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/listconversions.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QFile>

#include <cmath>

namespace tavrix
{

namespace
{

using test::LogCapture;
using test::TempFolder;

const QString dictionary = QStringLiteral("processEncDico");
const QString destinationKey = QStringLiteral("dstPathStr");
const QString purgeKey = QStringLiteral("purgePathStr1");

struct NameRow {
    const char* name;
    float aspect;
    const char* settings;
};

class MovencoderStep : public testing::Test
{
protected:
    void SetUp() override
    {
        output_ = folder_.makeFile(QStringLiteral("clip.mov"), "first pass");
        intermediate_ = oldSrcPathStr2DstPathStr(output_);
        setFreeSpaceForTests(1000);
    }
    void TearDown() override
    {
        setFreeSpaceForTests(-1);
        prefDelete(dictionary);
    }

    TempFolder folder_;
    QString output_;
    QString intermediate_;
};

} // namespace

class SettingsNames : public testing::TestWithParam<NameRow>
{
};

TEST_P(SettingsNames, FollowTheAspect)
{
    EXPECT_TEXT(movencoderSettingsName(GetParam().aspect), test::text(GetParam().settings));
}

INSTANTIATE_TEST_SUITE_P(
    Aspects, SettingsNames,
    testing::Values(NameRow{"FourThirds", 1.3333F, "1280x720pLetterbox"},
                    NameRow{"JustInside", 1.42F, "1280x720pLetterbox"}, NameRow{"TooWide", 1.44F, "1280x720p"},
                    NameRow{"TooNarrow", 1.22F, "1280x720p"}, NameRow{"Wide", 1.7778F, "1280x720p"},
                    NameRow{"NoNumber", std::nanf(""), "1280x720p"}, NameRow{"Unknown", 0.0F, "1280x720p"}),
    test::rowName<NameRow>);

TEST_F(MovencoderStep, MovesTheFirstPassAsideAndNamesTheSecond)
{
    const LogCapture log;
    const auto list = encPostQtEnc(output_, 60.0F, 1.78F, QString());
    ASSERT_TRUE(list.has_value());
    EXPECT_TEXTS(*list, (QStringList{resourcePath() + QStringLiteral("/tools/movencoder"), QStringLiteral("-s"),
                                     resourcePath() + QStringLiteral("/presets/1280x720p"), intermediate_, output_}));
    EXPECT_FALSE(test::itemExists(output_));
    EXPECT_EQ(test::readBytes(intermediate_), QByteArray("first pass"));
    EXPECT_TRUE(log.contains(QStringLiteral("encQt()             - deb")));
    EXPECT_TRUE(log.contains(QStringLiteral("encDstPoidsEstimatif= 10.000000")));
    EXPECT_TRUE(log.contains(QStringLiteral("necessary=10 ? available=1000")));
    EXPECT_EQ(log.lines().last(), QStringLiteral("encQt()             - fin"));
}

TEST_F(MovencoderStep, TellsTheToolThroughTheSavedPreferences)
{
    ASSERT_TRUE(encPostQtEnc(output_, 60.0F, 1.33F, QStringLiteral("")).has_value());
    EXPECT_TEXT(prefReadChildDico(dictionary, destinationKey), output_);
    EXPECT_TEXT(prefReadChildDico(dictionary, purgeKey), intermediate_);
    prefReload();
    EXPECT_TEXT(prefReadChildDico(dictionary, destinationKey), output_);
    EXPECT_TEXT(prefReadChildDico(dictionary, purgeKey), intermediate_);
}

TEST_F(MovencoderStep, GivenSettingsNameStands)
{
    const auto list = encPostQtEnc(output_, 60.0F, 1.33F, QStringLiteral("own"));
    ASSERT_TRUE(list.has_value());
    EXPECT_TEXT(list->value(2), resourcePath() + QStringLiteral("/presets/own"));
}

TEST_F(MovencoderStep, OlderIntermediateIsReplaced)
{
    ASSERT_TRUE(test::writeBytes(intermediate_, "older"));
    ASSERT_TRUE(encPostQtEnc(output_, 60.0F, 1.78F, QString()).has_value());
    EXPECT_EQ(test::readBytes(intermediate_), QByteArray("first pass"));
}

TEST_F(MovencoderStep, ExactlyEnoughSpaceProceeds)
{
    setFreeSpaceForTests(109);
    EXPECT_TRUE(encPostQtEnc(output_, 600.0F, 1.78F, QString()).has_value());
}

TEST_F(MovencoderStep, TooLittleSpaceRefusesAfterTheMove)
{
    setFreeSpaceForTests(108);
    const LogCapture log;
    EXPECT_FALSE(encPostQtEnc(output_, 600.0F, 1.78F, QString()).has_value());
    EXPECT_TRUE(log.contains(QStringLiteral("necessary=109 ? available=108")));
    EXPECT_FALSE(log.contains(QStringLiteral("encQt()             - fin")));
    EXPECT_FALSE(test::itemExists(output_));
    EXPECT_EQ(test::readBytes(intermediate_), QByteArray("first pass"));
    EXPECT_TEXT(prefReadChildDico(dictionary, destinationKey), QStringLiteral(""));
}

TEST_F(MovencoderStep, FractionOfAMegabyteTooLittleRefuses)
{
    setFreeSpaceForTests(108);
    const LogCapture log;
    EXPECT_FALSE(encPostQtEnc(output_, 595.0F, 1.78F, QString()).has_value());
    EXPECT_TRUE(log.contains(QStringLiteral("necessary=108 ? available=108")));
}

TEST_F(MovencoderStep, SpaceIsComparedInSinglePrecision)
{
    // 16777220 are needed, and 16777219 megabytes are not told from that.
    setFreeSpaceForTests(16777219);
    const LogCapture log;
    EXPECT_TRUE(encPostQtEnc(output_, 91512112.0F, 1.78F, QString()).has_value());
    EXPECT_TRUE(log.contains(QStringLiteral("necessary=16777220 ? available=16777219")));
}

TEST_F(MovencoderStep, ShortClipNeedsLessThanNothing)
{
    setFreeSpaceForTests(0);
    const LogCapture log;
    EXPECT_TRUE(encPostQtEnc(output_, 5.0F, 1.78F, QString()).has_value());
    EXPECT_TRUE(log.contains(QStringLiteral("encDstPoidsEstimatif= -0.083333")));
    EXPECT_TRUE(log.contains(QStringLiteral("necessary=-0 ? available=0")));
}

TEST_F(MovencoderStep, FailedMoveKeepsTheFirstPassAndIsRefused)
{
    ASSERT_TRUE(QFile::link(QStringLiteral("nowhere"), intermediate_));
    setFreeSpaceForTests(-1);
    EXPECT_FALSE(encPostQtEnc(output_, 60.0F, 1.78F, QString()).has_value());
    EXPECT_EQ(test::readBytes(output_), QByteArray("first pass"));
    EXPECT_TRUE(test::itemExists(intermediate_));
}

TEST_F(MovencoderStep, ArgumentsAreLoggedForDevelopers)
{
    const LogCapture log;
    setDEBUGDEVForTests(1);
    const auto list = encPostQtEnc(output_, 60.0F, 1.78F, QString());
    setDEBUGDEVForTests(0);
    ASSERT_TRUE(list.has_value());
    EXPECT_TRUE(log.contains(formatText(QStringLiteral("movencoder - fin : %@"), {*list})));
}

TEST_F(MovencoderStep, MissingFirstPassIsLeftToTheTool)
{
    ASSERT_TRUE(QFile::remove(output_));
    EXPECT_TRUE(encPostQtEnc(output_, 60.0F, 1.78F, QString()).has_value());
    EXPECT_FALSE(test::itemExists(intermediate_));
}

} // namespace tavrix
