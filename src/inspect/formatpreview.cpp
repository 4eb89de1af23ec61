// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/formatpreview.h"

#include "base/bundle/bundle.h"
#include "base/bundle/propertylist.h"
#include "base/text/paths.h"
#include "base/text/text.h"
#include "encode/encoderarguments.h"
#include "encode/movencoderstep.h"
#include "encode/outputformats.h"
#include "encode/outputname.h"
#include "encode/sizeforecast.h"

#include <QFile>

namespace tavrix
{

namespace
{

constexpr qint64 settingsLimit = 65536;

// "30000/1001" or "25".
double rateOf(const QString& text)
{
    const double denominator = floatPrefix(textAfter(text, QStringLiteral("/")));
    return denominator > 0 ? floatPrefix(text) / denominator : floatPrefix(text);
}

int soundRates(const MediaInfoRecord& infos)
{
    int sum = 0;
    for (int i = 0; infos.contains(record::stream('a', i, "codec")); ++i) {
        sum += infos.value(record::stream('a', i, "bitrate")).toInt();
    }
    return sum;
}

double secondsOf(const Inspection& inspection)
{
    if (inspection.shown && inspection.shown->duration) {
        return *inspection.shown->duration;
    }
    return inspection.infos.value(record::w_duration).toDouble();
}

// Pictures a second that formats 2 to 5 take over. The told rate of a phone's clip is the finest that its times need.
double keptRate(const Inspection& inspection, double told)
{
    const media::StreamFacts* picture = shownStream(inspection, media::Kind::Picture, 0);
    const double mean = picture != nullptr && picture->meanRate.known() ? picture->meanRate.value() : 0;
    constexpr double worthTelling = 0.9;
    return mean > 0 && mean < told * worthTelling ? mean : told;
}

FormatPreview preview(const Inspection& inspection, const QString& file, int out)
{
    const MediaInfoRecord& infos = inspection.infos;
    const QString wrapper = infos.value(record::wrapper).toString();
    const QString codec = infos.value(record::v0_codec).toString();
    const float rate = infos.value(record::v0_fps).toFloat();
    const float aspect = clipAspect(infos);
    FormatPreview result;
    result.out = out;
    result.name = outputName(inspection.recording.name, out, codec);
    AskedPicture asked =
        askedPicture(encodage(file, result.name, wrapper, codec, rate, out, aspect).value_or(QStringList()));
    if (isTwoPassFormat(out)) {
        const QString folder = stringByAppendingPathComponent(resourcePath(), QStringLiteral("presets"));
        asked = secondPassPicture(stringByAppendingPathComponent(folder, movencoderSettingsName(aspect)), out);
    }
    result.width = asked.width > 0 ? asked.width : infos.value(record::v0_width).toInt();
    result.height = asked.height > 0 ? asked.height : infos.value(record::v0_height).toInt();
    result.rate = asked.rate > 0 ? asked.rate : keptRate(inspection, static_cast<double>(rate));
    ForecastRequest request{out, secondsOf(inspection), result.rate, result.width, result.height, 0, false};
    request.avi = result.name.endsWith(QLatin1String(".avi"));
    request.sound = streamCount(infos, 'a') > 0;
    request.pictureBits = pictureBits(infos.value(record::stream('v', 0, "bitrate")).toInt(),
                                      infos.value(record::w_bitrate).toInt(), soundRates(infos), wrapper);
    result.bytes = forecastBytes(request);
    return result;
}

} // namespace

AskedPicture askedPicture(const QStringList& arguments)
{
    AskedPicture asked;
    if (const qsizetype at = arguments.indexOf(QStringLiteral("-r")); at >= 0) {
        asked.rate = rateOf(arguments.value(at + 1));
    }
    if (const qsizetype at = arguments.indexOf(QStringLiteral("-vf")); at >= 0) {
        const QString size = textAfter(arguments.value(at + 1), QStringLiteral("scale="));
        asked.width = leadingInteger(size);
        asked.height = leadingInteger(textAfter(size, QStringLiteral(":")));
    }
    return asked;
}

AskedPicture secondPassPicture(const QString& settingsFile, int out)
{
    QFile file(settingsFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QVariantMap settings = propertyListFromBytes(file.read(settingsLimit))
                                     .value_or(QVariant())
                                     .toMap()
                                     .value(QString::number(out))
                                     .toMap();
    return {settings.value(QStringLiteral("width")).toInt(), settings.value(QStringLiteral("height")).toInt(), 0};
}

QList<FormatPreview> formatPreviews(const Inspection& inspection, const QString& file)
{
    QList<FormatPreview> previews;
    if (!inspection.verdict.accepted) {
        return previews;
    }
    for (int out = 0; out < outputFormatCount; ++out) {
        previews << preview(inspection, file, out);
    }
    return previews;
}

} // namespace tavrix
