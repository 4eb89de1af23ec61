// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/describe.h"

#include "base/dialogue/localisation.h"
#include "inspecttest.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class Described : public InspectTest
{
protected:
    // The value of a line under a heading that begins like this ("" for the file's own lines); nothing when absent.
    static QString valueOf(const Inspection& inspection, const char* heading, const char* label)
    {
        const QList<DescribedLine> lines = describedLines(inspection);
        QString current = QStringLiteral("");
        for (const DescribedLine& line : lines) {
            if (line.value.isNull()) {
                current = line.depth == 0 ? QStringLiteral("") : line.label;
            }
            const bool own = line.depth == 1 && *heading == '\0';
            const bool under = line.depth == 2 && *heading != '\0' && current.startsWith(QLatin1String(heading));
            if ((own || under) && line.label == QLatin1String(label)) {
                return line.value;
            }
        }
        return {};
    }

    Inspection clip = describedClip();
};

TEST_F(Described, TellsFileContainerAndStreams)
{
    EXPECT_EQ(valueOf(clip, "", "File"), QStringLiteral("/clips/00001.MTS, 6.5 MB"));
    EXPECT_EQ(valueOf(clip, "", "Container"), QStringLiteral("MPEG transport stream (mpegts)"));
    EXPECT_EQ(valueOf(clip, "", "Length"), QStringLiteral("0:06.01"));
    EXPECT_EQ(valueOf(clip, "", "Starts at"), QStringLiteral("1.428 s"));
    EXPECT_EQ(valueOf(clip, "", "Bit rate"), QStringLiteral("8609 kb/s"));
    EXPECT_EQ(valueOf(clip, "Picture 0", "Codec"), QStringLiteral("H.264 (h264), yuv420p"));
    EXPECT_EQ(valueOf(clip, "Picture 0", "Size"), QStringLiteral("1280 × 720"));
    EXPECT_EQ(valueOf(clip, "Picture 0", "Shape"), QStringLiteral("16:9, widescreen"));
    EXPECT_EQ(valueOf(clip, "Picture 0", "Pixels"), QStringLiteral("1:1, square"));
    EXPECT_EQ(valueOf(clip, "Picture 0", "Frame rate"), QStringLiteral("59.94 a second, twice the NTSC rate (29.97)"));
    EXPECT_EQ(valueOf(clip, "Picture 0", "Fields"), QStringLiteral("whole pictures (progressive)"));
    EXPECT_EQ(valueOf(clip, "Picture 0", "Turning"), QStringLiteral("none"));
    EXPECT_EQ(valueOf(clip, "Picture 0", "Colour"), QStringLiteral("not told, limited range"));
    EXPECT_EQ(valueOf(clip, "Sound 0", "Codec"), QStringLiteral("AC-3 (ac3)"));
    EXPECT_EQ(valueOf(clip, "Sound 0", "Sound"), QStringLiteral("48000 Hz, 2 channels"));
    EXPECT_EQ(valueOf(clip, "Sound 0", "By time stamps"), QStringLiteral("starts 33 ms after the picture"));
    EXPECT_EQ(valueOf(clip, "Sound 0", "Both agree"), QStringLiteral("yes"));
    EXPECT_EQ(valueOf(clip, "", "Recorded"), QStringLiteral("2012-05-01 12:34:56 +0200 (the file's date)"));
    EXPECT_EQ(valueOf(clip, "", "Tavrix takes it"), QStringLiteral("yes, as a camera clip"));
}

