#pragma once

#include "tools/movencoder/avsupport.h"
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
    bool interlaced = false; // the fields of the source survive: no change of height
    bool topFieldFirst = false;
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
    AVChromaLocation chromaLocation = AVCHROMA_LOC_UNSPECIFIED;
    AVRational timeBase{1, 25};
};

class PictureEncoder
{
public:
    virtual ~PictureEncoder() = default;
    // The pixel format of the pictures that encode() takes.
    [[nodiscard]] virtual AVPixelFormat pixelFormat() const = 0;
    // Fills the codec fields of the output's stream.
    [[nodiscard]] virtual bool describe(AVCodecParameters& parameters, std::string& error) const = 0;
    // Replaces `bytes` by the coded picture. One encoder serves one thread.
    [[nodiscard]] virtual bool encode(const AVFrame& picture, bool interlaced, std::vector<std::uint8_t>& bytes,
                                      std::string& error) = 0;
};

// Null, with the reason in `error`, when the encoder cannot be had for these pictures.
[[nodiscard]] std::unique_ptr<PictureEncoder> makePictureEncoder(Format format, const FormatSettings& settings,
                                                                 const PictureFacts& facts, std::string& error);

} // namespace tavrix::movencoder
