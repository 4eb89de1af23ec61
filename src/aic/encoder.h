// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Encoder for the Apple Intermediate Codec ("icod"): every frame by itself, 8 bit, 4:2:0. Picture in, packet out; it
// stands on nothing but the standard library.
//
//     aic::Encoder encoder(1280, 720);
//     std::vector<std::uint8_t> packet;
//     encoder.encode({{y, cb, cr}, {1280, 640, 640}, false}, 12, packet);
//
// A QuickTime movie holds the packets as they are, in a track of the type "icod".

#include "aic/slice.h"
#include "aic/tables.h"
#include "aic/transform.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavrix::aic
{

inline constexpr int finestQuantiser = 1;
inline constexpr int coarsestQuantiser = 255;

// Planes Y, Cb, Cr of a 4:2:0 picture; the chroma planes have (width + 1) / 2 by (height + 1) / 2 samples.
struct Picture {
    const std::uint8_t* planes[3];
    std::ptrdiff_t strides[3];
    bool interlaced; // the lines of a macroblock are coded field by field
};

// One encoder serves one thread; pictures do not depend on one another, so encoders side by side use all cores.
class Encoder
{
public:
    // The size in pixels must satisfy sizeAllowed().
    Encoder(int width, int height);

    // Replaces `frame` by the picture coded at quantiser 1 (finest) to 255.
    void encode(const Picture& picture, int quantiser, std::vector<std::uint8_t>& frame);
    // Replaces `frame` by the picture coded at the finest quantiser whose frame has at most `limit` bytes, or at the
    // coarsest one when none has. Answers the quantiser.
    int encodeToSize(const Picture& picture, std::size_t limit, std::vector<std::uint8_t>& frame);

private:
    void collectSlice(const Picture& picture, int row, int slice);
    void collectMacroblock(const Picture& picture, int row, int column);
    // Size of the frame at a quantiser, estimated from every `rowStep`-th macroblock row (1: exact).
    std::size_t measure(const Picture& picture, int quantiser, int rowStep);
    // About where a picture of that size comes out.
    int roughQuantiser(const Picture& picture, std::size_t limit);
    void useQuantiser(int quantiser);
    void writeHeader(std::vector<std::uint8_t>& frame, int quantiser, bool interlaced) const;
    [[nodiscard]] std::size_t firstSliceOffset() const;

    int width_;
    int height_;
    Geometry geometry_;
    int quantiser_ = 0;
    int lastQuantiser_ = 0; // that met the limit of the last picture coded to a size; 0: none yet
    Transform transform_ = bestTransform();
    LevelFactors factors_{};
    SliceCoder coder_;
};

} // namespace tavrix::aic
