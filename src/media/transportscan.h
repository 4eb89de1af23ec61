// SPDX-License-Identifier: GPL-3.0-or-later
// The marks of damage that a transport stream itself carries: counters that break, bytes that are no packets.
#pragma once

#include "sys/result.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace tavrix::media
{

struct TransportScan {
    int packetBytes = 188; // 192 on cameras, 204 with parity
    std::int64_t packets = 0;
    std::vector<std::int64_t>
        breaks; // offsets in the file where packets of a scanned stream are missing or out of order
    std::vector<std::int64_t> skipped; // offsets of stretches that are no packets
    std::int64_t skippedBytes = 0;
    std::int64_t marked = 0; // packets that their sender knew to be damaged
    bool endsInside = false; // the file ends within a packet
};

// Reads the whole file once. `ids` are the streams whose counters matter. The reason of a failure is the system's.
[[nodiscard]] Result<TransportScan> scanTransport(const std::string& path, const std::set<int>& ids);

} // namespace tavrix::media
