// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"
#include "base/text/utf8locale.h"
#include "gui/desktop/endsignals.h"
#include "gui/desktop/handover.h"
#include "gui/preview/clipplayer.h"
#include "gui/window/windowprogram.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QSessionManager>
#include <QUrl>

#include <clocale>
#include <cstdio>
#include <optional>
#include <unistd.h>

namespace
{

constexpr int startRefused = 1;
constexpr int wrongUsage = 2;

void printUsage(std::FILE* stream)
{
    std::fputs("Usage: tavrix [FILE or FOLDER]...\n"
               "Converts clips of consumer cameras. The files and folders are taken in as if they were dropped.\n"
               "\n"
               "  --help     shows this text\n"
               "  --version  shows the version\n",
               stream);
}

// Answers without a display; no value when the program is to start.
std::optional<int> answeredAtOnce(int argc, char** argv)
{
    for (int i = 1; i < argc && qstrcmp(argv[i], "--") != 0; ++i) {
        if (qstrcmp(argv[i], "--help") == 0 || qstrcmp(argv[i], "-h") == 0) {
            printUsage(stdout);
            return 0;
        }
        if (qstrcmp(argv[i], "--version") == 0) {
            const QCoreApplication application(argc, argv);
            std::printf("tavrix %s\n", qPrintable(tavrix::bundleVersion()));
            return 0;
        }
    }
    return std::nullopt;
}

// Absolute paths of the arguments, which count from the folder that the program was started in; no value for an unknown
// option.
std::optional<QStringList> filesOf(const QStringList& arguments)
{
    QStringList files;
    bool onlyFiles = false;
    for (const QString& argument : arguments) {
        if (!onlyFiles && argument == QLatin1String("--")) {
            onlyFiles = true;
        } else if (!onlyFiles && argument.startsWith(QLatin1Char('-'))) {
            return std::nullopt;
        } else if (argument.startsWith(QLatin1String("file:"))) {
            files << QUrl(argument).toLocalFile();
        } else {
            files << QFileInfo(argument).absoluteFilePath();
        }
    }
    return files;
}

int runProgram(QApplication& application, const QStringList& files)
{
    tavrix::WindowProgram program([] { QCoreApplication::exit(0); });
    const tavrix::EndSignals signalsOfTheEnd;
    QObject::connect(&signalsOfTheEnd, &tavrix::EndSignals::received, &program, &tavrix::WindowProgram::endNow);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &program, &tavrix::WindowProgram::endNow,
                     Qt::DirectConnection);
    if (!program.start()) {
        return startRefused;
    }
    program.openFiles(files);
    return program.hasEnded() ? 0 : QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    tavrix::useUtf8Locale();
    if (const std::optional<int> status = answeredAtOnce(argc, argv)) {
        return *status;
    }
    QApplication application(argc, argv);
    // The application object takes the number format of the environment.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setApplicationName(QStringLiteral("Tavrix"));
    QApplication::setDesktopFileName(QStringLiteral("tavrix"));
    QApplication::setQuitOnLastWindowClosed(false);
    const std::optional<QStringList> files = filesOf(QApplication::arguments().mid(1));
    if (!files) {
        printUsage(stderr);
        return wrongUsage;
    }
    // Relative names must not find anything in the folder that the program was started in.
    QDir::setCurrent(QStringLiteral("/"));

    if (!files->isEmpty() && tavrix::Handover::handOver(*files)) {
        return 0;
    }
    const int status = runProgram(application, *files);
    if (tavrix::ClipPlayer::hasGivenUpSound()) {
        std::fflush(nullptr);
        ::_exit(status);
    }
    return status;
}
