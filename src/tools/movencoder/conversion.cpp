// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/conversion.h"

#include "tools/movencoder/encodepipeline.h"
#include "tools/movencoder/moviereader.h"
#include "tools/movencoder/moviewriter.h"
#include "tools/movencoder/pictureclock.h"
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

// The fields of a picture survive where it keeps its height.
Fields keptFields(const AVFrame& picture, const Fit& fit)
{
    return picture.height == fit.pictureHeight ? fieldsOf(picture) : Fields{};
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
    facts.fields = keptFields(picture, facts.fit);
    facts.colours = outputTags({picture.color_primaries, picture.color_trc, picture.colorspace}, picture.height,
                               facts.fit.height, isRgb(picture));
    facts.chromaLocation = picture.chroma_location;
    return facts;
}

class Converter
{
public:
    Converter(const InputMovie& input, const std::string& output, Format format, const FormatSettings& settings)
        : input_(input), output_(output), format_(format), settings_(settings)
    {
    }

    Result<Conversion> run(int fd)
    {
        auto reader = MovieReader::open(input_.path);
        if (!reader) {
            return ofInput(reader.reason());
        }
        reader_ = *std::move(reader);
        const AVRational base = reader_->video()->time_base;
        const AVRational rate = reader_->rate();
        clock_.emplace(Fraction{base.num, base.den}, Fraction{rate.num, rate.den});
        for (;;) {
            const auto item = reader_->next();
            if (!item) {
                return ofInput(item.reason());
            }
            if (*item == MovieReader::Item::End) {
                break;
            }
            auto taken = *item == MovieReader::Item::Sound ? takeSound() : takePicture(fd);
            if (!taken) {
                return Failure{taken.reason()};
            }
        }
        if (auto finished = finish(); !finished) {
            return Failure{finished.reason()};
        }
        return Conversion{reader_->packets(), reader_->decodedPictures(), reader_->damagedPictures(), written_,
                          reader_->strictlyDamaged()};
    }

private:
    [[nodiscard]] Failure<std::string> ofInput(const std::string& reason) const
    {
        return Failure{input_.name + ": " + reason};
    }
    [[nodiscard]] Failure<std::string> ofOutput(const std::string& reason) const
    {
        return Failure{output_ + ": " + reason};
    }

    Result<void> start(int fd, AVFrame& picture)
    {
        PictureFacts facts = factsOf(*reader_, picture, settings_);
        facts.timeBase = {1, static_cast<int>(clock_->scale())};
        std::vector<PictureWorker> workers;
        for (unsigned i = 0; i < usableCores(); ++i) {
            auto made = makePictureEncoder(format_, settings_, facts);
            if (!made) {
                return ofInput(made.reason());
            }
            const std::shared_ptr<PictureEncoder> encoder = *std::move(made);
            if (!writer_) {
                auto writer = MovieWriter::open(fd, *reader_, *encoder, facts);
                if (!writer) {
                    return ofOutput(writer.reason());
                }
                writer_ = *std::move(writer);
            }
            auto converter = std::make_shared<PictureConverter>(facts.fit, encoder->pixelFormat());
            workers.emplace_back([encoder, converter, fit = facts.fit](
                                     const AVFrame& source, std::vector<std::uint8_t>& bytes) -> Result<void> {
                const auto converted = converter->convert(source);
                if (!converted) {
                    return Failure{converted.reason()};
                }
                return encoder->encode(**converted, keptFields(source, fit), bytes);
            });
        }
        pipeline_.emplace(std::move(workers));
        for (const PacketPtr& sound : earlySounds_) {
            if (auto written = writer_->writeSound(*sound); !written) {
                return ofOutput(written.reason());
            }
        }
        earlySounds_.clear();
        return {};
    }

    Result<void> takePicture(int fd)
    {
        DecodedPicture picture = reader_->takePicture();
        if (!pipeline_ && picture.frame) {
            if (auto started = start(fd, *picture.frame); !started) {
                return started;
            }
        }
        while (pipeline_->full()) {
            if (auto written = writeOldest(); !written) {
                return written;
            }
        }
        lastTime_ = picture.time.value_or(lastTime_ + lastDuration_);
        lastDuration_ = picture.duration;
        const PictureClock::Shown shown = clock_->place(picture.time, picture.duration);
        if (picture.frame) {
            pipeline_->submit(std::move(picture.frame), shown.time, shown.duration);
        } else {
            pipeline_->repeat(shown.time, shown.duration);
        }
        return {};
    }

    // The movie's header needs the first picture; sound that precedes it in the source waits.
    Result<void> takeSound()
    {
        if (writer_) {
            auto written = writer_->writeSound(*reader_->packet());
            return written ? written : ofOutput(written.reason());
        }
        PacketPtr copy(av_packet_alloc());
        if (!copy || av_packet_ref(copy.get(), reader_->packet()) < 0) {
            return ofInput("out of memory");
        }
        earlySounds_.push_back(std::move(copy));
        return {};
    }

    Result<void> writeOldest()
    {
        auto coded = pipeline_->take();
        if (!coded) {
            return ofInput(coded.reason());
        }
        if (ended_ && pipeline_->empty()) {
            coded->duration = clock_->durationOf(reader_->lastDuration(lastTime_, lastDuration_));
        }
        if (auto written = writer_->writePicture(*coded); !written) {
            return ofOutput(written.reason());
        }
        ++written_;
        const double seconds = static_cast<double>(coded->time) / static_cast<double>(clock_->scale()) -
                               static_cast<double>(reader_->start()) / AV_TIME_BASE;
        if (reader_->duration() > 0) {
            progress_.report(seconds * AV_TIME_BASE / static_cast<double>(reader_->duration()));
        } else {
            progress_.report(0);
        }
        return {};
    }

    Result<void> finish()
    {
        ended_ = true;
        while (!pipeline_->empty()) {
            if (auto written = writeOldest(); !written) {
                return written;
            }
        }
        auto finished = writer_->finish();
        return finished ? finished : ofOutput(finished.reason());
    }

    const InputMovie& input_;
    const std::string& output_;
    Format format_;
    const FormatSettings& settings_;
    std::unique_ptr<MovieReader> reader_;
    std::unique_ptr<MovieWriter> writer_;
    std::optional<PictureClock> clock_;
    std::optional<EncodePipeline> pipeline_;
    std::vector<PacketPtr> earlySounds_;
    std::int64_t lastTime_ = 0; // of the last picture, in the source's time base
    std::int64_t lastDuration_ = 0;
    std::int64_t written_ = 0;
    bool ended_ = false;
    Progress progress_;
};

} // namespace

Result<Conversion> convertMovie(const InputMovie& input, const std::string& output, int fd, Format format,
                                const FormatSettings& settings)
{
    return Converter(input, output, format, settings).run(fd);
}

} // namespace tavrix::movencoder
