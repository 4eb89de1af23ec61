// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What stands between Qt's texts and bytes and the system calls on files.

#include "sys/descriptor.h"
#include "sys/fileidentity.h"
#include "sys/transfer.h"

#include <QByteArray>
#include <QString>

#include <string_view>

namespace tavrix
{

// Bytes of the tilde-expanded path; empty for nothing and for a path that no system call can name (a NUL inside).
[[nodiscard]] QByteArray systemPath(const QString& path);
// The same without trailing "/", so that a link is met and not its target.
[[nodiscard]] QByteArray systemItemPath(const QString& path);

// The bytes themselves, with every NUL among them.
[[nodiscard]] std::string_view viewOf(const QByteArray& bytes);

// Absolute path without links; empty when it does not exist.
[[nodiscard]] QByteArray resolvedPath(const QByteArray& path);
// Text for the current errno or the given one.
[[nodiscard]] QString systemErrorText();
[[nodiscard]] QString systemErrorText(int error);

} // namespace tavrix
