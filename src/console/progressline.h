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
    double value = 0; // seconds (or percent) done
    double maximum = 0;
    double elapsed = 0; // wall seconds since the row began
};
// One line of at most `width` columns: row, name, bar, percentage, speed, time left.
[[nodiscard]] QString progressLine(const ProgressState& state, int width);

// "12.3 MB" and the like, in units of 1000.
[[nodiscard]] QString sizeText(qint64 bytes);

} // namespace tavrix
