// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/instancelock.h"

#include "base/files/fileops.h"
#include "base/text/paths.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace tavrix
{

InstanceLock::~InstanceLock()
{
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

InstanceLock::Result InstanceLock::take(const QString& folder)
{
    mkdirCocoa(folder);
    const QByteArray path = nativePath(folder + QStringLiteral("/instance.lock"));
    const int descriptor = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0) {
        return Result::Unavailable;
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        const bool held = errno == EWOULDBLOCK;
        ::close(descriptor);
        return held ? Result::HeldByAnother : Result::Unavailable;
    }
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
    descriptor_ = descriptor;
    return Result::Taken;
}

} // namespace tavrix
