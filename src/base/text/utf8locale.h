// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tavrix
{

// Takes "C.UTF-8" for the characters where the environment names no UTF-8 locale; children inherit it. Before the
// application object is made: Qt would do the same, and from 6.8 on write four lines about it at every start.
void useUtf8Locale();

} // namespace tavrix
