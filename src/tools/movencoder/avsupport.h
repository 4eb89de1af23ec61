// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Ownership of the FFmpeg libraries' objects, and what differs between their versions.

#include "media/avowners.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

extern "C" {
#include <libswscale/swscale.h>
}

namespace tavrix::movencoder
{

using media::avErrorText;
using CodecPtr = media::CodecPointer;
using FramePtr = media::FramePointer;
using PacketPtr = media::PacketPointer;
struct ScalerDeleter {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
using ScalerPtr = std::unique_ptr<SwsContext, ScalerDeleter>;

// How the lines of a picture belong to its fields.
struct Fields {
    bool interlaced = false;
    bool topFirst = false;
};
[[nodiscard]] Fields fieldsOf(const AVFrame& picture);
void setFields(AVFrame& picture, Fields fields);

// In the time base of the stream; 0 when it is not known.
[[nodiscard]] std::int64_t durationOf(const AVFrame& picture);

using DisplayMatrix = std::array<std::int32_t, 9>;
// Nothing for a stream that is shown as it is.
[[nodiscard]] std::optional<DisplayMatrix> displayMatrixOf(const AVStream& stream);
// False without memory.
[[nodiscard]] bool setDisplayMatrix(AVStream& stream, const DisplayMatrix& matrix);

#if LIBAVFORMAT_VERSION_INT >= AV_VERSION_INT(61, 0, 100)
using WrittenBytes = const std::uint8_t*;
#else
using WrittenBytes = std::uint8_t*;
#endif

} // namespace tavrix::movencoder
