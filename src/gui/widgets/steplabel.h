// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Headings of the steps that a person goes through.

#include <QLabel>

namespace tavrix
{

// A heading with the marked text "@@<key>", in the theme's style for steps. The parent owns it.
[[nodiscard]] inline QLabel* stepLabel(const char* markedText, QWidget* parent)
{
    auto* label = new QLabel(QLatin1String(markedText), parent);
    label->setProperty("role", QStringLiteral("step"));
    return label;
}

} // namespace tavrix
