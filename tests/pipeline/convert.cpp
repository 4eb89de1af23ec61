// SPDX-License-Identifier: GPL-3.0-or-later
#include "pipeline/convert.h"

#include "base/bundle/bundle.h"
#include "base/store/preferences.h"
#include "encode/encoderarguments.h"
#include "encode/movencoderstep.h"
#include "probe/ffinfos.h"
#include "probe/mediainforecord.h"

#include <QProcess>

namespace tavrix::test
{

namespace
{

// Adds what the program says to the transcript; true when it ended well.
bool runListed(const QStringList& list, QString& transcript)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(list.first(), list.mid(1));
    const bool ended = process.waitForFinished(-1);
    transcript += QString::fromUtf8(process.readAll());
    return ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

MediaInfoRecord recordOf(const QString& source, QString& transcript)
{
    QString banner;
    (void)runListed(
        {toolPath(QStringLiteral("ffmpeg")), QStringLiteral("-v"), QStringLiteral("2"), QStringLiteral("-i"), source},
        banner);
    transcript += banner;
    return recordFromBanner(banner);
}

} // namespace

Converted convertClip(const QString& source, const QString& folder, int format, float aspect)
{
    Converted result;
    const MediaInfoRecord info = recordOf(source, result.transcript);
    const QString codec = info.value(record::v0_codec).toString();
    result.output = folder + QStringLiteral("/out") + QString::number(format) + QLatin1Char('.') +
                    encDstExtensionStr(format, codec);
    const auto arguments = encodage(source, result.output, info.value(record::wrapper).toString(), codec,
                                    info.value(record::v0_fps).toFloat(), format, aspect);
    result.ok = arguments && runListed(*arguments, result.transcript);
    if (!result.ok || format < 4) {
        return result;
    }
    prefWriteDico(QStringLiteral("processEncDico"),
                  QVariantMap{{record::out, format}, {QStringLiteral("mainEncSrcPathStr"), source}});
    const auto second = encPostQtEnc(result.output, info.value(record::w_duration).toFloat(), aspect, QString());
    result.ok = second && runListed(*second, result.transcript);
    return result;
}

} // namespace tavrix::test
