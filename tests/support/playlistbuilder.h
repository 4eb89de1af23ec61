// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tavrix::test
{

// Builds AVCHD playlists byte by byte, as cameras write them.
struct PlaylistClip {
    std::string name;            // five digits
    unsigned int flags = 5;      // 1 first, 5 new clip, 6 goes on with the clip before it
    bool marked = true;          // has a mark, and so a date, of its own
    std::uint16_t thumbnail = 0; // the two bytes before the date
    std::array<unsigned char, 7> date = {0x20, 0x10, 0x05, 0x01, 0x12, 0x34, 0x56};
};

class PlaylistBuilder
{
public:
    // Half hours east of Greenwich are 1 bit each in `zone`; 0x1E: the camera's zone is not set.
    explicit PlaylistBuilder(unsigned char zone) : zone_(zone) {}

    [[nodiscard]] std::vector<unsigned char> build(const std::vector<PlaylistClip>& clips)
    {
        bytes_.assign(58, 0);
        putText(0, "MPLS0100");
        const std::size_t list = bytes_.size();
        put(8, list, 4);
        addItems(clips);
        put(12, bytes_.size(), 4);
        addMarks(clips);
        put(16, bytes_.size(), 4);
        addExtension(clips);
        return bytes_;
    }

private:
    void addItems(const std::vector<PlaylistClip>& clips)
    {
        const std::size_t list = grow(10);
        put(list + 6, clips.size(), 2);
        for (const PlaylistClip& clip : clips) {
            const std::size_t item = grow(82);
            put(item, 80, 2);
            putText(item + 2, clip.name + "M2TS");
            put(item + 11, clip.flags, 2);
        }
        put(list, bytes_.size() - list - 4, 4);
    }

    void addMarks(const std::vector<PlaylistClip>& clips)
    {
        const std::size_t marks = grow(6);
        std::size_t count = 0;
        for (std::size_t i = 0; i < clips.size(); ++i) {
            if (clips[i].marked) {
                const std::size_t mark = grow(14);
                put(mark + 1, 1, 1);
                put(mark + 2, i, 2);
                put(mark + 8, 0xFFFF, 2);
                ++count;
            }
        }
        put(marks + 4, count, 2);
        put(marks, bytes_.size() - marks - 4, 4);
    }

    void addExtension(const std::vector<PlaylistClip>& clips)
    {
        const std::size_t extension = grow(24);
        put(extension + 4, 24, 4);
        put(extension + 11, 1, 1);
        put(extension + 12, 0x1000, 2);
        put(extension + 14, 0x0100, 2);
        put(extension + 16, 24, 4);
        const std::size_t block = grow(40);
        putText(block, "PLEX");
        addMeta();
        put(block + 8, bytes_.size() - block, 4);
        const std::size_t extensions = grow(6);
        std::size_t count = 0;
        for (const PlaylistClip& clip : clips) {
            if (clip.marked) {
                const std::size_t entry = grow(66);
                put(entry, 0x0103, 2);
                put(entry + 8, clip.thumbnail, 2);
                putDate(entry + 10, clip.date);
                ++count;
            }
        }
        put(extensions + 4, count, 2);
    }

    void addMeta()
    {
        const std::size_t meta = grow(4 + 10 + 1 + 7 + 3 + 255);
        put(meta + 4, 0x0103, 2);
        put(meta + 12, 0xFFFF, 2);
        putDate(meta + 14, {0x20, 0x10, 0x05, 0x01, 0x00, 0x00, 0x00});
    }

    void putDate(std::size_t offset, const std::array<unsigned char, 7>& date)
    {
        bytes_[offset] = zone_;
        for (std::size_t i = 0; i < date.size(); ++i) {
            bytes_[offset + 1 + i] = date[i];
        }
    }

    std::size_t grow(std::size_t count)
    {
        const std::size_t start = bytes_.size();
        bytes_.resize(start + count, 0);
        return start;
    }
    void put(std::size_t offset, std::size_t value, std::size_t size)
    {
        for (std::size_t i = 0; i < size; ++i) {
            bytes_[offset + i] = static_cast<unsigned char>(value >> (8 * (size - 1 - i)));
        }
    }
    void putText(std::size_t offset, const std::string& text)
    {
        for (std::size_t i = 0; i < text.size(); ++i) {
            bytes_[offset + i] = static_cast<unsigned char>(text[i]);
        }
    }

    unsigned char zone_;
    std::vector<unsigned char> bytes_;
};

inline constexpr unsigned char zoneUnset = 0x1E;
inline constexpr unsigned char zoneNewYork = 0x2A;
inline constexpr unsigned char zoneTokyo = 0x12;

} // namespace tavrix::test
