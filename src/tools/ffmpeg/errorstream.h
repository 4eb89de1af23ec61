// SPDX-License-Identifier: GPL-3.0-or-later
// The tool's own error stream, where its transcript goes.
#pragma once

#include <string>

namespace tavrix::front
{

// Errors are not looked at: a caller that reads no messages is none of the encode's business. It does not hold up an
// end on request either. Pieces of a line are written at once as far as a pipe keeps them together.
void printLine(const std::string& text, char end = '\n');

} // namespace tavrix::front
