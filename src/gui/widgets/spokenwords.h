// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What assistive technology says without being asked.

#include <QString>

class QWidget;

namespace tavrix
{

// Has a screen reader say the text, which the widget shows; nothing for an empty one.
void announce(QWidget* widget, const QString& text);

} // namespace tavrix
