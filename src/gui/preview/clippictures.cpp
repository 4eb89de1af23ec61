// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/clippictures.h"

#include "base/text/paths.h"
#include "media/picturefinder.h"
#include "media/pixelformat.h"

#include <QTransform>

extern "C" {
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <array>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace tavrix
{

namespace
{

constexpr QSize largestPicture(1280, 720);
constexpr int highDefinitionHeight = 720;

struct ScalerRelease {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};
using Scaler = std::unique_ptr<SwsContext, ScalerRelease>;

// Clips that do not say it have the colours of their time: the large ones those of high definition.
int colourSpace(const AVFrame& frame)
{
    if (frame.colorspace == AVCOL_SPC_BT709) {
        return SWS_CS_ITU709;
    }
    const bool unknown = frame.colorspace == AVCOL_SPC_UNSPECIFIED;
    return unknown && frame.height >= highDefinitionHeight ? SWS_CS_ITU709 : SWS_CS_ITU601;
}

QImage imageOf(const AVFrame& frame, const media::StreamFacts& facts, const QSize& largest)
{
    const double aspect = facts.pixelAspect.known() ? facts.pixelAspect.value() : 1;
    const QSize size =
        QSizeF(frame.width * aspect, frame.height).scaled(largest, Qt::KeepAspectRatio).toSize().expandedTo({1, 1});
    const AVPixelFormat format = media::plainPixelFormat(frame.format);
    const Scaler scaler(sws_getContext(frame.width, frame.height, format, size.width(), size.height(), AV_PIX_FMT_RGB32,
                                       SWS_BILINEAR, nullptr, nullptr, nullptr));
    QImage image(size, QImage::Format_RGB32);
    if (!scaler || image.isNull()) {
        return {};
    }
    const bool full = frame.color_range == AVCOL_RANGE_JPEG || format != frame.format;
    constexpr int unchanged = 1 << 16;
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(colourSpace(frame)), full ? 1 : 0,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, unchanged, unchanged);
    const std::array<uint8_t*, 4> target{image.bits()};
    const std::array<int, 4> lines{static_cast<int>(image.bytesPerLine())};
    sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, target.data(), lines.data());
    if (facts.turning.mirrored) {
        image = image.mirrored(true, false);
    }
    return facts.turning.degrees == 0 ? image : image.transformed(QTransform().rotate(facts.turning.degrees));
}

} // namespace

// Shared with the thread, which may outlive the object by the time that one packet takes.
struct ClipPictures::Work {
    struct Small {
        int next = 0;
        int count = 0;
        double duration = 0;
        QSize size;
    };

    std::mutex mutex;
    std::condition_variable changed;
    ClipPictures* owner = nullptr; // null: the thread ends
    QString path;
    int clip = 0; // counts the clips
    std::optional<double> wished;
    Small small;
    std::atomic<bool> cancelled = false;

    [[nodiscard]] bool hasTask() const { return owner == nullptr || wished || small.next < small.count; }
    void run();
    void serve(std::unique_lock<std::mutex>& lock, media::PictureFinder& finder);
    // Tells the owner, unless it has turned to another clip.
    template <typename Tell> void tell(int of, Tell tellOwner);
};

template <typename Tell> void ClipPictures::Work::tell(int of, Tell tellOwner)
{
    if (owner != nullptr && clip == of) {
        QMetaObject::invokeMethod(
            owner,
            [target = owner, of, tellOwner = std::move(tellOwner)] {
                if (target->work_->clip == of) {
                    tellOwner(*target);
                }
            },
            Qt::QueuedConnection);
    }
}

void ClipPictures::Work::serve(std::unique_lock<std::mutex>& lock, media::PictureFinder& finder)
{
    const int of = clip;
    if (const auto seconds = std::exchange(wished, std::nullopt)) {
        lock.unlock();
        const auto found = finder.at(*seconds);
        const QImage image = found ? imageOf(*found->frame, finder.facts(), largestPicture) : QImage();
        lock.lock();
        if (found) {
            tell(of, [image, start = found->start, end = found->end, asked = *seconds](ClipPictures& one) {
                Q_EMIT one.picture(image, start, end, asked);
            });
        } else {
            tell(of, [](ClipPictures& one) { Q_EMIT one.failed(); });
        }
        return;
    }
    const Small wish = small;
    ++small.next;
    lock.unlock();
    const auto found = finder.at(wish.duration * (wish.next + 0.5) / wish.count);
    const QImage image = found ? imageOf(*found->frame, finder.facts(), wish.size) : QImage();
    lock.lock();
    if (!image.isNull() && small.count == wish.count) {
        tell(of, [image, number = wish.next](ClipPictures& one) { Q_EMIT one.thumbnail(number, image); });
    }
}

void ClipPictures::Work::run()
{
    std::unique_ptr<media::PictureFinder> finder;
    int opened = 0;
    std::unique_lock lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return hasTask(); });
        if (owner == nullptr) {
            return;
        }
        if (opened != clip) {
            opened = clip;
            cancelled = false;
            const std::string file = nativePath(path).toStdString();
            lock.unlock();
            auto made = media::PictureFinder::open(file, cancelled);
            finder = made ? std::move(*made) : nullptr;
            lock.lock();
            if (finder == nullptr) {
                tell(opened, [](ClipPictures& one) { Q_EMIT one.failed(); });
            }
        } else if (finder != nullptr) {
            serve(lock, *finder);
        } else {
            wished.reset();
            small = {};
        }
    }
}

ClipPictures::ClipPictures(QObject* parent) : QObject(parent), work_(std::make_shared<Work>())
{
    work_->owner = this;
    std::thread([work = work_] { work->run(); }).detach();
}

ClipPictures::~ClipPictures()
{
    {
        const std::lock_guard lock(work_->mutex);
        work_->owner = nullptr;
        work_->cancelled = true;
    }
    work_->changed.notify_all();
}

void ClipPictures::setClip(const QString& path)
{
    const std::lock_guard lock(work_->mutex);
    ++work_->clip;
    work_->path = path;
    work_->wished.reset();
    work_->small = {};
    // What the thread decodes for the clip before is not wanted any more.
    work_->cancelled = true;
}

void ClipPictures::wish(double seconds)
{
    {
        const std::lock_guard lock(work_->mutex);
        work_->wished = seconds;
    }
    work_->changed.notify_all();
}

void ClipPictures::wishThumbnails(int count, double duration, const QSize& size)
{
    {
        const std::lock_guard lock(work_->mutex);
        work_->small = {0, count, duration, size};
    }
    work_->changed.notify_all();
}

} // namespace tavrix
