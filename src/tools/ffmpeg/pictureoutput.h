// SPDX-License-Identifier: GPL-3.0-or-later
// Scaled pictures as YUV4MPEG or JPEG, with the words that ffmpeg has for them.
#pragma once

#include "media/avowners.h"
#include "tools/ffmpeg/analysistask.h"
#include "tools/ffmpeg/clippictures.h"
#include "tools/ffmpeg/libraryremarks.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

extern "C" {
#include <libswscale/swscale.h>
}

namespace tavrix::front
{

class PictureOutput
{
public:
    // For pictures like this one; null where the libraries cannot do it, or not surely as ffmpeg does.
    [[nodiscard]] static std::unique_ptr<PictureOutput> make(const AnalysisTask& task, const ClipPictures& clip,
                                                             const AVFrame& first);
    PictureOutput(const PictureOutput&) = delete;
    PictureOutput& operator=(const PictureOutput&) = delete;
    ~PictureOutput();

    // Writes a picture that many times; false when that fails.
    [[nodiscard]] bool write(const AVFrame& picture, std::int64_t times);
    // The last one again.
    [[nodiscard]] bool repeat(std::int64_t times);
    // Ends the file; false when that fails.
    [[nodiscard]] bool finish();

    // The file; complete after `finish`.
    [[nodiscard]] const std::string& bytes() const { return bytes_; }
    // What of it has been made so far.
    [[nodiscard]] std::int64_t bytesSoFar() const;
    // ffmpeg's description of an output of that name.
    [[nodiscard]] std::string description(LibraryRemarks& remarks, const std::string& name) const;
    // Bytes of the encoder's packets so far.
    [[nodiscard]] std::int64_t packetBytes() const { return packetBytes_; }
    // Of the last picture, as ffmpeg tells it.
    [[nodiscard]] double quantiser() const { return quantiser_; }
    [[nodiscard]] AVRational rate() const { return encoder_->framerate; }

private:
    struct ScalerDeleter {
        void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
    };
    struct OutputDeleter {
        void operator()(AVFormatContext* output) const;
    };

    PictureOutput() = default;
    [[nodiscard]] bool openScaler(const AnalysisTask& task, const AVFrame& first);
    [[nodiscard]] bool setColours(const AVFrame& first);
    [[nodiscard]] bool openEncoder(const AnalysisTask& task, const ClipPictures& clip, const AVFrame& first);
    [[nodiscard]] bool openFile(const ClipPictures& clip);
    [[nodiscard]] media::FramePointer scaled(const AVFrame& picture) const;
    [[nodiscard]] bool encode(const media::FramePointer& picture);

    bool jpeg_ = false;
    int width_ = 0;
    int height_ = 0;
    AVPixelFormat format_ = AV_PIX_FMT_NONE;
    bool passes_ = false; // nothing to scale or convert
    std::unique_ptr<SwsContext, ScalerDeleter> scaler_;
    media::CodecPointer encoder_;
    std::unique_ptr<AVFormatContext, OutputDeleter> file_;
    media::FramePointer last_;
    std::int64_t count_ = 0;
    std::int64_t packetBytes_ = 0;
    double quantiser_ = -0.0;
    std::string bytes_;
};

} // namespace tavrix::front
