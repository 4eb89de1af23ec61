// SPDX-License-Identifier: GPL-3.0-or-later
// Two fields of one picture, in packets of their own.
#pragma once

#include "media/avowners.h"

namespace tavrix::media
{

struct ParserDeleter {
    void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
};

// Tells which packets bring the second field of a picture. It costs a look at each packet's header and is done only
// where asked for.
class FieldCounter
{
public:
    FieldCounter(const AVCodecParameters& parameters, bool isInterlaced);
    // Whether the packet completes the picture of the packet before it. Packets come in the order of the file.
    [[nodiscard]] bool completes(const AVPacket& packet);

private:
    std::unique_ptr<AVCodecParserContext, ParserDeleter> parser_; // null: each packet is a picture
    CodecPointer codec_;
    AVPictureStructure waiting_ = AV_PICTURE_STRUCTURE_UNKNOWN; // the first field that has no second one yet
};

} // namespace tavrix::media
