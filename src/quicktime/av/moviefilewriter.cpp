// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/moviefilewriter.h"

#include "base/files/fileinfo.h"
#include "base/files/posixfile.h"
#include "base/text/paths.h"
#include "media/atomwriter.h"

namespace tavrix
{

namespace
{

constexpr std::uint64_t shortDataLimit = 0xFFFFFF00U;
constexpr std::size_t bufferSize = std::size_t(1) << 20;

using Outcome = Result<void, QString>;

Outcome writeBytes(const SafeOutput& file, ByteView bytes)
{
    if (!writeAll(file.fd(), {reinterpret_cast<const char*>(bytes.data()), bytes.size()})) {
        return Failure{systemErrorText()};
    }
    return {};
}

// The source's own file type, so that an MP4 stays one.
std::vector<std::uint8_t> fileTypeAtom(const ReadAt& readAt, std::uint64_t fileSize)
{
    constexpr std::uint64_t mostFileTypeBytes = 4096;
    const FileAtoms file = topLevelAtoms(readAt, fileSize);
    if (!file.atoms.empty() && file.atoms.front().type == atomType("ftyp") &&
        file.atoms.front().size <= mostFileTypeBytes) {
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(file.atoms.front().size));
        if (readAt(file.atoms.front().offset, bytes)) {
            return bytes;
        }
    }
    AtomWriter writer;
    writer.begin(atomType("ftyp"));
    writer.u32(atomType("qt  "));
    writer.u32(0x200);
    writer.u32(atomType("qt  "));
    writer.end();
    return writer.bytes();
}

std::vector<std::uint8_t> mediaDataHeader(std::uint64_t dataSize)
{
    AtomWriter writer;
    if (dataSize < shortDataLimit) {
        writer.u32(static_cast<std::uint32_t>(dataSize + 8));
        writer.u32(atomType("mdat"));
    } else {
        writer.u32(1);
        writer.u32(atomType("mdat"));
        writer.u64(dataSize + 16);
    }
    return writer.bytes();
}

Outcome copyStretch(const ReadAt& readAt, std::uint64_t offset, std::uint64_t size, const SafeOutput& file)
{
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(std::min<std::uint64_t>(size, bufferSize)));
    while (size > 0) {
        const std::span<std::uint8_t> part(buffer.data(),
                                           static_cast<std::size_t>(std::min<std::uint64_t>(size, bufferSize)));
        if (!readAt(offset, part)) {
            return Failure{QStringLiteral("the source cannot be read")};
        }
        if (Outcome written = writeBytes(file, part); !written) {
            return written;
        }
        offset += part.size();
        size -= part.size();
    }
    return {};
}

Outcome copyMedia(const ReadAt& readAt, const RewritePlan& plan, const SafeOutput& file)
{
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    for (const CopyRun& run : plan.copies()) {
        if (offset + size == run.sourceOffset) {
            size += run.size;
            continue;
        }
        if (Outcome copied = copyStretch(readAt, offset, size, file); !copied) {
            return copied;
        }
        offset = run.sourceOffset;
        size = run.size;
    }
    return copyStretch(readAt, offset, size, file);
}

Outcome writeMovie(const MovieFileJob& job, const ReadAt& readAt, std::uint64_t sourceSize, const SafeOutput& file)
{
    const std::vector<std::uint8_t> fileType = fileTypeAtom(readAt, sourceSize);
    const std::vector<std::uint8_t> dataHeader = mediaDataHeader(job.plan->dataSize());
    const std::uint64_t headerSize = job.headerFirst ? job.plan->movieAtom(0).size() : 0;
    const std::vector<std::uint8_t> header = job.plan->movieAtom(fileType.size() + headerSize + dataHeader.size());
    std::vector<std::uint8_t> front = fileType;
    if (job.headerFirst) {
        front.insert(front.end(), header.begin(), header.end());
    }
    front.insert(front.end(), dataHeader.begin(), dataHeader.end());
    Outcome written = writeBytes(file, front);
    if (written) {
        written = copyMedia(readAt, *job.plan, file);
    }
    return written && !job.headerFirst ? writeBytes(file, header) : written;
}

} // namespace

bool hasRoomFor(const QString& destinationPath, std::uint64_t bytes)
{
    const QString folder = stringByDeletingLastPathComponent(destinationPath);
    const int free = espaceDiskDispo(folder.isEmpty() ? QStringLiteral(".") : folder);
    return static_cast<std::uint64_t>(std::max(free, 0)) > (bytes >> 20);
}

Result<void, QString> writeMovieFile(const MovieFileJob& job)
{
    if (!hasRoomFor(job.destinationPath, job.plan->dataSize())) {
        return Failure{QStringLiteral("not enough space on the volume")};
    }
    const Descriptor source = openFile(nativePath(job.sourcePath), O_RDONLY);
    struct stat status = {};
    if (!source.isOpen() || ::fstat(source.get(), &status) != 0) {
        return Failure{QStringLiteral("the source cannot be opened")};
    }
    Result<SafeOutput> file = SafeOutput::open(nativePath(job.destinationPath).toStdString());
    if (!file) {
        return Failure{QString::fromStdString(file.reason())};
    }
    Outcome written = writeMovie(job, readAtOf(source.get()), static_cast<std::uint64_t>(status.st_size), *file);
    return written ? published(*file) : written;
}

Result<void, QString> published(SafeOutput& file)
{
    const Result<void> committed = file.commit();
    return committed ? Outcome() : Failure{QString::fromStdString(committed.reason())};
}

} // namespace tavrix
