// SPDX-License-Identifier: GPL-3.0-or-later
// Sources of both kinds: such as are damaged, and such as only look odd.
#pragma once

#include "judge/verdict.h"

#include <functional>
#include <string>
#include <vector>

namespace tavrix::test
{

struct SourceRow {
    std::string name;
    std::string base;                                      // the clip that it is made from
    std::function<std::string(const std::string&)> change; // of the clip's bytes; null: none
    judge::Outcome encoded = judge::Outcome::Whole;
    judge::Outcome copied = judge::Outcome::Whole;
};

[[nodiscard]] std::vector<SourceRow> damagedSources();
[[nodiscard]] std::vector<SourceRow> harmlessSources();

// The path of the clip of that name, made in the folder at the first call; "" with a failure of the running test when
// it cannot be made.
[[nodiscard]] std::string baseClip(const std::string& folder, const std::string& name);

} // namespace tavrix::test
