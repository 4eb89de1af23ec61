// SPDX-License-Identifier: GPL-3.0-or-later
// Hands frames from the player's thread to the window's. Frames that come while one waits take its place, so that a
// slow window costs pictures and no memory.
#pragma once

#include <QVideoFrame>

#include <mutex>
#include <utility>

namespace tavrix
{

class NewestFrame
{
public:
    // True when none was waiting: the other side has to be told.
    [[nodiscard]] bool put(const QVideoFrame& frame)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        frame_ = frame;
        return !std::exchange(waits_, true);
    }
    // An invalid frame when none waits.
    [[nodiscard]] QVideoFrame take()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        waits_ = false;
        return std::exchange(frame_, QVideoFrame());
    }

private:
    std::mutex mutex_;
    QVideoFrame frame_;
    bool waits_ = false;
};

} // namespace tavrix
