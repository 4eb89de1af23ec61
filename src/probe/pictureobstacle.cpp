// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/pictureobstacle.h"

#include "media/mediainput.h"
#include "media/sourcefacts.h"
#include "probe/batchtexts.h"

#include <QFile>

namespace tavrix
{

namespace
{

// The analysis waits for it.
constexpr int mostSeconds = 10;

} // namespace

QString pictureObstacle(const QString& source, Look look)
{
    media::silenceLibraries();
    media::OpenRequest request;
    request.path = QFile::encodeName(source).toStdString();
    request.seconds = mostSeconds;
    request.probesStreams = look == Look::AtPackets;
    const auto input = media::MediaInput::open(request);
    if (!input) {
        return {};
    }
    return pictureObstacle(media::sourceFactsOf(**input, request.path), look);
}

QString pictureObstacle(const media::SourceFacts& facts, Look look)
{
    const media::StreamFacts* const picture = facts.chosen(media::Kind::Picture);
    if (picture == nullptr) {
        return {};
    }
    if (picture->encrypted) {
        return batchText("Row_encrypted");
    }
    // Where the header is wrong about that, the pictures are read from this file.
    if (picture->external && look == Look::AtPackets) {
        return batchText("Row_picturesElsewhere");
    }
    const bool unknown = look == Look::AtPackets && (picture->width == 0 || picture->height == 0);
    return unknown ? batchText("Row_nothingDecodable") : QString();
}

} // namespace tavrix
