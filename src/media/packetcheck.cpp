// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/packetcheck.h"

#include <algorithm>
#include <cstring>
#include <optional>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace tavrix::media
{

namespace
{

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t jpegMark = 0xff;
constexpr std::uint8_t jpegEnd = 0xd9;
// Encoders may pad; what an interrupted copy leaves is longer.
constexpr std::size_t longestPadding = 256;
constexpr std::size_t longestZeroRun = 512; // no picture's codes have so many zeros on end
constexpr std::size_t leastKnownSize = 64;

bool allZero(Bytes bytes)
{
    return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; });
}

Bytes withoutTrailingZeros(Bytes bytes)
{
    while (!bytes.empty() && bytes.back() == 0) {
        bytes = bytes.first(bytes.size() - 1);
    }
    return bytes;
}

std::uint32_t bigEndian(Bytes bytes)
{
    std::uint32_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value = (value << 8) | byte;
    }
    return value;
}

// Three zeros are escaped within a unit of a picture: only something else can have put them there. Units of other kinds
// may hold anything, and broadcasters fill up with zeros behind a unit.
bool isPictureUnit(Bytes unit)
{
    const Bytes used = withoutTrailingZeros(unit);
    static constexpr std::uint8_t zeros[3] = {0, 0, 0};
    return !used.empty() && memmem(used.data(), used.size(), zeros, sizeof(zeros)) == nullptr;
}

bool holdsPicture(std::uint8_t header, std::size_t headerBytes)
{
    constexpr std::size_t longHeader = 2;
    if (headerBytes == longHeader) {
        return ((header >> 1) & 0x3f) < 32;
    }
    const int kind = header & 0x1f;
    return kind >= 1 && kind <= 5;
}

// Decoders refuse a packet with an empty unit, or with one that reaches beyond its end.
bool areUnits(Bytes packet, std::size_t lengthBytes, std::size_t headerBytes)
{
    constexpr std::uint8_t forbiddenBit = 0x80;
    while (packet.size() >= lengthBytes) {
        const std::size_t length = bigEndian(packet.first(lengthBytes));
        packet = packet.subspan(lengthBytes);
        if (length < headerBytes || length > packet.size() || (packet[0] & forbiddenBit) != 0) {
            return false;
        }
        if (holdsPicture(packet[0], headerBytes) && !isPictureUnit(packet.first(length))) {
            return false;
        }
        packet = packet.subspan(length);
    }
    return allZero(packet);
}

bool hasLongZeroRun(Bytes bytes)
{
    static constexpr std::uint8_t zeros[longestZeroRun] = {};
    return memmem(bytes.data(), bytes.size(), zeros, sizeof(zeros)) != nullptr;
}

// The coded part, up to the last mark of an end; cameras fill up what follows.
Bytes jpegCodes(Bytes packet)
{
    for (std::size_t i = packet.size(); i >= 2; --i) {
        if (packet[i - 1] == jpegEnd && packet[i - 2] == jpegMark) {
            return packet.first(i);
        }
    }
    const Bytes used = withoutTrailingZeros(packet);
    return packet.size() - used.size() > longestPadding ? Bytes() : used;
}

// Where the coded pictures begin: behind the segments of the header. Nothing when these do not fit together.
std::optional<Bytes> afterJpegHeader(Bytes packet)
{
    constexpr std::uint8_t start = 0xd8;
    constexpr std::uint8_t scan = 0xda;
    if (packet.size() < 4 || packet[0] != jpegMark || packet[1] != start) {
        return std::nullopt;
    }
    packet = packet.subspan(2);
    while (packet.size() >= 4 && packet[0] == jpegMark) {
        const std::uint8_t mark = packet[1];
        if (mark == jpegMark) {
            packet = packet.subspan(1);
            continue;
        }
        const std::size_t length = bigEndian(packet.subspan(2, 2)) + 2;
        if (length > packet.size()) {
            return std::nullopt;
        }
        packet = packet.subspan(length);
        if (mark == scan) {
            return packet;
        }
    }
    return std::nullopt;
}

bool isJpeg(Bytes packet)
{
    const auto codes = afterJpegHeader(jpegCodes(packet));
    if (!codes || hasLongZeroRun(*codes)) {
        return false;
    }
    // Codes have no marks but restarts and ends; a second field brings a header of its own, all above these.
    constexpr std::uint8_t firstMarkInUse = 0xc0;
    const std::uint8_t* at = codes->data();
    const std::uint8_t* const end = at + codes->size();
    while (at + 1 < end) {
        at = static_cast<const std::uint8_t*>(memchr(at, jpegMark, std::size_t(end - at - 1)));
        if (at == nullptr) {
            return true;
        }
        if (at[1] != 0 && at[1] < firstMarkInUse) {
            return false;
        }
        ++at;
    }
    return true;
}

bool hasOwnSize(Bytes packet, std::size_t offset)
{
    return packet.size() >= offset + 4 && bigEndian(packet.subspan(offset, 4)) <= packet.size() &&
           bigEndian(packet.subspan(offset, 4)) > offset;
}

bool isAc3(Bytes packet)
{
    return packet.size() >= 2 && ((packet[0] == 0x0b && packet[1] == 0x77) || (packet[0] == 0x77 && packet[1] == 0x0b));
}

} // namespace

PacketCheck::PacketCheck(const AVCodecParameters& parameters)
{
    const Bytes description(parameters.extradata,
                            parameters.extradata == nullptr ? 0U : std::size_t(parameters.extradata_size));
    const bool described =
        description.size() > 22 || (parameters.codec_id == AV_CODEC_ID_H264 && description.size() > 4);
    const bool prefixed = described && description[0] == 1;
    if (av_get_exact_bits_per_sample(parameters.codec_id) > 0 || parameters.codec_id == AV_CODEC_ID_RAWVIDEO) {
        form_ = Form::Samples;
    } else if (parameters.codec_id == AV_CODEC_ID_H264 && prefixed) {
        form_ = Form::Lengths;
        lengthBytes_ = (description[4] & 3U) + 1U;
        headerBytes_ = 1;
    } else if (parameters.codec_id == AV_CODEC_ID_HEVC && prefixed) {
        form_ = Form::Lengths;
        lengthBytes_ = (description[21] & 3U) + 1U;
        headerBytes_ = 2;
    } else if (parameters.codec_id == AV_CODEC_ID_MJPEG) {
        form_ = Form::Jpeg;
    } else if (parameters.codec_id == AV_CODEC_ID_AC3) {
        form_ = Form::Ac3;
    } else if (parameters.codec_id == AV_CODEC_ID_PRORES) {
        form_ = Form::Prores;
    } else if (parameters.codec_id == AV_CODEC_ID_AIC) {
        form_ = Form::Intermediate;
    }
}

bool PacketCheck::isPlausible(std::span<const std::uint8_t> packet) const
{
    if (form_ == Form::Samples || packet.empty()) {
        return true;
    }
    if (packet.size() >= leastKnownSize && allZero(packet.first(leastKnownSize))) {
        return false;
    }
    switch (form_) {
    case Form::Lengths:
        return areUnits(packet, lengthBytes_, headerBytes_);
    case Form::Jpeg:
        return isJpeg(packet);
    case Form::Ac3:
        return isAc3(packet);
    case Form::Prores:
        return hasOwnSize(packet, 0) && packet.size() >= 8 && std::memcmp(packet.data() + 4, "icpf", 4) == 0;
    case Form::Intermediate:
        return packet[0] == 1 && hasOwnSize(packet, 2);
    case Form::Samples:
    case Form::Unknown:
        break;
    }
    return true;
}

} // namespace tavrix::media
