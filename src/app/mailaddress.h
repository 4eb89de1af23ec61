// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Mail to the maker.

#include <QString>

namespace tavrix
{

// "mailto:" address with subject and body; the body is added as it is. The mailbox is the part before the "@", the
// version field is what the window shows, the revision is the tool's.
[[nodiscard]] QString mailAddress(const QString& mailbox, const QString& versionField, int revision,
                                  const QString& body);

} // namespace tavrix