TEST_F(Described, TellsWhatIsOnlyInMovies)
{
    clip.infos[record::wrapper] = QStringLiteral("mov,mp4,m4a,3gp,3g2,mj2");
    clip.shown->isMovie = true;
    media::StreamFacts& picture = clip.shown->streams.front();
    EXPECT_EQ(valueOf(clip, "Picture 0", "Edit list"), QStringLiteral("none"));
    picture.edits = {true, 2, 1.5, true, true};
    EXPECT_EQ(valueOf(clip, "Picture 0", "Edit list"),
              QStringLiteral("2 pieces, begins after 1.5 s of nothing, hides what is before its start, ends before its "
                             "media"));
    picture.colour = {"bt709", "bt709", "bt709"};
    EXPECT_EQ(valueOf(clip, "Picture 0", "Colour"), QStringLiteral("BT.709, limited range"));
    picture.colour = {"bt709", "", "smpte170m"};
    picture.fullRange = true;
    EXPECT_EQ(valueOf(clip, "Picture 0", "Colour"),
              QStringLiteral("primaries BT.709, transfer unknown, matrix BT.601 (525), full range"));
}

TEST_F(Described, TellsTurnedPicturesWithoutMeaninglessMargins)
{
    clip.movie = {{QStringLiteral("v0_croptop"), 0},
                  {QStringLiteral("v0_cropbottom"), 8},
                  {QStringLiteral("v0_cropleft"), 0},
                  {QStringLiteral("v0_cropright"), 0}};
    EXPECT_EQ(valueOf(clip, "Picture 0", "Crop"), QStringLiteral("top 0, bottom 8, left 0, right 0"));
    clip.movie[QStringLiteral("v0_cropbottom")] = 0;
    EXPECT_EQ(valueOf(clip, "Picture 0", "Crop"), QStringLiteral("none"));
    clip.shown->streams.front().turning = {90, true};
    EXPECT_TRUE(valueOf(clip, "Picture 0", "Crop").isNull());
    EXPECT_EQ(valueOf(clip, "Picture 0", "Turning"),
              QStringLiteral("shown turned clockwise by 90 degrees, mirrored before"));
}

TEST_F(Described, TellsACountedRateThatDiffers)
{
    clip.movie = {{record::v0_fps, 59.93F}};
    EXPECT_TRUE(valueOf(clip, "Picture 0", "Counted rate").isNull());
    clip.movie = {{record::v0_fps, 10.5F}};
    EXPECT_EQ(valueOf(clip, "Picture 0", "Counted rate"), QStringLiteral("10.5 a second, no standard rate"));
}

TEST_F(Described, TellsOffsetsThatDisagree)
{
    clip.offsets = {SoundOffset{-15, 120}};
    EXPECT_EQ(valueOf(clip, "Sound 0", "By time stamps"),
              QStringLiteral("starts with the picture (-15 ms; up to 20 count as none)"));
    EXPECT_EQ(valueOf(clip, "Sound 0", "By track ranges"), QStringLiteral("starts 120 ms after the picture"));
    EXPECT_EQ(valueOf(clip, "Sound 0", "Both agree"), QStringLiteral("no"));
    clip.offsets = {SoundOffset{-150, std::nullopt}};
    EXPECT_EQ(valueOf(clip, "Sound 0", "By time stamps"), QStringLiteral("starts 150 ms before the picture"));
    EXPECT_EQ(valueOf(clip, "Sound 0", "By track ranges"), QStringLiteral("unknown"));
    EXPECT_TRUE(valueOf(clip, "Sound 0", "Both agree").isNull());
}

TEST_F(Described, TellsAnOtherContentThanTheNamePromises)
{
    EXPECT_TRUE(valueOf(clip, "", "Name").isNull());
    clip.path = QStringLiteral("/clips/a.mov");
    EXPECT_EQ(valueOf(clip, "", "Name"), QStringLiteral("\".mov\" promises QuickTime, the content is another"));
    clip.path = QStringLiteral("/clips/a.mpg");
    EXPECT_TRUE(valueOf(clip, "", "Name").isNull());
    clip.infos[record::wrapper] = QStringLiteral("avi");
    EXPECT_EQ(valueOf(clip, "", "Name"), QStringLiteral("\".mpg\" promises an MPEG stream, the content is another"));
    clip.path = QStringLiteral("/clips/a.m2v");
    EXPECT_EQ(valueOf(clip, "", "Name"), QStringLiteral("\".m2v\" promises MPEG video alone, the content is another"));
}

