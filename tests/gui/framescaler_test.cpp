// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/framescaler.h"

#include "gui/preview/newestframe.h"
#include "support/qtprinters.h"

#include <QVideoFrameFormat>

#include <gtest/gtest.h>

namespace tavrix::test
{
namespace
{

struct ColourRow {
    const char* name;
    QVideoFrameFormat::PixelFormat format;
    int height;
    QVideoFrameFormat::ColorSpace space;
    QVideoFrameFormat::ColorRange range;
    int luma;
    int blue;
    int red;
    QColor colour;
};

// A frame of one colour.
QVideoFrame plainFrame(const ColourRow& row)
{
    QVideoFrameFormat format(QSize(64, row.height), row.format);
    format.setColorSpace(row.space);
    format.setColorRange(row.range);
    QVideoFrame frame(format);
    EXPECT_TRUE(frame.map(QVideoFrame::WriteOnly));
    std::fill_n(frame.bits(0), frame.mappedBytes(0), static_cast<uchar>(row.luma));
    if (frame.planeCount() == 2) {
        for (int i = 0; i + 1 < frame.mappedBytes(1); i += 2) {
            frame.bits(1)[i] = static_cast<uchar>(row.blue);
            frame.bits(1)[i + 1] = static_cast<uchar>(row.red);
        }
    } else {
        std::fill_n(frame.bits(1), frame.mappedBytes(1), static_cast<uchar>(row.blue));
        std::fill_n(frame.bits(2), frame.mappedBytes(2), static_cast<uchar>(row.red));
    }
    frame.unmap();
    return frame;
}

int distance(const QColor& a, const QColor& b)
{
    return std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
}

class FrameColours : public testing::TestWithParam<ColourRow>
{
};

} // namespace

TEST_P(FrameColours, AreTheClips)
{
    FrameScaler scaler;
    for (const QSize size : {QSize(64, GetParam().height), QSize(33, 17), QSize(200, 100)}) {
        const QImage image = scaler.picture(plainFrame(GetParam()), size);
        ASSERT_EQ(image.size(), size);
        for (const QPoint point : {QPoint(0, 0), QPoint(size.width() - 1, size.height() - 1), QPoint(16, 8)}) {
            EXPECT_LE(distance(image.pixelColor(point), GetParam().colour), 3)
                << image.pixelColor(point).name().toStdString();
        }
    }
}

// Red of each standard, as its luma and its differences.
INSTANTIATE_TEST_SUITE_P(
    Kinds, FrameColours,
    testing::Values(ColourRow{"Standard", QVideoFrameFormat::Format_YUV420P, 36, QVideoFrameFormat::ColorSpace_BT601,
                              QVideoFrameFormat::ColorRange_Video, 81, 90, 240, QColor(255, 0, 0)},
                    ColourRow{"High", QVideoFrameFormat::Format_YUV420P, 36, QVideoFrameFormat::ColorSpace_BT709,
                              QVideoFrameFormat::ColorRange_Video, 63, 102, 240, QColor(255, 0, 0)},
                    ColourRow{"HighByItsSize", QVideoFrameFormat::Format_NV12, 720,
                              QVideoFrameFormat::ColorSpace_Undefined, QVideoFrameFormat::ColorRange_Unknown, 63, 102,
                              240, QColor(255, 0, 0)},
                    ColourRow{"StandardByItsSize", QVideoFrameFormat::Format_NV12, 480,
                              QVideoFrameFormat::ColorSpace_Undefined, QVideoFrameFormat::ColorRange_Unknown, 81, 90,
                              240, QColor(255, 0, 0)},
                    ColourRow{"Black", QVideoFrameFormat::Format_YUV420P, 36, QVideoFrameFormat::ColorSpace_BT601,
                              QVideoFrameFormat::ColorRange_Video, 16, 128, 128, QColor(0, 0, 0)},
                    ColourRow{"White", QVideoFrameFormat::Format_NV12, 36, QVideoFrameFormat::ColorSpace_BT709,
                              QVideoFrameFormat::ColorRange_Video, 235, 128, 128, QColor(255, 255, 255)}),
    rowName<ColourRow>);

TEST(FrameScalerTest, OtherKindsAreLeftToTheToolkit)
{
    QVideoFrame frame(QVideoFrameFormat(QSize(8, 8), QVideoFrameFormat::Format_BGRX8888));
    ASSERT_TRUE(frame.map(QVideoFrame::WriteOnly));
    for (int i = 0; i + 3 < frame.mappedBytes(0); i += 4) {
        frame.bits(0)[i] = 10;
        frame.bits(0)[i + 1] = 20;
        frame.bits(0)[i + 2] = 200;
        frame.bits(0)[i + 3] = 255;
    }
    frame.unmap();
    FrameScaler scaler;
    const QImage image = scaler.picture(frame, QSize(20, 10));
    ASSERT_EQ(image.size(), QSize(20, 10));
    EXPECT_LE(distance(image.pixelColor(10, 5), QColor(200, 20, 10)), 2);
}

TEST(FrameScalerTest, NothingGivesNoPicture)
{
    FrameScaler scaler;
    EXPECT_TRUE(scaler.picture(QVideoFrame(), QSize(10, 10)).isNull());
    const QVideoFrame frame(QVideoFrameFormat(QSize(8, 8), QVideoFrameFormat::Format_YUV420P));
    EXPECT_TRUE(scaler.picture(frame, QSize()).isNull());
    EXPECT_TRUE(scaler.picture(frame, QSize(0, 10)).isNull());
}

TEST(NewestFrameTest, TakesThePlaceOfTheOneThatWaits)
{
    NewestFrame newest;
    EXPECT_FALSE(newest.take().isValid());
    const QVideoFrame first(QVideoFrameFormat(QSize(8, 8), QVideoFrameFormat::Format_YUV420P));
    const QVideoFrame second(QVideoFrameFormat(QSize(16, 8), QVideoFrameFormat::Format_YUV420P));
    EXPECT_TRUE(newest.put(first));
    EXPECT_FALSE(newest.put(second));
    EXPECT_EQ(newest.take().width(), 16);
    EXPECT_FALSE(newest.take().isValid());
    EXPECT_TRUE(newest.put(first));
}

} // namespace tavrix::test
