#include "quicktime/moviefilewriter.h"

#include "base/filesizes.h"
#include "base/paths.h"
#include "media/atomwriter.h"
#include "sys/descriptor.h"

#include <QSaveFile>

#include <sys/stat.h>

namespace tavrix
{

namespace
{

constexpr std::uint64_t shortDataLimit = 0xFFFFFF00U;
constexpr std::size_t bufferSize = std::size_t(1) << 20;

bool writeBytes(QSaveFile& file, ByteView bytes)
{
    const auto size = static_cast<qint64>(bytes.size());
    return file.write(reinterpret_cast<const char*>(bytes.data()), size) == size;
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

bool copyStretch(const ReadAt& readAt, std::uint64_t offset, std::uint64_t size, QSaveFile& file, QString* reason)
{
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(std::min<std::uint64_t>(size, bufferSize)));
    while (size > 0) {
        const std::span<std::uint8_t> part(buffer.data(),
                                           static_cast<std::size_t>(std::min<std::uint64_t>(size, bufferSize)));
        if (!readAt(offset, part)) {
            *reason = QStringLiteral("the source cannot be read");
            return false;
        }
        if (!writeBytes(file, part)) {
            // A short write alone leaves the file without a reason.
            *reason = file.error() == QFileDevice::NoError ? QStringLiteral("the file cannot be written")
                                                           : file.errorString();
            return false;
        }
        offset += part.size();
        size -= part.size();
    }
    return true;
}

bool copyMedia(const ReadAt& readAt, const RewritePlan& plan, QSaveFile& file, QString* reason)
{
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    for (const CopyRun& run : plan.copies()) {
        if (offset + size == run.sourceOffset) {
            size += run.size;
            continue;
        }
        if (!copyStretch(readAt, offset, size, file, reason)) {
            return false;
        }
        offset = run.sourceOffset;
        size = run.size;
    }
    return copyStretch(readAt, offset, size, file, reason);
}

bool writeMovie(const MovieFileJob& job, const ReadAt& readAt, std::uint64_t sourceSize, QSaveFile& file, QString* reason)
{
    const std::vector<std::uint8_t> fileType = fileTypeAtom(readAt, sourceSize);
    const std::vector<std::uint8_t> dataHeader = mediaDataHeader(job.plan->dataSize());
    const std::uint64_t headerSize = job.headerFirst ? job.plan->movieAtom(0).size() : 0;
    const std::vector<std::uint8_t> header = job.plan->movieAtom(fileType.size() + headerSize + dataHeader.size());
    *reason = QStringLiteral("the file cannot be written");
    if (!writeBytes(file, fileType) || (job.headerFirst && !writeBytes(file, header)) ||
        !writeBytes(file, dataHeader)) {
        return false;
    }
    if (!copyMedia(readAt, *job.plan, file, reason)) {
        return false;
    }
    return job.headerFirst || writeBytes(file, header);
}

} // namespace

bool hasRoomFor(const QString& destinationPath, std::uint64_t bytes)
{
    const QString folder = stringByDeletingLastPathComponent(destinationPath);
    const int free = espaceDiskDispo(folder.isEmpty() ? QStringLiteral(".") : folder);
    return static_cast<std::uint64_t>(std::max(free, 0)) > (bytes >> 20);
}

bool writeMovieFile(const MovieFileJob& job, QString* reason)
{
    if (!hasRoomFor(job.destinationPath, job.plan->dataSize())) {
        *reason = QStringLiteral("not enough space on the volume");
        return false;
    }
    const Descriptor source = openFile(nativePath(job.sourcePath), O_RDONLY);
    struct stat status {
    };
    if (!source.isOpen() || ::fstat(source.get(), &status) != 0) {
        *reason = QStringLiteral("the source cannot be opened");
        return false;
    }
    QSaveFile file(job.destinationPath);
    if (!file.open(QIODevice::WriteOnly)) {
        *reason = file.errorString();
        return false;
    }
    if (!writeMovie(job, readAtOf(source.get()), static_cast<std::uint64_t>(status.st_size), file, reason)) {
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        *reason = file.errorString();
        return false;
    }
    return true;
}

} // namespace tavrix
