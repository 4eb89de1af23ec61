// SPDX-License-Identifier: GPL-3.0-or-later
// The end of an analysis whose answer is known: the transcript, and the output under its name.
#pragma once

#include "tools/ffmpeg/commandline.h"
#include "tools/ffmpeg/files.h"

#include <optional>
#include <string>

namespace tavrix::front
{

struct AnalysisDelivery {
    std::string said; // by ffmpeg, from its banner up to the output's name
    std::string saidBehindName;
    std::string bytes; // of the output; "" where there is none
    int status = 0;
};

// Whether these are files that an answer can be about: a regular clip under its plain name, and an output in the
// making.
[[nodiscard]] bool canDeliver(const RunFiles& files, const std::string& source, bool hasOutput);

// The exit status. Nothing when the output cannot be written or the clip has changed meanwhile: then nothing has been
// printed, and the output is empty.
[[nodiscard]] std::optional<int> deliver(RunFiles& files, const AnalysisDelivery& delivery);

} // namespace tavrix::front
