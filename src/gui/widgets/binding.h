// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/controls.h"

#include <QObject>

#include <functional>

class QAbstractItemModel;
class QLabel;
class QLineEdit;
class QProgressBar;
class QWidget;

// Ties widgets to the controls of the window model: what the model says is shown, what the user changes is written
// back.
namespace tavrix
{

class SegmentedView;
class WheelView;

// Calls the function now and whenever the control changes, as long as the context lives.
template <class Function> void follow(Control& control, QObject* context, Function function)
{
    QObject::connect(&control, &Control::changed, context, function);
    function();
}

// Calls the function soon after rows have come, gone, moved or changed: once, however many there were.
void followRows(const QAbstractItemModel& rows, QObject* context, std::function<void()> function);

// Object name, visibility and enabled state. The place of a hidden widget stays reserved. A control that is hidden is
// shown all the same while `shownToo` says so.
void bindControl(QWidget* widget, Control& control, const std::function<bool()>& shownToo = {});
// An empty text of the model leaves the label's own wording in place when `keepOwnText`.
void bindText(QLabel* label, TextField& field, bool keepOwnText = false);
void bindText(QLineEdit* edit, TextField& field);
void bindProgress(QProgressBar* bar, ProgressBar& control);
void bindWheel(WheelView* wheel, SpinningIndicator& control);
// Images and selection follow the model; a press selects the segment in the model, then runs the action.
void bindSegments(SegmentedView* view, SegmentedControl& control, std::function<void()> action,
                  const std::function<bool()>& shownToo = {});

} // namespace tavrix
