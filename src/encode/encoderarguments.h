// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <optional>

// From a row's values to the argument list of its encode.
namespace tavrix
{

// Element 0 is the tool's path. No value when source or destination is nothing. The codec name is not used.
[[nodiscard]] std::optional<QStringList> encodage(const QString& sourcePath, const QString& destinationPath,
                                                  const QString& wrapper, const QString& codec, float framesPerSecond,
                                                  int out, float aspect);
// The extension without its dot; the codec may be nothing.
[[nodiscard]] QString encDstExtensionStr(int out, const QString& codec);
// Expected size of the output in the unit of the source size, from the duration in seconds; logs it.
[[nodiscard]] float encDstPoidsEstimatif(float duration, double sourceSize, int out);

} // namespace tavrix
