// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/transportscan.h"

#include "sys/transfer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <map>
#include <optional>
#include <span>

namespace tavrix::media
{

namespace
{

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t sync = 0x47;
constexpr std::size_t plainBytes = 188;
constexpr std::size_t blockBytes = std::size_t(1) << 20;
constexpr int tableId = 0; // the list of programs, with which every recording begins
constexpr int fillerId = 0x1fff;

struct Packet {
    int id = 0;
    int counter = 0;
    bool marked = false;
    bool startsUnit = false;
    bool hasPayload = false;
    bool steps = false;               // the sender says that the counter starts anew
    std::optional<std::int64_t> time; // of the unit that starts, 90000 a second
};

std::optional<std::int64_t> timeOf(Bytes payload)
{
    constexpr std::size_t timeAt = 9;
    const bool unit = payload.size() >= timeAt + 5 && payload[0] == 0 && payload[1] == 0 && payload[2] == 1;
    if (!unit || (payload[7] & 0x80) == 0) {
        return std::nullopt;
    }
    const Bytes t = payload.subspan(timeAt, 5);
    return (std::int64_t(t[0] & 0x0e) << 29) | (std::int64_t(t[1]) << 22) | (std::int64_t(t[2] & 0xfe) << 14) |
           (std::int64_t(t[3]) << 7) | std::int64_t(t[4] >> 1);
}

Packet parsePacket(Bytes bytes)
{
    Packet packet;
    packet.marked = (bytes[1] & 0x80) != 0;
    packet.startsUnit = (bytes[1] & 0x40) != 0;
    packet.id = ((bytes[1] & 0x1f) << 8) | bytes[2];
    packet.counter = bytes[3] & 0x0f;
    packet.hasPayload = (bytes[3] & 0x10) != 0;
    std::size_t payload = 4;
    if ((bytes[3] & 0x20) != 0) {
        packet.steps = bytes[4] > 0 && (bytes[5] & 0x80) != 0;
        payload += 1U + bytes[4];
    }
    if (packet.startsUnit && packet.hasPayload && payload < bytes.size()) {
        packet.time = timeOf(bytes.subspan(payload));
    }
    return packet;
}

// Follows the counters of a stream. Where one recording was joined to another they begin anew, and nothing is missing:
// all of them at once, behind a new list of programs, or with a clock that goes back.
class Counters
{
public:
    explicit Counters(const std::set<int>& ids) : ids_(ids) {}

    // Whether packets are missing before this one.
    bool isBroken(const Packet& packet)
    {
        if (packet.id == fillerId || packet.marked) {
            return false;
        }
        Counter& counter = counters_[packet.id];
        const bool fits = follows(counter, packet);
        if (packet.id == tableId && packet.startsUnit) {
            beginTables(fits);
        }
        const bool joined = !fits && isJoin(counter, packet);
        counter.repeated = counter.seen && packet.hasPayload && packet.counter == counter.last;
        counter.last = packet.counter;
        counter.seen = true;
        counter.sinceTables = true;
        if (packet.time) {
            counter.time = packet.time;
        }
        return !fits && !joined && ids_.contains(packet.id);
    }

private:
    struct Counter {
        bool seen = false;
        bool repeated = false;
        bool sinceTables = false; // has had a packet since the last list of programs
        int last = 0;
        std::optional<std::int64_t> time;
    };

    // A packet may be sent twice.
    static bool follows(const Counter& counter, const Packet& packet)
    {
        if (!counter.seen || packet.steps) {
            return true;
        }
        const int next = packet.hasPayload ? (counter.last + 1) & 0x0f : counter.last;
        return packet.counter == next || (packet.counter == counter.last && !counter.repeated);
    }

    void beginTables(bool fits)
    {
        newTables_ = !fits;
        for (auto& [id, counter] : counters_) {
            counter.sinceTables = false;
        }
    }

    [[nodiscard]] bool isJoin(const Counter& counter, const Packet& packet) const
    {
        constexpr std::int64_t step = 9000; // a tenth of a second: what stands between is the order of the pictures
        if (!packet.startsUnit) {
            return false;
        }
        const bool goesBack = packet.time && counter.time && *packet.time < *counter.time - step;
        return goesBack || (newTables_ && !counter.sinceTables);
    }

    const std::set<int>& ids_;
    std::map<int, Counter> counters_;
    bool newTables_ = false; // the last list of programs did not continue the one before
};

class Scanner
{
public:
    explicit Scanner(const std::set<int>& ids) : counters_(ids) {}

