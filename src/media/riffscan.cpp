// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/riffscan.h"

#include "sys/descriptor.h"
#include "sys/errortext.h"

#include <array>
#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace tavrix::media
{

namespace
{

constexpr std::int64_t headerBytes = 8;

struct Chunk {
    std::string id;
    std::string list; // what a list or file holds; "" for other chunks
    std::int64_t offset = 0;
    std::int64_t size = 0; // without the header

    [[nodiscard]] std::int64_t end() const { return offset + headerBytes + size + (size & 1); }
};

class Reader
{
public:
    Reader(int file, std::int64_t bytes) : file_(file), bytes_(bytes) {}

    RiffScan scan()
    {
        std::int64_t at = 0;
        Chunk riff;
        while (read(at, riff) && riff.id == "RIFF") {
            scan_.cutOff = scan_.cutOff || riff.offset + headerBytes + riff.size > bytes_;
            scanRiffChunk(riff);
            at = riff.end();
        }
        return scan_;
    }

private:
    static std::int64_t littleEndian(const std::uint8_t* bytes)
    {
        return std::int64_t(bytes[0]) | std::int64_t(bytes[1]) << 8 | std::int64_t(bytes[2]) << 16 |
               std::int64_t(bytes[3]) << 24;
    }

    bool readAt(std::int64_t at, std::uint8_t* to, std::size_t size) const
    {
        return pread(file_, to, size, at) == ssize_t(size);
    }

    // False at the end, and in a file that is made of nothing but headers.
    bool read(std::int64_t at, Chunk& chunk)
    {
        std::array<std::uint8_t, 12> bytes{};
        if (--chunksLeft_ < 0 || !readAt(at, bytes.data(), headerBytes)) {
            return false;
        }
        chunk.id.assign(reinterpret_cast<const char*>(bytes.data()), 4);
        chunk.size = littleEndian(bytes.data() + 4);
        chunk.offset = at;
        chunk.list.clear();
        if ((chunk.id == "RIFF" || chunk.id == "LIST") && readAt(at, bytes.data(), bytes.size())) {
            chunk.list.assign(reinterpret_cast<const char*>(bytes.data()) + headerBytes, 4);
        }
        return true;
    }

    void scanRiffChunk(const Chunk& riff)
    {
        constexpr std::int64_t listBytes = 12;
        std::int64_t at = riff.offset + listBytes;
        Chunk chunk;
        while (at < riff.end() && read(at, chunk)) {
            scan_.hasIndex = scan_.hasIndex || (chunk.id == "idx1" && chunk.end() <= bytes_ + 1);
            at = chunk.end();
        }
    }

    int file_;
    std::int64_t bytes_;
    int chunksLeft_ = 100000;
    RiffScan scan_;
};

} // namespace

Result<RiffScan> scanRiff(const std::string& path)
{
    const Descriptor file = openFile(path.c_str(), O_RDONLY);
    struct stat status = {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0) {
        return Failure{errorText(errno)};
    }
    return Reader(file.get(), status.st_size).scan();
}

} // namespace tavrix::media
