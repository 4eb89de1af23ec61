// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/outputformats.h"

#include "base/store/settings.h"
#include "base/text/format.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "encode/presets.h"
#include "encode/sizeforecast.h"
#include "probe/aspectclass.h"

#include <algorithm>
#include <array>

namespace tavrix
{

namespace
{

constexpr const char* picturesPerGroup = "25";

void addWords(QStringList& arguments, std::initializer_list<const char*> words)
{
    for (const char* word : words) {
        arguments.append(QLatin1String(word));
    }
}

// Devices that take these files show at most 30 pictures a second.
void addFrameRate(QStringList& arguments, float framesPerSecond)
{
    if (framesPerSecond > 30.0F) {
        const double half = static_cast<double>(framesPerSecond) * 0.5;
        addWords(arguments, {"-r", half >= 25.1 ? "30000/1001" : "25/1"});
    }
}

void addScale(QStringList& arguments, float aspect, const char* wide, const char* narrow)
{
    arguments.append(QStringLiteral("-vf"));
    arguments.append(
        formatText(QStringLiteral("scale=%@"), {aspectClass(aspect) == AspectClass::Wide ? wide : narrow}));
}

void addAac(QStringList& arguments, const char* rate)
{
    addWords(arguments, {"-acodec", "aac", "-strict", "experimental", "-ab", rate, "-ac", "2", "-ar", "44100"});
}

void addPcm(QStringList& arguments)
{
    addWords(arguments, {"-acodec", "pcm_s16le", "-ac", "2", "-ar", "48000"});
}

void addDestination(QStringList& arguments, const EncodeJob& job)
{
    arguments.append(QStringLiteral("-y"));
    arguments.append(job.destination);
}

void addPreset(QStringList& arguments, const QString& file)
{
    arguments.append(ffpresetParserFunction(QStringLiteral("presets"), file).value_or(QStringList()));
}

void addSmallScreen(QStringList& arguments, const EncodeJob& job)
{
    addFrameRate(arguments, job.framesPerSecond);
    addWords(arguments, {"-vcodec", "mpeg4", "-vb", "250k"});
    addScale(arguments, job.aspect, "480:272,setdar=16:9", "368:272,setdar=4:3");
    addAac(arguments, "64k");
    addWords(arguments, {"-g", picturesPerGroup});
    addDestination(arguments, job);
    logDebug(QStringLiteral("argsArray fin - 0   : %@"), {arguments});
}

void addH264(QStringList& arguments, const EncodeJob& job)
{
    addFrameRate(arguments, job.framesPerSecond);
    // Before the codec, so that the explicit values behind them prevail.
    addPreset(arguments, formatText(QStringLiteral("libx264-%d.ffpreset"), {0}));
    addPreset(arguments, QStringLiteral("appleSd.ffpreset"));
    addWords(arguments, {"-vcodec", "libx264", "-vb", "1400k", "-maxrate", "1500k"});
    addScale(arguments, job.aspect, "640:368,setdar=16:9", "480:368,setdar=4:3");
    addAac(arguments, "128k");
    addWords(arguments, {"-g", picturesPerGroup});
    addDestination(arguments, job);
    logDebug(QStringLiteral("argsArray fin - 1   : %@"), {arguments});
}

bool isTransportStream(const QString& path)
{
    const QString extension = pathExtension(path).toLower();
    return extension == QLatin1String("mts") || extension == QLatin1String("m2ts") ||
           extension == QLatin1String("m2t") || extension == QLatin1String("ts");
}

void addRewrap(QStringList& arguments, const EncodeJob& job)
{
    if (job.destination.endsWith(QLatin1String("avi"))) {
        addWords(arguments, {"-vcodec", "copy"});
        addPcm(arguments);
        addDestination(arguments, job);
    } else if (job.destination.endsWith(QLatin1String("m4v"))) {
        addWords(arguments, {"-vcodec", "copy"});
        if (isTransportStream(job.source)) {
            addWords(arguments, {"-vbsf", "h264_mp4toannexb"});
        }
        addAac(arguments, "192k");
        addDestination(arguments, job);
    }
    logDebug(QStringLiteral("argsArray fin - 2   : %@"), {arguments});
}

void addMovieCopy(QStringList& arguments, const EncodeJob& job)
{
    logDebug(QStringLiteral("argsArray 3deb: %@"), {arguments});
    addWords(arguments, {"-vcodec", "copy"});
    if (!job.wrapper.toLower().startsWith(QLatin1String("mov"))) {
        addWords(arguments, {"-vbsf", "h264_mp4toannexb"});
    }
    addPcm(arguments);
    addDestination(arguments, job);
    logDebug(QStringLiteral("argsArray deb - 3   : %@"), {arguments});
}

QString mp4(const QString& /*codec*/)
{
    return QStringLiteral("mp4");
}

QString m4v(const QString& /*codec*/)
{
    return QStringLiteral("m4v");
}

// Motion-JPEG goes into AVI, everything else into M4V.
QString rewrapExtension(const QString& codec)
{
    return codec.startsWith(QLatin1String("mjpeg")) ? QStringLiteral("avi") : QStringLiteral("m4v");
}

QString mov(const QString& /*codec*/)
{
    return QStringLiteral("mov");
}

// Shares of a unit a second, as the check has always reckoned with them.
template <int Numerator, int Denominator> double perSecond(double seconds, double /*sourceSize*/)
{
    return seconds * (double(Numerator) / Denominator);
}

double likeSource(double /*seconds*/, double sourceSize)
{
    return sourceSize;
}

double sourceAndPlainSound(double seconds, double sourceSize)
{
    return seconds * (11.0 / 60.0) + sourceSize;
}

template <int BitsPerSecond> double steady(const ForecastRequest& /*request*/)
{
    return BitsPerSecond;
}

double copiedPicture(const ForecastRequest& request)
{
    return request.pictureBits;
}

double everyPixel(const ForecastRequest& request, double bytes)
{
    const bool known = request.rate > 0 && request.width > 0 && request.height > 0;
    return known ? request.rate * request.width * request.height * bytes * 8 : 0;
}

// Means of camera clips; a busy picture takes half as much again, a still one half.
double intermediatePicture(const ForecastRequest& request)
{
    return everyPixel(request, 0.14);
}

double proresPicture(const ForecastRequest& request)
{
    return everyPixel(request, 0.24);
}

constexpr int plainSoundBits = 48000 * 2 * 16;

double rewrapSound(const ForecastRequest& request)
{
    return request.avi ? plainSoundBits : 192000;
}

constexpr std::array<OutputFormat, outputFormatCount> formats = {{
    // MPEG-4 for small screens
    {mp4, addSmallScreen, perSecond<1, 24>, steady<250000>, steady<64000>, false, nullptr},
    // H.264
    {m4v, addH264, perSecond<1, 5>, steady<1400000>, steady<128000>, true, nullptr},
    // another container, the picture untouched
    {rewrapExtension, addRewrap, likeSource, copiedPicture, rewrapSound, false, nullptr},
    // QuickTime, the picture untouched
    {mov, addMovieCopy, sourceAndPlainSound, copiedPicture, steady<plainSoundBits>, false, nullptr},
    // Apple Intermediate Codec
    {mov, addMovieCopy, perSecond<1, 10>, intermediatePicture, steady<plainSoundBits>, false, getAIC},
    // ProRes
    {mov, addMovieCopy, perSecond<1, 10>, proresPicture, steady<plainSoundBits>, false, getPRORES},
}};

} // namespace

const OutputFormat& outputFormat(int out)
{
    return formats.at(std::size_t(isOutputFormat(out) ? out : formatOfOtherNumbers));
}

bool isTwoPassFormat(int out)
{
    return isOutputFormat(out) && outputFormat(out).secondPassSetting != nullptr;
}

bool hasSecondPass(int out)
{
    return isTwoPassFormat(out) && outputFormat(out).secondPassSetting() != 0;
}

} // namespace tavrix
