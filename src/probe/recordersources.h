// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Sources that come from recorders: bundles, descriptions, recording dates.

#include <QString>

namespace tavrix
{

[[nodiscard]] QString bundledVideoName(const QString& path);        // nothing for nothing
[[nodiscard]] float bundledVideoEyetvDuration(const QString& path); // seconds, 0.0 on failure
[[nodiscard]] float eyetvDurationFromText(const QString& description);
// Base name of the output, "clip-<date>-<name>", as recordingName gives it. Nothing for nothing.
[[nodiscard]] QString dateCreation2iMovieName(const QString& sourcePath);
// 1 when the date marker was found in the first 1000 bytes, else 0; the date is logged.
int readVideoCreationDate(const QString& path);

} // namespace tavrix
