// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Files and folders that nobody else may read.

#include <QString>

#include <sys/types.h>

namespace tavrix
{

// Gives the file or folder these permissions; a failure is told in the log, since it leaves the file readable.
void keepPrivate(const QString& path, mode_t mode);

} // namespace tavrix
