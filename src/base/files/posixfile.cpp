// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/posixfile.h"

#include "base/text/paths.h"
#include "sys/errortext.h"

#include <cerrno>
#include <cstdlib>
#include <memory>

namespace tavrix
{

QByteArray systemPath(const QString& path)
{
    if (path.isNull() || path.contains(QChar(0))) {
        return {};
    }
    return nativePath(stringByExpandingTildeInPath(path));
}

QByteArray systemItemPath(const QString& path)
{
    QByteArray bytes = systemPath(path);
    while (bytes.size() > 1 && bytes.endsWith('/')) {
        bytes.chop(1);
    }
    return bytes;
}

std::string_view viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QByteArray resolvedPath(const QByteArray& path)
{
    if (path.isEmpty()) {
        return {};
    }
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.constData(), nullptr), &std::free);
    return resolved ? QByteArray(resolved.get()) : QByteArray();
}

QString systemErrorText()
{
    return systemErrorText(errno);
}

QString systemErrorText(int error)
{
    return QString::fromStdString(errorText(error));
}

} // namespace tavrix
