// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The standard streams of a program for the terminal.

#include <cstdio>

namespace tavrix
{

// Opens the null device in the place of every standard stream that is closed: a file opened there would take what is
// meant for that stream. False when that fails.
[[nodiscard]] bool fillStandardStreams();

// The stream's target under a descriptor of its own, to be closed by the caller; null, with errno, when there is none.
[[nodiscard]] std::FILE* keptStream(std::FILE* stream);

// From now on what is written to the stream is lost. False when that fails.
[[nodiscard]] bool dropStream(std::FILE* stream);

} // namespace tavrix
