// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

// The vector images of the resources, by name.
namespace tavrix
{

// Path of <resources>/images/<name>.svg; nothing when there is none.
[[nodiscard]] QString imagePath(const QString& name);
// Icon that is drawn anew for every size and scale; null for an unknown name or nothing.
[[nodiscard]] QIcon imageNamed(const QString& name);
// The image fitted into a square of `side` points at that scale, drawn once and kept.
[[nodiscard]] QPixmap imagePixmap(const QString& name, int side, qreal scale);

} // namespace tavrix
