// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/mediainput.h"

#include "sys/errortext.h"

#include <cerrno>

extern "C" {
#include <libavutil/avstring.h>
}

#include <sys/stat.h>

namespace tavrix::media
{

namespace
{

class Options
{
public:
    Options() = default;
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;
    ~Options() { av_dict_free(&dictionary_); }
    void set(const char* key, const std::string& value) { av_dict_set(&dictionary_, key, value.c_str(), 0); }
    AVDictionary** get() { return &dictionary_; }

private:
    AVDictionary* dictionary_ = nullptr;
};

} // namespace

int MediaInput::interrupted(void* self)
{
    return static_cast<const MediaInput*>(self)->outOfTime() ? 1 : 0;
}

bool MediaInput::outOfTime() const
{
    return deadline_ && std::chrono::steady_clock::now() > *deadline_;
}

void MediaInput::allowSeconds(int seconds)
{
    if (seconds > 0) {
        deadline_ = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    } else {
        deadline_.reset();
    }
}

Result<std::unique_ptr<MediaInput>> MediaInput::open(const OpenRequest& request)
{
    // A named pipe would block the open itself, where no limit applies.
    struct stat status = {};
    if (stat(request.path.c_str(), &status) != 0) {
        return Failure{errorText(errno)};
    }
    if (!S_ISREG(status.st_mode)) {
        return Failure{"it is not a regular file"};
    }
    std::unique_ptr<MediaInput> input(new MediaInput);
    input->allowSeconds(request.seconds);
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) {
        return Failure{"out of memory"};
    }
    context->interrupt_callback = {&MediaInput::interrupted, input.get()};
    Options options;
    options.set("protocol_whitelist", localProtocols);
    options.set("format_whitelist", request.demuxers);
    const auto* demuxer = request.demuxer.empty() ? nullptr : av_find_input_format(request.demuxer.c_str());
    // A bare path could be read as an address or a list of files.
    const std::string address = "file:" + request.path;
    int error = avformat_open_input(&context, address.c_str(), demuxer, options.get());
    if (error < 0) {
        return Failure{avErrorText(error)};
    }
    input->context_.reset(context);
    if (request.probesStreams) {
        error = avformat_find_stream_info(context, nullptr);
    }
    if (error < 0) {
        return Failure{avErrorText(error)};
    }
    return input;
}

bool MediaInput::isContainer(const char* name) const
{
    return av_match_name(name, context_->iformat->name) != 0;
}

bool MediaInput::isMovie() const
{
    return isContainer("mov");
}

} // namespace tavrix::media
