#pragma once

#include <QString>

namespace tavrix
{

// The line of a tool's transcript that best tells why it failed: the last one that is neither progress nor mapping nor
// a description of streams. Nothing when there is none.
[[nodiscard]] QString failureLine(const QString& transcript);

// The base name cut by whole characters, so that "<base>.<extension>" is a name that file systems accept (255 bytes).
[[nodiscard]] QString fittedBaseName(const QString& base, const QString& extension);

} // namespace tavrix
