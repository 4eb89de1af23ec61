// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/codecnames.h"

#include "quicktime/model/componentregistry.h"
#include "support/qtprinters.h"

namespace tavrix::test
{

namespace
{

struct NameRow {
    const char* name;
    const char* code;
    const char* codec;
};

class VideoCodecNameTest : public testing::TestWithParam<NameRow>
{
};
class AudioCodecNameTest : public testing::TestWithParam<NameRow>
{
};

SampleDescription described(quint32 code)
{
    SampleDescription description;
    description.dataFormat = code;
    return description;
}

} // namespace

TEST_P(VideoCodecNameTest, is)
{
    EXPECT_TEXT(videoCodecName(text(GetParam().code)), text(GetParam().codec));
}

INSTANTIATE_TEST_SUITE_P(Codes, VideoCodecNameTest,
                         testing::Values(NameRow{"avc1", "avc1", "h264"}, NameRow{"upperCase", "AVC1", "h264"},
                                         NameRow{"m2v1", "m2v1", "mpeg2video"}, NameRow{"hdv3", "hdv3", "mpeg2video"},
                                         NameRow{"m1v1", "m1v1", "mpeg1video"}, NameRow{"mpeg", "mpeg", "mpeg1video"},
                                         NameRow{"flv1", "flv1", "flv"}, NameRow{"div3", "DIV3", "divx"},
                                         NameRow{"dx45", "dx45", "divx"}, NameRow{"dx50IsDivx", "dx50", "divx"},
                                         NameRow{"mp4v", "mp4v", "mpeg4"}, NameRow{"xvid", "XVID", "mpeg4"},
                                         NameRow{"mp43", "mp43", "msmpeg4"}, NameRow{"mp42", "mp42", "msmpeg4v2"},
                                         NameRow{"paddedRleIsKept", "rle ", "rle "},
                                         NameRow{"cvid", "cvid", "cinepack"}, NameRow{"unknown", "abcd", "abcd"},
                                         NameRow{"unknownUpper", "JPEG", "jpeg"}),
                         rowName<NameRow>);

TEST_P(AudioCodecNameTest, is)
{
    EXPECT_TEXT(audioCodecName(text(GetParam().code)), text(GetParam().codec));
}

INSTANTIATE_TEST_SUITE_P(Codes, AudioCodecNameTest,
                         testing::Values(NameRow{"mp4a", "mp4a", "aac"}, NameRow{"mp3", ".mp3", "mp3"},
                                         NameRow{"waveMp3IsKept", "ms.U", "ms.u"}, NameRow{"twos", "twos", "pcm_s16be"},
                                         NameRow{"sowt", "sowt", "pcm_s16le"}, NameRow{"ima4", "ima4", "adpcm_ima_qt"},
                                         NameRow{"wma2", "WMA2", "wmav2"}, NameRow{"wmva", "wmva", "vc1"},
                                         NameRow{"waveAc3", "ms .", "ac3"}, NameRow{"unknown", "QDM2", "qdm2"}),
                         rowName<NameRow>);

TEST(FourCharTextTest, showsZeroBytesAsDots)
{
    EXPECT_TEXT(fourCharText(fourCharCode("avc1")), QStringLiteral("avc1"));
    EXPECT_TEXT(fourCharText(0x6D732000U), QStringLiteral("ms ."));
    EXPECT_TEXT(fourCharText(0x6D730055U), QStringLiteral("ms.U"));
    EXPECT_TRUE(fourCharText(0x80000000U).isNull());
}

TEST(SampleFormatTextTest, isRawWhenTheDescriptionTellsNothing)
{
    EXPECT_TEXT(sampleFormatText(QStringLiteral("vide"), described(fourCharCode("avc1"))), QStringLiteral("avc1"));
    EXPECT_TEXT(sampleFormatText(QStringLiteral("flsh"), described(fourCharCode("avc1"))), QStringLiteral("raw"));
    SampleDescription broken = described(fourCharCode("avc1"));
    broken.error = true;
    EXPECT_TEXT(sampleFormatText(QStringLiteral("vide"), broken), QStringLiteral("raw"));
    EXPECT_TEXT(sampleFormatText(QStringLiteral("vide"), described(0xFF000000U)), QStringLiteral("raw"));
}

} // namespace tavrix::test
