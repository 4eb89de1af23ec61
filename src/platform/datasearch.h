// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Byte patterns in buffers and files, and hexadecimal texts.

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <stdexcept>

namespace tavrix
{

inline constexpr unsigned int dataNotFound = 0x7FFFFFFFU;

// A programming error in the hexadecimal decoder, with its place.
class HexDataError : public std::logic_error
{
public:
    HexDataError(const char* message, int line);
    [[nodiscard]] const char* file() const { return "HexData"; }
    [[nodiscard]] int line() const { return line_; }

private:
    int line_;
};

// Two digits a byte; other characters are not refused but give what the arithmetic makes of them. Throws HexDataError
// for an odd length and when there is no memory.
[[nodiscard]] QByteArray toDataFromHexString(const QString& text);
// Offset of the first occurrence, dataNotFound when there is none. An empty pattern is never found.
[[nodiscard]] unsigned int offsetOfData(const QByteArray& buffer, const QByteArray& pattern);
// The same in a whole file, of which about 2 MB are in memory at a time; the device's position is restored.
// dataNotFound also for a device that cannot be read or has no positions.
[[nodiscard]] unsigned int offsetOfData_NSFileHandle(QIODevice& file, const QByteArray& pattern);
// Offset of the one occurrence replaced, dataNotFound when there was none.
unsigned int replaceDataWithData(QByteArray& buffer, const QByteArray& pattern, const QByteArray& replacement);
// Number of replacements. Endless when the replacement holds the pattern.
unsigned int replaceAllDataWithData(QByteArray& buffer, const QByteArray& pattern, const QByteArray& replacement);

} // namespace tavrix
