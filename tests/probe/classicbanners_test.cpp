// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/ffinfos.h"

#include "probe/recordtext.h"
#include "support/qtprinters.h"

// Whole texts of the tool as it prints them, and the records read from them.
namespace tavrix
{

namespace
{

struct Row {
    const char* name;
    const char* banner;
    std::vector<std::string> record;
};

const char* const avchd = R"(FFmpeg version SVN-r23048, Copyright (c) 2000-2010 the FFmpeg developers
  built on May  7 2010 12:31:08 with gcc 4.4.3
  configuration: --enable-gpl --enable-version3 --enable-nonfree --enable-postproc --enable-pthreads --enable-libx264
  libavutil     50.15. 1 / 50.15. 1
  libavcodec    52.67. 0 / 52.67. 0
[mpegts @ 0x8a7f4b0]MAX_READ_SIZE:5000000 reached
Input #0, mpegts, from '00000.MTS':
  Duration: 00:00:09.98, start: 1.400000, bitrate: 13341 kb/s
  Program 1 
    Stream #0.0[0x1011]: Video: h264, yuv420p, 1920x1080 [PAR 1:1 DAR 16:9], 25 fps, 25 tbr, 90k tbn, 50 tbc
    Stream #0.1[0x1100]: Audio: ac3, 48000 Hz, stereo, s16, 192 kb/s
At least one output file must be specified
)";

const char* const photoCamera =
    R"(Seems stream 0 codec frame rate differs from container frame rate: 15360.00 (15360/1) -> 30.00 (30/1)
Input #0, mov,mp4,m4a,3gp,3g2,mj2, from 'P1000002.MOV':
  Metadata:
    major_brand     : qt  
    minor_version   : 512
    compatible_brands: qt  
  Duration: 00:00:10.00, start: 0.000000, bitrate: 13077 kb/s
    Stream #0.0(eng): Video: mjpeg, yuvj420p, 1280x720 [PAR 1:1 DAR 16:9], 12817 kb/s, 30 fps, 30 tbr, 15360 tbn, 15360 tbc
    Stream #0.1(eng): Audio: pcm_s16le, 16000 Hz, 1 channels, s16, 256 kb/s
[scale @ 0x9f69eb0]w:1280 h:720 fmt:yuv420p
Output #0, mov, to 'y.mov':
  Metadata:
    encoder         : Lavf52.62.0
    Stream #0.0(eng): Video: mpeg4, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], q=2-31, 8000 kb/s, 30 tbn, 30 tbc
    Stream #0.1(eng): Audio: pcm_s16be, 16000 Hz, 1 channels, s16, 256 kb/s
Stream mapping:
  Stream #0.0 -> #0.0
  Stream #0.1 -> #0.1
Press [q] to stop encoding
frame=   40 fps=  0 q=4.4 size=    1436kB time=1.28 bitrate=9190.4kbits/s    
video:3052kB audio:94kB global headers:0kB muxing overhead 0.065302%
)";

const char* const broadcast = R"([h264 @ 0xa2e6d0]missing picture in access unit
Input #0, mpegts, from 'tv.ts':
  Duration: 00:00:03.99, start: 1.429978, bitrate: 3971 kb/s
  Program 1 Service01
    Metadata:
      name            : Service01
      provider_name   : FFmpeg
    Stream #0.0[0x100]: Video: h264, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], 50 fps, 50 tbr, 90k tbn, 100 tbc
    Stream #0.1[0x101]: Audio: mp2, 48000 Hz, 2 channels, s16, 192 kb/s
Output #0, mov, to 'tv.mov':
  Metadata:
    encoder         : Lavf52.62.0
    Stream #0.0: Video: avc1 / 0x31637661, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], q=2-31, 100 tbn, 50 tbc
    Stream #0.1: Audio: mp2, 48000 Hz, 2 channels, 192 kb/s
Stream mapping:
  Stream #0.0 -> #0.0
  Stream #0.1 -> #0.1
)";

