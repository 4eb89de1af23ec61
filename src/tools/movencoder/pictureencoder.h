// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sys/result.h"
#include "tools/movencoder/avsupport.h"
#include "tools/movencoder/colourtags.h"
#include "tools/movencoder/geometry.h"
#include "tools/movencoder/settings.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The two picture codecs behind one interface. Both code every picture by itself, so that any number of encoders can
// work side by side.
namespace tavrix::movencoder
{

// What an encoder and the output's stream must know of the pictures, beside the settings.
struct PictureFacts {
    Fit fit{};
    Fields fields; // interlaced only where the fields of the source survive: no change of height
    ColourTags colours;
    AVChromaLocation chromaLocation = AVCHROMA_LOC_UNSPECIFIED;
    AVRational timeBase{1, 25};
};

class PictureEncoder
{
public:
    virtual ~PictureEncoder() = default;
    // The pixel format of the pictures that encode() takes.
    [[nodiscard]] virtual AVPixelFormat pixelFormat() const = 0;
    // What the output's stream says of the codec, for players that show a name.
    [[nodiscard]] virtual std::string name() const = 0;
    // Fills the codec fields of the output's stream.
    virtual Result<void> describe(AVCodecParameters& parameters) const = 0;
    // Replaces `bytes` by the coded picture. One encoder serves one thread.
    virtual Result<void> encode(const AVFrame& picture, Fields fields, std::vector<std::uint8_t>& bytes) = 0;
};

// The encoder for these pictures, or why it cannot be had.
[[nodiscard]] Result<std::unique_ptr<PictureEncoder>> makePictureEncoder(Format format, const FormatSettings& settings,
                                                                         const PictureFacts& facts);

} // namespace tavrix::movencoder
