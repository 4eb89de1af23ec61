// SPDX-License-Identifier: GPL-3.0-or-later
// Messages, units and streams as AVCHD cameras write them, built byte by byte.
#pragma once

#include "media/writtendate.h"
#include "support/moviebuilder.h"

#include <algorithm>

namespace tavrix::test::built
{

inline Bytes cameraMark()
{
    return {0x17, 0xEE, 0x8C, 0x60, 0xF8, 0x4D, 0x11, 0xD9, 0x8C, 0xD6,
            0x08, 0x00, 0x20, 0x0C, 0x9A, 0x66, 'M',  'D',  'P',  'M'};
}

inline std::uint8_t binaryCoded(int value)
{
    return static_cast<std::uint8_t>(value / 10 * 16 + value % 10);
}

// The mark and two tags that tell the date.
inline Bytes cameraMessage(const ClockTime& clock)
{
    Bytes message = cameraMark();
    const Bytes tags = {2,
                        0x18,
                        0x1E,
                        binaryCoded(clock.year / 100),
                        binaryCoded(clock.year % 100),
                        binaryCoded(clock.month),
                        0x19,
                        binaryCoded(clock.day),
                        binaryCoded(clock.hour),
                        binaryCoded(clock.minute),
                        binaryCoded(clock.second)};
    message.insert(message.end(), tags.begin(), tags.end());
    return message;
}

// A unit of one message, with guards where start codes would appear.
inline Bytes supplementalUnit(const Bytes& message)
{
    Bytes plain = {6, 5, static_cast<std::uint8_t>(message.size())};
    plain.insert(plain.end(), message.begin(), message.end());
    plain.push_back(0x80);
    Bytes unit;
    int zeros = 0;
    for (const std::uint8_t byte : plain) {
        if (zeros >= 2 && byte <= 3) {
            unit.push_back(3);
            zeros = 0;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        unit.push_back(byte);
    }
    return unit;
}

// A packet of a transport stream, filled up in its adaptation field.
inline Bytes transportPacket(unsigned int stream, bool begins, const Bytes& payload, std::size_t length)
{
    Bytes packet(length - 188, 0x33);
    packet.push_back(0x47);
    packet.push_back(static_cast<std::uint8_t>((begins ? 0x40U : 0U) | (stream >> 8U)));
    packet.push_back(static_cast<std::uint8_t>(stream));
    packet.push_back(payload.size() < 184 ? 0x30 : 0x10);
    if (payload.size() < 184) {
        const std::size_t filling = 183 - payload.size();
        packet.push_back(static_cast<std::uint8_t>(filling));
        packet.insert(packet.end(), filling, 0xFF);
    }
    packet.insert(packet.end(), payload.begin(), payload.end());
    return packet;
}

// Sound and pictures in turn; the camera's message goes over the end of a packet.
inline Bytes cameraStream(const ClockTime& clock, std::size_t length)
{
    Bytes pictures = {0, 0, 1, 0xE0, 0, 0, 0x80, 0x80, 5, 0x21, 0, 1, 0, 1};
    pictures.insert(pictures.end(), 140, 0x55);
    const Bytes code = {0, 0, 0, 1};
    pictures.insert(pictures.end(), code.begin(), code.end());
    const Bytes unit = supplementalUnit(cameraMessage(clock));
    pictures.insert(pictures.end(), unit.begin(), unit.end());
    pictures.insert(pictures.end(), code.begin(), code.end());
    const auto end = std::min<std::ptrdiff_t>(184, std::ssize(pictures));
    Bytes sound = {0, 0, 1, 0xC0, 0, 0, 0x80, 0, 0, 9, 9};
    Bytes stream;
    const auto add = [&stream](const Bytes& packet) {
        stream.insert(stream.end(), packet.begin(), packet.end());
    };
    add(transportPacket(0x1011, true, Bytes(pictures.begin(), pictures.begin() + end), length));
    add(transportPacket(0x1100, true, sound, length));
    add(transportPacket(0x1011, false, Bytes(pictures.begin() + end, pictures.end()), length));
    for (int i = 0; i < 3; ++i) {
        add(transportPacket(0x1100, false, sound, length));
    }
    return stream;
}

} // namespace tavrix::test::built
