// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

// The pages of the help: vector drawings with marked texts. The help movie is made of them when the program is built.
namespace tavrix
{

// Number of slides in the resource folder.
[[nodiscard]] int helpSlideCount();
// The drawing of a slide (1 is the first) with its texts in the language in force; empty when there is none.
[[nodiscard]] QByteArray helpSlide(int number);
// The drawing with every "@@key" of its text replaced and escaped; pure but for the string tables.
[[nodiscard]] QByteArray localisedSlide(const QString& drawing);

} // namespace tavrix
