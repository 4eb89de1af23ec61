#include "encode/encoderarguments.h"

#include "base/bundle.h"
#include "base/log.h"
#include "base/paths.h"
#include "encode/presets.h"
#include "probe/aspectclass.h"

namespace tavrix
{

namespace
{

constexpr const char* picturesPerGroup = "25";

// One row's values on their way to an argument list.
struct Job {
    QString source;
    QString destination;
    QString wrapper;
    float framesPerSecond;
    float aspect;
};

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

void addDestination(QStringList& arguments, const Job& job)
{
    arguments.append(QStringLiteral("-y"));
    arguments.append(job.destination);
}

void addPreset(QStringList& arguments, const QString& file)
{
    arguments.append(ffpresetParserFunction(QStringLiteral("presets"), file).value_or(QStringList()));
}

void addSmallScreen(QStringList& arguments, const Job& job)
{
    addFrameRate(arguments, job.framesPerSecond);
    addWords(arguments, {"-vcodec", "mpeg4", "-vb", "250k"});
    addScale(arguments, job.aspect, "480:272,setdar=16:9", "368:272,setdar=4:3");
    addAac(arguments, "64k");
    addWords(arguments, {"-g", picturesPerGroup});
    addDestination(arguments, job);
    logDebug(QStringLiteral("argsArray fin - 0   : %@"), {arguments});
}

void addH264(QStringList& arguments, const Job& job)
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

void addRewrap(QStringList& arguments, const Job& job)
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

void addMovieCopy(QStringList& arguments, const Job& job)
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

} // namespace

std::optional<QStringList> encodage(const QString& sourcePath, const QString& destinationPath, const QString& wrapper,
                                    const QString& /*codec*/, float framesPerSecond, int out, float aspect)
{
    logLine(QStringLiteral("encodage            - deb"));
    logDebug(QStringLiteral("srcPathStr          : %@"), {sourcePath});
    logDebug(QStringLiteral("dstPathStr          : %@"), {destinationPath});
    logDebug(QStringLiteral("outInt              : %d"), {out});
    if (sourcePath.isNull() || destinationPath.isNull()) {
        return std::nullopt;
    }
    const Job job = {sourcePath, destinationPath, wrapper, framesPerSecond, aspect};
    QStringList arguments = {toolPath(QStringLiteral("ffmpeg"))};
    addWords(arguments, {"-v", "1", "-i"});
    arguments.append(job.source);
    addWords(arguments, {"-vsync", "0"});
    switch (out) {
    case 0:
        addSmallScreen(arguments, job);
        break;
    case 1:
        addH264(arguments, job);
        break;
    case 2:
        addRewrap(arguments, job);
        break;
    default:
        addMovieCopy(arguments, job);
    }
    logDev(QStringLiteral("argsArray fin       : %@"), {arguments});
    logLine(QStringLiteral("encodage - fin"));
    return arguments;
}

QString encDstExtensionStr(int out, const QString& codec)
{
    switch (out) {
    case 0:
        return QStringLiteral("mp4");
    case 1:
        return QStringLiteral("m4v");
    case 2:
        return codec.startsWith(QLatin1String("mjpeg")) ? QStringLiteral("avi") : QStringLiteral("m4v");
    default:
        return QStringLiteral("mov");
    }
}

float encDstPoidsEstimatif(float duration, double sourceSize, int out)
{
    const double seconds = static_cast<double>(duration);
    double estimate = seconds * 0.1;
    if (out == 0) {
        estimate = seconds * (1.0 / 24.0);
    } else if (out == 1) {
        estimate = seconds * 0.2;
    } else if (out == 2) {
        estimate = sourceSize;
    } else if (out == 3) {
        estimate = seconds * (11.0 / 60.0) + sourceSize;
    }
    const float narrowed = static_cast<float>(estimate);
    logLine(QStringLiteral("encDstPoidsEstimatif= %f"), {static_cast<double>(narrowed)});
    return narrowed;
}

} // namespace tavrix
