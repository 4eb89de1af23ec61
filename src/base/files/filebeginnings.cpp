// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/filebeginnings.h"

#include <QByteArray>
#include <QFile>

namespace tavrix
{

QString firstLineOfFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray head = file.read(4096);
    qsizetype end = 0;
    while (end < head.size() && head.at(end) != '\n' && head.at(end) != '\r') {
        ++end;
    }
    return QString::fromLatin1(head.left(end));
}

bool isJpegFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray bytes = file.read(qint64{64} * 1024);
    if (!bytes.startsWith(QByteArrayLiteral("\xFF\xD8\xFF"))) {
        return false;
    }
    // Walk the segments up to the frame header, which carries the size.
    qsizetype at = 2;
    while (at + 9 <= bytes.size() && bytes.at(at) == '\xFF') {
        const auto marker = static_cast<unsigned char>(bytes.at(at + 1));
        const auto byteAt = [&bytes](qsizetype i) {
            return qsizetype{static_cast<unsigned char>(bytes.at(i))};
        };
        if (marker >= 0xC0 && marker <= 0xC2) {
            return (byteAt(at + 5) | byteAt(at + 6)) != 0 && (byteAt(at + 7) | byteAt(at + 8)) != 0;
        }
        at += 2 + byteAt(at + 2) * 256 + byteAt(at + 3);
    }
    return false;
}

} // namespace tavrix
