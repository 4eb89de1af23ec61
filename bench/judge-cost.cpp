// SPDX-License-Identifier: GPL-3.0-or-later
// Prints how long the judge takes over an output, how long the work took that made the output, and the ratio of the
// two: for a rewrap, and for an encode into a small H.264 movie.
#include "batchprocess.h"
#include "judge/judge.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace tavrix;
using namespace tavrix::bench;

namespace
{

struct Work {
    const char* name;
    QStringList arguments; // behind the input
    judge::Asked asked;
};

QList<Work> works()
{
    const QStringList rewrap = QStringLiteral("-c:v copy -c:a pcm_s16le -f mov").split(QLatin1Char(' '));
    const QStringList encode =
        QStringLiteral("-r 30000/1001 -s 640x368 -c:v libx264 -b:v 1500k -c:a aac -f mp4").split(QLatin1Char(' '));
    return {{"rewrap", rewrap, {}}, {"encode", encode, {judge::Way::Encoded, judge::Way::Encoded, 30000.0 / 1001}}};
}

// Seconds; negative when it failed.
double make(const QString& clip, const QStringList& arguments, const QString& output)
{
    QStringList all = QStringLiteral("-nostdin -v error -y -i").split(QLatin1Char(' '));
    QElapsedTimer clock;
    clock.start();
    const bool done = runQuietly(QStringLiteral("ffmpeg"), all << clip << arguments << output);
    return done ? static_cast<double>(clock.nsecsElapsed()) / 1e9 : -1;
}

// Seconds; negative when the output was not found whole.
double judged(const QString& clip, const judge::Asked& asked, const QString& output)
{
    QElapsedTimer clock;
    clock.start();
    const judge::Verdict verdict = judge::judge({clip.toStdString(), output.toStdString(), asked, {}});
    const double seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    return verdict.outcome == judge::Outcome::Whole ? seconds : -1;
}

bool compareOne(const Work& work, const QString& clip, const QString& folder, int rounds)
{
    const QString output = folder + QLatin1Char('/') + QLatin1String(work.name);
    double bestWork = -1;
    double bestJudge = -1;
    for (int round = 0; round < rounds; ++round) {
        const double made = make(clip, work.arguments, output);
        const double looked = made < 0 ? -1 : judged(clip, work.asked, output);
        if (looked < 0) {
            std::fprintf(stderr, "judge-cost: the %s %s\n", work.name, made < 0 ? "failed" : "was not found whole");
            return false;
        }
        bestWork = round == 0 ? made : std::min(bestWork, made);
        bestJudge = round == 0 ? looked : std::min(bestJudge, looked);
    }
    std::printf("%s %.3f s, judge %.3f s, ratio %.3f\n", work.name, bestWork, bestJudge, bestJudge / bestWork);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const Options options =
        optionsFromCommandLine(QStringLiteral("The judge of an output against the work that made it."), {1, 30, 3});
    const QTemporaryDir folder;
    const QStringList clips = makeClips(folder.path(), options);
    if (clips.size() != options.clips) {
        std::fprintf(stderr, "judge-cost: the clips could not be made\n");
        return EXIT_FAILURE;
    }
    bool done = true;
    for (const Work& work : works()) {
        done = compareOne(work, clips.first(), folder.path(), options.rounds) && done;
    }
    return done ? EXIT_SUCCESS : EXIT_FAILURE;
}
