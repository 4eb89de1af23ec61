// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/atomreader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>

#include <unistd.h>

namespace tavrix
{

namespace
{

constexpr std::uint64_t shortHeader = 8;
constexpr std::uint64_t longHeader = 16;
// More atoms than that beside one another are not a movie but an attempt to keep the reader busy or out of memory.
constexpr std::size_t mostAtoms = 1000000;

struct HeaderFields {
    std::uint32_t type = 0;
    std::uint64_t headerSize = 0;
    std::uint64_t size = 0; // 0: to the end of what holds it
};

// No value when the header is cut off or claims less than itself.
std::optional<HeaderFields> headerFields(ByteView bytes)
{
    FieldReader reader(bytes);
    const std::uint32_t shortSize = reader.u32();
    HeaderFields header;
    header.type = reader.u32();
    header.headerSize = shortHeader;
    header.size = shortSize;
    if (shortSize == 1) {
        header.size = reader.u64();
        header.headerSize = longHeader;
        if (header.size < longHeader) {
            return std::nullopt;
        }
    }
    if (!reader.ok() || (header.size != 0 && header.size < header.headerSize)) {
        return std::nullopt;
    }
    return header;
}

} // namespace

void FieldReader::skip(std::size_t count)
{
    if (position_ > bytes_.size() || count > bytes_.size() - position_) {
        ok_ = false;
        position_ = bytes_.size();
        return;
    }
    position_ += count;
}

std::uint64_t FieldReader::number(std::size_t bytes)
{
    const std::size_t start = position_;
    skip(bytes);
    if (!ok_) {
        return 0;
    }
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < bytes; ++index) {
        value = (value << 8) | bytes_[start + index];
    }
    return value;
}

std::vector<Atom> childAtoms(ByteView container, bool* wellFormed)
{
    std::vector<Atom> atoms;
    bool fits = true;
    std::size_t offset = 0;
    while (fits && container.size() - offset >= shortHeader) {
        const ByteView rest = container.subspan(offset);
        if (FieldReader(rest).u32() == 0) {
            fits = std::all_of(rest.begin(), rest.end(), [](std::uint8_t byte) { return byte == 0; });
            break;
        }
        const std::optional<HeaderFields> header = headerFields(rest);
        fits = header && header->size <= rest.size() && atoms.size() < mostAtoms;
        if (!fits) {
            break;
        }
        const auto size = static_cast<std::size_t>(header->size);
        const auto headerSize = static_cast<std::size_t>(header->headerSize);
        atoms.push_back({header->type, offset, rest.first(size), rest.subspan(headerSize, size - headerSize)});
        offset += size;
    }
    if (wellFormed != nullptr) {
        *wellFormed = fits;
    }
    return atoms;
}

ByteView childPayload(ByteView container, std::uint32_t type)
{
    for (const Atom& atom : childAtoms(container)) {
        if (atom.type == type) {
            return atom.payload;
        }
    }
    return {};
}

FileAtoms topLevelAtoms(const ReadAt& readAt, std::uint64_t fileSize)
{
    FileAtoms result;
    std::uint64_t offset = 0;
    while (fileSize - offset >= shortHeader) {
        std::array<std::uint8_t, longHeader> bytes{};
        const auto available = static_cast<std::size_t>(std::min<std::uint64_t>(fileSize - offset, longHeader));
        const std::span<std::uint8_t> view(bytes.data(), available);
        const std::optional<HeaderFields> header = readAt(offset, view) ? headerFields(view) : std::nullopt;
        if (!header || header->size > fileSize - offset || result.atoms.size() >= mostAtoms) {
            result.damaged = true;
            return result;
        }
        const std::uint64_t size = header->size == 0 ? fileSize - offset : header->size;
        result.atoms.push_back({header->type, offset, header->headerSize, size});
        offset += size;
    }
    return result;
}

ReadAt readAtOf(ByteView bytes)
{
    return [bytes](std::uint64_t offset, std::span<std::uint8_t> to) {
        if (offset > bytes.size() || to.size() > bytes.size() - offset) {
            return false;
        }
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), to.size(), to.begin());
        return true;
    };
}

ReadAt readAtOf(int descriptor)
{
    return [descriptor](std::uint64_t offset, std::span<std::uint8_t> to) {
        std::size_t done = 0;
        while (done < to.size()) {
            const ssize_t got =
                ::pread(descriptor, to.data() + done, to.size() - done, static_cast<off_t>(offset + done));
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got <= 0) {
                return false;
            }
            done += static_cast<std::size_t>(got);
        }
        return true;
    };
}

} // namespace tavrix
