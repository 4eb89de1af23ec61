// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/pictureoutput.h"

#include "tools/ffmpeg/analysisversions.h"

#include <algorithm>
#include <array>

extern "C" {
#include <libavutil/cpu.h>
#include <libavutil/dict.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace tavrix::front
{

namespace
{

using media::FramePointer;
using media::PacketPointer;

bool isFullRange(AVPixelFormat format)
{
    return format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVJ422P;
}

// The nearest format of JPEG pictures; none for sources that cameras do not write.
AVPixelFormat jpegFormat(AVPixelFormat source)
{
    switch (source) {
    case AV_PIX_FMT_YUV420P:
    case AV_PIX_FMT_YUVJ420P:
        return AV_PIX_FMT_YUVJ420P;
    case AV_PIX_FMT_YUV422P:
    case AV_PIX_FMT_YUVJ422P:
        return AV_PIX_FMT_YUVJ422P;
    default:
        return AV_PIX_FMT_NONE;
    }
}

// Tags of the whole clip that say nothing of what is made from it.
void copyClipTags(AVFormatContext& to, const AVFormatContext& from)
{
    av_dict_copy(&to.metadata, from.metadata, AV_DICT_DONT_OVERWRITE);
    for (const char* key : {"creation_time", "company_name", "product_name", "product_version"}) {
        av_dict_set(&to.metadata, key, nullptr, 0);
    }
}

void setChromaPlace(SwsContext* scaler, const char* option, AVPixelFormat format)
{
    // In the middle between two lines, by convention.
    if (format == AV_PIX_FMT_YUV420P) {
        av_opt_set_int(scaler, option, 128, 0);
    }
}

} // namespace

void PictureOutput::OutputDeleter::operator()(AVFormatContext* output) const
{
    if (output->pb != nullptr) {
        std::uint8_t* bytes = nullptr;
        avio_close_dyn_buf(output->pb, &bytes);
        av_free(bytes);
    }
    avformat_free_context(output);
}

PictureOutput::~PictureOutput() = default;

std::unique_ptr<PictureOutput> PictureOutput::make(const AnalysisTask& task, const ClipPictures& clip,
                                                   const AVFrame& first)
{
    std::unique_ptr<PictureOutput> output(new PictureOutput);
    output->jpeg_ = task.kind == AnalysisTask::Kind::Thumbnail;
    const bool opened =
        output->openScaler(task, first) && output->openEncoder(task, clip, first) && output->openFile(clip);
    return opened ? std::move(output) : nullptr;
}

// The source's own matrix and range on both sides, as ffmpeg's scaling filter sets them.
bool PictureOutput::setColours(const AVFrame& first)
{
    int* from = nullptr;
    int* to = nullptr;
    int fromFull = 0;
    int toFull = 0;
    int brightness = 0;
    int contrast = 0;
    int saturation = 0;
    SwsContext* const scaler = scaler_.get();
    sws_getColorspaceDetails(scaler, &from, &fromFull, &to, &toFull, &brightness, &contrast, &saturation);
    if (first.color_range != AVCOL_RANGE_UNSPECIFIED) {
        fromFull = first.color_range == AVCOL_RANGE_JPEG ? 1 : 0;
    }
    const int* const matrix = sws_getCoefficients(first.colorspace);
    return sws_setColorspaceDetails(scaler, matrix, fromFull, matrix, toFull, brightness, contrast, saturation) >= 0;
}

bool PictureOutput::openScaler(const AnalysisTask& task, const AVFrame& first)
{
    const auto source = static_cast<AVPixelFormat>(first.format);
    width_ = task.width;
    height_ = task.height;
    if (jpegFormat(source) == AV_PIX_FMT_NONE) {
        return false;
    }
    format_ = jpeg_ ? jpegFormat(source) : AV_PIX_FMT_YUV420P;
    passes_ = first.width == width_ && first.height == height_ && source == format_;
    if (passes_) {
        return true;
    }
    scaler_.reset(sws_alloc_context());
    if (!scaler_) {
        return false;
    }
    SwsContext* const scaler = scaler_.get();
    const std::array<std::pair<const char*, int>, 6> shape = {{{"srcw", first.width},
                                                               {"srch", first.height},
                                                               {"src_format", source},
                                                               {"dstw", width_},
                                                               {"dsth", height_},
                                                               {"dst_format", format_}}};
    for (const auto& [option, value] : shape) {
        av_opt_set_int(scaler, option, value, 0);
    }
    av_opt_set_int(scaler, "threads", av_cpu_count(), 0);
    setChromaPlace(scaler, "src_v_chr_pos", source);
    setChromaPlace(scaler, "dst_v_chr_pos", format_);
    return sws_init_context(scaler, nullptr, nullptr) >= 0 && setColours(first);
}

bool PictureOutput::openEncoder(const AnalysisTask& task, const ClipPictures& clip, const AVFrame& first)
{
    const AVCodec* const codec = avcodec_find_encoder(jpeg_ ? AV_CODEC_ID_MJPEG : AV_CODEC_ID_WRAPPED_AVFRAME);
    encoder_.reset(codec == nullptr ? nullptr : avcodec_alloc_context3(codec));
    if (!encoder_) {
        return false;
    }
    const FramePointer shape = scaled(first);
    if (!shape) {
        return false;
    }
    AVCodecContext& encoder = *encoder_;
    encoder.width = task.width;
    encoder.height = task.height;
    encoder.pix_fmt = format_;
    encoder.time_base = av_inv_q(clip.rate());
    encoder.framerate = clip.rate();
    encoder.sample_aspect_ratio = shape->sample_aspect_ratio;
    encoder.bits_per_raw_sample = std::min(clip.bitsPerSample(), 8);
    encoder.color_range = shape->color_range;
    encoder.color_primaries = shape->color_primaries;
    encoder.color_trc = shape->color_trc;
    encoder.colorspace = shape->colorspace;
    encoder.chroma_sample_location = shape->chroma_location;
    const FieldOrder fields = fieldOrderOf(*shape);
    encoder.field_order = AV_FIELD_PROGRESSIVE;
    if (fields.interlaced && jpeg_) {
        encoder.field_order = fields.topFirst ? AV_FIELD_TT : AV_FIELD_BB;
    } else if (fields.interlaced) {
        encoder.field_order = fields.topFirst ? AV_FIELD_TB : AV_FIELD_BT;
    }
    encoder.thread_count = 0; // as ffmpeg asks for; a JPEG encoder takes one then
    return avcodec_open2(&encoder, codec, nullptr) >= 0;
}

bool PictureOutput::openFile(const ClipPictures& clip)
{
    AVFormatContext* context = nullptr;
    if (avformat_alloc_output_context2(&context, nullptr, jpeg_ ? "image2" : "yuv4mpegpipe", "out") < 0) {
        return false;
    }
    file_.reset(context);
    AVStream* const stream = avformat_new_stream(context, nullptr);
    if (stream == nullptr || avcodec_parameters_from_context(stream->codecpar, encoder_.get()) < 0 ||
        !copyEncoderSideData(*encoder_, *stream)) {
        return false;
    }
    const AVStream& source = clip.stream();
    stream->time_base = encoder_->time_base;
    stream->avg_frame_rate = encoder_->framerate;
    stream->sample_aspect_ratio = encoder_->sample_aspect_ratio;
    stream->disposition = source.disposition;
    copyClipTags(*context, clip.container());
    av_dict_copy(&stream->metadata, source.metadata, AV_DICT_DONT_OVERWRITE);
    av_dict_set(&stream->metadata, "encoder", nullptr, 0);
    const std::string encoder = std::string(LIBAVCODEC_IDENT) + ' ' + encoder_->codec->name;
    av_dict_set(&stream->metadata, "encoder", encoder.c_str(), 0);
    if (!jpeg_ && avio_open_dyn_buf(&context->pb) < 0) {
        context->pb = nullptr;
        return false;
    }
    // A picture's file is its packet; nothing is written here.
    return avformat_write_header(context, nullptr) >= 0;
}

FramePointer PictureOutput::scaled(const AVFrame& picture) const
{
    if (passes_) {
        return FramePointer(av_frame_clone(&picture));
    }
    FramePointer frame(av_frame_alloc());
    if (!frame) {
        return nullptr;
    }
    frame->width = width_;
    frame->height = height_;
    frame->format = format_;
    if (av_frame_get_buffer(frame.get(), 0) < 0 || av_frame_copy_props(frame.get(), &picture) < 0 ||
        sws_scale_frame(scaler_.get(), frame.get(), &picture) < 0) {
        return nullptr;
    }
    frame->color_range = isFullRange(format_) ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    if (picture.sample_aspect_ratio.num != 0) {
        frame->sample_aspect_ratio =
            av_mul_q({height_ * picture.width, width_ * picture.height}, picture.sample_aspect_ratio);
    }
    return frame;
}

bool PictureOutput::write(const AVFrame& picture, std::int64_t times)
{
    last_ = scaled(picture);
    return last_ && repeat(times);
}

bool PictureOutput::repeat(std::int64_t times)
{
    for (std::int64_t i = 0; i < times; ++i) {
        if (!last_ || !encode(FramePointer(av_frame_clone(last_.get())))) {
            return false;
        }
    }
    return true;
}

bool PictureOutput::encode(const FramePointer& picture)
{
    const PacketPointer packet(av_packet_alloc());
    if (!picture || !packet) {
        return false;
    }
    picture->pts = count_++;
    picture->quality = encoder_->global_quality;
    picture->pict_type = AV_PICTURE_TYPE_NONE;
    if (avcodec_send_frame(encoder_.get(), picture.get()) < 0 ||
        avcodec_receive_packet(encoder_.get(), packet.get()) < 0) {
        return false;
    }
    packetBytes_ += packet->size;
    quantiser_ = quantiserOf(*packet);
    if (jpeg_) {
        bytes_.assign(reinterpret_cast<const char*>(packet->data), static_cast<std::size_t>(packet->size));
        return true;
    }
    packet->stream_index = 0;
    av_packet_rescale_ts(packet.get(), encoder_->time_base, file_->streams[0]->time_base);
    return av_write_frame(file_.get(), packet.get()) >= 0;
}

bool PictureOutput::finish()
{
    if (jpeg_) {
        return !bytes_.empty();
    }
    if (av_write_trailer(file_.get()) < 0) {
        return false;
    }
    std::uint8_t* bytes = nullptr;
    const int size = avio_close_dyn_buf(file_->pb, &bytes);
    file_->pb = nullptr;
    if (size > 0) {
        bytes_.assign(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
    }
    av_free(bytes);
    return size > 0;
}

std::int64_t PictureOutput::bytesSoFar() const
{
    return file_->pb == nullptr ? static_cast<std::int64_t>(bytes_.size()) : avio_tell(file_->pb);
}

std::string PictureOutput::description(LibraryRemarks& remarks, const std::string& name) const
{
    return remarks.description(*file_, name.c_str(), true);
}

} // namespace tavrix::front
