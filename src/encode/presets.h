// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <optional>

namespace tavrix
{

// Options of a preset file: names with a leading dash and values, alternating. No value when an argument is nothing or
// the folder or file does not exist.
[[nodiscard]] std::optional<QStringList> ffpresetParserFunction(const QString& folder, const QString& file);
// The pure half: options of a preset file's text.
[[nodiscard]] QStringList presetOptions(const QString& text);

} // namespace tavrix
