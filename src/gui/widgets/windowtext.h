// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/batchlist.h"
#include "base/text/format.h"

#include <initializer_list>

class QWidget;

namespace tavrix
{

// Text of a key of the window's own table, filled with the arguments: names and tool texts as shownText shows them.
[[nodiscard]] QString windowText(const char* key, std::initializer_list<FormatArg> arguments = {});
// Short name of an output format; "" when out of range.
[[nodiscard]] QString formatName(int out);
// The same with what the format is good for.
[[nodiscard]] QString formatNameAndUse(int out);
// What has become of a row so far: "Done", "Failed", "Kept"; "" for an unknown mark.
[[nodiscard]] QString stateWords(const BatchRow& row);
// Name of the image for that.
[[nodiscard]] QString stateImage(const BatchRow& row);
// Whole percents of a part between 0 and 1: 100 only for all of it.
[[nodiscard]] int wholePercents(double part);
// "6:10", "1:02:03"; seconds below 0 count as none.
[[nodiscard]] QString durationWords(double seconds);
// A tool tip of plain text that is broken into lines; "" for none.
[[nodiscard]] QString wrappedTip(const QString& text);
// Gives the widget that tip. Assistive technology gets the plain text: it would read the markup of the other aloud.
void setTip(QWidget* widget, const QString& text);

} // namespace tavrix
