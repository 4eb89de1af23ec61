// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/sourcefacts.h"

#include "media/avversions.h"
#include "media/mediainput.h"
#include "media/movieatoms.h"
#include "media/turning.h"
#include "sys/descriptor.h"

#include <algorithm>
#include <cmath>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace tavrix::media
{

namespace
{

constexpr std::uint32_t encryptedPictures = atomType("encv");
constexpr std::uint32_t encryptedSound = atomType("enca");
constexpr std::uint32_t protectedPictures = atomType("drmi");
constexpr std::uint32_t protectedSound = atomType("drms");

Ratio ratio(AVRational value)
{
    return value.num > 0 && value.den > 0 ? Ratio{value.num, value.den} : Ratio{};
}

double seconds(std::int64_t value, AVRational base)
{
    return static_cast<double>(value) * av_q2d(base);
}

Kind kindOf(AVMediaType type)
{
    switch (type) {
    case AVMEDIA_TYPE_VIDEO:
        return Kind::Picture;
    case AVMEDIA_TYPE_AUDIO:
        return Kind::Sound;
    default:
        return Kind::Other;
    }
}

// Nothing that the library has no word for, or that says "unspecified".
std::string known(const char* name, bool told)
{
    return told && name != nullptr ? name : "";
}

Colour colourOf(const AVCodecParameters& parameters)
{
    return {
        known(av_color_primaries_name(parameters.color_primaries), parameters.color_primaries != AVCOL_PRI_UNSPECIFIED),
        known(av_color_transfer_name(parameters.color_trc), parameters.color_trc != AVCOL_TRC_UNSPECIFIED),
        known(av_color_space_name(parameters.color_space), parameters.color_space != AVCOL_SPC_UNSPECIFIED)};
}

bool isInterlaced(AVFieldOrder order)
{
    return order != AV_FIELD_UNKNOWN && order != AV_FIELD_PROGRESSIVE;
}

void readPictureFacts(AVFormatContext& context, AVStream& stream, StreamFacts& facts)
{
    const AVCodecParameters& parameters = *stream.codecpar;
    facts.width = parameters.width;
    facts.height = parameters.height;
    facts.pixelAspect = ratio(av_guess_sample_aspect_ratio(&context, &stream, nullptr));
    if (const auto matrix = displayMatrixOf(stream)) {
        facts.turning = turningOf((*matrix)[0], (*matrix)[1], (*matrix)[3], (*matrix)[4]);
    }
    facts.meanRate = ratio(stream.avg_frame_rate);
    facts.nominalRate = ratio(stream.r_frame_rate);
    facts.fullRange = parameters.color_range == AVCOL_RANGE_JPEG;
    facts.colour = colourOf(parameters);
    facts.interlaced = isInterlaced(parameters.field_order);
}

void readIndexFacts(AVStream& stream, std::int64_t bytes, StreamFacts& facts)
{
    const int size = indexSize(stream);
    std::int64_t shown = 0;
    std::int64_t missing = 0;
    bool shownBefore = false;
    bool hiddenSinceShown = false;
    for (int number = 0; number < size; ++number) {
        const AVIndexEntry* const entry = indexEntry(stream, number);
        missing += entry->pos > bytes - entry->size ? 1 : 0;
        if ((entry->flags & AVINDEX_DISCARD_FRAME) != 0) {
            facts.edits.hidesStart = facts.edits.hidesStart || !shownBefore;
            hiddenSinceShown = shownBefore;
        } else {
            ++shown;
            shownBefore = true;
            hiddenSinceShown = false;
        }
    }
    facts.packets = size;
    facts.shownPackets = shown;
    facts.missingPackets = missing;
    facts.edits.endsBeforeMedia = hiddenSinceShown;
}

StreamFacts streamFacts(const MediaInput& input, AVStream& stream, const SourceFacts& source)
{
    const AVCodecParameters& parameters = *stream.codecpar;
    StreamFacts facts;
    facts.index = stream.index;
    facts.id = stream.id;
    facts.kind = kindOf(parameters.codec_type);
    facts.codec = avcodec_get_name(parameters.codec_id);
    facts.byDefault = (stream.disposition & AV_DISPOSITION_DEFAULT) != 0;
    if (stream.start_time != AV_NOPTS_VALUE) {
        facts.start = seconds(stream.start_time, stream.time_base) - source.origin;
    }
    if (stream.duration > 0) {
        facts.duration = seconds(stream.duration, stream.time_base);
    }
    if (facts.kind == Kind::Picture) {
        readPictureFacts(*input.context(), stream, facts);
    }
    if (facts.kind == Kind::Sound) {
        facts.channels = channelsOf(parameters);
        facts.sampleRate = parameters.sample_rate;
        facts.layout = layoutOf(parameters);
    }
    if (input.isContainer("avi") && stream.nb_frames > 0) {
        facts.announced = seconds(stream.nb_frames, stream.time_base);
    }
    // Other containers' indexes grow while packets are read: they promise nothing.
    if ((source.isMovie || input.isContainer("avi")) && indexSize(stream) > 0) {
        readIndexFacts(stream, source.bytes, facts);
    }
    return facts;
}

bool isProtected(std::uint32_t format)
{
    return format == encryptedPictures || format == encryptedSound || format == protectedPictures ||
           format == protectedSound;
}

void readTrackFacts(const TrackAtoms& track, std::uint32_t movieTimeScale, StreamFacts& facts)
{
    facts.external = !track.selfContained;
    facts.encrypted = isProtected(track.description.format);
    facts.edits.present = track.hasEdits;
    if (!track.hasEdits) {
        return;
    }
    facts.edits.pieces = 0;
    for (const EditEntry& edit : track.edits) {
        const bool empty = edit.mediaTime < 0;
        if (!empty) {
            ++facts.edits.pieces;
        } else if (facts.edits.pieces == 0 && movieTimeScale > 0) {
            facts.edits.emptyStart += double(edit.duration) / double(movieTimeScale);
        }
    }
}

// What libavformat applies without telling. A movie whose header cannot be read here keeps the facts it has.
void readMovieFacts(const std::string& path, SourceFacts& source)
{
    const Descriptor file = openFile(path.c_str(), O_RDONLY);
    if (!file.isOpen()) {
        return;
    }
    const MovieAtoms movie = readMovieAtoms(readAtOf(file.get()), std::uint64_t(source.bytes));
    source.fragmented = movie.fragmented;
    source.cutOff = movie.fragmented && topLevelAtoms(readAtOf(file.get()), std::uint64_t(source.bytes)).damaged;
    for (const TrackAtoms& track : movie.tracks) {
        const auto stream = std::ranges::find(source.streams, int(track.id), &StreamFacts::id);
        if (stream != source.streams.end()) {
            readTrackFacts(track, movie.timeScale, *stream);
        }
    }
}

} // namespace

const StreamFacts* SourceFacts::chosen(Kind kind) const
{
    // ffmpeg prefers what is marked over what is big, as long as it is not thousands of times as big.
    constexpr std::int64_t markWeight = 5000000;
    const StreamFacts* best = nullptr;
    std::int64_t bestScore = -1;
    for (const StreamFacts& stream : streams) {
        const std::int64_t size =
            kind == Kind::Picture ? std::int64_t(stream.width) * stream.height : std::int64_t(stream.channels);
        const std::int64_t score = size + (stream.byDefault ? markWeight : 0);
        if (stream.kind == kind && score > bestScore) {
            best = &stream;
            bestScore = score;
        }
    }
    return best;
}

Result<SourceFacts> readSourceFacts(const std::string& path, int limit)
{
    OpenRequest request;
    request.path = path;
    request.seconds = limit;
    const auto opened = MediaInput::open(request);
    if (!opened) {
        return Failure{opened.reason()};
    }
    return sourceFactsOf(**opened, path);
}

SourceFacts sourceFactsOf(const MediaInput& input, const std::string& path)
{
    AVFormatContext& context = *input.context();
    SourceFacts facts;
    facts.container = context.iformat->name;
    facts.isMovie = input.isMovie();
    facts.bytes = std::max<std::int64_t>(0, context.pb == nullptr ? 0 : avio_size(context.pb));
    // A movie's timeline begins at 0; other containers carry on a recorder's clock.
    if (!facts.isMovie && context.start_time != AV_NOPTS_VALUE) {
        facts.origin = seconds(context.start_time, AV_TIME_BASE_Q);
    }
    if (context.duration > 0) {
        facts.duration = seconds(context.duration, AV_TIME_BASE_Q);
    }
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        AVStream& stream = *context.streams[i];
        if ((stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0) {
            facts.streams.push_back(streamFacts(input, stream, facts));
        }
    }
    if (facts.isMovie) {
        readMovieFacts(path, facts);
    }
    return facts;
}

} // namespace tavrix::media
