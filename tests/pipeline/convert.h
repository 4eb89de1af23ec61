// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// One clip into one format by the tools alone, as a row of a batch runs them: without the batch's rules about size.
namespace tavrix::test
{

struct Converted {
    bool ok = false;
    QString output;
    QString transcript; // of all tools
};

// Formats 0 to 5. `aspect` decides on the frame of formats 0 and 1, as the analysis would.
[[nodiscard]] Converted convertClip(const QString& source, const QString& folder, int format, float aspect = 1.7778F);

} // namespace tavrix::test
