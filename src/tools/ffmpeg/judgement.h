// Before an output takes its name it is judged by what is in it: ffmpeg's status says little.
#pragma once

#include "judge/verdict.h"
#include "tools/ffmpeg/arguments.h"
#include "tools/ffmpeg/commandline.h"
#include "tools/ffmpeg/files.h"
#include "tools/ffmpeg/transcript.h"

#include <optional>
#include <string>

namespace tavrix::front
{

// Under this size, in bytes, an output replaces nothing.
inline constexpr std::int64_t leastReplacingBytes = 200 * 1024;

// Nothing for a run that makes something else than one movie or AVI file of one whole clip: there is no saying then
// what it should hold.
[[nodiscard]] std::optional<judge::Verdict> judgement(const CommandLine& line, const RunFiles& files,
                                                      const Findings& findings);

// The verdict where something stands under the output's name: it stays, unless the output is whole and big enough.
[[nodiscard]] judge::Verdict besideOlderOutput(judge::Verdict verdict, std::int64_t bytes);

} // namespace tavrix::front