const char* const cameraAvi = R"(
Input #0, avi, from 'MVI_0001.AVI':
  Metadata:
    ISFT            : CanonMVI03
  Duration: 00:00:10.00, start: 0.000000, bitrate: 6918 kb/s
    Stream #0.0: Video: mjpeg, yuvj422p, 640x480 [PAR 1:1 DAR 4:3], 30 tbr, 30 tbn, 30 tbc
    Stream #0.1: Audio: pcm_u8, 11024 Hz, 1 channels, u8, 88 kb/s
At least one output file must be specified
)";

const char* const phoneMovie = R"(FFmpeg version SVN-r23048
Input #0, mov,mp4,m4a,3gp,3g2,mj2, from 'IMG_0002.MOV':
  Metadata:
    major_brand     : qt  
    minor_version   : 512
    compatible_brands: qt  
  Duration: 00:00:10.02, start: 0.000000, bitrate: 3131 kb/s
    Stream #0.0(eng): Video: h264, yuv420p, 1280x720 [PAR 1:1 DAR 16:9], 2998 kb/s, 29.97 fps, 29.97 tbr, 30k tbn, 59.94 tbc
    Stream #0.1(eng): Audio: aac, 48000 Hz, stereo, s16, 128 kb/s
At least one output file must be specified
)";

const char* const intermediateCodec =
    R"(Seems stream 0 codec frame rate differs from container frame rate: 2997.00 (2997/1) -> 29.97 (30000/1001)
Input #0, mov,mp4,m4a,3gp,3g2,mj2, from 'after.mov':
  Metadata:
    major_brand     : qt  
    minor_version   : 537199360
  Duration: 00:00:09.77, start: 0.-33375, bitrate: 87204 kb/s
    Stream #0.0(eng): Video: Apple Intermediate Codec, 1920x1080, 85901 kb/s, PAR 1:1 DAR 16:9, 29.97 fps, 29.97 tbr, 2997 tbn, 2997 tbc
    Stream #0.1(eng): Audio: pcm_s16le, 48000 Hz, 2 channels, s16, 1536 kb/s
    Stream #0.2(eng): Data: tmcd / 0x64636D74, 0 kb/s
At least one output file must be specified
)";

const char* const programStream = R"(FFmpeg version SVN-r23048
Input #0, mpeg, from 'M2U00001.MPG':
  Duration: 00:00:03.96, start: 0.534667, bitrate: 6792 kb/s
    Stream #0.0[0x1e0]: Video: mpeg2video, yuv420p, 720x576 [PAR 64:45 DAR 16:9], 9000 kb/s, 25 fps, 25 tbr, 90k tbn, 50 tbc
    Stream #0.1[0x80]: Audio: ac3, 48000 Hz, stereo, s16, 448 kb/s
At least one output file must be specified
)";

const char* const failures = R"(nofile.mov: No such file or directory

[mov,mp4,m4a,3gp,3g2,mj2 @ 0x9d54f00]moov atom not found
trunc2.mov: Operation not permitted
[mov,mp4,m4a,3gp,3g2,mj2 @ 0x1]Could not find codec parameters (Video: Apple Intermediate Codec, 1920x1080, 36352 kb/s)
aic.mov: could not find codec parameters
)";

} // namespace

class ClassicBanners : public testing::TestWithParam<Row>
{
};

TEST_P(ClassicBanners, GiveTheRecord)
{
    EXPECT_EQ(test::recordText(recordFromBanner(test::text(GetParam().banner))), GetParam().record);
}

