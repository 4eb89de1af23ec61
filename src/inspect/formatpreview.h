// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the formats would make of a clip, read from the very arguments that would make it.

#include "inspect/inspection.h"

#include <QStringList>

namespace tavrix
{

// One entry for each format; none when the program would not take the clip.
[[nodiscard]] QList<FormatPreview> formatPreviews(const Inspection& inspection, const QString& file);

// Rate and size that an encoder's arguments ask for; 0 where they ask for none.
struct AskedPicture {
    int width = 0;
    int height = 0;
    double rate = 0;
};
[[nodiscard]] AskedPicture askedPicture(const QStringList& arguments);

// Size of the format in the settings file of the second pass; 0 when it cannot be read.
[[nodiscard]] AskedPicture secondPassPicture(const QString& settingsFile, int out);

} // namespace tavrix
