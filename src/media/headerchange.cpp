// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/headerchange.h"

#include "media/atomwriter.h"
#include "media/edittimeline.h"
#include "sys/errortext.h"
#include "sys/transfer.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <sys/stat.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

constexpr std::uint64_t mostShortTime = 0xFFFFFFFEU;
constexpr std::uint16_t anyLanguage = 0x55C4; // "und"

class Writer
{
public:
    Writer(const MovieAtoms& movie, const HeaderChange& change) : movie_(movie), change_(change)
    {
        const bool keeps = change.movieScale == 0 || movie.timeScale == 0;
        scale_ = keeps ? movie.timeScale : change.movieScale;
        for (std::size_t index = 0; index < movie.tracks.size(); ++index) {
            durations_.push_back(trackDuration(index));
            duration_ = std::max(duration_, durations_.back());
        }
    }

    std::vector<std::uint8_t> movieAtom()
    {
        bool userDataWritten = false;
        bool keysKnown = false;
        std::size_t track = 0;
        out_.begin(atomType("moov"));
        for (const Atom& atom : childAtoms(movie_.bytes)) {
            keysKnown = keysKnown || atom.type == atomType("meta");
            if (atom.type == atomType("mvhd")) {
                writeHeader(atom, 4, duration_, true);
            } else if (atom.type == atomType("trak") && track < movie_.tracks.size()) {
                writeTrack(track++);
            } else if (atom.type == atomType("udta") && !userDataWritten) {
                writeUserData(atom.payload);
                userDataWritten = true;
            } else {
                out_.raw(atom.whole);
            }
        }
        if (!userDataWritten && !change_.userTexts.empty()) {
            writeUserData({});
        }
        if (!keysKnown && !change_.keyTexts.empty()) {
            writeKeys();
        }
        out_.end();
        return out_.bytes();
    }

private:
    [[nodiscard]] const TrackEdits* editsOf(std::size_t track) const
    {
        const auto found = std::ranges::find(change_.edits, track, &TrackEdits::track);
        return found == change_.edits.end() ? nullptr : &*found;
    }

    [[nodiscard]] std::uint64_t inNewScale(std::uint64_t duration) const
    {
        return scale_ == movie_.timeScale ? duration
                                          : static_cast<std::uint64_t>(rescaled(static_cast<std::int64_t>(duration),
                                                                                scale_, movie_.timeScale));
    }

    [[nodiscard]] std::uint64_t trackDuration(std::size_t track) const
    {
        const TrackEdits* const edits = editsOf(track);
        if (edits == nullptr) {
            return inNewScale(movie_.tracks[track].duration);
        }
        std::uint64_t sum = 0;
        for (const EditEntry& entry : edits->entries) {
            sum += entry.duration;
        }
        return sum;
    }

    void writeTime(bool isLong, std::uint64_t value)
    {
        if (isLong) {
            out_.u64(value);
        } else {
            out_.u32(static_cast<std::uint32_t>(value));
        }
    }

    // A movie or track header: dates, some bytes, the duration, the rest. In the movie's the bytes are its scale.
    void writeHeader(const Atom& atom, std::size_t between, std::uint64_t duration, bool ofMovie)
    {
        FieldReader reader(atom.payload);
        const std::uint32_t versionAndFlags = reader.u32();
        const bool wasLong = (versionAndFlags >> 24) == 1;
        const bool isLong = wasLong || duration > mostShortTime;
        const std::uint64_t created = wasLong ? reader.u64() : reader.u32();
        const std::uint64_t modified = wasLong ? reader.u64() : reader.u32();
        const std::size_t place = wasLong ? 20 : 12;
        const std::size_t rest = place + between + (wasLong ? 8 : 4);
        if (atom.payload.size() < rest) {
            out_.raw(atom.whole);
            return;
        }
        out_.begin(atom.type);
        out_.u32((isLong ? 0x1000000U : 0U) | (versionAndFlags & 0xFFFFFFU));
        writeTime(isLong, created);
        writeTime(isLong, modified);
        if (ofMovie) {
            out_.u32(scale_);
        } else {
            out_.raw(atom.payload.subspan(place, between));
        }
        writeTime(isLong, duration);
        out_.raw(atom.payload.subspan(rest));
        out_.end();
    }

    [[nodiscard]] std::vector<EditEntry> entriesOf(std::size_t track) const
    {
        if (const TrackEdits* const edits = editsOf(track)) {
            return edits->entries;
        }
        std::vector<EditEntry> entries = movie_.tracks[track].edits;
        for (EditEntry& entry : entries) {
            entry.duration = inNewScale(entry.duration);
        }
        return entries;
    }

    void writeEdits(std::size_t track)
    {
        const std::vector<EditEntry> entries = entriesOf(track);
        const bool isLong = std::ranges::any_of(entries, [](const EditEntry& entry) {
            return entry.duration > mostShortTime || entry.mediaTime > std::numeric_limits<std::int32_t>::max();
        });
        out_.begin(atomType("edts"));
        out_.begin(atomType("elst"));
        out_.u32(isLong ? 0x1000000U : 0U);
        out_.u32(static_cast<std::uint32_t>(entries.size()));
        for (const EditEntry& entry : entries) {
            writeTime(isLong, entry.duration);
            writeTime(isLong, static_cast<std::uint64_t>(entry.mediaTime));
            out_.s32(entry.rate);
        }
        out_.end();
        out_.end();
    }

