// SPDX-License-Identifier: GPL-3.0-or-later
#include "aic/encoder.h"

#include "steadyrandom.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
}

using namespace tavrix::aic;
using tavrix::test::SteadyRandom;

namespace
{

std::atomic<int> decoderMessages;

void countMessages(void*, int level, const char*, va_list)
{
    if (level <= AV_LOG_WARNING) {
        ++decoderMessages;
    }
}

struct Planes {
    int width;
    int height;
    std::vector<std::uint8_t> samples[3];

    Planes(int w, int h) : width(w), height(h)
    {
        for (int plane = 0; plane < 3; ++plane) {
            samples[plane].resize(static_cast<std::size_t>(planeWidth(plane)) *
                                  static_cast<std::size_t>(planeHeight(plane)));
        }
    }
    [[nodiscard]] int planeWidth(int plane) const { return plane == 0 ? width : (width + 1) / 2; }
    [[nodiscard]] int planeHeight(int plane) const { return plane == 0 ? height : (height + 1) / 2; }
    [[nodiscard]] int at(int plane, int x, int y) const
    {
        return samples[plane][static_cast<std::size_t>(y) * static_cast<std::size_t>(planeWidth(plane)) +
                              static_cast<std::size_t>(x)];
    }
    [[nodiscard]] Picture picture(bool interlaced) const
    {
        return {{samples[0].data(), samples[1].data(), samples[2].data()},
                {planeWidth(0), planeWidth(1), planeWidth(2)},
                interlaced};
    }
};

// Decoder of the library for pictures of one size; it keeps its state from picture to picture as a player does.
class Decoder
{
public:
    Decoder(int width, int height) : context_(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_AIC)))
    {
        context_->width = width;
        context_->height = height;
        context_->thread_count = 1;
        opened_ = avcodec_open2(context_, nullptr, nullptr) >= 0;
    }
    ~Decoder() { avcodec_free_context(&context_); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    [[nodiscard]] bool decode(const std::vector<std::uint8_t>& bytes, Planes& planes) const
    {
        AVPacket* packet = av_packet_alloc();
        AVFrame* frame = av_frame_alloc();
        bool good = opened_ && av_new_packet(packet, static_cast<int>(bytes.size())) >= 0;
        if (good) {
            std::memcpy(packet->data, bytes.data(), bytes.size());
            good = avcodec_send_packet(context_, packet) >= 0 && avcodec_receive_frame(context_, frame) >= 0;
        }
        for (int plane = 0; good && plane < 3; ++plane) {
            const auto width = static_cast<std::size_t>(planes.planeWidth(plane));
            for (int y = 0; y < planes.planeHeight(plane); ++y) {
                std::memcpy(planes.samples[plane].data() + static_cast<std::size_t>(y) * width,
                            frame->data[plane] + static_cast<std::ptrdiff_t>(y) * frame->linesize[plane], width);
            }
        }
        av_frame_free(&frame);
        av_packet_free(&packet);
        return good;
    }

private:
    AVCodecContext* context_;
    bool opened_ = false;
};

enum class Content { Flat, Noise, Checks, Edges, Gradient, Impulses, Bars, Count };

std::uint8_t sampleOf(Content content, int x, int y, SteadyRandom& random, const std::uint32_t (&seeds)[4])
{
    const auto column = static_cast<std::uint32_t>(x);
    const auto line = static_cast<std::uint32_t>(y);
    switch (content) {
    case Content::Flat:
        return static_cast<std::uint8_t>(seeds[0]);
    case Content::Noise:
        return static_cast<std::uint8_t>(random());
    case Content::Checks:
        return (column / (1 + seeds[0] % 3) + line / (1 + seeds[1] % 3)) % 2 == 0 ? 255 : 0;
    case Content::Edges:
        return column * (seeds[0] % 64) + line * (seeds[1] % 64) < 32 * (seeds[2] % 64) ? 255 : 0;
    case Content::Gradient:
        return static_cast<std::uint8_t>(column * (seeds[0] % 7) + line * (seeds[1] % 7));
    case Content::Impulses:
        return random() % 23 == 0 ? 255 : 0;
    case Content::Bars:
        return line % 2 == 0 ? static_cast<std::uint8_t>(seeds[0]) : static_cast<std::uint8_t>(seeds[1]);
    case Content::Count:
        break;
    }
    return 0;
}

void paint(Planes& planes, Content content, SteadyRandom& random)
{
    for (int plane = 0; plane < 3; ++plane) {
        const std::uint32_t seeds[4] = {random(), random(), random(), random()};
        std::size_t next = 0;
        for (int y = 0; y < planes.planeHeight(plane); ++y) {
            for (int x = 0; x < planes.planeWidth(plane); ++x) {
                planes.samples[plane][next++] = sampleOf(content, x, y, random, seeds);
            }
        }
    }
}

