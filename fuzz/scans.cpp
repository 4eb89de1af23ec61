// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a transport stream or an AVI on the disk: the marks of damage lie within the file.
#include "input.h"
#include "media/riffscan.h"
#include "media/transportscan.h"
#include "sys/descriptor.h"
#include "sys/transfer.h"

#include <algorithm>
#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tavrix;
    const Descriptor file(memfd_create("clip", MFD_CLOEXEC));
    fuzz::require(file.isOpen() && bool(writeAll(file.get(), fuzz::textOf(ByteView(data, size)))));
    const std::string path = "/proc/self/fd/" + std::to_string(file.get());
    const auto end = static_cast<std::int64_t>(size);
    if (const auto scan = media::scanTransport(path, {0x100, 0x101, 0x1011, 0x1100})) {
        const auto within = [&](std::int64_t offset) {
            return offset >= 0 && offset <= end;
        };
        fuzz::require(std::ranges::all_of(scan->breaks, within) && std::ranges::all_of(scan->skipped, within));
        fuzz::require(scan->skippedBytes >= 0 && scan->skippedBytes <= end);
        fuzz::require(scan->packets >= 0 && scan->packets * 188 <= end && scan->marked <= scan->packets);
    }
    static_cast<void>(media::scanRiff(path));
    return 0;
}
