// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Names and tool texts as they are shown to a person or written to a log: they are data, and say nothing to a terminal.

#include <QByteArray>
#include <QString>

namespace tavrix
{

// The text with every character that cannot be seen, or that turns the direction of writing, as an escape: "\n", "\t",
// "\r", else "\x1b" or "\u202e". Ordinary texts stay as they are, the joiners of scripts and pictures included. Nothing
// stays nothing.
[[nodiscard]] QString shownText(const QString& text);
// The same for a text of several lines: its line feeds stay.
[[nodiscard]] QString shownLines(const QString& text);

// JSON in which the same characters stand as JSON's own escapes: a reader gets the bytes unchanged, a terminal nothing
// to obey. The bytes are UTF-8.
[[nodiscard]] QByteArray shownJson(const QByteArray& json);

} // namespace tavrix
