// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/standardstreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace tavrix
{

bool fillStandardStreams()
{
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    return descriptor >= 0 && ::close(descriptor) == 0;
}

std::FILE* keptStream(std::FILE* stream)
{
    const int descriptor = ::fcntl(::fileno(stream), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    return descriptor < 0 ? nullptr : ::fdopen(descriptor, "w");
}

bool dropStream(std::FILE* stream)
{
    return std::freopen("/dev/null", "a", stream) != nullptr;
}

} // namespace tavrix
