#pragma once

// The sound of a clip as a WAVE file.

#include "sys/result.h"

#include <QString>

namespace tavrix
{

struct ExportedSound {
    QString file;
    qint64 bytes = 0;
    double seconds = 0;  // of the file written
    double expected = 0; // of the source's sound; 0 when it does not say
    [[nodiscard]] bool isShort() const;
};

// Writes the first sound of the source, as a player lets it be heard, to the destination. Nothing that exists is
// replaced, and nothing stands there before the file is complete; an end by SIGINT, SIGTERM or SIGHUP leaves nothing
// behind. The reason of a failure is for people. A source that ends early gives a short file.
[[nodiscard]] Result<ExportedSound, QString> exportSound(const QString& source, const QString& destination);

// Length in seconds that a WAVE file's header tells; no value when it is none or its data do not all lie in the file.
[[nodiscard]] Result<double, QString> waveSeconds(const QString& file);

} // namespace tavrix
