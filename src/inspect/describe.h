// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// An inspection in plain words of the user's language.

#include "inspect/inspection.h"

#include <QList>
#include <QString>

namespace tavrix
{

// One line: what it is about and what is known. A heading has no value; the lines under it are deeper.
struct DescribedLine {
    int depth = 0;
    QString label;
    QString value; // nothing for a heading
};

// All that is known, in the order in which a person reads it. Names and tool texts are shown with their hidden
// characters as escapes.
[[nodiscard]] QList<DescribedLine> describedLines(const Inspection& inspection);

// The lines as one text of two columns, each line with its end.
[[nodiscard]] QString describedText(const QList<DescribedLine>& lines);

} // namespace tavrix
