// SPDX-License-Identifier: GPL-3.0-or-later
// Prints how long the console program takes for a batch in format 0, from the start of the first row to the end of the
// last one, how long a plain loop over the very same ffmpeg commands takes, and the ratio of the two.
#include "batchprocess.h"
#include "encode/encoderarguments.h"
#include "probe/mediainforecord.h"
#include "tools/ffmpeg/arguments.h"
#include "tools/ffmpeg/muxers.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace tavrix;
using namespace tavrix::bench;

namespace
{

constexpr int format = 0;
constexpr double bar = 1.01;

struct Batch {
    double seconds = -1; // negative: it did not convert every clip
    QList<QVariantMap> records;
};

Batch runBatch(const QString& clips, int count)
{
    const QTemporaryDir destination;
    BatchRun batch;
    const QList<Event> events = batch.run(
        {QStringLiteral("--format"), QString::number(format), QStringLiteral("--output"), destination.path(), clips},
        [](const Event& event) { return event.name() == QLatin1String("end"); });
    Batch result;
    double begin = -1;
    int done = 0;
    for (const Event& event : events) {
        if (event.name() == QLatin1String("accepted")) {
            QVariantMap infos = event.object.value(QLatin1String("record")).toObject().toVariantMap();
            infos.insert(record::mainEncSrcPathStr, event.object.value(QLatin1String("source")).toString());
            result.records << infos;
        } else if (event.name() == QLatin1String("row-started") && begin < 0) {
            begin = event.seconds;
        } else if (event.name() == QLatin1String("row-finished")) {
            done += event.object.value(QLatin1String("success")).toBool() ? 1 : 0;
            result.seconds = event.seconds - begin;
        }
    }
    if (done != count) {
        result.seconds = -1;
    }
    return result;
}

// What the program's front makes of the program's arguments, as the installed ffmpeg gets it.
QStringList ffmpegArguments(const QVariantMap& infos, const QString& output)
{
    const QString source = infos.value(record::mainEncSrcPathStr).toString();
    const auto classic =
        encodage(source, output, infos.value(record::wrapper).toString(), infos.value(record::v0_codec).toString(),
                 infos.value(record::v0_fps).toFloat(), format, infos.value(record::v0_aspect).toFloat());
    if (!classic) {
        return {};
    }
    std::vector<std::string> words;
    for (const QString& word : classic->mid(1)) {
        words.push_back(word.toStdString());
    }
    const std::string outputName = output.toStdString();
    const front::FileUrls urls = {{"file:" + source.toStdString()},
                                  {{"file:" + outputName, front::muxerArguments(outputName)}}};
    QStringList arguments;
    for (const std::string& word : front::installedArguments(front::parseCommandLine(words), urls, {})) {
        arguments << QString::fromStdString(word);
    }
    return arguments;
}

double runLoop(const QList<QStringList>& commands)
{
    QElapsedTimer clock;
    clock.start();
    for (const QStringList& command : commands) {
        if (!runQuietly(QStringLiteral("ffmpeg"), command)) {
            return -1;
        }
    }
    return static_cast<double>(clock.nsecsElapsed()) / 1e9;
}

int failed(const char* reason)
{
    std::printf("batch-overhead: %s\n", reason);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const Options options =
        optionsFromCommandLine(QStringLiteral("Batch against a loop of the same commands."), {10, 30, 2});
    // The argument builder's log lines are of no use here.
    if (std::freopen("/dev/null", "a", stderr) == nullptr) {
        return failed("no place for log lines");
    }
    const QTemporaryDir clips;
    const QTemporaryDir outputs;
    if (makeClips(clips.path(), options).size() != options.clips) {
        return failed("the clips could not be made");
    }
    std::printf("%d clips of %.0f s, format %d, %d rounds\n", options.clips, options.seconds, format, options.rounds);
    double bestBatch = -1;
    double bestLoop = -1;
    for (int round = 0; round < options.rounds; ++round) {
        const Batch batch = runBatch(clips.path(), options.clips);
        if (batch.seconds < 0) {
            return failed("the batch failed");
        }
        QList<QStringList> commands;
        for (const QVariantMap& infos : batch.records) {
            commands << ffmpegArguments(infos,
                                        outputs.filePath(QString::number(commands.size()) + QLatin1String(".mp4")));
        }
        if (round == 0) {
            std::printf("  ffmpeg %s\n", commands.first().join(u' ').toUtf8().constData());
        }
        const double loop = runLoop(commands);
        if (loop < 0 || commands.size() != options.clips) {
            return failed("the loop failed");
        }
        printTime("batch", batch.seconds);
        printTime("loop", loop);
        bestBatch = round == 0 ? batch.seconds : std::min(bestBatch, batch.seconds);
        bestLoop = round == 0 ? loop : std::min(bestLoop, loop);
    }
    // What else the machine does only ever slows a run down: the best of each side are compared.
    std::printf("batch %.2f s, loop %.2f s, ratio %.3f (to be under %.2f)\n", bestBatch, bestLoop, bestBatch / bestLoop,
                bar);
    return EXIT_SUCCESS;
}
