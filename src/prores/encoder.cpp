// SPDX-License-Identifier: GPL-3.0-or-later
#include "prores/encoder.h"

#include <algorithm>
#include <cstring>

namespace tavrix::prores
{

namespace
{

constexpr std::size_t pictureHeaderSize = 8;
constexpr std::size_t sliceHeaderSize = 6;
constexpr std::size_t widestSlice = 8; // macroblocks
constexpr std::size_t matrixSize = 64;
constexpr std::size_t lumaMatrixAt = 28;
constexpr std::size_t chromaMatrixAt = lumaMatrixAt + matrixSize;

// How a profile spends its bits: the quantiser follows the size of the slices within these borders.
struct Rate {
    int finest;
    int coarsest;
    int bits; // of four macroblocks
};
constexpr std::array<Rate, 4> rates{{{8, 13, 1000}, {3, 9, 2100}, {2, 6, 3500}, {1, 6, 5400}}};

void putBigEndian(std::uint8_t* at, std::size_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i) {
        at[i] = static_cast<std::uint8_t>(value >> 8 * (bytes - 1 - i));
    }
}

int bigEndian16(const std::uint8_t* at)
{
    return at[0] << 8 | at[1];
}

// Samples of a part of a plane that reaches over its edges: the last ones are repeated.
constexpr std::size_t longestLine = 16 * widestSlice;
using Copy = std::array<std::uint16_t, 16 * longestLine>;

void copyPart(const std::uint16_t* from, std::ptrdiff_t stride, int width, int height, int wantedWidth, Copy& copy)
{
    for (int line = 0; line < 16; ++line) {
        const std::uint16_t* source = from + std::min(line, height - 1) * stride;
        std::uint16_t* to = copy.data() + static_cast<std::size_t>(line) * longestLine;
        std::copy_n(source, width, to);
        std::fill(to + width, to + wantedWidth, source[width - 1]);
    }
}

} // namespace

std::unique_ptr<Encoder> Encoder::like(std::span<const std::uint8_t> frame, int profile)
{
    constexpr std::uint8_t progressive422 = 0x80;
    constexpr std::uint8_t bothMatrices = 3;
    if (frame.size() < headerSize || profile < 0 || profile >= static_cast<int>(rates.size())) {
        return nullptr;
    }
    const auto header = frame.first<headerSize>();
    const bool usual = std::memcmp(header.data() + 4, "icpf", 4) == 0 && bigEndian16(header.data() + 8) == 148 &&
                       (header[20] & 0xFC) == progressive422 && header[27] == bothMatrices;
    const bool divisible =
        std::all_of(header.begin() + lumaMatrixAt, header.end(), [](std::uint8_t v) { return v > 1; });
    if (!usual || !divisible) {
        return nullptr;
    }
    return std::unique_ptr<Encoder>(new Encoder(header, profile));
}

Encoder::Encoder(std::span<const std::uint8_t, headerSize> header, int profile)
    : width_(bigEndian16(header.data() + 16)), height_(bigEndian16(header.data() + 18)), columns_((width_ + 15) / 16),
      rows_((height_ + 15) / 16)
{
    std::copy(header.begin(), header.end(), header_.begin());
    const Rate& rate = rates[static_cast<std::size_t>(profile)];
    finest_ = rate.finest;
    coarsest_ = rate.coarsest;
    bitsPerMacroblock_ = rate.bits;
    for (int quantiser = 1; quantiser <= coarsest_; ++quantiser) {
        luma_.emplace_back(header.subspan<lumaMatrixAt, matrixSize>(), quantiser);
        chroma_.emplace_back(header.subspan<chromaMatrixAt, matrixSize>(), quantiser);
    }
    slice_.resize(sliceHeaderSize + 3 * PlaneCoder::longest);
}

int Encoder::slicesPerRow() const
{
    int rest = columns_;
    int count = 0;
    for (int width = int{widestSlice}; width > 0; width /= 2) {
        count += rest / width;
        rest %= width;
    }
    return count;
}

bool Encoder::reachesOver(const Place& place) const
{
    return 16 * (place.x + place.macroblocks) > width_ || 16 * (place.y + 1) > height_;
}

