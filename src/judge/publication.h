// SPDX-License-Identifier: GPL-3.0-or-later
// Whether an output may take its name: the same rules for what ffmpeg writes and for what `movencoder` writes.
#pragma once

#include "judge/verdict.h"
#include "sys/publication.h"

#include <cstdint>
#include <string>

namespace tavrix::judge
{

// Under this size, in bytes, an output replaces nothing.
inline constexpr std::int64_t leastReplacingBytes = std::int64_t{200} * 1024;

// Of an output that nobody can compare with its source, and why. It is published where nothing stands.
[[nodiscard]] Verdict unjudged(const std::string& reason);

// The verdict with a look at what stands under the output's name (`path`; "" for an output without one): failed unless
// the terms let it be replaced and the output is whole and big enough.
[[nodiscard]] Verdict besideOlder(Verdict verdict, const std::string& path, std::int64_t bytes,
                                  const publication::Terms& terms);

// The verdict on an output that was fit but could not take its name for that reason.
[[nodiscard]] Verdict notPublished(Verdict verdict, const std::string& path, const std::string& reason,
                                   const publication::Terms& terms);

} // namespace tavrix::judge
