// SPDX-License-Identifier: GPL-3.0-or-later
#include "cameramovietest.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>

using namespace tavrix::test;

namespace
{

const QString plain = QStringLiteral("1280x720p");
const QString aic = QStringLiteral("aic");
constexpr qsizetype packetSize = 188;

constexpr int pictures = 40;

class MovencoderDamage : public CameraMovieTest<pictures>
{
};

// The recording without one packet of its picture, in its middle.
QByteArray withoutAPacket(const QByteArray& stream)
{
    constexpr int picturePid = 0x100;
    for (qsizetype at = stream.size() / packetSize / 2 * packetSize; at < stream.size(); at += packetSize) {
        const int pid = (stream.at(at + 1) & 0x1F) << 8 | static_cast<unsigned char>(stream.at(at + 2));
        const bool begins = (stream.at(at + 1) & 0x40) != 0;
        if (pid == picturePid && !begins) {
            return stream.left(at) + stream.mid(at + packetSize);
        }
    }
    return {};
}

TEST_F(MovencoderDamage, DamagedPicturesCostOnlyThemselves)
{
    auto bytes = readBytes(camera());
    ASSERT_TRUE(bytes);
    // More than one of the small pictures of the end, so that at least one loses its head.
    std::fill_n(bytes->begin() + bytes->size() * 8 / 10, bytes->size() / 10, '\xFF');
    const QString damaged = folder_.makeFile(QStringLiteral("damaged.mov"), *bytes);
    ASSERT_NE(decodeErrors(damaged).toStdString(), "");
    const ToolResult result = movencode(settingsPath(plain), aic, damaged, output());
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.contains("100%"));
    EXPECT_TRUE(
        result.errors.startsWith("movencoder: " + QFile::encodeName(damaged) + ": Incomplete: source damaged: "))
        << result.errors.constData();
    EXPECT_EQ(result.errors.count('\n'), 2) << "a decoder's words are not the tool's";
    EXPECT_TRUE(result.errors.contains("\ntavrix-verdict: incomplete damaged-pictures ")) << result.errors.constData();
    EXPECT_EQ(probe(output()).value(QStringLiteral("nb_read_frames")), QString::number(pictures));
    EXPECT_EQ(probe(output()).value(QStringLiteral("duration")), probe(camera()).value(QStringLiteral("duration")));
}

// Whether a decoder's thread marks a picture before it is handed out is chance; the outcome must not be.
TEST_F(MovencoderDamage, LostPacketIsToldEveryTime)
{
    const QByteArray cut = withoutAPacket(*readBytes(recording()));
    ASSERT_FALSE(cut.isEmpty());
    const QString lost = folder_.makeFile(QStringLiteral("lost.mts"), cut);
    for (int run = 0; run < 4; ++run) {
        QFile::remove(output());
        const ToolResult result = movencode(settingsPath(plain), aic, lost, output());
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.errors.contains(": Incomplete: source damaged: 1 picture from 0:00."))
            << result.errors.constData();
    }
    EXPECT_EQ(probe(output()).value(QStringLiteral("nb_read_frames")), QString::number(pictures));
}

TEST_F(MovencoderDamage, RecordingThatStartsInTheMiddleIsWhole)
{
    const QByteArray bytes = *readBytes(recording());
    const QString late =
        folder_.makeFile(QStringLiteral("late.mts"), bytes.mid(bytes.size() / packetSize / 3 * packetSize));
    const ToolResult result = movencode(settingsPath(plain), aic, late, output());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors.toStdString(), "");
    const int kept = probe(output()).value(QStringLiteral("nb_read_frames")).toInt();
    EXPECT_GT(kept, pictures / 4);
    EXPECT_LT(kept, pictures);
}

TEST_F(MovencoderDamage, SourceThatEndsEarlyIsKeptAsFarAsItGoes)
{
    const QString whole = folder_.path(QStringLiteral("whole.mov"));
    ASSERT_TRUE(makeMedia({QStringLiteral("-i"), camera(), QStringLiteral("-c"), QStringLiteral("copy"),
                           QStringLiteral("-movflags"), QStringLiteral("+faststart"), whole}));
    ASSERT_TRUE(QFile::resize(whole, QFileInfo(whole).size() * 9 / 10));
    const ToolResult result = movencode(settingsPath(plain), aic, whole, output());
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errors.contains(": Incomplete: 0.")) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains(" of 0.7 s could be read")) << result.errors.constData();
    EXPECT_EQ(decodeErrors(output()).toStdString(), "");
    EXPECT_GT(probe(output()).value(QStringLiteral("nb_read_frames")).toInt(), pictures / 3);
}

// Half a recording is no reason to lose the whole one that stands there.
TEST_F(MovencoderDamage, IncompleteOutputReplacesNothing)
{
    const QString lost = folder_.makeFile(QStringLiteral("lost.mts"), withoutAPacket(*readBytes(recording())));
    const QByteArray old("the file of last week");
    ASSERT_TRUE(writeBytes(output(), old));
    const ToolResult result = movencode(settingsPath(plain), aic, lost, output());
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.contains("movencoder: " + QFile::encodeName(lost) + ": Failed: what stands under"))
        << result.errors.constData();
    EXPECT_FALSE(result.output.contains("100%"));
    EXPECT_TRUE(readBytes(output()) == old);
    EXPECT_EQ(entriesOf(folder_.path()).size(), 2);
}

TEST_F(MovencoderDamage, MotionJpegPictureIsNotDamagedInSilence)
{
    const QString clip = folder_.path(QStringLiteral("clip.avi"));
    ASSERT_TRUE(makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("mandelbrot=s=640x480:r=15"), QStringLiteral("-frames:v"),
                           QStringLiteral("6"), QStringLiteral("-c:v"), QStringLiteral("mjpeg"), QStringLiteral("-q:v"),
                           QStringLiteral("3"), QStringLiteral("-pix_fmt"), QStringLiteral("yuvj422p"), clip}));
    ASSERT_EQ(movencode(settingsPath(plain), aic, clip, output()).errors.toStdString(), "");
    auto bytes = *readBytes(clip);
    std::fill_n(bytes.begin() + bytes.size() / 2, 300, '\xA5');
    ASSERT_TRUE(writeBytes(clip, bytes));
    QFile::remove(output());
    const ToolResult result = movencode(settingsPath(plain), aic, clip, output());
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errors.contains(": Incomplete: source damaged: 1 picture")) << result.errors.constData();
    EXPECT_EQ(probe(output()).value(QStringLiteral("nb_read_frames")), QStringLiteral("6"));
}

} // namespace
