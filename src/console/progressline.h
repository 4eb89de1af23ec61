// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Texts of the terminal's progress display; pure.
namespace tavrix
{

// Columns that a text takes on a terminal: wide characters count two, combining and control ones none.
[[nodiscard]] int displayWidth(const QString& text);
// The text as shownText shows it, cut in its middle to at most `width` columns.
[[nodiscard]] QString elided(const QString& text, int width);
// "m:ss" or "h:mm:ss"; "-:--" for a negative or unknown time.
[[nodiscard]] QString clockText(double seconds);

struct ProgressState {
    QString name;
    int number = 0; // 1-based row
    int total = 0;
    int pass = 1; // from 1
    int passes = 1;
    double fraction = 0; // of the pass, 0 to 1
    double speed = 0;    // seconds of the clip in a second; 0: not known yet
    double left = -1;    // seconds of work; negative: not known yet
};
// One line of at most `width` columns: row, name, bar, step where there are several, percentage, speed, time left.
[[nodiscard]] QString progressLine(const ProgressState& state, int width);

} // namespace tavrix
