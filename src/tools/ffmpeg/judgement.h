// SPDX-License-Identifier: GPL-3.0-or-later
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

// Nothing for a run that makes something else than one movie or AVI file of one whole clip: there is no saying then
// what it should hold.
[[nodiscard]] std::optional<judge::Verdict> judgement(const CommandLine& line, const RunFiles& files,
                                                      const Findings& findings);

} // namespace tavrix::front
