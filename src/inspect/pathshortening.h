// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Log lines without the folders and places that a person may not want to show.

#include <QString>

namespace tavrix
{

// Every path in the text cut to its last part: "/home/ann/My clips/a.mov" becomes ".../a.mov". A path ends at the quote
// that it began behind, at a comma, or where another path begins; where that cannot be told, more goes rather than
// less. Addresses of the web and fractions stay. Where a clip was filmed, which the tool prints of phones' clips, goes.
[[nodiscard]] QString shortenedPaths(const QString& logLine);

} // namespace tavrix
