#include "inspect/soundexport.h"

#include "base/filesizes.h"
#include "base/paths.h"
#include "base/posixfile.h"
#include "inspect/fileproblem.h"
#include "inspect/words.h"
#include "inspect/workingfolder.h"
#include "media/sourcefacts.h"
#include "quicktime/movieedit.h"

#include <QFile>
#include <QtEndian>

#include <cstdio>

#include <fcntl.h>

namespace tavrix
{

namespace
{

constexpr qint32 waveMode = -2;
constexpr int openSeconds = 20;

// Seconds of the sound that is exported; 0 when the source does not tell.
double soundSeconds(const QString& source)
{
    const Result<media::SourceFacts> facts = media::readSourceFacts(nativePath(source).toStdString(), openSeconds);
    if (!facts) {
        return 0;
    }
    for (const media::StreamFacts& stream : facts->streams) {
        if (stream.kind == media::Kind::Sound) {
            return stream.start.value_or(0) + stream.duration.value_or(0);
        }
    }
    return 0;
}

bool hasSound(const QString& source)
{
    const Result<media::SourceFacts> facts = media::readSourceFacts(nativePath(source).toStdString(), openSeconds);
    return !facts || facts->chosen(media::Kind::Sound) != nullptr;
}

} // namespace

bool ExportedSound::isShort() const
{
    // The last packet of some codecs is cut or padded.
    constexpr double tolerance = 0.1;
    return expected > 0 && seconds < expected - tolerance;
}

Result<double, QString> waveSeconds(const QString& file)
{
    QFile wave(file);
    if (!wave.open(QIODevice::ReadOnly)) {
        return Failure{wave.errorString()};
    }
    constexpr qsizetype headerSize = 44;
    constexpr qsizetype bytesPerSecondAt = 28;
    constexpr qsizetype dataSizeAt = 40;
    const QByteArray header = wave.read(headerSize);
    if (header.size() < headerSize || !header.startsWith("RIFF") || header.mid(8, 4) != "WAVE") {
        return Failure{QStringLiteral("no WAVE header")};
    }
    const auto number = [&header](qsizetype at) {
        return qFromLittleEndian<quint32>(header.constData() + at);
    };
    const quint32 bytesPerSecond = number(bytesPerSecondAt);
    const qint64 dataBytes = number(dataSizeAt);
    if (bytesPerSecond == 0 || headerSize + dataBytes != wave.size()) {
        return Failure{QStringLiteral("the WAVE header and the data do not agree")};
    }
    return static_cast<double>(dataBytes) / bytesPerSecond;
}

Result<ExportedSound, QString> exportSound(const QString& source, const QString& destination)
{
    if (const QString problem = fileProblem(source); !problem.isNull()) {
        return Failure{problem};
    }
    if (itemExists(destination)) {
        return Failure{inspectText("Ins_exportExists", {destination})};
    }
    if (!hasSound(source)) {
        return Failure{inspectText("Ins_exportNoSound")};
    }
    const WorkingFolder folder(stringByDeletingLastPathComponent(destination));
    if (!folder.isOpen()) {
        return Failure{inspectText("Ins_exportNoFolder")};
    }
    const QString written = folder.path(QStringLiteral("sound.wav"));
    if (!movieCutForceSize(source, written, 0, 0, 0, 0, waveMode)) {
        return Failure{inspectText("Ins_unreadable")};
    }
    const Result<double, QString> seconds = waveSeconds(written);
    if (!seconds) {
        return Failure{seconds.reason()};
    }
    const Result<void, QString> published = folder.publish(written, destination);
    if (!published) {
        return Failure{published.reason()};
    }
    return ExportedSound{destination, static_cast<qint64>(poidsFile(destination, QStringLiteral("O"))), *seconds,
                         soundSeconds(source)};
}

} // namespace tavrix
