// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What a person is told of a row's output and of what stands in its place.

#include "judge/verdict.h"

#include <QString>

namespace tavrix
{

// What the question whether to replace an output tells beside its title: what stands there, and what the new one is
// made of.
[[nodiscard]] QString replaceWords(const QString& source, const QString& output);

// Why an output that is not whole has not taken the place of an older one.
[[nodiscard]] QString olderKeptWords(judge::Verdict verdict);

// That the folder of the output is no more; nothing while it stands.
[[nodiscard]] QString folderGone(const QString& output);

} // namespace tavrix
