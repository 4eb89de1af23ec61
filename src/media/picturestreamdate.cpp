// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/picturestreamdate.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <vector>

namespace tavrix
{

namespace
{

constexpr std::array<std::uint8_t, 20> cameraMark = {0x17, 0xEE, 0x8C, 0x60, 0xF8, 0x4D, 0x11, 0xD9, 0x8C, 0xD6,
                                                     0x08, 0x00, 0x20, 0x0C, 0x9A, 0x66, 'M',  'D',  'P',  'M'};
constexpr std::size_t tagSize = 5;
constexpr std::uint8_t dayTag = 0x18;  // zone, century, year, month
constexpr std::uint8_t timeTag = 0x19; // day, hour, minute, second

constexpr unsigned int supplementalUnit = 6;
constexpr unsigned int userDataMessage = 5;
// A supplemental unit of a camera takes some hundred bytes.
constexpr std::size_t longestUnit = 65536;

constexpr std::size_t packetSize = 188;
constexpr std::size_t cameraPacketSize = 192; // four bytes of time stand before each packet
constexpr std::uint8_t syncByte = 0x47;
constexpr int packetsToBeSure = 5;
// Camera streams carry one or two pictures' streams; noise carries thousands.
constexpr std::size_t mostPictureStreams = 8;

bool startsWith(ByteView bytes, ByteView start)
{
    return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

// No value for what is no binary-coded number.
std::optional<int> binaryCoded(std::uint8_t byte)
{
    const int tens = byte >> 4U;
    const int ones = byte & 0x0FU;
    return tens <= 9 && ones <= 9 ? std::optional<int>(tens * 10 + ones) : std::nullopt;
}

// Four binary-coded numbers, the first of which may be something else.
std::optional<std::array<int, 4>> codedNumbers(ByteView four, std::size_t from)
{
    std::array<int, 4> numbers{};
    for (std::size_t i = from; i < numbers.size(); ++i) {
        const std::optional<int> number = binaryCoded(four[i]);
        if (!number) {
            return std::nullopt;
        }
        numbers[i] = *number;
    }
    return numbers;
}

constexpr std::array<std::uint8_t, 3> startCode = {0, 0, 1};

// Where the unit behind the next start code begins; nothing when there is none. Megabytes are searched for each clip,
// so the system's own search does it.
std::optional<std::size_t> afterStartCode(ByteView stream, std::size_t from)
{
    const ByteView rest = stream.subspan(from);
    const void* const found =
        rest.empty() ? nullptr : memmem(rest.data(), rest.size(), startCode.data(), startCode.size());
    if (found == nullptr) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - stream.data()) + startCode.size();
}

// The bytes of a unit, without the ones that keep start codes from appearing in it.
std::vector<std::uint8_t> withoutGuards(ByteView unit)
{
    std::vector<std::uint8_t> bytes;
    bytes.reserve(unit.size());
    int zeros = 0;
    for (const std::uint8_t byte : unit) {
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        bytes.push_back(byte);
    }
    return bytes;
}

// Kinds and sizes of messages are sums of bytes, of which 255 says that another one follows.
std::optional<std::size_t> messageNumber(ByteView& bytes)
{
    std::size_t value = 0;
    while (!bytes.empty()) {
        const std::uint8_t byte = bytes.front();
        bytes = bytes.subspan(1);
        value += byte;
        if (byte != 255) {
            return value;
        }
    }
    return std::nullopt;
}

// The packets' length, 0 for what is no transport stream.
std::size_t packetLength(ByteView stream)
{
    for (const std::size_t length : {packetSize, cameraPacketSize}) {
        const std::size_t lead = length - packetSize;
        bool fits = stream.size() >= length * packetsToBeSure;
        for (std::size_t i = 0; fits && i < packetsToBeSure; ++i) {
            fits = stream[i * length + lead] == syncByte;
        }
        if (fits) {
            return length;
        }
    }
    return 0;
}

struct Packet {
    unsigned int stream = 0;
    bool begins = false; // a picture's packet begins in it
    ByteView payload;
};

// No payload for a damaged, scrambled or empty packet.
Packet packetFrom(ByteView bytes)
{
    Packet packet;
    const unsigned int control = bytes[3];
    packet.stream = ((bytes[1] & 0x1FU) << 8U) | bytes[2];
    packet.begins = (bytes[1] & 0x40U) != 0;
    const bool damaged = bytes[0] != syncByte || (bytes[1] & 0x80U) != 0 || (control & 0xC0U) != 0;
    if (damaged || (control & 0x10U) == 0) {
        return packet;
    }
    const bool adapted = (control & 0x20U) != 0;
    const std::size_t start = adapted ? std::size_t{5} + bytes[4] : 4;
    if (start < bytes.size()) {
        packet.payload = bytes.subspan(start);
    }
    return packet;
}

// What stands behind the head of a picture's packet; no value when it is none.
std::optional<ByteView> pictureBytes(ByteView payload)
{
    constexpr std::size_t head = 9;
    const bool picture = payload.size() >= head && payload[0] == 0 && payload[1] == 0 && payload[2] == 1 &&
                         (payload[3] & 0xF0U) == 0xE0U;
    if (!picture) {
        return std::nullopt;
    }
    return payload.subspan(std::min(head + payload[8], payload.size()));
}

} // namespace

std::optional<ClockTime> userDataDate(ByteView message)
{
    if (!startsWith(message, cameraMark) || message.size() == cameraMark.size()) {
        return std::nullopt;
    }
    const std::size_t count = message[cameraMark.size()];
    ByteView tags = message.subspan(cameraMark.size() + 1);
    std::optional<std::array<int, 4>> day;
    std::optional<std::array<int, 4>> time;
    for (std::size_t i = 0; i < count && tags.size() >= tagSize; ++i, tags = tags.subspan(tagSize)) {
        if (tags[0] == dayTag) {
            day = codedNumbers(tags.subspan(1), 1);
        } else if (tags[0] == timeTag) {
            time = codedNumbers(tags.subspan(1), 0);
        }
    }
    if (!day || !time) {
        return std::nullopt;
    }
    const auto& [zone, century, year, month] = *day;
    const auto& [dayOfMonth, hour, minute, second] = *time;
    const ClockTime clock{century * 100 + year, month, dayOfMonth, hour, minute, second};
    return isOnCalendar(clock) ? std::optional<ClockTime>(clock) : std::nullopt;
}

std::optional<ClockTime> nalUnitDate(ByteView unit)
{
    if (unit.empty() || (unit[0] & 0x1FU) != supplementalUnit) {
        return std::nullopt;
    }
    const std::vector<std::uint8_t> bytes = withoutGuards(unit.subspan(1, std::min(unit.size() - 1, longestUnit)));
    ByteView rest(bytes);
    while (rest.size() > 2) {
        const std::optional<std::size_t> kind = messageNumber(rest);
        const std::optional<std::size_t> size = messageNumber(rest);
        if (!kind || !size) {
            return std::nullopt;
        }
        const ByteView message = rest.first(std::min(*size, rest.size()));
        if (*kind == userDataMessage) {
            if (const std::optional<ClockTime> date = userDataDate(message)) {
                return date;
            }
        }
        rest = rest.subspan(message.size());
    }
    return std::nullopt;
}

std::optional<ClockTime> startCodeStreamDate(ByteView stream)
{
    std::optional<std::size_t> unit = afterStartCode(stream, 0);
    while (unit) {
        const std::optional<std::size_t> next = afterStartCode(stream, *unit);
        const std::size_t end = next ? *next - startCode.size() : stream.size();
        if (const std::optional<ClockTime> date = nalUnitDate(stream.subspan(*unit, end - *unit))) {
            return date;
        }
        unit = next;
    }
    return std::nullopt;
}

std::optional<ClockTime> sampleDate(ByteView sample, int lengthSize)
{
    if (lengthSize != 1 && lengthSize != 2 && lengthSize != 4) {
        return std::nullopt;
    }
    const auto head = static_cast<std::size_t>(lengthSize);
    while (sample.size() > head) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < head; ++i) {
            length = (length << 8U) | sample[i];
        }
        const ByteView unit = sample.subspan(head, std::min(length, sample.size() - head));
        if (const std::optional<ClockTime> date = nalUnitDate(unit)) {
            return date;
        }
        sample = sample.subspan(head + unit.size());
    }
    return std::nullopt;
}

bool isTransportStream(ByteView stream)
{
    return packetLength(stream) != 0;
}

std::optional<ClockTime> transportStreamDate(ByteView stream)
{
    const std::size_t length = packetLength(stream);
    if (length == 0) {
        return std::nullopt;
    }
    std::map<unsigned int, std::vector<std::uint8_t>> pictures;
    for (; stream.size() >= length; stream = stream.subspan(length)) {
        const Packet packet = packetFrom(stream.subspan(length - packetSize, packetSize));
        const std::optional<ByteView> begun = packet.begins ? pictureBytes(packet.payload) : std::nullopt;
        if (begun && pictures.size() < mostPictureStreams) {
            pictures.try_emplace(packet.stream);
        }
        const auto found = pictures.find(packet.stream);
        if (found != pictures.end()) {
            const ByteView bytes = begun.value_or(packet.begins ? ByteView() : packet.payload);
            found->second.insert(found->second.end(), bytes.begin(), bytes.end());
        }
    }
    for (const auto& [number, bytes] : pictures) {
        if (const std::optional<ClockTime> date = startCodeStreamDate(bytes)) {
            return date;
        }
    }
    return std::nullopt;
}

} // namespace tavrix
