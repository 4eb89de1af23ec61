// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QMenu;
class QMenuBar;
class QWidget;

// Replaces every marked text ("@@key") of a tree of widgets by its localised text. Other texts are left alone.
namespace tavrix
{

// The window's title, then everything in it.
void FVAutoLocalizeWindow(QWidget* window);
// The view and all its subviews: buttons, labels, fields with their placeholders, table cells and headers, tabs,
// segments, combo boxes, accessible names and tips.
void FVAutoLocalizeView(QWidget* view);
// Titles of the items, then every submenu.
void FVAutoLocalizeMenu(QMenu* menu);
void FVAutoLocalizeMenu(QMenuBar* bar);

// Bits of the dynamic property "autoresizingMask" of views that no layout manages.
inline constexpr int viewMinXMargin = 1; // the left margin stretches: the view is held at its right edge
// Makes room after a view of a superview without layout has become wider by `growth` points. A view that is held at its
// right edge grows to the left and the views left of it in the same row move left; any other keeps its left edge and
// the views right of it move right. Only views with the same dynamic property "tag" move.
void _moveTheOtherViewsLeft(QWidget* view, int growth);

} // namespace tavrix
