// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/recorderfacts.h"

#include "base/files/filelisting.h"
#include "base/text/paths.h"
#include "probe/recordersources.h"

namespace tavrix
{

namespace
{

bool isNamed(const QString& path, const char* name)
{
    return lastPathComponent(path).compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
}

// The folder that a card shows first: cameras put BDMV into AVCHD, and that into PRIVATE.
QString cardFolder(const QString& movieFolder)
{
    QString folder = stringByDeletingLastPathComponent(movieFolder);
    for (const char* name : {"AVCHD", "PRIVATE"}) {
        if (isNamed(folder, name)) {
            folder = stringByDeletingLastPathComponent(folder);
        }
    }
    return folder;
}

} // namespace

RecorderFacts recorderFacts(const QString& path)
{
    RecorderFacts facts;
    if (const QString bundle = EyetvBundle(path); bundle != path) {
        facts.kind = RecorderKind::Eyetv;
        facts.folder = bundle;
        facts.name = stringByDeletingPathExtension(bundledVideoName(path));
        facts.seconds = bundledVideoEyetvDuration(path);
        return facts;
    }
    const QString streams = stringByDeletingLastPathComponent(path);
    const QString movies = stringByDeletingLastPathComponent(streams);
    if (isNamed(streams, "STREAM") && isNamed(movies, "BDMV")) {
        facts.kind = RecorderKind::Avchd;
        facts.folder = cardFolder(movies);
        facts.name = bundledVideoName(path);
    }
    return facts;
}

} // namespace tavrix
