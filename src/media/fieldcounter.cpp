// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/fieldcounter.h"

namespace tavrix::media
{

FieldCounter::FieldCounter(const AVCodecParameters& parameters, bool isInterlaced)
{
    if (!isInterlaced || parameters.codec_id != AV_CODEC_ID_H264) {
        return;
    }
    codec_.reset(avcodec_alloc_context3(nullptr));
    if (!codec_ || avcodec_parameters_to_context(codec_.get(), &parameters) < 0) {
        return;
    }
    parser_.reset(av_parser_init(parameters.codec_id));
    if (parser_) {
        parser_->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    }
}

bool FieldCounter::completes(const AVPacket& packet)
{
    if (!parser_) {
        return false;
    }
    std::uint8_t* out = nullptr;
    int size = 0;
    av_parser_parse2(parser_.get(), codec_.get(), &out, &size, packet.data, packet.size, packet.pts, packet.dts,
                     packet.pos);
    const AVPictureStructure structure = parser_->picture_structure;
    const bool field = structure == AV_PICTURE_STRUCTURE_TOP_FIELD || structure == AV_PICTURE_STRUCTURE_BOTTOM_FIELD;
    const bool second = field && waiting_ != AV_PICTURE_STRUCTURE_UNKNOWN && waiting_ != structure;
    waiting_ = field && !second ? structure : AV_PICTURE_STRUCTURE_UNKNOWN;
    return second;
}

} // namespace tavrix::media
