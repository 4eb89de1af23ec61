#pragma once

// Clips that an earlier run has queued and not read, because it was killed.

#include <QStringList>

namespace tavrix
{

class AnalysisMachine;
class Session;

// Asks whether to go on with them, where the face can ask, and takes them off the machine's queue. Those to go on with;
// empty when there are none, or they are to be forgotten, or the program ends meanwhile (then they stay queued).
[[nodiscard]] QStringList leftOverToGoOnWith(Session& session, AnalysisMachine& analysis);

} // namespace tavrix
