// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/sampletables.h"

#include <algorithm>
#include <array>

namespace tavrix
{

namespace
{

// Eighteen hours at 60 frames a second.
constexpr std::uint64_t mostSamples = 4000000;

struct TableHead {
    FieldReader reader;
    std::uint32_t count;
};

// Positioned behind the entry count. An absent table has no entries.
TableHead tableHead(ByteView payload)
{
    FieldReader reader(payload);
    reader.skip(4);
    const std::uint32_t count = reader.u32();
    return {reader, reader.ok() ? count : 0};
}

struct ChunkRun {
    std::uint32_t firstChunk = 0;
    std::uint32_t samples = 0;
    std::uint32_t description = 1;
};

struct ChunkPlan {
    std::vector<std::uint64_t> offsets;
    std::vector<ChunkRun> runs;
};

bool readChunks(ByteView stbl, ChunkPlan& plan)
{
    const bool isLong = childPayload(stbl, atomType("stco")).empty();
    TableHead offsets = tableHead(childPayload(stbl, isLong ? atomType("co64") : atomType("stco")));
    for (std::uint32_t index = 0; index < offsets.count && offsets.reader.ok(); ++index) {
        plan.offsets.push_back(isLong ? offsets.reader.u64() : offsets.reader.u32());
    }
    TableHead runs = tableHead(childPayload(stbl, atomType("stsc")));
    for (std::uint32_t index = 0; index < runs.count && runs.reader.ok(); ++index) {
        ChunkRun run;
        run.firstChunk = runs.reader.u32();
        run.samples = runs.reader.u32();
        run.description = runs.reader.u32();
        const bool inOrder = plan.runs.empty() || run.firstChunk > plan.runs.back().firstChunk;
        if (run.firstChunk == 0 || run.samples == 0 || !inOrder) {
            return false;
        }
        plan.runs.push_back(run);
    }
    const bool startsAtFirst = plan.offsets.empty() || (!plan.runs.empty() && plan.runs.front().firstChunk == 1);
    return offsets.reader.ok() && runs.reader.ok() && startsAtFirst;
}

// Walks the chunks with their sample counts.
class ChunkWalker
{
public:
    explicit ChunkWalker(const ChunkPlan& plan) : plan_(plan) {}
    const ChunkRun& runOf(std::size_t chunk)
    {
        while (run_ + 1 < plan_.runs.size() && plan_.runs[run_ + 1].firstChunk <= chunk + 1) {
            ++run_;
        }
        return plan_.runs[run_];
    }

private:
    const ChunkPlan& plan_;
    std::size_t run_ = 0;
};

struct SizeTable {
    std::uint32_t constantSize = 0;
    std::uint32_t count = 0;
    FieldReader sizes{ByteView()};
    bool ok = false;
};

SizeTable sizeTable(ByteView stbl)
{
    FieldReader reader(childPayload(stbl, atomType("stsz")));
    reader.skip(4);
    SizeTable table;
    table.constantSize = reader.u32();
    table.count = reader.u32();
    table.ok = reader.ok();
    table.sizes = reader;
    return table;
}

bool hasUnitDurations(ByteView stbl)
{
    TableHead times = tableHead(childPayload(stbl, atomType("stts")));
    if (times.count != 1) {
        return false;
    }
    times.reader.skip(4);
    return times.reader.u32() == 1 && times.reader.ok();
}

bool fitsFile(std::uint64_t offset, std::uint64_t size, std::uint64_t fileSize)
{
    return offset <= fileSize && size <= fileSize - offset;
}

bool fillChunks(const TrackAtoms& track, const ChunkPlan& plan, std::uint64_t sampleCount, std::uint64_t fileSize,
                SampleTable& table)
{
    ChunkWalker walker(plan);
    std::uint64_t sample = 0;
    for (std::size_t index = 0; index < plan.offsets.size() && sample < sampleCount; ++index) {
        const ChunkRun& run = walker.runOf(index);
        SoundChunk chunk;
        chunk.offset = plan.offsets[index];
        chunk.firstSample = sample;
        chunk.samples = static_cast<std::uint32_t>(std::min<std::uint64_t>(run.samples, sampleCount - sample));
        chunk.description = run.description;
        chunk.size = packedSoundBytes(track.description, table.constantSize, chunk.samples);
        if (chunk.size == 0 || !fitsFile(chunk.offset, chunk.size, fileSize)) {
            return false;
        }
        table.chunks.push_back(chunk);
        sample += chunk.samples;
    }
    return sample == sampleCount;
}

bool fillSamples(const ChunkPlan& plan, SizeTable& sizes, std::uint64_t fileSize, SampleTable& table)
{
    if (sizes.count > mostSamples || (sizes.constantSize != 0 && sizes.count > fileSize / sizes.constantSize)) {
        return false;
    }
    ChunkWalker walker(plan);
    for (std::size_t index = 0; index < plan.offsets.size() && table.samples.size() < sizes.count; ++index) {
        const ChunkRun& run = walker.runOf(index);
        std::uint64_t offset = plan.offsets[index];
        for (std::uint32_t held = 0; held < run.samples && table.samples.size() < sizes.count; ++held) {
            Sample sample;
            sample.offset = offset;
            sample.size = sizes.constantSize != 0 ? sizes.constantSize : sizes.sizes.u32();
            sample.chunk = static_cast<std::uint32_t>(index);
            sample.description = static_cast<std::uint16_t>(std::min<std::uint32_t>(run.description, UINT16_MAX));
            if (!sizes.sizes.ok() || !fitsFile(sample.offset, sample.size, fileSize)) {
                return false;
            }
            table.samples.push_back(sample);
            offset += sample.size;
        }
    }
    return table.samples.size() == sizes.count;
}

bool fillDurations(ByteView stbl, SampleTable& table)
{
    TableHead times = tableHead(childPayload(stbl, atomType("stts")));
    std::size_t sample = 0;
    for (std::uint32_t index = 0; index < times.count && sample < table.samples.size(); ++index) {
        const std::uint32_t count = times.reader.u32();
        const std::uint32_t duration = times.reader.u32();
        if (!times.reader.ok()) {
            return false;
        }
        for (std::uint32_t held = 0; held < count && sample < table.samples.size(); ++held) {
            table.samples[sample++].duration = duration;
        }
    }
    return sample == table.samples.size();
}

bool fillCompositionOffsets(ByteView stbl, SampleTable& table)
{
    const ByteView ctts = childPayload(stbl, atomType("ctts"));
    table.hasCompositionOffsets = !ctts.empty();
    TableHead offsets = tableHead(ctts);
    std::size_t sample = 0;
    for (std::uint32_t index = 0; index < offsets.count && sample < table.samples.size(); ++index) {
        const std::uint32_t count = offsets.reader.u32();
        const std::int32_t offset = offsets.reader.s32();
        if (!offsets.reader.ok()) {
            return false;
        }
        for (std::uint32_t held = 0; held < count && sample < table.samples.size(); ++held) {
            table.samples[sample++].compositionOffset = offset;
        }
    }
    return true;
}

bool fillSync(ByteView stbl, SampleTable& table)
{
    const ByteView stss = childPayload(stbl, atomType("stss"));
    table.hasSyncTable = !stss.empty();
    if (!table.hasSyncTable) {
        return true;
    }
    for (Sample& sample : table.samples) {
        sample.sync = false;
    }
    TableHead numbers = tableHead(stss);
    for (std::uint32_t index = 0; index < numbers.count; ++index) {
        const std::uint32_t number = numbers.reader.u32();
        if (!numbers.reader.ok()) {
            return false;
        }
        if (number >= 1 && number <= table.samples.size()) {
            table.samples[number - 1].sync = true;
        }
    }
    return true;
}

// Bytes of one frame of uncompressed sound; 0 for other formats.
std::uint64_t uncompressedFrameBytes(const DescriptionAtom& description)
{
    struct Width {
        std::uint32_t format;
        std::uint64_t bytes; // 0: by the sample size
    };
    static constexpr std::array<Width, 10> widths{{{atomType("sowt"), 0},
                                                   {atomType("twos"), 0},
                                                   {atomType("raw "), 0},
                                                   {atomType("NONE"), 0},
                                                   {atomType("in24"), 3},
                                                   {atomType("in32"), 4},
                                                   {atomType("fl32"), 4},
                                                   {atomType("fl64"), 8},
                                                   {atomType("alaw"), 1},
                                                   {atomType("ulaw"), 1}}};
    for (const Width& width : widths) {
        if (width.format != description.format || description.channels <= 0) {
            continue;
        }
        const auto bytes =
            width.bytes != 0 ? width.bytes : static_cast<std::uint64_t>(std::max(0, description.sampleSize) / 8);
        return bytes * static_cast<std::uint64_t>(description.channels);
    }
    return 0;
}

} // namespace

std::uint64_t packedSoundBytes(const DescriptionAtom& description, std::uint32_t constantSize, std::uint64_t samples)
{
    const std::uint64_t frame = uncompressedFrameBytes(description);
    if (frame != 0) {
        return samples * frame;
    }
    if (description.version == 2 && description.bytesPerPacket != 0) {
        return samples * description.bytesPerPacket;
    }
    if (description.version == 1 && description.samplesPerPacket > 1 && description.bytesPerFrame != 0) {
        return samples / description.samplesPerPacket * description.bytesPerFrame;
    }
    return samples * constantSize;
}

std::optional<SampleTable> readSampleTable(const TrackAtoms& track, std::uint64_t fileSize)
{
    SizeTable sizes = sizeTable(track.stbl);
    ChunkPlan plan;
    if (!sizes.ok || !readChunks(track.stbl, plan)) {
        return std::nullopt;
    }
    SampleTable table;
    table.constantSize = sizes.constantSize;
    table.packed = track.mediaType == "soun" && sizes.constantSize != 0 && hasUnitDurations(track.stbl);
    const bool read = table.packed ? fillChunks(track, plan, sizes.count, fileSize, table)
                                   : fillSamples(plan, sizes, fileSize, table) && fillDurations(track.stbl, table) &&
                                         fillCompositionOffsets(track.stbl, table) && fillSync(track.stbl, table);
    if (!read) {
        return std::nullopt;
    }
    return table;
}

} // namespace tavrix
