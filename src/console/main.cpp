#include "app/appdelegate.h"
#include "base/alerts.h"
#include "base/bundle.h"
#include "base/fileops.h"
#include "base/filesizes.h"
#include "base/format.h"
#include "base/localisation.h"
#include "base/log.h"
#include "console/batchrunner.h"
#include "console/jsonreporter.h"
#include "console/options.h"
#include "console/textreporter.h"
#include "console/unixsignals.h"
#include "platform/desktop.h"

#include <QCoreApplication>
#include <QDir>

#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>

using namespace tavrix;

namespace
{

// A file opened in the place of a closed standard stream would take what is meant for that stream.
bool fillStandardStreams()
{
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    return descriptor >= 0 && ::close(descriptor) == 0;
}

// The detail log takes over the standard streams; the terminal is kept under a descriptor of its own.
std::FILE* keptTerminal()
{
    const int descriptor = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    return descriptor < 0 ? nullptr : ::fdopen(descriptor, "w");
}

QStringList absolutePaths(const QStringList& sources)
{
    QStringList absolute;
    for (const QString& source : sources) {
        absolute << QDir::cleanPath(QDir::current().absoluteFilePath(source));
    }
    return absolute;
}

int wrongUsage(const QString& error)
{
    std::fprintf(stderr, "tavrix-batch: %s\n\n%s", error.toUtf8().constData(), consoleUsage().toUtf8().constData());
    return exitWrongUsage;
}

// Sources that do not exist are a mistake in the command, told before anything starts.
QString missingSource(const QStringList& sources)
{
    for (const QString& source : sources) {
        if (!testPresenceCocoa(source)) {
            return source;
        }
    }
    return {};
}

std::optional<int> replacePolicy(ExistingPolicy existing, bool mayAsk)
{
    switch (existing) {
    case ExistingPolicy::Replace:
        return 1;
    case ExistingPolicy::Keep:
        return 0;
    case ExistingPolicy::Ask:
    case ExistingPolicy::Default:
        break;
    }
    return mayAsk ? std::nullopt : std::optional<int>(0);
}

int convert(QCoreApplication& application, const ConsoleOptions& options)
{
    const QStringList sources = absolutePaths(options.sources);
    const QString folder = options.output.isNull() ? QString() : absolutePaths({options.output}).first();
    const QString startFolder = QDir::currentPath();
    std::FILE* terminal = keptTerminal();
    if (terminal == nullptr) {
        std::perror("tavrix-batch");
        return exitSomeFailed;
    }
    const bool mayAsk = ::isatty(STDIN_FILENO) != 0 && !options.json;
    TextReporter textReporter(terminal, ::isatty(STDOUT_FILENO) != 0);
    JsonReporter jsonReporter(terminal);
    Reporter& reporter = options.json ? static_cast<Reporter&>(jsonReporter) : textReporter;
    ConsoleFace face(&reporter, mayAsk);
    setAlertPresenter(&face);
    setDesktopServices(&face);
    // Diagnostics belong in the detail log; what is written before it is open would only litter the terminal.
    if (std::freopen("/dev/null", "a", stderr) == nullptr) {
        return exitSomeFailed;
    }
    int status = exitSomeFailed;
    {
        appDelegate controller(&face);
        if (controller.awakeFromNib()) {
            controller.applicationDidFinishLaunching();
            controller.setReplacePolicy(replacePolicy(options.existing, mayAsk));
            WindowModel& model = controller.model();
            if (options.format >= 0) {
                model.prefCheckMatrix.setSelectedSegment(options.format);
            }
            if (!folder.isNull()) {
                model.mainEncDstPathStr.setStringValue(folder);
            } else if (model.mainEncDstPathStr.stringValue().isEmpty()) {
                model.mainEncDstPathStr.setStringValue(startFolder);
            }
            UnixSignals unixSignals;
            BatchRunner runner(&controller, &face, &reporter);
            QObject::connect(&unixSignals, &UnixSignals::interrupted, &runner, &BatchRunner::interrupt);
            QObject::connect(&unixSignals, &UnixSignals::terminated, &runner, &BatchRunner::terminate);
            QObject::connect(&unixSignals, &UnixSignals::aboutToBeStopped, &runner, &BatchRunner::suspend);
            QObject::connect(&unixSignals, &UnixSignals::continued, &runner, &BatchRunner::resume);
            runner.start(sources);
            status = application.exec();
            controller.applicationWillTerminate();
        }
    }
    setAlertPresenter(nullptr);
    setDesktopServices(nullptr);
    std::fclose(terminal);
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    if (!fillStandardStreams()) {
        return exitSomeFailed;
    }
    QCoreApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    const ConsoleOptions options = parseConsoleOptions(QCoreApplication::arguments().mid(1));
    switch (options.mode) {
    case ConsoleOptions::Mode::Help:
        std::fputs(consoleUsage().toUtf8().constData(), stdout);
        return exitAllDone;
    case ConsoleOptions::Mode::Version:
        std::printf("tavrix-batch %s\n", bundleVersion().toUtf8().constData());
        return exitAllDone;
    case ConsoleOptions::Mode::Wrong:
        return wrongUsage(options.error);
    case ConsoleOptions::Mode::Convert:
        break;
    }
    if (const QString missing = missingSource(absolutePaths(options.sources)); !missing.isNull()) {
        return wrongUsage(
            formatText(localizedString(QStringLiteral("Con_missing"), QStringLiteral("Console")), {missing}));
    }
    if (!options.output.isNull() && !QDir().mkpath(absolutePaths({options.output}).first())) {
        return wrongUsage(
            formatText(localizedString(QStringLiteral("Con_badOutput"), QStringLiteral("Console")), {options.output}));
    }
    return convert(application, options);
}