    void writeTrack(std::size_t track)
    {
        const bool hasEdits = movie_.tracks[track].hasEdits || editsOf(track) != nullptr;
        bool editsWritten = !hasEdits;
        out_.begin(atomType("trak"));
        for (const Atom& atom : childAtoms(movie_.tracks[track].trak)) {
            if (atom.type == atomType("edts")) {
                continue;
            }
            if (atom.type == atomType("mdia") && !editsWritten) {
                writeEdits(track);
                editsWritten = true;
            }
            if (atom.type == atomType("tkhd")) {
                writeHeader(atom, 8, durations_[track], false);
            } else {
                out_.raw(atom.whole);
            }
        }
        out_.end();
    }

    void writeUserData(ByteView old)
    {
        out_.begin(atomType("udta"));
        for (const Atom& atom : childAtoms(old)) {
            if (std::ranges::find(change_.userTexts, atom.type, &UserText::type) == change_.userTexts.end()) {
                out_.raw(atom.whole);
            }
        }
        for (const UserText& item : change_.userTexts) {
            const auto length = std::min<std::size_t>(item.text.size(), 0xFFFF);
            out_.begin(item.type);
            out_.u16(static_cast<std::uint16_t>(length));
            out_.u16(anyLanguage);
            writeText(item.text.substr(0, length));
            out_.end();
        }
        out_.end();
    }

    void writeText(const std::string& text)
    {
        for (const char letter : text) {
            out_.u8(static_cast<std::uint8_t>(letter));
        }
    }

    // A handler that tells the kind of the list, the names, and under the number of each name its text.
    void writeKeys()
    {
        constexpr std::uint32_t utf8 = 1;
        out_.begin(atomType("meta"));
        out_.begin(atomType("hdlr"));
        out_.u32(0);
        out_.u32(0);
        out_.u32(atomType("mdta"));
        for (int field = 0; field < 3; ++field) {
            out_.u32(0);
        }
        out_.u8(0);
        out_.end();
        out_.begin(atomType("keys"));
        out_.u32(0);
        out_.u32(static_cast<std::uint32_t>(change_.keyTexts.size()));
        for (const KeyText& item : change_.keyTexts) {
            out_.begin(atomType("mdta"));
            writeText(item.key);
            out_.end();
        }
        out_.end();
        out_.begin(atomType("ilst"));
        for (std::size_t number = 1; number <= change_.keyTexts.size(); ++number) {
            out_.begin(static_cast<std::uint32_t>(number));
            out_.begin(atomType("data"));
            out_.u32(utf8);
            out_.u32(0);
            writeText(change_.keyTexts[number - 1].text);
            out_.end();
            out_.end();
        }
        out_.end();
        out_.end();
    }

    const MovieAtoms& movie_;
    const HeaderChange& change_;
    std::uint32_t scale_ = 0;
    std::vector<std::uint64_t> durations_; // of the tracks, in the new scale
    std::uint64_t duration_ = 0;
    AtomWriter out_;
};

} // namespace

bool HeaderChange::isEmpty() const
{
    return edits.empty() && userTexts.empty() && keyTexts.empty() && movieScale == 0;
}

std::vector<std::uint8_t> changedMovieAtom(const MovieAtoms& movie, const HeaderChange& change)
{
    return Writer(movie, change).movieAtom();
}

Result<void> changeMovieHeader(int descriptor, const HeaderChange& change)
{
    struct stat info = {};
    if (fstat(descriptor, &info) != 0) {
        return Failure{errorText(errno)};
    }
    const auto size = static_cast<std::uint64_t>(info.st_size);
    const FileAtoms atoms = topLevelAtoms(readAtOf(descriptor), size);
    const bool isLast = !atoms.damaged && !atoms.atoms.empty() && atoms.atoms.back().type == atomType("moov");
    const MovieAtoms movie = readMovieAtoms(readAtOf(descriptor), size);
    if (!isLast || !movie.found || movie.damaged || movie.compressed || movie.fragmented) {
        return Failure{"the movie's header cannot be changed"};
    }
    const std::vector<std::uint8_t> atom = changedMovieAtom(movie, change);
    const std::uint64_t place = atoms.atoms.back().offset;
    const std::string_view bytes(reinterpret_cast<const char*>(atom.data()), atom.size());
    if (lseek(descriptor, static_cast<off_t>(place), SEEK_SET) < 0 || !writeAll(descriptor, bytes)) {
        return Failure{errorText(errno)};
    }
    if (ftruncate(descriptor, static_cast<off_t>(place + atom.size())) != 0) {
        return Failure{errorText(errno)};
    }
    return {};
}

} // namespace tavrix
