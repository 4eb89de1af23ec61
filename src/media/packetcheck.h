// SPDX-License-Identifier: GPL-3.0-or-later
// Whether the bytes of a packet can be what its codec writes, seen without decoding it.
#pragma once

#include "media/avowners.h"

#include <cstdint>
#include <span>

namespace tavrix::media
{

// Knows the outer structure of some codecs: lengths of units, marks, bytes that the codec never writes. Zeros and noise
// over a part of a file nearly always break it. What it does not know is taken for good.
class PacketCheck
{
public:
    explicit PacketCheck(const AVCodecParameters& parameters);
    // False when the packet cannot be decoded as it was written. An empty one repeats the picture before it.
    [[nodiscard]] bool isPlausible(std::span<const std::uint8_t> packet) const;

private:
    enum class Form { Samples, Unknown, Lengths, Jpeg, Ac3, Prores, Intermediate };

    Form form_ = Form::Unknown;
    std::size_t lengthBytes_ = 0; // of the number before each unit
    std::size_t headerBytes_ = 0; // of a unit
};

} // namespace tavrix::media
