// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Clips that an earlier run has had in its list or its queue, because it was killed.

#include <QStringList>

namespace tavrix
{

class AnalysisMachine;
class BatchMemory;
class Session;

// Asks whether to bring them back, where the face can ask, and names those that are no longer there. Those to go on
// with; empty when there are none, or they are to be forgotten, or the program ends meanwhile (then they stay where
// they are).
[[nodiscard]] QStringList leftOverToGoOnWith(Session& session, AnalysisMachine& analysis, BatchMemory& memory);

} // namespace tavrix
