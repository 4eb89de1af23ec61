#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <stdexcept>

// Byte patterns in buffers and files, and hexadecimal texts.
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

[[nodiscard]] QByteArray toDataFromHexString(const QString& text); // throws HexDataError for an odd length
[[nodiscard]] unsigned int offsetOfData(const QByteArray& buffer, const QByteArray& pattern);
// Restores the device's position.
[[nodiscard]] unsigned int offsetOfData_NSFileHandle(QIODevice& file, const QByteArray& pattern);
unsigned int replaceDataWithData(QByteArray& buffer, const QByteArray& pattern, const QByteArray& replacement);
unsigned int replaceAllDataWithData(QByteArray& buffer, const QByteArray& pattern, const QByteArray& replacement);

} // namespace tavrix
