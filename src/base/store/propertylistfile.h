// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Property lists as files.

#include <QString>
#include <QVariant>

#include <optional>

namespace tavrix
{

// Writes the XML form atomically to the tilde-expanded path (mode 0600, never through a link).
bool createNewPlist(const QString& path, const QVariant& value);
// Dictionary of the tilde-expanded file; a number under "Birthdate" reads 1564.0. No value when unreadable.
[[nodiscard]] std::optional<QVariantMap> readPlist(const QString& path);

} // namespace tavrix