// The largest distance that quantisation explains for an 8x8 block, as the length of the error vector: each coefficient
// is off by half its step and one unit of the decoder's integer arithmetic, each sample by its rounding.
double largestError(int quantiser)
{
    double sum = 0;
    for (const std::uint8_t weight : quantisationMatrix) {
        const double error = quantiser * weight / 32.0 + 1.0;
        sum += error * error;
    }
    return std::sqrt(sum) + 8.0;
}

struct Block {
    int plane;
    int x;
    int y;
    int lineStep;
};

// Worst error vector over the part of the block that no later row of macroblocks covers.
double errorOf(const Planes& source, const Planes& result, const Block& block, int lineLimit)
{
    double sum = 0;
    for (int v = 0; v < 8; ++v) {
        const int y = block.y + v * block.lineStep;
        for (int u = 0; u < 8 && y < lineLimit; ++u) {
            const int x = block.x + u;
            if (x < source.planeWidth(block.plane)) {
                sum += std::pow(source.at(block.plane, x, y) - result.at(block.plane, x, y), 2);
            }
        }
    }
    return std::sqrt(sum);
}

double worstError(const Planes& source, const Planes& result, bool interlaced)
{
    const Geometry geometry = geometryOf(source.width, source.height);
    double worst = 0;
    for (int row = 0; row < geometry.macroblockRows; ++row) {
        const bool last = row + 1 == geometry.macroblockRows;
        const int luma = geometry.firstLumaLine(row, source.height);
        const int chroma = geometry.firstChromaLine(row, source.height);
        const int lumaEnd = last ? source.height : geometry.firstLumaLine(row + 1, source.height);
        const int chromaEnd = last ? source.planeHeight(1) : geometry.firstChromaLine(row + 1, source.height);
        for (int column = 0; column < geometry.macroblockColumns; ++column) {
            for (int b = 0; b < 4; ++b) {
                const Block block{0, 16 * column + 8 * (b & 1), luma + (interlaced ? b >> 1 : 8 * (b >> 1)),
                                  interlaced ? 2 : 1};
                worst = std::max(worst, errorOf(source, result, block, lumaEnd));
            }
            for (int plane = 1; plane < 3; ++plane) {
                worst = std::max(worst, errorOf(source, result, {plane, 8 * column, chroma, 1}, chromaEnd));
            }
        }
    }
    return worst;
}

void roundTrip(int width, int height, int pictures, SteadyRandom& random)
{
    Encoder encoder(width, height);
    const Decoder decoder(width, height);
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < pictures; ++i) {
        const auto content = static_cast<Content>(random() % static_cast<unsigned>(Content::Count));
        const int quantiser =
            random() % 3 == 0 ? 1 + static_cast<int>(random() % 4) : 1 + static_cast<int>(random() % 255);
        const bool interlaced = random() % 2 == 0;
        Planes source(width, height);
        Planes result(width, height);
        paint(source, content, random);
        encoder.encode(source.picture(interlaced), quantiser, bytes);
        SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height) + " content " +
                     std::to_string(static_cast<int>(content)) + " quantiser " + std::to_string(quantiser) +
                     (interlaced ? " interlaced" : " progressive"));
        ASSERT_TRUE(decoder.decode(bytes, result));
        ASSERT_LE(worstError(source, result, interlaced), largestError(quantiser));
    }
}

class AicRoundTrip : public testing::Test
{
protected:
    void SetUp() override
    {
        decoderMessages = 0;
        av_log_set_callback(countMessages);
    }
    void TearDown() override
    {
        av_log_set_callback(av_log_default_callback);
        EXPECT_EQ(decoderMessages, 0) << "the decoder complained";
    }
    SteadyRandom random_{20100507U};
};

TEST_F(AicRoundTrip, FourHundredPicturesOfRandomSizes)
{
    for (int i = 0; i < 100; ++i) {
        const int width = 16 + static_cast<int>(random_() % 130);
        const int height = 16 + static_cast<int>(random_() % 130);
        ASSERT_NO_FATAL_FAILURE(roundTrip(width, height, 4, random_));
    }
}

// Rows that end with a shorter slice: the decoder keeps coefficients of the slice before there.
TEST_F(AicRoundTrip, PicturesWithShortSlices)
{
    for (const int width : {16, 592, 656, 688, 752, 848, 592 - 15}) {
        for (const int height : {16, 24, 33}) {
            ASSERT_NO_FATAL_FAILURE(roundTrip(width, height, 4, random_));
        }
    }
}

