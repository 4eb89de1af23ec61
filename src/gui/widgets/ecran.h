// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QRect>
#include <QString>

#include <optional>

class QWidget;

namespace tavrix
{

// The frame of a window that grows by delta + 50 points toward a side ("l" left, "b" bottom, "r" right, "t" top, in
// either case) and then lies wholly on the screen that holds most of it. No value when nothing is to be done: no side,
// an unknown side, delta 0, or a window that lies on no screen. Coordinates grow downward.
[[nodiscard]] std::optional<QRect> ecranFrame(const QRect& frame, const QString& side, float delta,
                                              const QList<QRect>& screens);

// Grows the window itself, on the screens' usable areas.
void ecran(QWidget* window, const QString& side, float delta);

} // namespace tavrix
