#pragma once

#include <QString>

namespace tavrix
{

// The line of a tool's transcript that best tells why it failed: the last one that is neither progress nor mapping nor
// a description of streams. Nothing when there is none.
[[nodiscard]] QString failureLine(const QString& transcript);

} // namespace tavrix
