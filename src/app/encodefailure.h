#pragma once

#include <QString>

namespace tavrix
{

// The line of a tool's transcript that best tells why it failed: the last one that is neither progress nor mapping nor
// a description of streams. Nothing when there is none.
[[nodiscard]] QString failureLine(const QString& transcript);

// The line behind the plain cause that it tells of, in the user's language: "the disk is full: make room (x: No space
// left on device)". The line itself when it tells of none that is known.
[[nodiscard]] QString plainReason(const QString& line);
// The same for causes that lie in the machine and not in a clip: nothing when the text names none.
[[nodiscard]] QString machineTrouble(const QString& transcript);

} // namespace tavrix
