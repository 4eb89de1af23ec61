// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace tavrix
{

// Keeps a second copy of the program out: a lock file that the kernel frees with the process, however it ends.
class InstanceLock
{
public:
    InstanceLock() = default;
    ~InstanceLock();
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    enum class Result { Taken, HeldByAnother, Unavailable };
    // Takes the lock in that folder (made when missing). Unavailable: the file cannot be made or opened.
    Result take(const QString& folder);

private:
    int descriptor_ = -1;
};

} // namespace tavrix
