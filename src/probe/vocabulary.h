// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Fixed lists of the formats that the converter knows, built on each call.

#include <QList>
#include <QString>
#include <QStringList>

namespace tavrix
{

[[nodiscard]] QList<float> standardsFpsArray();
[[nodiscard]] QStringList elementariesStreamsArray();
[[nodiscard]] QStringList multiplexedStreamsArray();
// "A" in either case gives the list that begins with "dv", any other text the one that begins with "ffts".
[[nodiscard]] QStringList qtExtensionsHandledArray(const QString& kind);

} // namespace tavrix
