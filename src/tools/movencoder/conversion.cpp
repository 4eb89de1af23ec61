#include "tools/movencoder/conversion.h"

#include "tools/movencoder/encodepipeline.h"
#include "tools/movencoder/moviereader.h"
#include "tools/movencoder/moviewriter.h"
#include "tools/movencoder/pictureconverter.h"
#include "tools/movencoder/pictureencoder.h"
#include "tools/movencoder/progress.h"

#include <optional>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace tavrix::movencoder
{

namespace
{

// Players take untagged pictures of this height and more for those of the high-definition standard.
constexpr int leastHighDefinitionHeight = 720;

bool keepsFields(const AVFrame& picture, const Fit& fit)
{
    return picture.interlaced_frame != 0 && picture.height == fit.pictureHeight;
}

bool isRgb(const AVFrame& picture)
{
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
    return descriptor != nullptr && (descriptor->flags & AV_PIX_FMT_FLAG_RGB) != 0;
}

PictureFacts factsOf(const MovieReader& reader, AVFrame& picture, const FormatSettings& settings)
{
    const AVRational aspect = reader.pixelAspect(picture);
    PictureFacts facts;
    facts.fit = fitPicture(picture.width, picture.height, {aspect.num, aspect.den}, settings);
    facts.interlaced = keepsFields(picture, facts.fit);
    facts.topFieldFirst = picture.top_field_first != 0;
    facts.primaries = picture.color_primaries;
    facts.transfer = picture.color_trc;
    facts.matrix = picture.colorspace;
    facts.chromaLocation = picture.chroma_location;
    // The converter brings RGB pictures to this matrix; their own tag would say that there is none.
    if (isRgb(picture)) {
        facts.matrix = AVCOL_SPC_SMPTE170M;
    }
    facts.timeBase = reader.video()->time_base;
    // Untagged standard-definition pictures would change their colours by being enlarged, so they get their tag.
    const bool enlarged = picture.height < leastHighDefinitionHeight && facts.fit.height >= leastHighDefinitionHeight;
    if (enlarged && facts.matrix == AVCOL_SPC_UNSPECIFIED) {
        facts.matrix = AVCOL_SPC_SMPTE170M;
        if (facts.primaries == AVCOL_PRI_UNSPECIFIED) {
            facts.primaries = picture.height == 576 ? AVCOL_PRI_BT470BG : AVCOL_PRI_SMPTE170M;
        }
        if (facts.transfer == AVCOL_TRC_UNSPECIFIED) {
            facts.transfer = AVCOL_TRC_SMPTE170M;
        }
    }
    return facts;
}

class Conversion
{
public:
    Conversion(const InputMovie& input, const std::string& output, Format format, const FormatSettings& settings)
        : input_(input), output_(output), format_(format), settings_(settings)
    {
    }

    [[nodiscard]] bool run(int fd, std::string& error)
    {
        std::string reason;
        reader_ = MovieReader::open(input_.path, reason);
        if (!reader_) {
            return fail(input_.name, reason, error);
        }
        for (;;) {
            switch (reader_->next(reason)) {
            case MovieReader::Item::Failure:
                return fail(input_.name, reason, error);
            case MovieReader::Item::Sound:
                if (!takeSound(error)) {
                    return false;
                }
                break;
            case MovieReader::Item::Picture:
                if (!takePicture(fd, error)) {
                    return false;
                }
                break;
            case MovieReader::Item::End:
                return finish(error);
            }
        }
    }

private:
    static bool fail(const std::string& file, const std::string& reason, std::string& error)
    {
        error = file + ": " + reason;
        return false;
    }

    bool start(int fd, AVFrame& picture, std::string& error)
    {
        std::string reason;
        const PictureFacts facts = factsOf(*reader_, picture, settings_);
        std::vector<PictureWorker> workers;
        for (unsigned i = 0; i < usableCores(); ++i) {
            std::shared_ptr<PictureEncoder> encoder = makePictureEncoder(format_, settings_, facts, reason);
            if (!encoder) {
                return fail(input_.name, reason, error);
            }
            if (!writer_) {
                writer_ = MovieWriter::open(fd, *reader_, format_, *encoder, facts, reason);
            }
            if (!writer_) {
                return fail(output_, reason, error);
            }
            auto converter = std::make_shared<PictureConverter>(facts.fit, encoder->pixelFormat());
            workers.emplace_back([encoder, converter, fit = facts.fit](
                                     const AVFrame& source, std::vector<std::uint8_t>& bytes, std::string& problem) {
                const AVFrame* converted = converter->convert(source, problem);
                return converted != nullptr && encoder->encode(*converted, keepsFields(source, fit), bytes, problem);
            });
        }
        pipeline_.emplace(std::move(workers));
        for (const PacketPtr& sound : earlySounds_) {
            if (!writer_->writeSound(*sound, reason)) {
                return fail(output_, reason, error);
            }
        }
        earlySounds_.clear();
        return true;
    }

    bool takePicture(int fd, std::string& error)
    {
        FramePtr picture = reader_->takePicture();
        if (!picture) {
            return fail(input_.name, "out of memory", error);
        }
        if (!pipeline_ && !start(fd, *picture, error)) {
            return false;
        }
        while (pipeline_->full()) {
            if (!writeOldest(error)) {
                return false;
            }
        }
        const std::int64_t duration = reader_->durationOf(*picture);
        std::int64_t time = MovieReader::timeOf(*picture);
        if (time == AV_NOPTS_VALUE || (nextTime_ && time <= *lastTime_)) {
            time = nextTime_.value_or(0);
        }
        lastTime_ = time;
        nextTime_ = time + duration;
        pipeline_->submit(std::move(picture), time, duration);
        return true;
    }

    // The movie's header needs the first picture; sound that precedes it in the source waits.
    bool takeSound(std::string& error)
    {
        std::string reason;
        if (writer_) {
            return writer_->writeSound(*reader_->packet(), reason) || fail(output_, reason, error);
        }
        PacketPtr copy(av_packet_alloc());
        if (!copy || av_packet_ref(copy.get(), reader_->packet()) < 0) {
            return fail(input_.name, "out of memory", error);
        }
        earlySounds_.push_back(std::move(copy));
        return true;
    }

    bool writeOldest(std::string& error)
    {
        CodedPicture coded = pipeline_->take();
        if (!coded.error.empty()) {
            return fail(input_.name, coded.error, error);
        }
        if (ended_ && pipeline_->empty()) {
            coded.duration = reader_->lastDuration(coded.time, coded.duration);
        }
        std::string reason;
        if (!writer_->writePicture(coded, reason)) {
            return fail(output_, reason, error);
        }
        const double seconds = static_cast<double>(coded.time) * av_q2d(reader_->video()->time_base) -
                               static_cast<double>(reader_->start()) / AV_TIME_BASE;
        if (reader_->duration() > 0) {
            progress_.report(seconds * AV_TIME_BASE / static_cast<double>(reader_->duration()));
        } else {
            progress_.report(0);
        }
        return true;
    }

    bool finish(std::string& error)
    {
        ended_ = true;
        while (!pipeline_->empty()) {
            if (!writeOldest(error)) {
                return false;
            }
        }
        std::string reason;
        return writer_->finish(reason) || fail(output_, reason, error);
    }

    const InputMovie& input_;
    const std::string& output_;
    Format format_;
    const FormatSettings& settings_;
    std::unique_ptr<MovieReader> reader_;
    std::unique_ptr<MovieWriter> writer_;
    std::optional<EncodePipeline> pipeline_;
    std::vector<PacketPtr> earlySounds_;
    std::optional<std::int64_t> lastTime_;
    std::optional<std::int64_t> nextTime_;
    bool ended_ = false;
    Progress progress_;
};

} // namespace

bool convertMovie(const InputMovie& input, const std::string& output, int fd, Format format,
                  const FormatSettings& settings, std::string& error)
{
    return Conversion(input, output, format, settings).run(fd, error);
}

} // namespace tavrix::movencoder
