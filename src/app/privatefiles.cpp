// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/privatefiles.h"

#include "base/text/log.h"
#include "base/text/paths.h"
#include "sys/errortext.h"

#include <sys/stat.h>

#include <cerrno>

namespace tavrix
{

void keepPrivate(const QString& path, mode_t mode)
{
    if (::chmod(nativePath(path).constData(), mode) != 0) {
        logLine(QStringLiteral("chmod               :-( %@ - %@"), {path, QString::fromStdString(errorText(errno))});
    }
}

} // namespace tavrix