void Encoder::transformPlane(const Picture& picture, std::size_t plane, const Place& place)
{
    const int macroblockWidth = plane == 0 ? 16 : 8;
    const int x = macroblockWidth * place.x;
    const int y = 16 * place.y;
    std::ptrdiff_t stride = picture.strides[plane];
    const std::uint16_t* samples = picture.planes[plane] + y * stride + x;
    Copy copy;
    if (reachesOver(place)) {
        const int planeWidth = plane == 0 ? width_ : width_ / 2;
        const int wanted = macroblockWidth * place.macroblocks;
        copyPart(samples, stride, std::min(wanted, planeWidth - x), std::min(16, height_ - y), wanted, copy);
        samples = copy.data();
        stride = longestLine;
    }
    const std::ptrdiff_t across = macroblockWidth / 8;
    const std::ptrdiff_t blocks = 2 * across * place.macroblocks;
    for (std::ptrdiff_t first = 0; first < blocks; first += blocksTogether) {
        std::array<const std::uint16_t*, blocksTogether> at;
        for (std::size_t i = 0; i < blocksTogether; ++i) {
            // Beyond the last block any samples will do.
            const std::ptrdiff_t block = std::min(first + static_cast<std::ptrdiff_t>(i), blocks - 1);
            const std::ptrdiff_t inside = block % (2 * across);
            const std::ptrdiff_t column = block / (2 * across) * macroblockWidth + inside % across * 8;
            at[i] = samples + inside / across * 8 * stride + column;
        }
        transform_(at.data(), stride, coefficients_[plane].data() + first);
    }
}

std::size_t Encoder::writeSlice(const Place& place, int quantiser)
{
    const auto macroblocks = static_cast<std::size_t>(place.macroblocks);
    const auto index = static_cast<std::size_t>(quantiser - 1);
    std::uint8_t* const start = slice_.data() + sliceHeaderSize;
    std::uint8_t* const blue = PlaneCoder::write(coefficients_[0], 4 * macroblocks, luma_[index], start);
    std::uint8_t* const red = PlaneCoder::write(coefficients_[1], 2 * macroblocks, chroma_[index], blue);
    std::uint8_t* const end = PlaneCoder::write(coefficients_[2], 2 * macroblocks, chroma_[index], red);
    slice_[0] = sliceHeaderSize << 3;
    slice_[1] = static_cast<std::uint8_t>(quantiser);
    putBigEndian(slice_.data() + 2, static_cast<std::size_t>(blue - start), 2);
    putBigEndian(slice_.data() + 4, static_cast<std::size_t>(red - blue), 2);
    return static_cast<std::size_t>(end - start);
}

// The quantiser moves until the slice has about the size that it may have; slices at the edges keep the one before.
std::size_t Encoder::codeSlice(const Picture& picture, const Place& place)
{
    for (std::size_t plane = 0; plane < 3; ++plane) {
        transformPlane(picture, plane, place);
    }
    const int bits = place.macroblocks * bitsPerMacroblock_ / 4;
    const auto least = static_cast<std::size_t>((bits - bits / 8) / 8);
    const auto most = static_cast<std::size_t>((bits + bits / 8) / 8);
    std::size_t size = writeSlice(place, quantiser_);
    if (reachesOver(place)) {
        return sliceHeaderSize + size;
    }
    if (size > most) {
        while (size > most && quantiser_ < coarsest_) {
            size = writeSlice(place, ++quantiser_);
        }
    } else {
        while (size < least && quantiser_ > finest_) {
            size = writeSlice(place, --quantiser_);
        }
    }
    return sliceHeaderSize + size;
}

void Encoder::encode(const Picture& picture, std::vector<std::uint8_t>& frame)
{
    const std::size_t slices = static_cast<std::size_t>(slicesPerRow()) * static_cast<std::size_t>(rows_);
    std::size_t entry = headerSize + pictureHeaderSize;
    frame.assign(header_.begin(), header_.end());
    frame.resize(entry + 2 * slices);
    quantiser_ = finest_;
    for (int y = 0; y < rows_; ++y) {
        int width = int{widestSlice};
        for (int x = 0; x < columns_; x += width, entry += 2) {
            while (x + width > columns_) {
                width /= 2;
            }
            const std::size_t size = codeSlice(picture, {x, y, width});
            putBigEndian(frame.data() + entry, size, 2);
            frame.insert(frame.end(), slice_.begin(), slice_.begin() + static_cast<std::ptrdiff_t>(size));
        }
    }
    std::uint8_t* const pictureHeader = frame.data() + headerSize;
    pictureHeader[0] = pictureHeaderSize << 3;
    putBigEndian(pictureHeader + 1, frame.size() - headerSize, 4);
    putBigEndian(pictureHeader + 5, slices, 2);
    pictureHeader[7] = 3 << 4; // slices of two to the third macroblocks
    putBigEndian(frame.data(), frame.size(), 4);
}

} // namespace tavrix::prores
