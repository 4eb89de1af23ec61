// SPDX-License-Identifier: GPL-3.0-or-later
// Prints how long the console program takes to analyse clips, from the moment they are queued to the last verdict, how
// long a plain loop of ffprobe and one thumbnail per clip takes, and the ratio of the two.
#include "batchprocess.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace tavrix::bench;

namespace
{

// Negative when not every clip was accepted.
double analyse(const QString& clips, int count)
{
    const QTemporaryDir destination;
    BatchRun batch;
    int verdicts = 0;
    int accepted = 0;
    double begin = 0;
    const QList<Event> events =
        batch.run({QStringLiteral("--output"), destination.path(), clips}, [&](const Event& event) {
            if (event.name() == QLatin1String("queued")) {
                begin = event.seconds;
            }
            accepted += event.name() == QLatin1String("accepted") ? 1 : 0;
            verdicts += event.name() == QLatin1String("accepted") || event.name() == QLatin1String("rejected") ? 1 : 0;
            return verdicts == count;
        });
    return events.isEmpty() || accepted != count ? -1 : events.last().seconds - begin;
}

double loop(const QStringList& clips, const QString& folder)
{
    QElapsedTimer clock;
    clock.start();
    const QString picture = folder + QStringLiteral("/thumbnail.jpg");
    for (const QString& clip : clips) {
        const bool done = runQuietly(QStringLiteral("ffprobe"),
                                     {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_format"),
                                      QStringLiteral("-show_streams"), clip}) &&
                          runQuietly(QStringLiteral("ffmpeg"),
                                     {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                                      QStringLiteral("-y"), QStringLiteral("-i"), clip, QStringLiteral("-frames:v"),
                                      QStringLiteral("1"), QStringLiteral("-s"), QStringLiteral("320x180"), picture});
        if (!done) {
            return -1;
        }
    }
    return static_cast<double>(clock.nsecsElapsed()) / 1e9;
}

int failed(const char* reason)
{
    std::fprintf(stderr, "analysis: %s\n", reason);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const Options options =
        optionsFromCommandLine(QStringLiteral("Analysis against ffprobe and a thumbnail."), {50, 5, 3});
    const QTemporaryDir folder;
    const QTemporaryDir pictures;
    const QStringList clips = makeClips(folder.path(), options);
    if (clips.size() != options.clips) {
        return failed("the clips could not be made");
    }
    std::printf("%d clips of %.0f s, %d rounds\n", options.clips, options.seconds, options.rounds);
    double bestAnalysis = -1;
    double bestLoop = -1;
    for (int round = 0; round < options.rounds; ++round) {
        const double analysed = analyse(folder.path(), options.clips);
        if (analysed < 0) {
            return failed("a clip was not accepted");
        }
        const double looped = loop(clips, pictures.path());
        if (looped < 0) {
            return failed("the loop failed");
        }
        printTime("analysis", analysed);
        printTime("ffprobe and thumbnail", looped);
        bestAnalysis = round == 0 ? analysed : std::min(bestAnalysis, analysed);
        bestLoop = round == 0 ? looped : std::min(bestLoop, looped);
    }
    std::printf("analysis %.2f s (%.0f ms a clip), loop %.2f s, ratio %.2f\n", bestAnalysis,
                bestAnalysis * 1000 / options.clips, bestLoop, bestAnalysis / bestLoop);
    return EXIT_SUCCESS;
}
