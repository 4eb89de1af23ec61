// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Why a file cannot be looked at, before anything is started for it.

#include <QString>

namespace tavrix
{

// In words of the table that tells why a source is left out; nothing when the path is a regular file that may be read.
[[nodiscard]] QString fileProblem(const QString& path);

// True for anything under that name, a dangling link too.
[[nodiscard]] bool itemExists(const QString& path);

} // namespace tavrix
