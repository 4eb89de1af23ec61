// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/avinput.h"

#include "base/text/log.h"
#include "base/text/paths.h"
#include "quicktime/model/componentregistry.h"

#include <array>

#include <sys/stat.h>

namespace tavrix
{

namespace
{

// A named pipe would block the open itself, where no limit applies.
bool isRegularFile(const QByteArray& path)
{
    struct stat status {
    };
    return ::stat(path.constData(), &status) == 0 && S_ISREG(status.st_mode);
}

std::int64_t microseconds(std::int64_t value, AVRational base)
{
    return value == AV_NOPTS_VALUE ? 0 : av_rescale_q(value, base, AVRational{1, AV_TIME_BASE});
}

StreamFacts streamFacts(AVFormatContext* context, AVStream* stream, const FileFacts& file)
{
    const AVCodecParameters& parameters = *stream->codecpar;
    StreamFacts facts;
    facts.index = stream->index;
    facts.id = stream->id;
    facts.type = parameters.codec_type;
    facts.codec = parameters.codec_id;
    facts.tag = fourCharCodeOfTag(parameters.codec_tag);
    facts.width = parameters.width;
    facts.height = parameters.height;
    const AVRational aspect = av_guess_sample_aspect_ratio(context, stream, nullptr);
    if (aspect.num > 0 && aspect.den > 0) {
        facts.pixelAspect = av_q2d(aspect);
    }
    facts.channels = parameters.ch_layout.nb_channels;
    facts.sampleRate = parameters.sample_rate;
    facts.bits = parameters.bits_per_coded_sample > 0 ? parameters.bits_per_coded_sample : 16;
    if (stream->start_time != AV_NOPTS_VALUE) {
        facts.start = std::max<std::int64_t>(0, microseconds(stream->start_time, stream->time_base) - file.origin);
    }
    facts.duration = stream->duration > 0 ? microseconds(stream->duration, stream->time_base)
                                          : std::max<std::int64_t>(0, file.duration - facts.start);
    return facts;
}

} // namespace

QString avErrorText(int error)
{
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return QString::fromLocal8Bit(text.data());
}

int AvInput::interrupted(void* self)
{
    const auto& deadline = static_cast<const AvInput*>(self)->deadline_;
    return deadline && std::chrono::steady_clock::now() > *deadline ? 1 : 0;
}

void AvInput::allowSeconds(int seconds)
{
    if (seconds > 0) {
        deadline_ = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    } else {
        deadline_.reset();
    }
}

std::unique_ptr<AvInput> AvInput::open(const QString& path, int seconds)
{
    const QByteArray native = nativePath(path);
    if (!isRegularFile(native)) {
        return nullptr;
    }
    std::unique_ptr<AvInput> input(new AvInput);
    input->allowSeconds(seconds);
    input->context_ = avformat_alloc_context();
    if (input->context_ == nullptr) {
        return nullptr;
    }
    input->context_->interrupt_callback = {&AvInput::interrupted, input.get()};
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    // A bare path could be read as an address or a list of files.
    const QByteArray address = "file:" + native;
    int error = avformat_open_input(&input->context_, address.constData(), nullptr, &options);
    av_dict_free(&options);
    if (error >= 0) {
        error = avformat_find_stream_info(input->context_, nullptr);
    }
    if (error < 0) {
        logDebug(QStringLiteral("media               :-( %@ : %@"), {avErrorText(error), path});
        return nullptr;
    }
    return input;
}

AvInput::~AvInput()
{
    avformat_close_input(&context_);
}

bool AvInput::isMov() const
{
    return QByteArray(context_->iformat->name).startsWith("mov");
}

FileFacts fileFacts(const AvInput& input)
{
    AVFormatContext* context = input.context();
    FileFacts facts;
    facts.format = QString::fromLatin1(context->iformat->name);
    facts.isMov = input.isMov();
    facts.isAvi = facts.format == QLatin1String("avi");
    // A QuickTime timeline begins at 0; other files count from an arbitrary clock.
    if (!facts.isMov && context->start_time != AV_NOPTS_VALUE) {
        facts.origin = context->start_time;
    }
    facts.duration = context->duration > 0 ? context->duration : 0;
    for (unsigned int index = 0; index < context->nb_streams; ++index) {
        AVStream* stream = context->streams[index];
        if ((stream->disposition & AV_DISPOSITION_ATTACHED_PIC) == 0) {
            facts.streams.push_back(streamFacts(context, stream, facts));
        }
    }
    return facts;
}

} // namespace tavrix
