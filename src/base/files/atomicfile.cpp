// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/atomicfile.h"

#include "base/files/posixfile.h"
#include "sys/atomicfile.h"

#include <cerrno>

namespace tavrix
{

Result<void, QString> replaceFileAtomically(const QString& path, const QByteArray& bytes)
{
    const QByteArray target = systemPath(path);
    if (target.isEmpty()) {
        return Failure{systemErrorText(ENOENT)};
    }
    const Result<void> replaced = replaceFile(target.toStdString(), viewOf(bytes), 0600);
    return replaced ? Result<void, QString>() : Failure{QString::fromStdString(replaced.reason())};
}

} // namespace tavrix
