// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/programlookup.h"

#include "base/bundle/bundle.h"
#include "base/text/paths.h"

#include <QFileInfo>

namespace tavrix
{

QString launchArgument(const QString& element)
{
    if (element.contains(QLatin1String("://"))) {
        return element;
    }
    return stringByExpandingTildeInPath(element);
}

QString resolvedProgram(const QString& element)
{
    if (element.isEmpty()) {
        return {};
    }
    const QFileInfo direct(element);
    if (direct.exists()) {
        return direct.absoluteFilePath();
    }
    return pathForResource(stringByDeletingPathExtension(element), pathExtension(element));
}

} // namespace tavrix