TEST_F(AicRoundTrip, EverySmallSize)
{
    for (int side = 16; side <= 34; ++side) {
        ASSERT_NO_FATAL_FAILURE(roundTrip(side, 50 - side, 1, random_));
        ASSERT_NO_FATAL_FAILURE(roundTrip(side, side, 1, random_));
    }
}

TEST_F(AicRoundTrip, LargeSizes)
{
    for (const auto& [width, height] : std::vector<std::pair<int, int>>{
             {1920, 1088}, {1920, 1080}, {1440, 1080}, {1366, 768}, {1280, 720}, {720, 576}, {1919, 31}, {17, 1087}}) {
        ASSERT_NO_FATAL_FAILURE(roundTrip(width, height, 1, random_));
    }
}

TEST_F(AicRoundTrip, WorstContentAtTheFinestQuantiser)
{
    Encoder encoder(720, 64);
    const Decoder decoder(720, 64);
    std::vector<std::uint8_t> bytes;
    for (int content = 0; content < static_cast<int>(Content::Count); ++content) {
        Planes source(720, 64);
        Planes result(720, 64);
        paint(source, static_cast<Content>(content), random_);
        encoder.encode(source.picture(false), finestQuantiser, bytes);
        ASSERT_TRUE(decoder.decode(bytes, result));
        EXPECT_LE(worstError(source, result, false), largestError(finestQuantiser)) << content;
    }
}

TEST(AicEncoder, SamePictureGivesSameBytesWhateverCameBefore)
{
    SteadyRandom random(9);
    Planes first(100, 50);
    Planes second(100, 50);
    paint(first, Content::Noise, random);
    paint(second, Content::Edges, random);
    Encoder used(100, 50);
    Encoder fresh(100, 50);
    std::vector<std::uint8_t> again;
    std::vector<std::uint8_t> once;
    used.encode(first.picture(true), 3, again);
    used.encode(second.picture(false), 5, again);
    fresh.encode(second.picture(false), 5, once);
    EXPECT_EQ(again, once);
}

TEST(AicEncoder, HeaderTellsSizeQuantiserAndFields)
{
    Planes planes(35, 18);
    Encoder encoder(35, 18);
    std::vector<std::uint8_t> bytes;
    encoder.encode(planes.picture(true), 77, bytes);
    ASSERT_GT(bytes.size(), 24U);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[1], 22);
    EXPECT_EQ(static_cast<std::size_t>(bytes[2]) << 24 | static_cast<std::size_t>(bytes[3]) << 16 |
                  static_cast<std::size_t>(bytes[4]) << 8 | bytes[5],
              bytes.size());
    EXPECT_EQ(bytes[6] << 8 | bytes[7], 35);
    EXPECT_EQ(bytes[8] << 8 | bytes[9], 18);
    EXPECT_EQ(bytes[15], 77);
    EXPECT_EQ(bytes[16] >> 4, 3);
    encoder.encode(planes.picture(false), 78, bytes);
    EXPECT_EQ(bytes[15], 78);
    EXPECT_EQ(bytes[16] >> 4, 0);
}

TEST(AicEncoder, SizeTargetTakesTheFinestQuantiserThatFits)
{
    SteadyRandom random(3);
    Planes planes(320, 240);
    paint(planes, Content::Noise, random);
    Encoder encoder(320, 240);
    std::vector<std::uint8_t> bytes;
    std::vector<std::uint8_t> finer;
    for (const std::size_t limit : {20'000U, 30'000U, 60'000U}) {
        const int quantiser = encoder.encodeToSize(planes.picture(false), limit, bytes);
        EXPECT_LE(bytes.size(), limit);
        ASSERT_GT(quantiser, finestQuantiser);
        EXPECT_EQ(bytes[15], quantiser);
        encoder.encode(planes.picture(false), quantiser - 1, finer);
        EXPECT_GT(finer.size(), limit);
    }
}

TEST(AicEncoder, SizeTargetOutOfReachEndsAtTheCoarsestQuantiser)
{
    SteadyRandom random(3);
    Planes planes(160, 160);
    paint(planes, Content::Noise, random);
    Encoder encoder(160, 160);
    std::vector<std::uint8_t> bytes;
    EXPECT_EQ(encoder.encodeToSize(planes.picture(false), 100, bytes), coarsestQuantiser);
    EXPECT_GT(bytes.size(), 100U);
    EXPECT_EQ(encoder.encodeToSize(planes.picture(false), 10'000'000, bytes), finestQuantiser);
}

} // namespace
