// SPDX-License-Identifier: GPL-3.0-or-later
#include "prores/encoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/opt.h>
}

using namespace tavrix;

namespace
{

struct Asked {
    int width;
    int height;
    int profile;
    bool interlaced = false;
};

// The encoder of the library, which is what ours is measured by.
class Library
{
public:
    explicit Library(const Asked& asked)
        : context_(avcodec_alloc_context3(avcodec_find_encoder_by_name("prores_aw"))), frame_(av_frame_alloc()),
          packet_(av_packet_alloc())
    {
        context_->width = frame_->width = asked.width;
        context_->height = frame_->height = asked.height;
        context_->pix_fmt = AV_PIX_FMT_YUV422P10LE;
        context_->profile = asked.profile;
        context_->time_base = {1, 25};
        context_->thread_count = 1;
        context_->flags |= asked.interlaced ? AV_CODEC_FLAG_INTERLACED_DCT : 0;
        av_opt_set(context_, "vendor", "apl0", AV_OPT_SEARCH_CHILDREN);
        frame_->format = context_->pix_fmt;
        frame_->color_primaries = AVCOL_PRI_BT709;
        ready_ = avcodec_open2(context_, nullptr, nullptr) >= 0 && av_frame_get_buffer(frame_, 0) >= 0;
    }
    ~Library()
    {
        av_packet_free(&packet_);
        av_frame_free(&frame_);
        avcodec_free_context(&context_);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    [[nodiscard]] bool isReady() const { return ready_; }
    // Fills the picture, sample by sample.
    template <typename Sample> void paint(Sample sample)
    {
        for (int plane = 0; plane < 3; ++plane) {
            for (int y = 0; y < frame_->height; ++y) {
                auto* line = reinterpret_cast<std::uint16_t*>(frame_->data[plane] +
                                                              static_cast<std::ptrdiff_t>(y) * frame_->linesize[plane]);
                for (int x = 0; x < (plane == 0 ? frame_->width : frame_->width / 2); ++x) {
                    line[x] = static_cast<std::uint16_t>(std::clamp(sample(x, y), 0, 1023));
                }
            }
        }
    }
    [[nodiscard]] prores::Picture picture() const
    {
        prores::Picture picture{};
        for (std::size_t i = 0; i < 3; ++i) {
            picture.planes[i] = reinterpret_cast<const std::uint16_t*>(frame_->data[i]);
            picture.strides[i] = frame_->linesize[i] / 2;
        }
        return picture;
    }
    // Empty when it fails.
    [[nodiscard]] std::vector<std::uint8_t> encode()
    {
        std::vector<std::uint8_t> bytes;
        ++frame_->pts;
        if (avcodec_send_frame(context_, frame_) >= 0 && avcodec_receive_packet(context_, packet_) >= 0) {
            bytes.assign(packet_->data, packet_->data + packet_->size);
            av_packet_unref(packet_);
        }
        return bytes;
    }

private:
    AVCodecContext* context_;
    AVFrame* frame_;
    AVPacket* packet_;
    bool ready_ = false;
};

constexpr int contents = 6;

int sampleOf(int content, int x, int y, int strength, std::mt19937& random)
{
    const auto noise = [&random](int range) {
        return static_cast<int>(random() % static_cast<unsigned>(range));
    };
    switch (content) {
    case 0:
        return noise(1024);
    case 1:
        return 60 + noise(strength);
    case 2:
        return (x * 7 + y * 5) % 1024;
    case 3:
        return (x / 3 + y / 5) % 2 * 1023;
    case 4:
        return noise(2) * 1023;
    default:
        return noise(40) == 0 ? 400 + noise(strength) : 400;
    }
}

// Pictures of all contents in a row: the state of an encoder must not outlive a picture.
void expectTheSame(const Asked& asked, std::mt19937& random)
{
    SCOPED_TRACE(std::to_string(asked.width) + "x" + std::to_string(asked.height) + " profile " +
                 std::to_string(asked.profile));
    Library library(asked);
    ASSERT_TRUE(library.isReady());
    std::unique_ptr<prores::Encoder> encoder;
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < contents; ++i) {
        const int strength = 1 + static_cast<int>(random() % 900);
        library.paint([&](int x, int y) { return sampleOf(i, x, y, strength, random); });
        const std::vector<std::uint8_t> expected = library.encode();
        ASSERT_FALSE(expected.empty());
        if (!encoder) {
            encoder = prores::Encoder::like(expected, asked.profile);
            ASSERT_TRUE(encoder);
        }
        encoder->encode(library.picture(), bytes);
        ASSERT_EQ(bytes, expected) << "content " << i;
    }
}

TEST(ProResEncoder, MakesThePacketsOfTheLibraryInEveryProfile)
{
    std::mt19937 random(1);
    for (int profile = 0; profile < 4; ++profile) {
        ASSERT_NO_FATAL_FAILURE(expectTheSame({256, 64, profile}, random));
        ASSERT_NO_FATAL_FAILURE(expectTheSame({1280, 32, profile}, random));
    }
}

TEST(ProResEncoder, MakesThePacketsOfTheLibraryInAnySize)
{
    std::mt19937 random(2);
    for (int i = 0; i < 40; ++i) {
        const int width = 16 + 2 * static_cast<int>(random() % 180);
        const int height = 16 + static_cast<int>(random() % 90);
        ASSERT_NO_FATAL_FAILURE(expectTheSame({width, height, static_cast<int>(random() % 4)}, random));
    }
    ASSERT_NO_FATAL_FAILURE(expectTheSame({1920, 1080, 2}, random));
}

TEST(ProResEncoder, TakesOnlyFramesThatItKnows)
{
    Library progressive({64, 64, 2});
    Library interlaced({64, 64, 2, true});
    ASSERT_TRUE(progressive.isReady() && interlaced.isReady());
    progressive.paint([](int, int) { return 500; });
    interlaced.paint([](int, int) { return 500; });
    const std::vector<std::uint8_t> frame = progressive.encode();
    EXPECT_TRUE(prores::Encoder::like(frame, 2));
    EXPECT_FALSE(prores::Encoder::like(frame, -1));
    EXPECT_FALSE(prores::Encoder::like(frame, 4));
    EXPECT_FALSE(prores::Encoder::like(std::span(frame).first(100), 2));
    EXPECT_FALSE(prores::Encoder::like(interlaced.encode(), 2));
    std::vector<std::uint8_t> other = frame;
    other[4] = 'x';
    EXPECT_FALSE(prores::Encoder::like(other, 2));
    other = frame;
    other[28] = 0;
    EXPECT_FALSE(prores::Encoder::like(other, 2));
}

} // namespace
