// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How much room a clip's output takes in a format.

#include "probe/mediainforecord.h"

namespace tavrix
{

// About how large the output becomes, in bytes; -1 when the record does not tell enough.
[[nodiscard]] qint64 outputForecast(const MediaInfoRecord& infos, int out);

// The least that the volume must have free for the row, in bytes: formats 4 and 5 need their first pass beside the
// output, and may come out half as large as the forecast. 0 when the record does not tell enough.
[[nodiscard]] qint64 leastRoom(const MediaInfoRecord& infos, int out);

} // namespace tavrix
