// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPalette>
#include <QString>

// The look in its colour themes: four dark ones, a light one, and one that follows the desktop.
namespace tavrix
{

struct Theme {
    QColor windowTop; // gradient of the window
    QColor windowBottom;
    QColor panel;   // lists, drop area
    QColor field;   // text fields
    QColor border;  // around fields, lists and buttons: what shows where they are
    QColor line;    // what only divides, and what is disabled
    QColor control; // buttons
    QColor text;
    QColor secondaryText;
    QColor accent;     // start button, progress, focus
    QColor accentText; // on the accent
    QColor warning;
    bool light = false;
};

// Of the themes, the light one and the one that is the light or the first one, as the desktop wishes.
inline constexpr int lightTheme = 4;
inline constexpr int desktopTheme = 5;

// Out of range gives the first theme.
[[nodiscard]] const Theme& themeAt(int index);
// Number at the end of a theme image's name ("color2" is 2); 0 for any other name.
[[nodiscard]] int themeIndexOfImage(const QString& imageName);
// What the toolkit's own widgets take, and what goes beyond that.
[[nodiscard]] QPalette themePalette(const Theme& theme);
[[nodiscard]] QString themeStyleSheet(const Theme& theme);
// Contrast of two opaque colours between 1 and 21, as the accessibility guidelines compute it.
[[nodiscard]] double contrastRatio(const QColor& a, const QColor& b);

// Gives the whole application the theme; the one in force.
void applyTheme(int index);
[[nodiscard]] const Theme& currentTheme();
// What the desktop wishes, once it is known and whenever it changes: the theme that follows it goes along.
void setDesktopDark(bool dark);

} // namespace tavrix