    // Takes what it can of the bytes, which stand at `offset` in the file, and answers how much that is. The rest is
    // wanted again, with more behind it unless this is the end.
    std::size_t take(Bytes bytes, std::int64_t offset, bool end)
    {
        std::size_t at = 0;
        while (at < bytes.size()) {
            const Bytes rest = bytes.subspan(at);
            if (stride_ == 0 || !isPacket(rest, end)) {
                const std::size_t hole = findPackets(rest, end);
                if (hole == wantsMore) {
                    return at;
                }
                skip(offset + std::int64_t(at), hole, end && hole == rest.size());
                at += hole;
                continue;
            }
            if (rest.size() < front() + plainBytes) {
                return at;
            }
            const Packet packet = parsePacket(rest.subspan(front(), plainBytes));
            ++scan_.packets;
            scan_.marked += packet.marked ? 1 : 0;
            if (counters_.isBroken(packet)) {
                scan_.breaks.push_back(offset + std::int64_t(at));
            }
            at += std::min(stride_, rest.size());
        }
        return at;
    }

    [[nodiscard]] const TransportScan& result()
    {
        scan_.packetBytes = int(stride_);
        return scan_;
    }

private:
    static constexpr std::size_t wantsMore = ~std::size_t(0);
    static constexpr std::size_t inARow = 5;

    // Cameras put four bytes before each packet.
    [[nodiscard]] std::size_t front() const { return stride_ == 192 ? 4 : 0; }

    [[nodiscard]] bool isPacket(Bytes rest, bool end) const
    {
        if (rest.size() < front() + plainBytes) {
            return !end;
        }
        return rest[front()] == sync;
    }

    // How far it is to the next run of packets; all of the bytes when there is none to the end.
    std::size_t findPackets(Bytes rest, bool end)
    {
        const std::array<std::size_t, 3> strides = {188, 192, 204};
        const std::size_t needed = 204 * inARow;
        const std::size_t last = end ? rest.size() : rest.size() - std::min(rest.size(), needed);
        for (std::size_t at = 0; at < last; ++at) {
            if (rest[at] != sync) {
                continue;
            }
            for (const std::size_t stride : strides) {
                const bool usable = stride_ == 0 || stride_ == stride;
                const std::size_t before = stride == 192 ? 4 : 0;
                if (usable && at >= before && isRun(rest.subspan(at), stride, end)) {
                    stride_ = stride;
                    return at - before;
                }
            }
        }
        return end ? rest.size() : (last == 0 ? wantsMore : last);
    }

    static bool isRun(Bytes rest, std::size_t stride, bool end)
    {
        for (std::size_t number = 0; number < inARow; ++number) {
            const std::size_t at = number * stride;
            if (at + plainBytes > rest.size()) {
                return end && number > 0;
            }
            if (rest[at] != sync) {
                return false;
            }
        }
        return true;
    }

    void skip(std::int64_t offset, std::size_t bytes, bool atEnd)
    {
        if (bytes == 0) {
            return;
        }
        if (atEnd && bytes < stride_) {
            scan_.endsInside = true;
            return;
        }
        if (!(skippingTo_ && *skippingTo_ == offset)) {
            scan_.skipped.push_back(offset);
        }
        skippingTo_ = offset + std::int64_t(bytes);
        scan_.skippedBytes += std::int64_t(bytes);
    }

    Counters counters_;
    TransportScan scan_;
    std::size_t stride_ = 0;
    std::optional<std::int64_t> skippingTo_;
};

} // namespace

Result<TransportScan> scanTransport(const std::string& path, const std::set<int>& ids)
{
    const Descriptor file = openFile(path.c_str(), O_RDONLY);
    if (!file.isOpen()) {
        return Failure{errorText(errno)};
    }
    Scanner scanner(ids);
    std::vector<std::uint8_t> buffer(blockBytes);
    std::size_t held = 0;
    std::int64_t offset = 0;
    int error = 0;
    for (bool end = false; !end;) {
        const ssize_t got = readSome(file.get(), buffer.data() + held, buffer.size() - held);
        error = got < 0 ? errno : 0;
        end = got <= 0;
        held += got > 0 ? std::size_t(got) : 0;
        const std::size_t taken = scanner.take(Bytes(buffer).first(held), offset, end);
        held -= taken;
        offset += std::int64_t(taken);
        std::memmove(buffer.data(), buffer.data() + taken, held);
    }
    if (error != 0) {
        return Failure{errorText(error)};
    }
    return scanner.result();
}

} // namespace tavrix::media
