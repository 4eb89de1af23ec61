// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/reading.h"

#include "media/fieldcounter.h"
#include "media/packetcheck.h"
#include "media/packetclock.h"
#include "media/riffscan.h"
#include "media/transportscan.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace tavrix::media
{

namespace
{

// A packet of pictures with its place in the file.
struct Mark {
    std::int64_t offset = 0;
    double time = 0;
};

// Reads one stream's packets.
class StreamReader
{
public:
    StreamReader(AVStream& stream, const StreamFacts& facts, bool isMovie, bool marksCount,
                 const std::optional<Span>& part)
        : check_(*stream.codecpar), fields_(*stream.codecpar, !isMovie && facts.interlaced), isMovie_(isMovie),
          marksCount_(marksCount), part_(part)
    {
        reading_.facts = facts;
    }

    void take(const AVPacket& packet, const std::optional<PacketClock::Times>& times)
    {
        if (packet.size == 0) {
            return;
        }
        const bool key = (packet.flags & AV_PKT_FLAG_KEY) != 0;
        const bool hidden = (packet.flags & AV_PKT_FLAG_DISCARD) != 0;
        const bool marked = marksCount_ && (packet.flags & AV_PKT_FLAG_CORRUPT) != 0;
        const bool second = !hidden && fields_.completes(packet);
        if (!hidden && times) {
            lastSeen_ = std::max(lastSeen_, times->shown + times->duration);
        }
        if (!isWanted(times)) {
            // What the part's pictures stand on is at hand.
            seesKey_ = seesKey_ || key;
            noteMark(packet, times);
            return;
        }
        const bool broken = marked || !check_.isPlausible({packet.data, static_cast<std::size_t>(packet.size)});
        if (broken) {
            reading_.broken.add(times ? std::optional(times->shown) : std::nullopt);
        }
        if (hidden) {
            ++reading_.hidden;
            seesKey_ = seesKey_ || key;
            return;
        }
        ++reading_.packets;
        reading_.pictures += second ? 0 : 1;
        if (!times) {
            return;
        }
        countBeforeKey(key, second, times->shown);
        shown_.push_back(times->shown);
        lastDuration_ = times->duration;
        reading_.end = std::max(reading_.end, times->shown + times->duration);
        noteMark(packet, times);
    }

    StreamReading finish()
    {
        if (!shown_.empty()) {
            std::ranges::sort(shown_);
            reading_.first = shown_.front();
            measureGaps();
            if (lastDuration_ <= 0) {
                reading_.end = std::max(reading_.end, shown_.back() + reading_.interval);
            }
            closeJoints();
        }
        limitSound();
        limitToPart();
        return std::move(reading_);
    }

    [[nodiscard]] const std::vector<Mark>& marks() const { return marks_; }
    [[nodiscard]] int index() const { return reading_.facts.index; }
    // Where what could be read of the whole stream ends.
    [[nodiscard]] double lastSeen() const { return lastSeen_; }

private:
    [[nodiscard]] bool isWanted(const std::optional<PacketClock::Times>& times) const
    {
        if (!part_ || reading_.facts.kind == Kind::Other) {
            return true;
        }
        if (!times) {
            return false;
        }
        return reading_.facts.kind == Kind::Picture
                   ? part_->holds(times->shown)
                   : times->shown < part_->to && times->shown + times->duration > part_->from;
    }

    void noteMark(const AVPacket& packet, const std::optional<PacketClock::Times>& times)
    {
        if (times && packet.pos >= 0) {
            marks_.push_back({packet.pos, times->shown});
        }
    }

    // Of the sound's first and last packet only a piece is in the part.
    void limitToPart()
    {
        if (part_ && reading_.facts.kind == Kind::Sound && reading_.packets > 0) {
            reading_.first = std::max(reading_.first, part_->from);
            reading_.end = std::min(reading_.end, part_->to);
        }
    }

    void countBeforeKey(bool key, bool second, double time)
    {
        if (reading_.facts.kind != Kind::Picture) {
            return;
        }
        if (key && !seesKey_) {
            seesKey_ = true;
            reading_.packetsBeforeKey = reading_.packets - 1;
            reading_.picturesBeforeKey = reading_.pictures - 1;
            reading_.firstKey = time;
            follows_ = true;
        } else if (key && !second) {
            follows_ = false;
        } else if (follows_ && time < reading_.firstKey) {
            ++reading_.packetsBeforeKey;
            reading_.picturesBeforeKey += second ? 0 : 1;
        }
    }

    void measureGaps()
    {
        std::vector<double> gaps;
        for (std::size_t i = 1; i < shown_.size(); ++i) {
            gaps.push_back(shown_[i] - shown_[i - 1]);
        }
        if (gaps.empty()) {
            return;
        }
        reading_.longestGap = *std::ranges::max_element(gaps);
        const auto middle = gaps.begin() + static_cast<std::ptrdiff_t>(gaps.size() / 2);
        std::ranges::nth_element(gaps, middle);
        reading_.interval = *middle;
    }

    // Libavformat puts the pieces of an edit list up to two pictures too early or too late at each joint; the list
    // itself says how long they are.
    void closeJoints()
    {
        const StreamFacts& facts = reading_.facts;
        if (!isMovie_ || part_ || facts.edits.pieces < 2 || facts.missingPackets.value_or(0) > 0 || !facts.duration) {
            return;
        }
        constexpr double mostPerJoint = 2; // pictures
        const double told = facts.start.value_or(0) + *facts.duration;
        if (std::abs(told - reading_.end) <= mostPerJoint * reading_.interval * (facts.edits.pieces - 1)) {
            reading_.end = told;
        }
    }

    // Coded sound comes in whole frames; a movie says how much of the first and the last of them is heard.
    void limitSound()
    {
        const StreamFacts& facts = reading_.facts;
        if (!isMovie_ || facts.kind != Kind::Sound || reading_.packets == 0) {
            return;
        }
        reading_.first = std::max(0.0, reading_.first);
        if (facts.duration && facts.start) {
            reading_.end = std::min(reading_.end, *facts.start + *facts.duration);
        }
    }

    StreamReading reading_;
    PacketCheck check_;
    FieldCounter fields_;
    bool isMovie_;
    bool marksCount_;
    std::optional<Span> part_;
    double lastSeen_ = 0;
    bool seesKey_ = false;
    bool follows_ = false; // the packets since the first key picture, up to the next one
    double lastDuration_ = 0;
    std::vector<double> shown_;
    std::vector<Mark> marks_;
};

class ClipReader
{
public:
    ClipReader(const ReadRequest& request, MediaInput& input) : request_(request), input_(input)
    {
        reading_.facts = sourceFactsOf(input, request.open.path);
        // Broadcasters write wrong lengths into transport streams, which libavformat takes for damage, as it takes the
        // short last frame of a recording; the scan of the stream itself knows better.
        const bool marksCount = !input.isContainer("mpegts");
        for (const StreamFacts& facts : reading_.facts.streams) {
            AVStream& stream = *input.context()->streams[facts.index];
            if (facts.kind == Kind::Other) {
                stream.discard = AVDISCARD_ALL;
            } else {
                readers_.emplace_back(stream, facts, input.isMovie(), marksCount, request.part);
            }
        }
    }

    Reading read()
    {
        readPackets();
        for (StreamReader& reader : readers_) {
            reading_.streams.push_back(reader.finish());
        }
        reading_.flaws.cutOff = reading_.facts.cutOff;
        if (input_.isContainer("avi")) {
            compareWithRiff();
        } else if (!reading_.facts.fragmented) {
            compareWithIndex();
        }
        if (input_.isContainer("mpegts")) {
            scanTransportStream();
        }
        if (request_.part) {
            limitFlaws(*request_.part);
        }
        return std::move(reading_);
    }

private:
    void readPackets()
    {
        PacketPointer packet(av_packet_alloc());
        if (!packet) {
            reading_.failure = "out of memory";
            return;
        }
        PacketClock clock(*input_.context(), reading_.facts.origin);
        for (;;) {
            input_.allowSeconds(request_.secondsPerPacket);
            const int error = av_read_frame(input_.context(), packet.get());
            if (error == AVERROR(EAGAIN)) {
                continue;
            }
            if (error < 0) {
                reading_.failure = error == AVERROR_EOF ? std::string() : avErrorText(error);
                break;
            }
            const auto reader = std::ranges::find(readers_, packet->stream_index, &StreamReader::index);
            if (reader != readers_.end()) {
                reader->take(*packet, clock.timesOf(*packet));
            }
            av_packet_unref(packet.get());
        }
        reading_.joins = clock.joins();
    }

    // A movie's index says beforehand what there is and where.
    void compareWithIndex()
    {
        for (StreamReading& stream : reading_.streams) {
            const StreamFacts& facts = stream.facts;
            if (facts.missingPackets.value_or(0) > 0) {
                reading_.flaws.cutOff = true;
                stream.promisedEnd = facts.start.value_or(0) + facts.duration.value_or(0);
            }
        }
    }

    // A header that promises more than there is says nothing by itself: recorders write it wrong. A chunk that reaches
    // beyond the end of the file, without the index that was to follow, says that the rest is missing; so does an index
    // of more than can be found, where what follows a damaged stretch moves up to what precedes it.
    void compareWithRiff()
    {
        const auto scan = scanRiff(request_.open.path);
        const bool isCut = scan && scan->cutOff && !scan->hasIndex;
        for (StreamReading& stream : reading_.streams) {
            const StreamFacts& facts = stream.facts;
            const std::int64_t missing = facts.packets.value_or(0) - stream.packets;
            if (isCut && facts.announced.value_or(0) > stream.end) {
                stream.promisedEnd = facts.announced;
            } else if (!isCut && missing > 0) {
                stream.promisedEnd = stream.end + static_cast<double>(missing) * stream.interval;
            }
            reading_.flaws.cutOff = reading_.flaws.cutOff || isCut || stream.promisedEnd;
        }
    }

    void scanTransportStream()
    {
        std::set<int> ids;
        for (const Kind kind : {Kind::Picture, Kind::Sound}) {
            const StreamFacts* const stream = reading_.facts.chosen(kind);
            if (stream != nullptr) {
                ids.insert(stream->id);
            }
        }
        const auto scan = scanTransport(request_.open.path, ids);
        if (!scan) {
            reading_.failure = reading_.failure.empty() ? scan.reason() : reading_.failure;
            return;
        }
        for (const auto* offsets : {&scan->breaks, &scan->skipped}) {
            for (const std::int64_t offset : *offsets) {
                const std::optional<double> time = timeAt(offset);
                if (!request_.part || mayLieIn(*request_.part, time)) {
                    reading_.flaws.lost.add(time);
                }
            }
        }
        reading_.flaws.lost.count += scan->marked;
        reading_.flaws.cutOff = scan->endsInside;
    }

    // The time of damage is that of the picture before it, which may be stored a while before it is shown.
    [[nodiscard]] static bool mayLieIn(const Span& part, const std::optional<double>& time)
    {
        constexpr double reordering = 0.5;
        return time.value_or(0) > part.from - reordering && time.value_or(0) < part.to + reordering;
    }

    // What is missing behind the part does not concern it.
    void limitFlaws(const Span& part)
    {
        bool reached = true;
        for (std::size_t i = 0; i < readers_.size(); ++i) {
            StreamReading& stream = reading_.streams[i];
            const bool all = readers_[i].lastSeen() >= part.to;
            reached = reached && all;
            if (stream.promisedEnd) {
                stream.promisedEnd = all ? std::nullopt : std::optional(std::min(*stream.promisedEnd, part.to));
            }
        }
        reading_.flaws.cutOff = reading_.flaws.cutOff && !reached;
        if (reached) {
            reading_.failure.clear();
        }
    }

    // When what stands there in the file is shown; nothing when no picture begins before.
    [[nodiscard]] std::optional<double> timeAt(std::int64_t offset) const
    {
        const StreamFacts* const picture = reading_.facts.chosen(Kind::Picture);
        if (picture == nullptr) {
            return std::nullopt;
        }
        const auto reader = std::ranges::find(readers_, picture->index, &StreamReader::index);
        std::optional<double> time;
        for (const Mark& mark : reader->marks()) {
            if (mark.offset > offset) {
                break;
            }
            time = mark.time;
        }
        return time;
    }

    const ReadRequest& request_;
    MediaInput& input_;
    Reading reading_;
    std::vector<StreamReader> readers_;
};

} // namespace

void Flaws::add(std::optional<double> time)
{
    ++count;
    if (time && (!first || *time < *first)) {
        first = time;
    }
}

const StreamReading* Reading::chosen(Kind kind) const
{
    const StreamFacts* const facts_of = facts.chosen(kind);
    if (facts_of == nullptr) {
        return nullptr;
    }
    const auto stream =
        std::ranges::find_if(streams, [&](const StreamReading& one) { return one.facts.index == facts_of->index; });
    return stream == streams.end() ? nullptr : &*stream;
}

Result<Reading> readClip(const ReadRequest& request)
{
    const auto input = MediaInput::open(request.open);
    if (!input) {
        return Failure{input.reason()};
    }
    return ClipReader(request, **input).read();
}

} // namespace tavrix::media
