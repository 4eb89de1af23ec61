// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sys/childend.h"

#include <QString>

namespace tavrix
{

// The line of a tool's transcript that best tells why it failed: the last one that is neither progress nor mapping nor
// a description of streams. Nothing when there is none.
[[nodiscard]] QString failureLine(const QString& transcript);

// The line behind the plain cause that it tells of, in the user's language: "the disk is full: make room (x: No space
// left on device)". The line itself when it tells of none that is known.
[[nodiscard]] QString plainReason(const QString& line);
// The same of all that a tool has said: what its last telling line tells of. Of an unexpected end its last own words
// stand behind. Nothing when no line tells.
[[nodiscard]] QString tailReason(const QString& transcript);
// The line that says how a tool has ended, with its line ends, to be put behind what it has said.
[[nodiscard]] QString endLine(const QString& tool, const ChildEnd& end);
// The reason for causes that lie in the machine and not in a clip: nothing when the text names none.
[[nodiscard]] QString machineTrouble(const QString& transcript);

} // namespace tavrix
