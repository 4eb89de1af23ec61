// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Recorders by the folders that they make.

#include "inspect/inspection.h"

namespace tavrix
{

// By the path alone: a clip in a STREAM folder inside BDMV, or a file directly inside a ".eyetv" bundle, whose
// description is then read for its length.
[[nodiscard]] RecorderFacts recorderFacts(const QString& path);

} // namespace tavrix
