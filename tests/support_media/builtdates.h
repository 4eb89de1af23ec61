// SPDX-License-Identifier: GPL-3.0-or-later
// Parts of movies and AVI files that tell a date or a maker, built byte by byte.
#pragma once

#include "support/moviebuilder.h"

#include <string>
#include <utility>
#include <vector>

namespace tavrix::test::built
{

constexpr std::uint64_t from1904To1970 = 2082844800;

inline Bytes bytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

inline Bytes joined(const std::vector<Bytes>& parts)
{
    Bytes all;
    for (const Bytes& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// `created` counts from 1904.
inline Bytes movieHeaderAtom(std::uint64_t created, std::uint32_t scale, std::uint32_t duration, bool wide = false)
{
    Bytes bytes;
    put32(bytes, wide ? 0x01000000U : 0);
    for (int i = 0; i < 2; ++i) {
        if (wide) {
            put64(bytes, created);
        } else {
            put32(bytes, static_cast<std::uint32_t>(created));
        }
    }
    put32(bytes, scale);
    if (wide) {
        put64(bytes, duration);
    } else {
        put32(bytes, duration);
    }
    bytes.insert(bytes.end(), 80, 0);
    return atomBytes("mvhd", bytes);
}

inline Bytes quickTimeText(const std::string& type, const std::string& text)
{
    Bytes bytes;
    put16(bytes, static_cast<std::uint32_t>(text.size()));
    put16(bytes, 0);
    return atomBytes(type, joined({bytes, bytesOf(text)}));
}

// A version, flags and a language before the text, a zero behind it.
inline Bytes mobileText(const std::string& type, const std::string& text)
{
    return atomBytes(type, joined({Bytes(6, 0), bytesOf(text), Bytes(1, 0)}));
}

inline Bytes valueAtom(const std::string& text)
{
    return atomBytes("data", joined({{0, 0, 0, 1, 0, 0, 0, 0}, bytesOf(text)}));
}

// Apple's keys and their values.
inline Bytes keysAtom(const std::vector<std::pair<std::string, std::string>>& pairs)
{
    Bytes names;
    put32(names, 0);
    put32(names, static_cast<std::uint32_t>(pairs.size()));
    Bytes values;
    std::uint32_t number = 0;
    for (const auto& [name, value] : pairs) {
        names = joined({names, atomBytes("mdta", bytesOf(name))});
        ++number;
        const std::string index = {0, 0, 0, static_cast<char>(number)};
        values = joined({values, atomBytes(index, valueAtom(value))});
    }
    const Bytes handler = atomBytes("hdlr", Bytes(25, 0));
    return atomBytes("meta", joined({handler, atomBytes("keys", names), atomBytes("ilst", values)}));
}

inline Bytes trackOfHandler(const std::string& name, bool counted)
{
    const Bytes length = counted ? Bytes{static_cast<std::uint8_t>(name.size())} : Bytes();
    const Bytes end = counted ? Bytes() : Bytes{0};
    const Bytes handler = atomBytes("hdlr", joined({Bytes(24, 0), length, bytesOf(name), end}));
    return atomBytes("trak", atomBytes("mdia", handler));
}

// A chunk of a RIFF file, with the byte that fills up an odd length.
inline Bytes chunk(const std::string& type, const Bytes& payload)
{
    Bytes bytes = bytesOf(type);
    const auto size = static_cast<std::uint32_t>(payload.size());
    for (unsigned int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(size >> shift));
    }
    return joined({bytes, payload, Bytes(payload.size() % 2, 0)});
}

inline Bytes list(const std::string& type, const std::vector<Bytes>& chunks)
{
    return chunk("LIST", joined({bytesOf(type), joined(chunks)}));
}

inline Bytes aviFile(const std::vector<Bytes>& chunks)
{
    return chunk("RIFF", joined({bytesOf("AVI "), joined(chunks)}));
}

} // namespace tavrix::test::built
