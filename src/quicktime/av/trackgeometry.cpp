// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/trackgeometry.h"

#include "quicktime/model/componentregistry.h"

#include <algorithm>

namespace tavrix
{

namespace
{

MediaSize pixels(const FixedSize& size)
{
    return {size.width / 65536.0, size.height / 65536.0};
}

double pixelAspect(const SourceTrack& track)
{
    const DescriptionAtom& description = track.atoms.description;
    if (description.pixelAspectH != 0 && description.pixelAspectV != 0) {
        return static_cast<double>(description.pixelAspectH) / description.pixelAspectV;
    }
    return track.stream ? track.stream->pixelAspect : 1.0;
}

MediaSize cleanSize(const SourceTrack& track)
{
    if (track.atoms.clef) {
        return pixels(*track.atoms.clef);
    }
    const DescriptionAtom& told = track.atoms.description;
    const MediaSize stored = told.cleanWidth > 0 ? MediaSize{told.cleanWidth, told.cleanHeight} : encodedSize(track);
    return {stored.width * pixelAspect(track), stored.height};
}

bool isPicture(const SourceTrack& track)
{
    return track.stream ? track.stream->type == AVMEDIA_TYPE_VIDEO : track.atoms.mediaType == "vide";
}

quint32 codeIn(const AVCodecTag* table, AVCodecID codec)
{
    unsigned int tag = 0;
    const AVCodecTag* const tables[] = {table, nullptr};
    return av_codec_get_tag2(tables, codec, &tag) == 0 ? 0 : fourCharCodeOfTag(tag);
}

quint32 codeOfPicture(const StreamFacts& stream, bool isAvi)
{
    if (isAvi && stream.tag != 0) {
        return stream.tag;
    }
    if (const quint32 code = codeIn(avformat_get_mov_video_tags(), stream.codec); code != 0) {
        return code;
    }
    return stream.tag != 0 ? stream.tag : codeIn(avformat_get_riff_video_tags(), stream.codec);
}

quint32 codeOfSound(const StreamFacts& stream)
{
    constexpr quint32 waveFormat = fourCharCode("ms  ") & 0xFFFF0000U; // with the format number of a WAVE header
    if (stream.codec == AV_CODEC_ID_AC3) {
        return waveFormat | 0x2000U;
    }
    if (stream.codec == AV_CODEC_ID_WMAV2) {
        return fourCharCode("wma2");
    }
    if (const quint32 code = codeIn(avformat_get_mov_audio_tags(), stream.codec); code != 0) {
        return code;
    }
    const quint32 number = fourCharCodeOfTag(stream.tag);
    return number <= 0xFFFFU && number != 0 ? waveFormat | number : stream.tag;
}

// Formats of other containers by the code that a QuickTime library gives them; 0 when there is none.
quint32 codeOfStream(const StreamFacts& stream, bool isAvi)
{
    return stream.type == AVMEDIA_TYPE_VIDEO ? codeOfPicture(stream, isAvi) : codeOfSound(stream);
}

void takeSoundFacts(const StreamFacts& stream, SampleDescription& description)
{
    if (stream.channels > 0) {
        description.channels = stream.channels;
    }
    if (stream.sampleRate > 0) {
        description.sampleRateFixed = static_cast<quint64>(stream.sampleRate) << 16;
    }
}

} // namespace

MediaSize encodedSize(const SourceTrack& track)
{
    const DescriptionAtom& description = track.atoms.description;
    if (description.width > 0 && description.height > 0) {
        return {static_cast<double>(description.width), static_cast<double>(description.height)};
    }
    if (track.stream && track.stream->type == AVMEDIA_TYPE_VIDEO) {
        return {static_cast<double>(track.stream->width), static_cast<double>(track.stream->height)};
    }
    return {};
}

MediaSize apertureSize(const SourceTrack& track, ApertureMode mode)
{
    const MediaSize encoded = encodedSize(track);
    switch (mode) {
    case ApertureMode::Classic:
        break;
    case ApertureMode::Clean:
        return cleanSize(track);
    case ApertureMode::Production:
        return track.atoms.prof ? pixels(*track.atoms.prof)
                                : MediaSize{encoded.width * pixelAspect(track), encoded.height};
    case ApertureMode::EncodedPixels:
        return track.atoms.enof ? pixels(*track.atoms.enof) : encoded;
    }
    return shownSize(track);
}

MediaSize shownSize(const SourceTrack& track)
{
    if (track.atoms.clef) {
        return pixels(*track.atoms.clef);
    }
    const MediaSize header = pixels(track.atoms.size);
    if (header.width > 0 && header.height > 0) {
        return header;
    }
    return isPicture(track) ? cleanSize(track) : MediaSize();
}

DisplayBox mappedBox(const MediaSize& size, const AtomMatrix& matrix)
{
    return mappedBox(DisplayBox{0, 0, size.width, size.height}, matrix);
}

DisplayBox mappedBox(const DisplayBox& box, const AtomMatrix& matrix)
{
    const auto mapX = [&matrix](double x, double y) {
        return (matrix.a * x + matrix.c * y + matrix.tx) / 65536.0;
    };
    const auto mapY = [&matrix](double x, double y) {
        return (matrix.b * x + matrix.d * y + matrix.ty) / 65536.0;
    };
    const auto [left, right] = std::minmax(
        {mapX(box.left, box.top), mapX(box.right, box.top), mapX(box.left, box.bottom), mapX(box.right, box.bottom)});
    const auto [top, bottom] = std::minmax(
        {mapY(box.left, box.top), mapY(box.right, box.top), mapY(box.left, box.bottom), mapY(box.right, box.bottom)});
    return {left, top, right, bottom};
}

DisplayBox unitedBox(const DisplayBox& a, const DisplayBox& b)
{
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

SampleDescription describedSample(const SourceTrack& track, bool isAvi)
{
    SampleDescription description;
    if (!track.fromAtoms) {
        description.dataFormat = track.stream ? codeOfStream(*track.stream, isAvi) : 0;
        description.error = description.dataFormat == 0;
        if (track.stream && track.stream->type == AVMEDIA_TYPE_AUDIO) {
            takeSoundFacts(*track.stream, description);
            description.sampleSize = track.stream->bits;
        }
        return description;
    }
    const DescriptionAtom& atom = track.atoms.description;
    description.error = !atom.present;
    description.dataFormat = atom.format;
    description.channels = atom.channels;
    description.sampleSize = atom.sampleSize;
    description.sampleRateFixed = atom.sampleRateFixed;
    // Writers of AAC put fixed values into these fields; only the decoder knows.
    if (atom.format == atomType("mp4a") && track.stream) {
        takeSoundFacts(*track.stream, description);
    }
    return description;
}

} // namespace tavrix
