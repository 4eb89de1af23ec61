// SPDX-License-Identifier: GPL-3.0-or-later
// The window at several sizes, with lists of several lengths.
#pragma once

#include <QString>

// Saves one picture for each size, length and language in the folder, which ends with "/"; the prefix goes before each
// name. False when one could not be made.
[[nodiscard]] bool savePicturesOfSizes(const QString& folder, const QString& prefix);
