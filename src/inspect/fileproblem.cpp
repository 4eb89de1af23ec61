// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/fileproblem.h"

#include "base/files/fileinfo.h"
#include "probe/batchtexts.h"

#include <QFileInfo>

namespace tavrix
{

QString fileProblem(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        // A command line of bytes that are no text holds these in their place.
        const bool unspeakable = path.contains(QChar(QChar::ReplacementCharacter));
        return batchText(unspeakable ? "Clip_unspeakable" : "Clip_notFound");
    }
    // A pipe or a device would keep us waiting.
    if (!info.isFile()) {
        return batchText("Clip_noFile");
    }
    return testPresenceC(path) ? QString() : batchText("Clip_closedFile");
}

bool itemExists(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

} // namespace tavrix
