// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/decoderlog.h"

#include <atomic>
#include <cstdarg>
#include <string_view>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/log.h>
}

namespace tavrix::movencoder
{

namespace
{

std::atomic<std::int64_t> concealed = 0;

// Parsers speak with the voice of a codec that has not been chosen.
bool isDecoder(void* object)
{
    const AVClass* kind = object == nullptr ? nullptr : *static_cast<AVClass**>(object);
    if (kind != avcodec_get_class()) {
        return false;
    }
    const AVCodec* codec = static_cast<AVCodecContext*>(object)->codec;
    return codec == nullptr || av_codec_is_decoder(codec) != 0;
}

void listen(void* object, int, const char* format, va_list)
{
    if (isDecoder(object) && std::string_view(format).starts_with("concealing ")) {
        ++concealed;
    }
}

} // namespace

void listenToDecoders()
{
    av_log_set_callback(listen);
}

std::int64_t concealedPictures()
{
    return concealed;
}

} // namespace tavrix::movencoder
