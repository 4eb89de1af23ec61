// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Copying files and folder trees: links as links, dates and modes kept, nothing existing ever overwritten.

#include "sys/result.h"

#include <QByteArray>
#include <QString>

namespace tavrix
{

// The reason names the item that could not be read or written; what had been made is removed again then. `durable`
// returns only after the data has reached the disk.
[[nodiscard]] Result<void, QString> copyTree(const QByteArray& source, const QByteArray& destination, bool durable);

} // namespace tavrix
