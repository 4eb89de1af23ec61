// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/avowners.h"

#include <array>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

namespace tavrix::media
{

std::string avErrorText(int code)
{
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(code, text.data(), text.size());
    return text.data();
}

void silenceLibraries()
{
    av_log_set_level(AV_LOG_QUIET);
}

} // namespace tavrix::media
