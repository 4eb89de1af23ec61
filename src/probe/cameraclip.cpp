// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/cameraclip.h"

#include "probe/aspectclass.h"
#include "probe/batchtexts.h"

#include "base/dialogue/localisation.h"
#include "base/dialogue/shownvalues.h"
#include "base/text/cliptime.h"
#include "base/text/format.h"
#include "base/text/listconversions.h"
#include "base/text/roundingconversions.h"
#include "base/text/shownname.h"
#include "base/text/text.h"

#include <QHash>

#include <cmath>

namespace tavrix
{

namespace
{

constexpr int maximumWidth = 1280;
constexpr int maximumHeight = 720;

// As people write it, where the name is known.
QString codecWords(const QString& codec)
{
    static const QHash<QString, QString> names{{QStringLiteral("h264"), QStringLiteral("H.264")},
                                               {QStringLiteral("mjpeg"), QStringLiteral("Motion-JPEG")}};
    return names.value(codec, codec);
}

bool isCameraContainer(const QString& wrapper, const QString& codec)
{
    const bool h264 = codec.startsWith(QLatin1String("h264"));
    const bool mjpeg = codec.startsWith(QLatin1String("mjpeg"));
    if (wrapper == QLatin1String("mpegts")) {
        return h264;
    }
    if (wrapper.startsWith(QLatin1String("mov"))) {
        return h264 || mjpeg;
    }
    return wrapper.startsWith(QLatin1String("avi")) && mjpeg;
}

} // namespace

ClipVerdict cameraClipVerdict(const std::optional<MediaInfoRecord>& infos, const QString& interlacing)
{
    if (!infos || !infos->contains(record::v0_width) || !infos->contains(record::v0_height)) {
        return {false, batchText("Clip_noVideo")};
    }
    const int width = infos->value(record::v0_width).toInt();
    const int height = infos->value(record::v0_height).toInt();
    if (width > maximumWidth || height > maximumHeight) {
        const QString size = formatText(QStringLiteral("%dx%d"), {width, height});
        const bool upright = height > width && width <= maximumWidth;
        return {false, formatText(batchText(upright ? "Clip_upright" : "Clip_tooLarge"), {size})};
    }
    if (interlacing != localizedString(QStringLiteral("PFF"), QStringLiteral("NonLocalizable"))) {
        return {false, batchText("Clip_interlaced")};
    }
    if (!infos->contains(record::wrapper) || !infos->contains(record::v0_codec)) {
        return {false, batchText("Clip_noVideo")};
    }
    const QString wrapper = infos->value(record::wrapper).toString();
    const QString codec = infos->value(record::v0_codec).toString();
    if (!isCameraContainer(wrapper, codec)) {
        return {false, formatText(batchText("Clip_otherFormat"), {codec, wrapper})};
    }
    return {true, {}};
}

float clipAspect(const MediaInfoRecord& infos)
{
    if (!infos.contains(record::v0_width) || !infos.contains(record::v0_height)) {
        return wideAspect;
    }
    const auto width = static_cast<float>(infos.value(record::v0_width).toInt());
    const auto height = static_cast<float>(infos.value(record::v0_height).toInt());
    if (height <= 0) {
        return wideAspect;
    }
    const float ratio = nbTrimmed(width / height, 2);
    // The ratio is widened: comparing in single precision would move 1.6 and 1.4 to the other class.
    if (std::fabs(static_cast<double>(ratio) - 1.7) < 0.1) {
        return wideAspect;
    }
    return std::fabs(static_cast<double>(ratio) - 1.3) < 0.1 ? classicAspect : ratio;
}

QString thumbnailSize(float aspect)
{
    return aspectClass(aspect) == AspectClass::Wide ? QStringLiteral("320x180") : QStringLiteral("240x180");
}

QString interlacingLetter(const QString& headerLine)
{
    const qsizetype at = findText(headerLine, QStringLiteral(" I"));
    return at < 0 ? headerLine : headerLine.mid(at + 2, 1);
}

std::optional<double> clipRate(const MediaInfoRecord& infos)
{
    const QString key = infos.contains(record::v0_meanRate) ? record::v0_meanRate : record::v0_fps;
    return infos.contains(key) ? std::optional(static_cast<double>(infos.value(key).toFloat())) : std::nullopt;
}

std::optional<float> meanRate(const QString& banner)
{
    for (const QString& line : linesToArray(banner)) {
        if (!line.contains(QLatin1String(": Video: "))) {
            continue;
        }
        bool thousands = false;
        float mean = 0;
        for (const QString& field : line.split(QStringLiteral(", "))) {
            thousands = thousands || field.endsWith(QLatin1String("k tbr"));
            if (field.endsWith(QLatin1String(" fps")) && !field.endsWith(QLatin1String("k fps"))) {
                mean = static_cast<float>(floatPrefix(field));
            }
        }
        return thousands ? std::optional(mean) : std::nullopt;
    }
    return std::nullopt;
}

QStringList pictureWords(const MediaInfoRecord& infos)
{
    QStringList words;
    if (infos.contains(record::v0_codec)) {
        words << shownText(codecWords(infos.value(record::v0_codec).toString()));
    }
    if (infos.contains(record::v0_width) && infos.contains(record::v0_height)) {
        words << formatText(QStringLiteral("%d × %d"),
                            {infos.value(record::v0_width).toInt(), infos.value(record::v0_height).toInt()});
    }
    if (const std::optional<double> rate = clipRate(infos)) {
        const bool whole = qAbs(*rate - qRound(*rate)) < 0.005;
        words << (*rate > 0 ? formatText(batchText("Clip_rate"), {shownDecimal(*rate, whole ? 0 : 2)})
                            : batchText("Clip_unevenRate"));
    }
    return words;
}

QString besideEachOther(const QStringList& words)
{
    return words.join(QStringLiteral(" · "));
}

QString clipDescription(const MediaInfoRecord& infos)
{
    QStringList words = pictureWords(infos);
    if (infos.contains(record::w_duration)) {
        words << clipTimeText(std::round(infos.value(record::w_duration).toDouble()));
    }
    return besideEachOther(words);
}

} // namespace tavrix
