// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/beat.h"

#include <utility>

namespace tavrix
{

Beat::Beat(std::function<void(qint64)> pass) : pass_(std::move(pass))
{
    constexpr int beat = 1000;
    QObject::connect(&timer_, &QTimer::timeout, &timer_,
                     [this] { pass_(qMin<qint64>(since_.restart(), qint64(2) * beat)); });
    since_.start();
    timer_.start(beat);
}

} // namespace tavrix
