// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// An inspection as JSON, for programs.

#include "inspect/inspection.h"

#include <QJsonObject>

namespace tavrix
{

// The keys are documented in docs/inspect.md and stay; what is unknown is left out.
[[nodiscard]] QJsonObject inspectionObject(const Inspection& inspection);

} // namespace tavrix
