// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Questions about the movie of a path. Each opens the path as the current movie; a failure leaves none.

#include <QList>
#include <QString>

#include <optional>

namespace tavrix
{

// Width and height, truncated; no value when the file cannot be opened.
[[nodiscard]] std::optional<QList<int>> movieSizeNaturalDisplayed(const QString& path);
// The same of the size that the movie is shown at now.
[[nodiscard]] std::optional<QList<int>> movieSizeCurrentDisplayed(const QString& path);
// Seconds; 0 when unreadable. A leading tilde is expanded.
[[nodiscard]] float dureeMovie(const QString& path);
// Logs every attribute of the movie; false when it cannot be opened.
bool movieInfosLog(const QString& path);
// True when the movie cannot be saved (or not be read). Found out by saving it into the temporary folder.
[[nodiscard]] bool nsavQtMovie(const QString& path);

} // namespace tavrix
