// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A clip, or a part of it, as a file of its own, without decoding its pictures.

#include "base/text/cliptime.h"
#include "judge/verdict.h"
#include "sys/result.h"

#include <QSize>
#include <QString>

#include <cstdio>
#include <optional>

namespace tavrix
{

enum class PartForm {
    Movie,            // QuickTime, its header behind the media
    MovieHeaderFirst, // QuickTime, its header in front: it plays while it is still being loaded
    Wave,             // the first sound alone
};

struct PartRequest {
    QString source;
    QString destination;
    std::optional<ClipPart> part; // nothing: all of it
    PartForm form = PartForm::Movie;
    QSize size;                 // at which players show the pictures; empty: as they show the source's
    bool replaces = false;      // a file of the destination's name
    std::FILE* tells = nullptr; // lines that tell how far it is; null: nobody asks
};

struct ExportedPart {
    qint64 bytes = 0;
    double from = 0; // seconds of the source: where the first picture begins and the last one ends
    double to = 0;
    judge::Verdict verdict; // never a failure
};

// A picture belongs to the part when it begins in it. What decoding the first one needs from before is in a movie too,
// and its edit list hides it. The file is judged against what a player shows of the part before it takes its name; a
// failure leaves nothing behind, and what stood there stays; so does an incomplete file where something stands. The
// reason of a failure is for people. Main thread only.
[[nodiscard]] Result<ExportedPart, QString> exportPart(const PartRequest& request);

} // namespace tavrix
