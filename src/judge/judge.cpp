// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/judge.h"

#include <future>

namespace tavrix::judge
{

namespace
{

// An output may be in a container that is no source.
constexpr const char* outputDemuxers = "mov,mp4,m4a,3gp,3g2,mj2,avi,mpegts,mpeg,matroska,webm,dv,wav";

Verdict notJudged(const std::string& reason)
{
    return {Outcome::Failed, {{.cause = Cause::NotJudged, .text = reason}}};
}

std::optional<media::DecodedPictures> decoded(const media::ReadRequest& request, const media::StreamReading& stream)
{
    const auto pictures = media::decodePictures(request.open, stream.facts.index, request.part);
    return pictures ? std::optional(*pictures) : std::nullopt;
}

// Of copied pictures each packet is counted; a few behind the last key picture show that they go together.
constexpr int packetsOfCopies = 8;
constexpr int packetsOfEncodes = 120;

media::DecodedEnds ends(media::OpenRequest request, Way way)
{
    const int packets = way == Way::Copied ? packetsOfCopies : packetsOfEncodes;
    // The header of a movie or an AVI file says what the decoder needs.
    request.probesStreams = false;
    auto decodedEnds = media::decodeEnds(request, media::anyPicture, packets);
    if (!decodedEnds) {
        request.probesStreams = true;
        decodedEnds = media::decodeEnds(request, media::anyPicture, packets);
    }
    return decodedEnds ? *decodedEnds : media::DecodedEnds{};
}

media::ReadRequest outputRequest(const Case& given)
{
    media::ReadRequest output;
    output.open.path = given.output;
    output.open.demuxers = outputDemuxers;
    return output;
}

// `readsSource` gives what was read of the source; it runs beside the reading of the output.
Verdict judged(const Case& given, const media::ReadRequest& source, std::future<Result<media::Reading>> readsSource)
{
    const media::ReadRequest output = outputRequest(given);
    auto outputEnds = std::async([&] { return ends(output.open, given.asked.picture); });
    auto outputReading = media::readClip(output);
    auto sourceReading = readsSource.get();
    if (!sourceReading) {
        return notJudged(sourceReading.reason());
    }
    Evidence evidence{std::move(*sourceReading), {}, {}, {}, {}, given.writer};
    if (outputReading) {
        evidence.output = std::move(*outputReading);
    } else {
        evidence.output.failure = outputReading.reason();
    }
    if (given.asked.picture != Way::Left && evidence.output.chosen(media::Kind::Picture) != nullptr) {
        evidence.outputEnds = outputEnds.get();
    }
    if (pictureIsDoubtful(evidence, given.asked)) {
        evidence.sourcePictures = decoded(source, *evidence.source.chosen(media::Kind::Picture));
    }
    if (soundIsDoubtful(evidence, given.asked)) {
        evidence.sourceSound = decoded(source, *evidence.source.chosen(media::Kind::Sound));
    }
    return compare(evidence, given.asked);
}

} // namespace

Verdict judge(const Case& given)
{
    media::ReadRequest source;
    source.open.path = given.source;
    // Both at once: beside a rewrap the reading is no small part of the work.
    return judged(given, source, std::async([&source] { return media::readClip(source); }));
}

Verdict judgePart(const Case& given, const media::Span& part, media::Reading reading)
{
    media::ReadRequest source;
    source.open.path = given.source;
    source.part = part;
    return judged(given, source,
                  std::async(std::launch::deferred, [&reading] { return Result<media::Reading>(std::move(reading)); }));
}

} // namespace tavrix::judge
