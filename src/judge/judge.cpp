#include "judge/judge.h"

namespace tavrix::judge
{

namespace
{

// An output may be in a container that is no source.
constexpr const char* outputDemuxers = "mov,mp4,m4a,3gp,3g2,mj2,avi,mpegts,mpeg,matroska,webm,dv";

Verdict notJudged(const std::string& reason)
{
    return {Outcome::Failed, {{.cause = Cause::NotJudged, .text = reason}}};
}

std::optional<media::DecodedPictures> decoded(const media::OpenRequest& request, const media::StreamReading& stream)
{
    const auto pictures = media::decodePictures(request, stream.facts.index);
    return pictures ? std::optional(*pictures) : std::nullopt;
}

} // namespace

Verdict judge(const Case& given)
{
    media::ReadRequest source;
    source.open.path = given.source;
    media::ReadRequest output;
    output.open.path = given.output;
    output.open.demuxers = outputDemuxers;
    auto sourceReading = media::readClip(source);
    if (!sourceReading) {
        return notJudged(sourceReading.reason());
    }
    auto outputReading = media::readClip(output);
    Evidence evidence{std::move(*sourceReading), {}, {}, {}, {}, given.writer};
    if (outputReading) {
        evidence.output = std::move(*outputReading);
    } else {
        evidence.output.failure = outputReading.reason();
    }
    const media::StreamReading* const written = evidence.output.chosen(media::Kind::Picture);
    if (written != nullptr && given.asked.picture != Way::Left) {
        const auto ends = media::decodeEnds(output.open, written->facts.index);
        evidence.outputEnds = ends ? *ends : media::DecodedEnds{};
    }
    if (pictureIsDoubtful(evidence, given.asked)) {
        evidence.sourcePictures = decoded(source.open, *evidence.source.chosen(media::Kind::Picture));
    }
    if (soundIsDoubtful(evidence, given.asked)) {
        evidence.sourceSound = decoded(source.open, *evidence.source.chosen(media::Kind::Sound));
    }
    return compare(evidence, given.asked);
}

} // namespace tavrix::judge
