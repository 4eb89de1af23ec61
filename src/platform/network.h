// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// http and https only, limited in time and size; the caller waits while a worker thread fetches.

#include <QString>

namespace tavrix
{

// Opens the address with the desktop's browser.
void openLocation(const QString& address); // does nothing for nothing; a refused address is logged
// True when an ASCII page came back, be it empty.
[[nodiscard]] bool internetConnexionCheck(const QString& address);
// Nothing for nothing, "" when no ASCII page came back. Verbose (not 0) logs begin and end while debugging.
[[nodiscard]] QString webpageSource(const QString& address, unsigned char verbose);

} // namespace tavrix
