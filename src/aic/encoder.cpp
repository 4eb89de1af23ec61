// SPDX-License-Identifier: GPL-3.0-or-later
#include "aic/encoder.h"

#include "aic/transform.h"

#include <algorithm>
#include <cstring>

namespace tavrix::aic
{

namespace
{

constexpr std::size_t headerSize = 24;
constexpr std::size_t sliceEntrySize = 2;

void putBigEndian16(std::uint8_t* at, std::size_t value)
{
    at[0] = static_cast<std::uint8_t>(value >> 8);
    at[1] = static_cast<std::uint8_t>(value);
}

void putBigEndian32(std::uint8_t* at, std::size_t value)
{
    putBigEndian16(at, value >> 16);
    putBigEndian16(at + 2, value);
}

// The samples of a macroblock in one plane: where they are, or in a copy whose missing right columns repeat the last.
struct Samples {
    const std::uint8_t* at;
    std::ptrdiff_t stride;
};
using Copy = std::array<std::uint8_t, 256>;

Samples samplesOf(const std::uint8_t* plane, std::ptrdiff_t stride, int planeWidth, int x, int y, int side, Copy& copy)
{
    const std::uint8_t* at = plane + static_cast<std::ptrdiff_t>(y) * stride + x;
    if (x + side <= planeWidth) {
        return {at, stride};
    }
    const auto present = static_cast<std::size_t>(planeWidth - x);
    for (std::ptrdiff_t line = 0; line < side; ++line, at += stride) {
        std::uint8_t* to = copy.data() + 16 * line;
        std::memcpy(to, at, present);
        std::fill(to + present, to + side, at[present - 1]);
    }
    return {copy.data(), 16};
}

} // namespace

Encoder::Encoder(int width, int height)
    : width_(width), height_(height), geometry_(geometryOf(width, height)), coder_(geometry_.sliceWidth)
{
}

void Encoder::useQuantiser(int quantiser)
{
    if (quantiser == quantiser_) {
        return;
    }
    quantiser_ = quantiser;
    factors_ = levelFactors(quantiser);
}

void Encoder::collectMacroblock(const Picture& picture, int row, int column)
{
    alignas(32) std::array<CodeValue, coefficientsPerMacroblock> values;
    const CodingOrder& order = codingOrder(picture.interlaced);
    const auto transform = [&](const std::uint8_t* at, std::ptrdiff_t stride, std::size_t block) {
        transform_(at, stride, factors_.data(), order[block].data(), isTurned(block), values.data());
    };
    Copy copy;
    const Samples luma = samplesOf(picture.planes[0], picture.strides[0], width_, 16 * column,
                                   geometry_.firstLumaLine(row, height_), 16, copy);
    const std::ptrdiff_t lowerBlocks = picture.interlaced ? luma.stride : 8 * luma.stride;
    const std::ptrdiff_t lineStep = picture.interlaced ? 2 * luma.stride : luma.stride;
    transform(luma.at, lineStep, 0);
    transform(luma.at + 8, lineStep, 1);
    transform(luma.at + lowerBlocks, lineStep, 2);
    transform(luma.at + lowerBlocks + 8, lineStep, 3);
    for (std::size_t plane = 1; plane < 3; ++plane) {
        const Samples chroma = samplesOf(picture.planes[plane], picture.strides[plane], (width_ + 1) / 2, 8 * column,
                                         geometry_.firstChromaLine(row, height_), 8, copy);
        transform(chroma.at, chroma.stride, 3 + plane);
    }
    coder_.addMacroblock(values.data());
}

void Encoder::collectSlice(const Picture& picture, int row, int slice)
{
    const int count = geometry_.macroblocksOfSlice(slice);
    coder_.begin(count);
    for (int i = 0; i < count; ++i) {
        collectMacroblock(picture, row, slice * geometry_.sliceWidth + i);
    }
}

std::size_t Encoder::firstSliceOffset() const
{
    return (headerSize + sliceEntrySize * static_cast<std::size_t>(geometry_.slices()) + 3) / 4 * 4;
}

std::size_t Encoder::measure(const Picture& picture, int quantiser, int rowStep)
{
    useQuantiser(quantiser);
    std::size_t bytes = 0;
    std::size_t rows = 0;
    for (int row = rowStep / 2; row < geometry_.macroblockRows; row += rowStep, ++rows) {
        for (int slice = 0; slice < geometry_.slicesPerRow; ++slice) {
            collectSlice(picture, row, slice);
            bytes += coder_.choose();
        }
    }
    return firstSliceOffset() +
           bytes * static_cast<std::size_t>(geometry_.macroblockRows) / std::max<std::size_t>(rows, 1);
}

void Encoder::writeHeader(std::vector<std::uint8_t>& frame, int quantiser, bool interlaced) const
{
    // Values of the cameras' own files where no decoder's behaviour depends on them: low nibble 9 of the picture type,
    // gamma code 4 (2.2).
    constexpr unsigned usualType = 0x09;
    constexpr unsigned interlacedType = 0x30;
    std::uint8_t* header = frame.data();
    header[0] = 1;
    header[1] = headerSize - 2;
    putBigEndian32(header + 2, frame.size());
    for (const std::size_t at : {std::size_t{6}, std::size_t{10}}) {
        putBigEndian16(header + at, static_cast<std::size_t>(width_));
        putBigEndian16(header + at + 2, static_cast<std::size_t>(height_));
    }
    header[15] = static_cast<std::uint8_t>(quantiser);
    header[16] = static_cast<std::uint8_t>(usualType | (interlaced ? interlacedType : 0U));
    header[19] = 4;
}

void Encoder::encode(const Picture& picture, int quantiser, std::vector<std::uint8_t>& frame)
{
    useQuantiser(quantiser);
    frame.assign(firstSliceOffset(), 0);
    std::size_t entry = headerSize;
    for (int row = 0; row < geometry_.macroblockRows; ++row) {
        for (int slice = 0; slice < geometry_.slicesPerRow; ++slice, entry += sliceEntrySize) {
            collectSlice(picture, row, slice);
            const std::size_t size = coder_.choose();
            const std::size_t start = frame.size();
            frame.resize(start + size + BitWriter::overrun);
            coder_.write(frame.data() + start);
            frame.resize(start + size);
            frame[entry] = static_cast<std::uint8_t>(size / 4);
            frame[entry + 1] = static_cast<std::uint8_t>(size / 4 >> 8);
        }
    }
    writeHeader(frame, quantiser, picture.interlaced);
}

// A quarter of the rows finds the neighbourhood.
int Encoder::roughQuantiser(const Picture& picture, std::size_t limit)
{
    const int rowStep = geometry_.macroblockRows >= 8 ? 4 : 1;
    int low = finestQuantiser;
    int high = coarsestQuantiser;
    while (low < high) {
        const int middle = (low + high) / 2;
        if (measure(picture, middle, rowStep) <= limit) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

int Encoder::encodeToSize(const Picture& picture, std::size_t limit, std::vector<std::uint8_t>& frame)
{
    // Pictures resemble the one before: mostly its quantiser is right, and a look at the next finer one shows that.
    int quantiser = lastQuantiser_ > 0 ? lastQuantiser_ : roughQuantiser(picture, limit);
    int tooFine = finestQuantiser - 1;
    encode(picture, quantiser, frame);
    while (frame.size() > limit && quantiser < coarsestQuantiser) {
        tooFine = quantiser;
        encode(picture, ++quantiser, frame);
    }
    const int coded = quantiser;
    while (quantiser - 1 > tooFine && measure(picture, quantiser - 1, 1) <= limit) {
        --quantiser;
    }
    if (quantiser != coded) {
        encode(picture, quantiser, frame);
    }
    lastQuantiser_ = quantiser;
    return quantiser;
}

} // namespace tavrix::aic
