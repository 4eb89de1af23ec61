// SPDX-License-Identifier: GPL-3.0-or-later
#include "batchprocess.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <cstdio>
#include <cstdlib>

namespace tavrix::bench
{

Options optionsFromCommandLine(const QString& description, const Options& defaults)
{
    const QCommandLineOption clips(QStringLiteral("clips"), QStringLiteral("Number of clips."), QStringLiteral("N"),
                                   QString::number(defaults.clips));
    const QCommandLineOption seconds(QStringLiteral("seconds"), QStringLiteral("Length of a clip."),
                                     QStringLiteral("S"), QString::number(defaults.seconds));
    const QCommandLineOption rounds(QStringLiteral("rounds"), QStringLiteral("How often both sides are measured."),
                                    QStringLiteral("N"), QString::number(defaults.rounds));
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addHelpOption();
    parser.addOptions({clips, seconds, rounds});
    parser.process(*QCoreApplication::instance());
    const Options options = {parser.value(clips).toInt(), parser.value(seconds).toDouble(),
                             parser.value(rounds).toInt()};
    if (options.clips < 1 || options.seconds <= 0 || options.rounds < 1) {
        std::fputs(parser.helpText().toUtf8().constData(), stderr);
        std::exit(EXIT_FAILURE);
    }
    return options;
}

bool runQuietly(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QStringList makeClips(const QString& folder, const Options& options)
{
    const auto path = [&folder](int number) {
        return QDir(folder).filePath(QString::number(number).rightJustified(5, u'0') + QStringLiteral(".MTS"));
    };
    const QString seconds = QString::number(options.seconds);
    const QStringList arguments =
        QStringLiteral("-nostdin -v error -f lavfi -i testsrc2=size=1280x720:rate=25:duration=%1 -f lavfi "
                       "-i sine=sample_rate=48000:duration=%1 -c:v libx264 -preset ultrafast -pix_fmt yuv420p "
                       "-b:v 8M -g 25 -c:a ac3 -ac 2 -f mpegts")
            .arg(seconds)
            .split(u' ');
    if (!runQuietly(QStringLiteral("ffmpeg"), QStringList(arguments) << path(1))) {
        return {};
    }
    QStringList clips = {path(1)};
    while (clips.size() < options.clips && QFile::copy(clips.first(), path(static_cast<int>(clips.size()) + 1))) {
        clips << path(static_cast<int>(clips.size()) + 1);
    }
    return clips;
}

QList<Event> BatchRun::run(const QStringList& arguments, const std::function<bool(const Event&)>& isLast)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home_.path());
    environment.insert(QStringLiteral("TMPDIR"), home_.path());
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home_.path() + QStringLiteral("/data"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/tavrix-batch"),
                  QStringList{QStringLiteral("--json")} + arguments);
    QList<Event> events;
    while (true) {
        while (process.canReadLine()) {
            const double now = static_cast<double>(clock.nsecsElapsed()) / 1e9;
            events << Event{QJsonDocument::fromJson(process.readLine()).object(), now};
            if (isLast(events.constLast())) {
                process.terminate();
                process.waitForFinished(-1);
                return events;
            }
        }
        if (!process.waitForReadyRead(-1) && !process.canReadLine()) {
            return {};
        }
    }
}

void printTime(const char* label, double seconds)
{
    std::printf("  %-32s %8.2f s\n", label, seconds);
    std::fflush(stdout);
}

} // namespace tavrix::bench
