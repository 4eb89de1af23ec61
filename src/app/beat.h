// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The program's own sense of time, for what must not take for ever.

#include <QElapsedTimer>
#include <QTimer>

#include <functional>

namespace tavrix
{

// Tells once a second how many milliseconds have passed since it told last. A program that was stopped, or a machine
// that slept, has missed beats: of such a time at most two beats are told.
class Beat
{
public:
    explicit Beat(std::function<void(qint64)> pass);

private:
    std::function<void(qint64)> pass_;
    QTimer timer_;
    QElapsedTimer since_;
};

} // namespace tavrix
