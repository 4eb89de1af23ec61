// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Removes an unfinished file even after a kill.

#include "sys/descriptor.h"

#include <string>

namespace tavrix
{

// Starts a small process that waits until the returned descriptor is closed, be it by the death of this process, and
// then removes the file of that name from the folder, if it is still there. It is in a session of its own, so that a
// kill of the process group does not reach it. Nothing is open when it cannot be started.
[[nodiscard]] Descriptor guardFile(int folderFd, const std::string& name);

} // namespace tavrix