TEST_F(Described, TellsWhyAClipIsLeftOutAndNoFormats)
{
    clip.verdict = {false, QStringLiteral("the picture is interlaced")};
    EXPECT_EQ(valueOf(clip, "", "Tavrix takes it"), QStringLiteral("no: the picture is interlaced"));
    EXPECT_FALSE(describedText(describedLines(clip)).contains(QStringLiteral("What the formats make of it")));
}

TEST_F(Described, TellsWhatTheFormatsMake)
{
    clip.formats = {FormatPreview{0, 480, 272, 30000.0 / 1001, 235500, QStringLiteral("clip-x.mp4")},
                    FormatPreview{3, 1280, 720, 59.94, -1, QStringLiteral("clip-x.mov")}};
    EXPECT_EQ(valueOf(clip, "What the formats", "0 MPEG-4"),
              QStringLiteral("480 × 272, 29.97 a second, about 236 kB, clip-x.mp4"));
    EXPECT_EQ(valueOf(clip, "What the formats", "3 QuickTime"),
              QStringLiteral("1280 × 720, 59.94 a second, unknown, clip-x.mov"));
}

TEST_F(Described, TellsOnlyTheProblemOfAFileThatCannotBeRead)
{
    Inspection damaged;
    damaged.path = QStringLiteral("/clips/damaged.mov");
    damaged.bytes = 12;
    damaged.problem = QStringLiteral("this file could not be read; it may be damaged");
    damaged.toolWords = QStringLiteral("Unknown format\x1b[2J");
    EXPECT_EQ(describedText(describedLines(damaged)),
              QStringLiteral("damaged.mov\n"
                             "  File         /clips/damaged.mov, 12 bytes\n"
                             "  Problem      this file could not be read; it may be damaged\n"
                             "  ffmpeg says  Unknown format\\x1b[2J\n"));
}

TEST_F(Described, ShowsHiddenCharactersOfNamesAsEscapes)
{
    clip.path = QString::fromUtf16(u"/clips/\u202evom.\u001b]0;x\u0007.mov");
    clip.infos[QStringLiteral("a0_lang")] = QStringLiteral("e\nng");
    clip.recorder = {RecorderKind::Eyetv, QStringLiteral("/a\n/b.eyetv"), QStringLiteral("b\r"), 12.5F};
    const QString shown = describedText(describedLines(clip));
    for (const QChar character : shown) {
        EXPECT_TRUE(character == u'\n' || character.isPrint()) << int{character.unicode()};
    }
    EXPECT_EQ(valueOf(clip, "", "Recorder"), QStringLiteral("EyeTV recording \"b\\r\" in /a\\n/b.eyetv, 0:12.50 long"));
}

TEST_F(Described, TellsWhatWasLookedAtThoroughly)
{
    clip.thorough = ThoroughFacts{true, false, 59.939F, 6};
    EXPECT_EQ(valueOf(clip, "Looked at", "Sound decodes"), QStringLiteral("yes"));
    EXPECT_EQ(valueOf(clip, "Looked at", "Time stamps jump"), QStringLiteral("no"));
    EXPECT_EQ(valueOf(clip, "Looked at", "Counted rate"),
              QStringLiteral("59.939 a second, twice the NTSC rate (29.97)"));
    EXPECT_EQ(valueOf(clip, "Looked at", "Length, counted"), QStringLiteral("0:06.00"));
}

TEST_F(Described, SpeaksFrench)
{
    setLanguage(QStringLiteral("fr"));
    EXPECT_EQ(valueOf(clip, "Image 0", "Cadence"),
              QStringLiteral("59,94 images par seconde, le double de la cadence NTSC (29,97)"));
    EXPECT_EQ(valueOf(clip, "", "Fichier"), QStringLiteral("/clips/00001.MTS, 6,5 Mo"));
}

} // namespace
