// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "gui/preview/moviewidget.h"
#include "gui/preview/previewwindow.h"
#include "quicktime/rules/movieslots.h"

#include <QAudioDevice>
#include <QFile>
#include <QProcess>
#include <QSlider>
#include <QVideoFrame>
#include <QVideoFrameFormat>
#include <QVideoSink>

#include <thread>

namespace tavrix::test
{
namespace
{

class Preview : public WindowTest
{
protected:
    // A clip that ffmpeg makes with these words.
    QString makeClip(const char* name, const char* words)
    {
        const QString clip = folder_.path(QLatin1String(name));
        const QStringList arguments = QStringLiteral("-nostdin -v error -y ").append(QLatin1String(words)).split(u' ');
        EXPECT_EQ(QProcess::execute(QStringLiteral("ffmpeg"), arguments + QStringList{clip}), 0);
        return clip;
    }
    // A second of pictures with sound.
    QString makeClipWithSound()
    {
        return makeClip("sound.avi", "-f lavfi -i testsrc2=size=320x180:rate=25 -f lavfi -i sine -t 1 "
                                     "-c:v mjpeg -c:a pcm_s16le");
    }
    PreviewWindow& preview() { return *program_->face().previewWindow(); }
};

// What the program holds in memory, in bytes.
qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().split(' ').value(1).toLongLong() * 4096;
}

QVideoFrame largeFrame()
{
    const QVideoFrameFormat format(QSize(1920, 1080), QVideoFrameFormat::Format_YUV420P);
    QVideoFrame frame(format);
    EXPECT_TRUE(frame.map(QVideoFrame::WriteOnly));
    for (int plane = 0; plane < frame.planeCount(); ++plane) {
        std::fill_n(frame.bits(plane), frame.mappedBytes(plane), uchar{128});
    }
    frame.unmap();
    return frame;
}

} // namespace

// The player of Qt 6.4 ended the whole program here, a running encode included.
TEST_F(Preview, PlaysAClipWithSoundWithoutASoundDevice)
{
    startProgram();
    ASSERT_TRUE(QMediaDevices::defaultAudioOutput().isNull());
    program_->face().preview(makeClipWithSound());
    MovieWidget& movie = preview().movieWidget();
    ASSERT_TRUE(waitFor([&movie] { return movie.hasFrame(); }));
    EXPECT_FALSE(movie.hasFailed());
    EXPECT_TRUE(waitFor([&movie] { return !movie.isPlaying(); }));
    EXPECT_FALSE(movie.hasFailed());
    EXPECT_FALSE(preview().findChild<QSlider*>(QStringLiteral("previewVolume"))->isEnabled());
    QTest::keyClick(&preview(), Qt::Key_Escape);
    EXPECT_FALSE(preview().isVisible());
}

// Frames waited for the window in its event queue, until the memory was full and no key was heard.
TEST_F(Preview, FramesThatNobodyPaintsTakeNoMemory)
{
    startProgram();
    program_->face().preview(makeClipWithSound());
    MovieWidget& movie = preview().movieWidget();
    ASSERT_TRUE(waitFor([&movie] { return movie.hasFrame() && !movie.isPlaying(); }));
    QVideoSink* sink = movie.player().videoSink();
    const qint64 before = residentBytes();
    // The window is busy while 300 frames of three megabytes come.
    std::thread player([sink] {
        for (int i = 0; i < 300; ++i) {
            sink->setVideoFrame(largeFrame());
        }
    });
    player.join();
    EXPECT_LT(residentBytes() - before, qint64{100} << 20);
    QTest::keyClick(&preview(), Qt::Key_Escape);
    EXPECT_FALSE(preview().isVisible());
}

TEST_F(Preview, ShowsTheColoursOfTheClip)
{
    startProgram();
    for (const QString& clip :
         {makeClip("jpeg422.avi",
                   "-f lavfi -i color=0xC02040:size=640x480:rate=5 -t 1 -c:v mjpeg -q:v 2 -pix_fmt yuvj422p"),
          makeClip("jpeg420.mov",
                   "-f lavfi -i color=0xC02040:size=640x480:rate=5 -t 1 -c:v mjpeg -q:v 2 -pix_fmt yuvj420p"),
          makeClip("h264.mov", "-f lavfi -i color=0xC02040:size=640x480:rate=5 -t 1 -c:v libx264 -pix_fmt yuv420p")}) {
        SCOPED_TRACE(clip.toStdString());
        program_->face().preview(clip);
        MovieWidget& movie = preview().movieWidget();
        ASSERT_TRUE(waitFor([&movie] { return movie.hasFrame(); }));
        const QColor shown = movie.grab().toImage().pixelColor(movie.rect().center());
        EXPECT_NEAR(shown.red(), 0xC0, 6);
        EXPECT_NEAR(shown.green(), 0x20, 6);
        EXPECT_NEAR(shown.blue(), 0x40, 6);
        preview().close();
        QTMOVIErelease();
    }
}

// A device that goes away while it plays leaves the player waiting for ever.
TEST_F(Preview, GoesOnWithoutTheSound)
{
    startProgram();
    program_->face().preview(makeClip("long.mov", "-f lavfi -i testsrc2=size=320x180:rate=25 -t 20 -c:v mjpeg"));
    MovieWidget& movie = preview().movieWidget();
    ASSERT_TRUE(waitFor([&movie] { return movie.player().position() > 500; }));
    movie.player().giveUpSound();
    EXPECT_TRUE(waitFor([&movie] { return movie.isPlaying() && movie.player().position() > 1000; }));
    EXPECT_FALSE(movie.hasFailed());
    EXPECT_FALSE(ClipPlayer::hasGivenUpSound());
}

} // namespace tavrix::test
