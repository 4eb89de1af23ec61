// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Encoder for Apple ProRes 422: progressive pictures, 4:2:2, 10 bit. It makes the very packets that the encoder
// prores_aw of the FFmpeg libraries makes, several times faster. What that encoder alone knows (quantisation matrices,
// tags, maker) it takes from the header of one of its frames.

#include "prores/slice.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tavrix::prores
{

// Planes Y, Cb, Cr; the chroma planes have half the width. Strides are in samples.
struct Picture {
    std::array<const std::uint16_t*, 3> planes;
    std::array<std::ptrdiff_t, 3> strides;
};

// One encoder serves one thread.
class Encoder
{
public:
    // For pictures like that of `frame`, at profile 0 (proxy) to 3 (high quality). Null when the frame is of another
    // kind: interlaced, not 4:2:2, without matrices of its own.
    [[nodiscard]] static std::unique_ptr<Encoder> like(std::span<const std::uint8_t> frame, int profile);

    // Replaces `frame` by the coded picture.
    void encode(const Picture& picture, std::vector<std::uint8_t>& frame);

private:
    static constexpr std::size_t headerSize = 156;

    struct Place {
        int x; // in macroblocks
        int y;
        int macroblocks;
    };

    Encoder(std::span<const std::uint8_t, headerSize> header, int profile);

    [[nodiscard]] int slicesPerRow() const;
    [[nodiscard]] bool reachesOver(const Place& place) const;
    void transformPlane(const Picture& picture, std::size_t plane, const Place& place);
    std::size_t writeSlice(const Place& place, int quantiser);
    std::size_t codeSlice(const Picture& picture, const Place& place);

    std::array<std::uint8_t, headerSize> header_{};
    int width_;
    int height_;
    int columns_; // of macroblocks
    int rows_;
    int finest_;
    int coarsest_;
    int bitsPerMacroblock_; // times four
    int quantiser_ = 1;     // of the slice before
    Transform transform_ = bestTransform();
    std::vector<Steps> luma_; // by quantiser, from 1 on
    std::vector<Steps> chroma_;
    std::array<PlaneCoefficients, 3> coefficients_{};
    std::vector<std::uint8_t> slice_;
};

} // namespace tavrix::prores
