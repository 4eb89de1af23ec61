#include "process/programlookup.h"

#include "base/bundle.h"
#include "base/paths.h"

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
