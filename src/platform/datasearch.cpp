// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/datasearch.h"

#include "base/text/log.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <new>

namespace tavrix
{

namespace
{

constexpr qint64 chunkBytes = 2000000;
constexpr int lineOddLength = 17;
constexpr int lineOutOfMemory = 24;

// Characters that are no hexadecimal digits are not refused: they give what this arithmetic gives.
unsigned int digitValue(QChar character)
{
    unsigned int code = character.unicode();
    if (code >= 'a' && code <= 'z') {
        code -= 'a' - 'A';
    }
    return code < 'A' ? code - '0' : code - 'A' + 10U;
}

unsigned int asOffset(qint64 position)
{
    if (position < 0) {
        return dataNotFound;
    }
    if (position > static_cast<qint64>(std::numeric_limits<unsigned int>::max())) {
        logLine(QStringLiteral("data found at %lld   :-( too far for an offset"), {position});
        return dataNotFound;
    }
    return static_cast<unsigned int>(position);
}

// The tail of one piece is kept before the next one, so that a pattern across the border is seen.
qint64 positionInDevice(QIODevice& file, const QByteArray& pattern)
{
    const std::boyer_moore_horspool_searcher searcher(pattern.cbegin(), pattern.cend());
    const qint64 pieceSize = pattern.size() + chunkBytes;
    QByteArray window;
    qint64 windowStart = 0;
    for (;;) {
        const QByteArray piece = file.read(pieceSize);
        if (piece.isEmpty()) {
            return -1;
        }
        window += piece;
        const auto found = std::search(window.cbegin(), window.cend(), searcher);
        if (found != window.cend()) {
            return windowStart + std::distance(window.cbegin(), found);
        }
        const qsizetype kept = std::min(window.size(), pattern.size() - 1);
        windowStart += window.size() - kept;
        window = window.right(kept);
    }
}

} // namespace

HexDataError::HexDataError(const char* message, int line) : std::logic_error(message), line_(line) {}

QByteArray toDataFromHexString(const QString& text)
{
    if (text.size() % 2 != 0) {
        throw HexDataError("String length is odd !", lineOddLength);
    }
    QByteArray bytes;
    try {
        bytes.resize(text.size() / 2);
    } catch (const std::bad_alloc&) {
        throw HexDataError("Out of memory", lineOutOfMemory);
    }
    for (qsizetype index = 0; index < bytes.size(); ++index) {
        const unsigned int value = digitValue(text[2 * index]) * 16U + digitValue(text[2 * index + 1]);
        bytes[index] = static_cast<char>(static_cast<unsigned char>(value));
    }
    return bytes;
}

unsigned int offsetOfData(const QByteArray& buffer, const QByteArray& pattern)
{
    return pattern.isEmpty() ? dataNotFound : asOffset(buffer.indexOf(pattern));
}

unsigned int offsetOfData_NSFileHandle(QIODevice& file, const QByteArray& pattern)
{
    if (pattern.isEmpty() || file.isSequential()) {
        return dataNotFound;
    }
    const qint64 before = file.pos();
    if (!file.seek(0)) {
        return dataNotFound;
    }
    const qint64 position = positionInDevice(file, pattern);
    if (!file.seek(before)) {
        logLine(QStringLiteral("file position       :-( %lld cannot be restored"), {before});
    }
    return asOffset(position);
}

unsigned int replaceDataWithData(QByteArray& buffer, const QByteArray& pattern, const QByteArray& replacement)
{
    logLine(QStringLiteral("replaceData"));
    const unsigned int offset = offsetOfData(buffer, pattern);
    if (offset != dataNotFound) {
        buffer.replace(static_cast<qsizetype>(offset), pattern.size(), replacement);
    }
    return offset;
}

unsigned int replaceAllDataWithData(QByteArray& buffer, const QByteArray& pattern, const QByteArray& replacement)
{
    logLine(QStringLiteral("replaceAllData"));
    unsigned int count = 0;
    while (replaceDataWithData(buffer, pattern, replacement) != dataNotFound) {
        ++count;
    }
    return count;
}

} // namespace tavrix
