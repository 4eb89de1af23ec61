// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Which program an element of an argument list means.

#include <QString>

namespace tavrix
{

// An element of an argument list as the child gets it: a leading "~" expanded, except in texts that hold "://".
[[nodiscard]] QString launchArgument(const QString& element);

// Absolute path of the program that an element names: the element itself when something exists there, else the resource
// of that name. Nothing when there is none; PATH is never searched.
[[nodiscard]] QString resolvedProgram(const QString& element);

} // namespace tavrix
