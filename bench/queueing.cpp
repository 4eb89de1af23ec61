// SPDX-License-Identifier: GPL-3.0-or-later
// Prints how long the controller takes to take in 1,000 and 10,000 small files of nested folders, per file, the ratio,
// and the most memory the process had. Each number of files is measured in a process of its own.
#include "app/appdelegate.h"
#include "app/face.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/store/settings.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>

using namespace tavrix;

namespace
{

constexpr int filesPerFolder = 25;
constexpr int foldersPerFolder = 8;
constexpr double memoryBar = 150;

// Never starts a process. It stays running, or ends from the event loop without a word, so that the source is left out.
class NoProcess : public taskLauncher
{
public:
    explicit NoProcess(bool ends) : ends_(ends) {}
    int launchTasksWithArguments(const QStringList& /*arguments*/) override
    {
        running_ = true;
        if (ends_) {
            QTimer::singleShot(0, this, [this] {
                running_ = false;
                if (delegate() != nullptr) {
                    delegate()->taskLauncherTaskDidEnd(this);
                }
            });
        }
        return 0;
    }
    [[nodiscard]] bool isRunning() const override { return running_; }
    [[nodiscard]] bool isSuspended() const override { return false; }
    [[nodiscard]] int terminationStatus() const override { return EXIT_FAILURE; }
    void suspend() override {}
    void resume() override {}
    void terminate() override { running_ = false; }

private:
    bool ends_;
    bool running_ = false;
};

// Folders in folders, each with some files.
bool makeTree(const QString& root, int files)
{
    QStringList folders = {root};
    int made = 0;
    for (qsizetype i = 0; made < files; ++i) {
        const QString folder = folders.at(i);
        for (int child = 0; child < foldersPerFolder; ++child) {
            folders << folder + QStringLiteral("/folder") + QString::number(child);
        }
        if (!QDir().mkpath(folder)) {
            return false;
        }
        for (int number = 0; number < filesPerFolder && made < files; ++number, ++made) {
            QFile file(folder + QStringLiteral("/clip") + QString::number(number) + QStringLiteral(".mts"));
            if (!file.open(QIODevice::WriteOnly) || file.write("clip") != 4) {
                return false;
            }
        }
    }
    return true;
}

double peakMegabytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

// Prints: sources queued, seconds of the drop, megabytes, seconds of the whole (0 when it is not asked for), megabytes.
int measureOne(int files, bool whole)
{
    const QTemporaryDir folder;
    qputenv("HOME", QFile::encodeName(folder.path()));
    setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    const QString temporary = folder.filePath(QStringLiteral("temporary"));
    const QString sources = folder.filePath(QStringLiteral("sources"));
    if (!QDir().mkpath(temporary) || !makeTree(sources, files)) {
        return EXIT_FAILURE;
    }
    setTMPFOLDER(temporary + u'/');
    setOPENPERM(1);
    ApplicationFace face;
    appDelegate controller(&face);
    controller.setLauncherFactory([whole] { return new NoProcess(whole); });
    int queued = 0;
    QObject::connect(&controller, &appDelegate::sourcesQueued, [&queued](int count) { queued = count; });
    bool ended = false;
    QObject::connect(&controller, &appDelegate::analysisEnded, [&ended] { ended = true; });
    QElapsedTimer clock;
    clock.start();
    controller.draggedFiles({sources});
    const double dropped = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    const double droppedMegabytes = peakMegabytes();
    while (whole && !ended) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    std::printf("%d %f %f %f %f\n", queued, dropped, droppedMegabytes,
                whole ? static_cast<double>(clock.nsecsElapsed()) / 1e9 : 0.0, peakMegabytes());
    return queued == files ? EXIT_SUCCESS : EXIT_FAILURE;
}

struct Result {
    bool valid = false;
    double seconds = 0;
    double megabytes = 0;
    double wholeSeconds = 0;
    double wholeMegabytes = 0;
};

Result measure(int files, bool whole, int rounds)
{
    Result best;
    for (int round = 0; round < rounds; ++round) {
        QProcess process;
        process.setStandardErrorFile(QProcess::nullDevice());
        QStringList arguments = {QStringLiteral("--one"), QString::number(files)};
        if (whole) {
            arguments << QStringLiteral("--whole");
        }
        process.start(QCoreApplication::applicationFilePath(), arguments);
        if (!process.waitForFinished(-1) || process.exitCode() != 0) {
            return {};
        }
        const QList<QByteArray> words = process.readAllStandardOutput().trimmed().split(' ');
        const Result result = {words.size() == 5, words.value(1).toDouble(), words.value(2).toDouble(),
                               words.value(3).toDouble(), words.value(4).toDouble()};
        if (!result.valid) {
            return {};
        }
        const bool better = whole ? result.wholeSeconds < best.wholeSeconds : result.seconds < best.seconds;
        if (!best.valid || better) {
            best = result;
        }
    }
    return best;
}

int compare(int clips, bool whole, int rounds)
{
    const Result few = measure(clips, whole, rounds);
    const Result many = measure(clips * 10, whole, rounds);
    if (!few.valid || !many.valid) {
        std::fputs("queueing: a measurement failed\n", stderr);
        return EXIT_FAILURE;
    }
    const auto print = [](const char* what, int files, double seconds, double megabytes) {
        std::printf("%-8s %6d files  %8.4f s  %8.2f us a file  peak %6.1f MB\n", what, files, seconds,
                    seconds * 1e6 / files, megabytes);
    };
    print("drop", clips, few.seconds, few.megabytes);
    print("drop", clips * 10, many.seconds, many.megabytes);
    std::printf("drop: time per file, many against few: %.2f; memory to be under %.0f MB\n",
                many.seconds / few.seconds / 10, memoryBar);
    if (whole) {
        print("analysis", clips, few.wholeSeconds, few.wholeMegabytes);
        print("analysis", clips * 10, many.wholeSeconds, many.wholeMegabytes);
        std::printf("analysis: time per file, many against few: %.2f\n", many.wholeSeconds / few.wholeSeconds / 10);
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QCommandLineOption clips(QStringLiteral("clips"), QStringLiteral("The smaller number of files."),
                                   QStringLiteral("N"), QStringLiteral("1000"));
    const QCommandLineOption rounds(QStringLiteral("rounds"), QStringLiteral("How often each is measured."),
                                    QStringLiteral("N"), QStringLiteral("3"));
    const QCommandLineOption whole(QStringLiteral("whole"),
                                   QStringLiteral("Also walk through the queue, with tools that end at once."));
    QCommandLineOption one(QStringLiteral("one"), QStringLiteral("Measure one number of files in this process."),
                           QStringLiteral("N"));
    one.setFlags(QCommandLineOption::HiddenFromHelp);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Intake of many files."));
    parser.addHelpOption();
    parser.addOptions({clips, rounds, whole, one});
    parser.process(application);
    if (parser.isSet(one)) {
        return measureOne(parser.value(one).toInt(), parser.isSet(whole));
    }
    return compare(qMax(1, parser.value(clips).toInt()), parser.isSet(whole), qMax(1, parser.value(rounds).toInt()));
}
