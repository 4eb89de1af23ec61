// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/sampletablewriter.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tavrix
{

namespace
{

constexpr std::size_t videoEntryFields = 86;

// Equal values in a row, as the time tables store them.
template <typename Value> using Runs = std::vector<std::pair<std::uint32_t, Value>>;

template <typename Value> void addToRuns(Runs<Value>& runs, Value value)
{
    if (!runs.empty() && runs.back().second == value) {
        ++runs.back().first;
    } else {
        runs.emplace_back(1U, value);
    }
}

void writeDecodeTimes(AtomWriter& writer, const SelectedTrack& selected)
{
    Runs<std::uint32_t> runs;
    for (const Sample& sample : selected.table.samples) {
        addToRuns(runs, sample.duration);
    }
    if (selected.table.packed && selected.packedSamples > 0) {
        runs.emplace_back(static_cast<std::uint32_t>(selected.packedSamples), 1U);
    }
    writer.begin(atomType("stts"));
    writer.u32(0);
    writer.u32(static_cast<std::uint32_t>(runs.size()));
    for (const auto& [count, duration] : runs) {
        writer.u32(count);
        writer.u32(duration);
    }
    writer.end();
}

void writeCompositionOffsets(AtomWriter& writer, const SelectedTrack& selected)
{
    if (!selected.table.hasCompositionOffsets) {
        return;
    }
    Runs<std::int32_t> runs;
    bool negative = false;
    for (const Sample& sample : selected.table.samples) {
        addToRuns(runs, sample.compositionOffset);
        negative = negative || sample.compositionOffset < 0;
    }
    writer.begin(atomType("ctts"));
    writer.u32(negative ? 0x1000000U : 0U);
    writer.u32(static_cast<std::uint32_t>(runs.size()));
    for (const auto& [count, offset] : runs) {
        writer.u32(count);
        writer.s32(offset);
    }
    writer.end();
}

void writeSyncSamples(AtomWriter& writer, const SelectedTrack& selected)
{
    if (!selected.table.hasSyncTable) {
        return;
    }
    std::vector<std::uint32_t> numbers;
    for (std::size_t index = 0; index < selected.table.samples.size(); ++index) {
        if (selected.table.samples[index].sync) {
            numbers.push_back(static_cast<std::uint32_t>(index + 1));
        }
    }
    writer.begin(atomType("stss"));
    writer.u32(0);
    writer.u32(static_cast<std::uint32_t>(numbers.size()));
    for (const std::uint32_t number : numbers) {
        writer.u32(number);
    }
    writer.end();
}

void writeSizes(AtomWriter& writer, const SelectedTrack& selected)
{
    const SampleTable& table = selected.table;
    const std::uint64_t count = table.packed ? selected.packedSamples : table.samples.size();
    writer.begin(atomType("stsz"));
    writer.u32(0);
    writer.u32(table.constantSize);
    writer.u32(static_cast<std::uint32_t>(count));
    if (table.constantSize == 0) {
        for (const Sample& sample : table.samples) {
            writer.u32(sample.size);
        }
    }
    writer.end();
}

void writeChunkRuns(AtomWriter& writer, const std::vector<CopyRun>& runs)
{
    struct Entry {
        std::uint32_t firstChunk;
        std::uint32_t samples;
        std::uint32_t description;
    };
    std::vector<Entry> entries;
    for (std::size_t index = 0; index < runs.size(); ++index) {
        const auto samples = static_cast<std::uint32_t>(runs[index].samples);
        if (entries.empty() || entries.back().samples != samples ||
            entries.back().description != runs[index].description) {
            entries.push_back({static_cast<std::uint32_t>(index + 1), samples, runs[index].description});
        }
    }
    writer.begin(atomType("stsc"));
    writer.u32(0);
    writer.u32(static_cast<std::uint32_t>(entries.size()));
    for (const Entry& entry : entries) {
        writer.u32(entry.firstChunk);
        writer.u32(entry.samples);
        writer.u32(entry.description);
    }
    writer.end();
}

void writeChunkOffsets(AtomWriter& writer, const TrackRewrite& track, std::uint64_t dataStart)
{
    writer.begin(track.longOffsets ? atomType("co64") : atomType("stco"));
    writer.u32(0);
    writer.u32(static_cast<std::uint32_t>(track.selected.runs.size()));
    for (const CopyRun& run : track.selected.runs) {
        const std::uint64_t offset = run.newOffset + dataStart;
        if (track.longOffsets) {
            writer.u64(offset);
        } else {
            writer.u32(static_cast<std::uint32_t>(offset));
        }
    }
    writer.end();
}

// Pixel aspect under which the stored picture fills the forced size.
void writePixelAspect(AtomWriter& writer, const PixelSize& shown, std::uint64_t width, std::uint64_t height)
{
    const std::uint64_t horizontal = static_cast<std::uint64_t>(shown.width) * height;
    const std::uint64_t vertical = static_cast<std::uint64_t>(shown.height) * width;
    const std::uint64_t divisor = std::gcd(horizontal, vertical);
    if (divisor == 0 || horizontal == vertical || horizontal / divisor > UINT32_MAX ||
        vertical / divisor > UINT32_MAX) {
        return;
    }
    writer.begin(atomType("pasp"));
    writer.u32(static_cast<std::uint32_t>(horizontal / divisor));
    writer.u32(static_cast<std::uint32_t>(vertical / divisor));
    writer.end();
}

// A resized track says so in its descriptions too: players trust the pixel aspect more than the track's size.
void writeResizedDescription(AtomWriter& writer, const Atom& entry, const PixelSize& shown)
{
    const ByteView bytes = entry.whole;
    if (bytes.size() < videoEntryFields) {
        writer.raw(bytes);
        return;
    }
    const ByteView extensions = bytes.subspan(videoEntryFields);
    const std::vector<Atom> atoms = childAtoms(extensions);
    FieldReader reader(bytes, 32);
    const std::uint32_t width = reader.u16();
    const std::uint32_t height = reader.u16();
    writer.begin(entry.type);
    writer.raw(bytes.subspan(8, videoEntryFields - 8));
    std::size_t end = 0;
    for (const Atom& atom : atoms) {
        if (atom.type != atomType("pasp") && atom.type != atomType("clap")) {
            writer.raw(atom.whole);
        }
        end = atom.offset + atom.whole.size();
    }
    writePixelAspect(writer, shown, width, height);
    writer.raw(extensions.subspan(end));
    writer.end();
}

void writeDescriptions(AtomWriter& writer, const Atom& stsd, const TrackRewrite& track)
{
    constexpr std::size_t head = 8; // version, flags, count
    if (!track.change.size || stsd.payload.size() < head) {
        writer.raw(stsd.whole);
        return;
    }
    writer.begin(atomType("stsd"));
    writer.raw(stsd.payload.first(head));
    for (const Atom& entry : childAtoms(stsd.payload.subspan(head))) {
        writeResizedDescription(writer, entry, *track.change.size);
    }
    writer.end();
}

} // namespace

void writeSampleTable(AtomWriter& writer, ByteView stbl, const TrackRewrite& track, std::uint64_t dataStart)
{
    writer.begin(atomType("stbl"));
    for (const Atom& atom : childAtoms(stbl)) {
        if (atom.type == atomType("stsd")) {
            writeDescriptions(writer, atom, track);
        }
    }
    writeDecodeTimes(writer, track.selected);
    writeCompositionOffsets(writer, track.selected);
    writeSyncSamples(writer, track.selected);
    writeChunkRuns(writer, track.selected.runs);
    writeSizes(writer, track.selected);
    writeChunkOffsets(writer, track, dataStart);
    writer.end();
}

} // namespace tavrix
