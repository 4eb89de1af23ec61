// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The codecs that this installation can encode with, in the terms of a component manager.

#include <QByteArray>
#include <QList>

namespace tavrix
{

// One installed component; null is none. Only a registry can read it.
using ComponentHandle = const void*;

struct ComponentDescription {
    quint32 componentType = 0;
    quint32 componentSubType = 0;
    quint32 componentManufacturer = 0;
    quint32 componentFlags = 0;
    quint32 componentFlagsMask = 0;
};

class ComponentRegistry
{
public:
    virtual ~ComponentRegistry() = default;
    // The component after the given one (null: the first) whose flags equal the search's under the search's mask, and
    // whose codes equal those of the search that are not 0. Null at the end.
    virtual ComponentHandle findNextComponent(ComponentHandle after, const ComponentDescription& search) = 0;
    // How many findNextComponent would find.
    virtual int countComponents(const ComponentDescription& search) = 0;
    // 0, or an error number; the name is the UTF-8 text without a length byte, and may be empty.
    virtual int componentInfo(ComponentHandle component, ComponentDescription& description, QByteArray& name) = 0;
};

// Four characters as a code, the first in the most significant byte.
[[nodiscard]] constexpr quint32 fourCharCode(const char (&text)[5])
{
    return (quint32(quint8(text[0])) << 24) | (quint32(quint8(text[1])) << 16) | (quint32(quint8(text[2])) << 8) |
           quint32(quint8(text[3]));
}

// The code of a tag as libavcodec keeps it, with the first character in the lowest byte.
[[nodiscard]] constexpr quint32 fourCharCodeOfTag(quint32 tag)
{
    return ((tag & 0xFFU) << 24) | ((tag & 0xFF00U) << 8) | ((tag >> 8) & 0xFF00U) | (tag >> 24);
}

// Not owned; null returns to the registry of the FFmpeg libraries and the program's own encoder.
void setComponentRegistry(ComponentRegistry* other);
// The registry in use.
[[nodiscard]] ComponentRegistry& componentRegistry();

} // namespace tavrix
