// SPDX-License-Identifier: GPL-3.0-or-later
// Where an output goes and what it is called: the one place that puts these paths together.
#pragma once

#include <QString>

namespace tavrix
{

// The folder inside the destination that takes all outputs.
inline const QString eventsFolderName = QStringLiteral("Tavrix events");

// Path of that folder, whether or not it exists. The destination is a folder as a person types it: a leading tilde
// stands for the home folder.
[[nodiscard]] QString eventsFolder(const QString& destinationText);

// Name of the output with its extension, of at most 255 bytes. The base name is the one that the source's date gives;
// the format is a number of the table; the codec is the source's and may be nothing.
[[nodiscard]] QString outputName(const QString& baseName, int out, const QString& codec);
[[nodiscard]] QString outputPath(const QString& destinationText, const QString& baseName, int out,
                                 const QString& codec);

// The base name cut by whole characters, so that "<base>.<extension>" is a name that file systems accept (255 bytes).
[[nodiscard]] QString fittedBaseName(const QString& base, const QString& extension);

// Path of the first pass's movie while the second pass makes the output of it. A short output name can give its own
// path. Nothing for nothing.
[[nodiscard]] QString intermediateName(const QString& output);

} // namespace tavrix
