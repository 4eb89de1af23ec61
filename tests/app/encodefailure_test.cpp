#include "app/encodefailure.h"
#include "support/qtprinters.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct ReasonRow {
    const char* name;
    const char* transcript;
    const char* line;
};

class Reason : public testing::TestWithParam<ReasonRow>
{
};

const ReasonRow reasonRows[] = {
    {"Nothing", nullptr, nullptr},
    {"Empty", "", nullptr},
    {"ProgressOnly", "frame=  25 fps=0 size= 100kB time=1.00 bitrate= 1.0kbits/s\r", nullptr},
    {"OnlyDescriptions",
     "FFmpeg version git-N-1-g, Copyright\n  built on x\n  configuration: --x\n  libavutil 50. 1. 0\n"
     "Input #0, mpegts, from 'a':\n  Duration: 00:00:01.00\n    Stream #0.0: Video: h264\nOutput #0, mov, to 'b':\n"
     "    Stream #0.0: Video: h264\nStream mapping:\n  Stream #0.0 -> #0.0\nPress [q] to stop encoding\n"
     "video:1kB audio:1kB\n",
     nullptr},
    {"LastMessage", "a.mts: first\nframe= 1 time=1.0\nav_interleaved_write_frame(): No space left on device\n",
     "av_interleaved_write_frame(): No space left on device"},
    {"MessageBeforeProgress", "Error while decoding stream #0.0\nframe= 1 time=1.0 \rframe= 2 time=2.0 \r",
     "Error while decoding stream #0.0"},
    {"IndentedIsADescription", "Unknown encoder 'x'\n    title           : Could not write\n", "Unknown encoder 'x'"},
    {"SecondPassProgress", "cannot open settings\nProcessing (10%)\n", "cannot open settings"},
    {"TrailingBlank", "No such file  \n", "No such file"},
    {"BlankLines", "message\n\n   \n", "message"},
};

} // namespace

TEST_P(Reason, IsTheLastTellingLine)
{
    EXPECT_TEXT(failureLine(text(GetParam().transcript)), text(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(EncodeFailure, Reason, testing::ValuesIn(reasonRows), rowName<ReasonRow>);
