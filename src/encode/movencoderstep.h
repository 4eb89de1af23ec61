// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <optional>

namespace tavrix
{

// Moves the first pass's output aside under its master name and returns the argument list of the second pass. No value
// when the free space does not suffice (the move has then happened). Duration in seconds; a settings name of nothing or
// "" is chosen by the display aspect.
[[nodiscard]] std::optional<QStringList> encPostQtEnc(const QString& outputPath, float duration, float aspect,
                                                      const QString& settingsName);
// The same for a first pass that lies under its master name already; nothing is moved.
[[nodiscard]] std::optional<QStringList> secondPassArguments(const QString& outputPath, float duration, float aspect,
                                                             const QString& settingsName);
// "1280x720pLetterbox" for 4:3, else "1280x720p".
[[nodiscard]] QString movencoderSettingsName(float aspect);

} // namespace tavrix
