#pragma once

#include "app/batchtally.h"
#include "base/format.h"

#include <initializer_list>

namespace tavrix
{

// Text of a key of the window's own table, filled with the arguments: names and tool texts as shownText shows them.
[[nodiscard]] QString windowText(const char* key, std::initializer_list<FormatArg> arguments = {});
// Short name of an output format; "" when out of range.
[[nodiscard]] QString formatName(int out);
// "Converted: 3. Failed: 1."
[[nodiscard]] QString tallyWords(const BatchTally& tally);

} // namespace tavrix
