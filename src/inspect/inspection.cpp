// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/inspection.h"

namespace tavrix
{

int streamCount(const MediaInfoRecord& infos, char kind)
{
    int count = 0;
    while (infos.contains(record::stream(kind, count, "codec"))) {
        ++count;
    }
    return count;
}

const media::StreamFacts* shownStream(const Inspection& inspection, media::Kind kind, int number)
{
    if (!inspection.shown) {
        return nullptr;
    }
    for (const media::StreamFacts& stream : inspection.shown->streams) {
        if (stream.kind == kind && number-- == 0) {
            return &stream;
        }
    }
    return nullptr;
}

QVariant knownValue(const Inspection& inspection, char kind, int number, const char* name)
{
    const QString key = record::stream(kind, number, name);
    return inspection.infos.contains(key) ? inspection.infos.value(key) : inspection.movie.value(key);
}

} // namespace tavrix
