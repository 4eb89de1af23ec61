// SPDX-License-Identifier: GPL-3.0-or-later
// What differs between the versions of the FFmpeg libraries for pictures made in this process.
#pragma once

#include "media/avowners.h"

#include <cstdint>
#include <string>

namespace tavrix::front
{

// Whether an analysis in this process is known to say and write what the ffmpeg of the loaded libraries' version does.
[[nodiscard]] bool isAnalysisProven();

// The layout that ffmpeg takes for sound whose file tells only the number of its channels; the stream has it from then
// on. "" where the file tells, or nothing can be guessed.
[[nodiscard]] std::string guessedLayout(AVStream& stream);
// Whether a stream says more beside its packets than the size of a decoder's buffer.
[[nodiscard]] bool hasUnusualSideData(const AVStream& stream);
// In the time base of its stream; 0 when it is not known.
[[nodiscard]] std::int64_t durationOf(const AVFrame& picture);
struct FieldOrder {
    bool interlaced = false;
    bool topFirst = false;
};
[[nodiscard]] FieldOrder fieldOrderOf(const AVFrame& picture);
// What an encoder says beside its packets, for the stream that has its parameters; false without memory.
[[nodiscard]] bool copyEncoderSideData(const AVCodecContext& encoder, AVStream& stream);
// The encoder's quantiser in a packet; a negative number when it does not tell.
[[nodiscard]] double quantiserOf(const AVPacket& packet);

} // namespace tavrix::front
