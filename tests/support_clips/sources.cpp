// SPDX-License-Identifier: GPL-3.0-or-later
#include "support_clips/sources.h"

#include "support_clips/damage.h"

#include <array>

namespace tavrix::test
{

namespace
{

using judge::Outcome;

constexpr Outcome whole = Outcome::Whole;
constexpr Outcome incomplete = Outcome::Incomplete;
constexpr std::size_t plain = 188;
constexpr std::size_t camera = 192; // bytes of a packet

using Bytes = std::string;

std::vector<SourceRow> cutSources()
{
    std::vector<SourceRow> rows;
    for (const int percent : {12, 20, 27, 34, 41, 48, 55, 62, 69, 76, 83, 90, 97}) {
        const auto cut = [percent](const Bytes& bytes) {
            return cutAt(bytes, percent / 100.0);
        };
        const std::string at = " cut at " + std::to_string(percent) + " %";
        rows.push_back({"mov" + at, "mov", cut, incomplete, incomplete});
    }
    for (const int percent : {30, 60, 90}) {
        const auto cut = [percent](const Bytes& bytes) {
            return cutAt(bytes, percent / 100.0);
        };
        const std::string at = " cut at " + std::to_string(percent) + " %";
        rows.push_back({"jpeg mov" + at, "jpeg mov", cut, incomplete, incomplete});
        rows.push_back({"mp4" + at, "mp4", cut, incomplete, incomplete});
        rows.push_back({"fragments" + at, "fragments", cut, incomplete, incomplete});
        rows.push_back({"avi" + at, "avi", cut, incomplete, incomplete});
    }
    // Within a packet: sizes that no packet divides.
    for (const double place : {0.3117, 0.5, 0.8331}) {
        rows.push_back(
            {"mts cut within a packet at " + std::to_string(place), "mts",
             [place](const Bytes& bytes) { return cutBehindPacket(bytes, place, plain) + bytes.substr(0, 50); },
             incomplete, incomplete});
    }
    return rows;
}

std::vector<SourceRow> holedSources()
{
    std::vector<SourceRow> rows;
    for (const char* base : {"mts", "m2ts", "mov", "mov, index last", "mp4", "jpeg mov", "avi"}) {
        const std::string name = base;
        rows.push_back({name + ", a fifth zeroed", name, [](const Bytes& b) { return zeroed(b, 0.4, 0.6); }, incomplete,
                        incomplete});
        rows.push_back({name + ", a fifth noise", name, [](const Bytes& b) { return noisy(b, 0.4, 0.6); }, incomplete,
                        incomplete});
    }
    for (const char* base : {"mts", "mov", "jpeg mov", "avi"}) {
        const std::string name = base;
        rows.push_back({name + ", second half zeroed", name, [](const Bytes& b) { return zeroed(b, 0.5, 0.98); },
                        incomplete, incomplete});
        rows.push_back({name + ", second half noise", name, [](const Bytes& b) { return noisy(b, 0.5, 0.98); },
                        incomplete, incomplete});
    }
    rows.push_back({"avi, garbage after 25 pictures", "avi",
                    [](const Bytes& b) { return withGarbageChunks(b, "00dc", 25); }, incomplete, incomplete});
    return rows;
}

std::vector<SourceRow> lossySources()
{
    std::vector<SourceRow> rows;
    for (const auto& [base, size] : {std::pair<std::string, std::size_t>{"mts", plain}, {"m2ts", camera}}) {
        const std::size_t packet = size;
        for (const double place : {0.2, 0.5, 0.8}) {
            rows.push_back({base + ", one packet lost at " + std::to_string(place), base,
                            [=](const Bytes& b) { return withoutPackets(b, place, 1, packet); }, incomplete,
                            incomplete});
        }
        rows.push_back({base + ", 40 packets lost", base,
                        [=](const Bytes& b) { return withoutPackets(b, 0.4, 40, packet); }, incomplete, incomplete});
        rows.push_back({base + ", packets swapped", base,
                        [=](const Bytes& b) { return withSwappedPackets(b, 0.6, packet); }, incomplete, incomplete});
        rows.push_back({base + ", packets marked", base,
                        [=](const Bytes& b) { return withMarkedPackets(b, 0.6, 2, packet); }, incomplete, incomplete});
    }
    return rows;
}

std::vector<SourceRow> asTheyAre()
{
    std::vector<SourceRow> rows;
    for (const char* base : {"mts",
                             "m2ts",
                             "mov",
                             "mov, index last",
                             "mp4",
                             "fragments",
                             "jpeg mov",
                             "avi",
                             "h264 avi",
                             "mpeg4 avi",
                             "15 a second",
                             "programme",
                             "hevc",
                             "silent",
                             "surround",
                             "mono",
                             "50p",
                             "59.94p",
                             "late sound",
                             "late picture",
                             "short sound",
                             "short picture",
                             "one group",
                             "open groups",
                             "uneven mov",
                             "uneven mp4",
                             "cut in",
                             "cut in jpeg",
                             "late picture mov",
                             "late sound mov",
                             "short sound mov",
                             "short picture mp4",
                             "key pictures only",
                             "time code",
                             "two sounds"}) {
        rows.push_back({base, base, {}, whole, whole});
    }
    return rows;
}

} // namespace

std::vector<SourceRow> damagedSources()
{
    std::vector<SourceRow> rows = cutSources();
    for (auto* const make : {&holedSources, &lossySources}) {
        const auto more = make();
        rows.insert(rows.end(), more.begin(), more.end());
    }
    return rows;
}

std::vector<SourceRow> harmlessSources()
{
    std::vector<SourceRow> rows = asTheyAre();
    const auto add = [&rows](const char* name, const char* base, std::function<Bytes(const Bytes&)> change) {
        rows.push_back({name, base, std::move(change), whole, whole});
    };
    add("mts, first group cut", "mts", [](const Bytes& b) { return b.substr(b.size() / 8 / plain * plain); });
    add("m2ts, first group cut", "m2ts", [](const Bytes& b) { return b.substr(b.size() / 5 / camera * camera); });
    add("open groups, first cut", "open groups", [](const Bytes& b) { return b.substr(b.size() / 8 / plain * plain); });
    add("mts, last packet missing", "mts", [](const Bytes& b) { return b.substr(0, b.size() - plain); });
    add("mts, two takes", "mts", [](const Bytes& b) { return b + b; });
    add("mov, duration field twice as long", "mov",
        [](const Bytes& b) { return withNumber(b, "mvhd", 16, 6000, true); });
    add("mov, media duration field wrong", "mov",
        [](const Bytes& b) { return withNumber(b, "mdhd", 16, 12800 * 9, true); });
    add("mov, track duration field wrong", "mov", [](const Bytes& b) { return withNumber(b, "tkhd", 20, 9000, true); });
    add("avi, frame number twice as high", "avi", [](const Bytes& b) { return withNumber(b, "vids", 28, 150, false); });
    add("avi, total frame number wrong", "avi", [](const Bytes& b) { return withNumber(b, "avih", 20, 999, false); });
    add("avi, file size field too large", "avi",
        [](const Bytes& b) { return withNumber(b, "RIFF", 0, 90000000, false); });
    add("mov, zeros behind it", "mov", [](const Bytes& b) { return b + Bytes(5000, '\0'); });
    add("avi, zeros behind it", "avi", [](const Bytes& b) { return b + Bytes(5000, '\0'); });
    return rows;
}

} // namespace tavrix::test
