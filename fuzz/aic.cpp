// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a picture, its size, a quantiser and a limit: a frame is never empty, says its own size, and holds the
// limit unless even the coarsest quantiser does not.
#include "aic/encoder.h"
#include "input.h"

#include <algorithm>
#include <vector>

namespace
{

using namespace tavrix;

std::size_t sizeSaid(const std::vector<std::uint8_t>& frame)
{
    return std::size_t(frame[2]) << 24 | std::size_t(frame[3]) << 16 | std::size_t(frame[4]) << 8 | frame[5];
}

// Samples of the input, over and over, or one value where it has none.
std::vector<std::uint8_t> plane(ByteView given, int width, int height)
{
    std::vector<std::uint8_t> samples(std::size_t(width) * std::size_t(height), 128);
    for (std::size_t i = 0; i < samples.size() && !given.empty(); ++i) {
        samples[i] = given[i % given.size()];
    }
    return samples;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const int width = aic::smallestSide + input.byte() % 128;
    const int height = aic::smallestSide + input.byte() % 128;
    const int quantiser = std::clamp(int(input.byte()), aic::finestQuantiser, aic::coarsestQuantiser);
    const std::size_t limit = static_cast<std::uint32_t>(input.number()) % 65536;
    if (!aic::sizeAllowed(width, height)) {
        return 0;
    }
    const bool interlaced = input.flag();
    const std::vector<std::uint8_t> luma = plane(input.rest(), width, height);
    input.byte();
    const std::vector<std::uint8_t> blue = plane(input.rest(), (width + 1) / 2, (height + 1) / 2);
    input.byte();
    const std::vector<std::uint8_t> red = plane(input.rest(), (width + 1) / 2, (height + 1) / 2);
    const aic::Picture picture{
        {luma.data(), blue.data(), red.data()}, {width, (width + 1) / 2, (width + 1) / 2}, interlaced};
    aic::Encoder encoder(width, height);
    std::vector<std::uint8_t> frame;
    encoder.encode(picture, quantiser, frame);
    fuzz::require(frame.size() > 24 && sizeSaid(frame) == frame.size());
    const int chosen = encoder.encodeToSize(picture, limit, frame);
    fuzz::require(chosen >= aic::finestQuantiser && chosen <= aic::coarsestQuantiser);
    fuzz::require(frame.size() <= limit || chosen == aic::coarsestQuantiser);
    std::vector<std::uint8_t> again;
    encoder.encode(picture, chosen, again);
    fuzz::require(again == frame);
    return 0;
}