INSTANTIATE_TEST_SUITE_P(
    Sources, ClassicBanners,
    testing::Values(
        Row{"Avchd",
            avchd,
            {"a0_bitrate=i 192", "a0_channels=i 2", "a0_codec=s ac3", "a0_id=i 1", "a0_rate=i 48000",
             "v0_chroma=s yuv420p", "v0_codec=s h264", "v0_dar=s 16:9", "v0_fps=f 25", "v0_height=i 1080", "v0_id=i 0",
             "v0_par=s 1:1", "v0_tbc=f 50", "v0_width=i 1920", "w_bitrate=i 13341", "w_duration=i 9", "w_offset=f 1.4",
             "wrapper=s mpegts"}},
        Row{"PhotoCamera",
            photoCamera,
            {"a0_bitrate=i 256", "a0_channels=i 1", "a0_codec=s pcm_s16le", "a0_id=i 1", "a0_rate=i 16000",
             "v0_bitrate=i 12817", "v0_chroma=s yuvj420p", "v0_codec=s mjpeg", "v0_dar=s 16:9", "v0_fps=f 30",
             "v0_height=i 720", "v0_id=i 0", "v0_par=s 1:1", "v0_tbc=f 15360", "v0_width=i 1280", "w_bitrate=i 13077",
             "w_duration=i 10", "w_offset=f 0", "wrapper=s mov,mp4,m4a,3gp,3g2,mj2"}},
        Row{"Broadcast",
            broadcast,
            {"a0_bitrate=i 192", "a0_channels=i 2", "a0_codec=s mp2", "a0_id=i 1", "a0_rate=i 48000",
             "v0_chroma=s yuv420p", "v0_codec=s h264", "v0_dar=s 16:9", "v0_fps=f 50", "v0_height=i 720", "v0_id=i 0",
             "v0_par=s 1:1", "v0_tbc=f 100", "v0_width=i 1280", "w_bitrate=i 3971", "w_duration=i 3",
             "w_offset=f 1.429978", "wrapper=s mpegts"}},
        Row{"CameraAvi",
            cameraAvi,
            {"a0_bitrate=i 88", "a0_channels=i 1", "a0_codec=s pcm_u8", "a0_id=i 1", "a0_rate=i 11024",
             "v0_chroma=s yuvj422p", "v0_codec=s mjpeg", "v0_dar=s 4:3", "v0_fps=f 30", "v0_height=i 480", "v0_id=i 0",
             "v0_par=s 1:1", "v0_tbc=f 30", "v0_width=i 640", "w_bitrate=i 6918", "w_duration=i 10", "w_offset=f 0",
             "wrapper=s avi"}},
        Row{"PhoneMovie",
            phoneMovie,
            {"a0_bitrate=i 128", "a0_channels=i 2", "a0_codec=s aac", "a0_id=i 1", "a0_rate=i 48000",
             "v0_bitrate=i 2998", "v0_chroma=s yuv420p", "v0_codec=s h264", "v0_dar=s 16:9", "v0_fps=f 29.97",
             "v0_height=i 720", "v0_id=i 0", "v0_par=s 1:1", "v0_tbc=f 59", "v0_width=i 1280", "w_bitrate=i 3131",
             "w_duration=i 10", "w_offset=f 0", "wrapper=s mov,mp4,m4a,3gp,3g2,mj2"}},
        Row{"IntermediateCodec",
            intermediateCodec,
            {"a0_bitrate=i 1536", "a0_channels=i 2", "a0_codec=s pcm_s16le", "a0_id=i 1", "a0_rate=i 48000",
             "v0_bitrate=i 85901", "v0_codec=s Apple Intermediate Codec", "v0_fps=f 29.97", "v0_height=i 1080",
             "v0_id=i 0", "v0_tbc=f 2997", "v0_width=i 1920", "w_bitrate=i 87204", "w_duration=i 9", "w_offset=f 0",
             "wrapper=s mov,mp4,m4a,3gp,3g2,mj2"}},
        Row{"ProgramStream",
            programStream,
            {"a0_bitrate=i 448", "a0_channels=i 2", "a0_codec=s ac3", "a0_id=i 1", "a0_rate=i 48000",
             "v0_bitrate=i 9000", "v0_chroma=s yuv420p", "v0_codec=s mpeg2video", "v0_dar=s 16:9", "v0_fps=f 25",
             "v0_height=i 576", "v0_id=i 0", "v0_par=s 64:45", "v0_tbc=f 50", "v0_width=i 720", "w_bitrate=i 6792",
             "w_duration=i 3", "w_offset=f 0.534667", "wrapper=s mpeg"}},
        Row{"Failures", failures, {}}),
    test::rowName<Row>);

} // namespace tavrix
