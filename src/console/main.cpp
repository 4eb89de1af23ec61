// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/appdelegate.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/files/fileinfo.h"
#include "base/files/standardstreams.h"
#include "base/text/format.h"
#include "base/text/shownname.h"
#include "base/text/utf8locale.h"
#include "console/batchrunner.h"
#include "console/consoletext.h"
#include "console/jsonreporter.h"
#include "console/options.h"
#include "console/textreporter.h"
#include "console/unixsignals.h"
#include "inspect/problemreport.h"
#include "platform/desktop.h"

#include <QCoreApplication>
#include <QDir>

#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <memory>
#include <optional>

using namespace tavrix;

namespace
{

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
    std::fprintf(stderr, "tavrix-batch: %s\n%s\n", shownText(error).toUtf8().constData(),
                 consoleText("Con_tryHelp").toUtf8().constData());
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
    case ExistingPolicy::Skip:
        return 0;
    case ExistingPolicy::Ask:
    case ExistingPolicy::Default:
        break;
    }
    return mayAsk ? std::nullopt : std::optional<int>(0);
}

// The reporter and the face, in charge of alerts and desktop for their life.
class Services
{
public:
    // The terminal is not owned.
    Services(std::FILE* terminal, const ConsoleOptions& options)
        : mayAsk_(::isatty(STDIN_FILENO) != 0 && !options.json), reporter_(makeReporter(terminal, options)),
          face_(reporter_.get(), mayAsk_)
    {
        setAlertPresenter(&face_);
        setDesktopServices(&face_);
    }
    ~Services()
    {
        setAlertPresenter(nullptr);
        setDesktopServices(nullptr);
    }
    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

    [[nodiscard]] bool mayAsk() const { return mayAsk_; }
    [[nodiscard]] Reporter* reporter() const { return reporter_.get(); }
    [[nodiscard]] ConsoleFace* face() { return &face_; }

private:
    static std::unique_ptr<Reporter> makeReporter(std::FILE* terminal, const ConsoleOptions& options)
    {
        if (options.json) {
            return std::make_unique<JsonReporter>(terminal);
        }
        return std::make_unique<TextReporter>(terminal, ::isatty(STDOUT_FILENO) != 0, options.verbosity);
    }

    bool mayAsk_;
    std::unique_ptr<Reporter> reporter_;
    ConsoleFace face_;
};

// What the command line says prevails over the preferences. The folder is the one that the program was called in.
void applyOptions(appDelegate& controller, const ConsoleOptions& options, const QString& startFolder, bool mayAsk)
{
    controller.setReplacePolicy(replacePolicy(options.existing, mayAsk));
    WindowModel& model = controller.model();
    if (options.format >= 0) {
        model.prefCheckMatrix.setSelectedSegment(options.format);
    }
    if (!options.output.isNull()) {
        model.mainEncDstPathStr.setStringValue(QDir::cleanPath(QDir(startFolder).absoluteFilePath(options.output)));
    } else if (model.mainEncDstPathStr.stringValue().isEmpty()) {
        model.mainEncDstPathStr.setStringValue(startFolder);
    }
}

void connectSignals(const UnixSignals& unixSignals, BatchRunner& runner)
{
    QObject::connect(&unixSignals, &UnixSignals::interrupted, &runner, &BatchRunner::interrupt);
    QObject::connect(&unixSignals, &UnixSignals::terminated, &runner, &BatchRunner::terminate);
    QObject::connect(&unixSignals, &UnixSignals::aboutToBeStopped, &runner, &BatchRunner::suspend);
    QObject::connect(&unixSignals, &UnixSignals::continued, &runner, &BatchRunner::resume);
}

int runBatch(QCoreApplication& application, Services& services, const ConsoleOptions& options)
{
    // The start of the controller leaves the current folder.
    const QStringList sources = absolutePaths(options.sources);
    const QString startFolder = QDir::currentPath();
    appDelegate controller(services.face());
    if (!controller.awakeFromNib()) {
        return exitSomeFailed;
    }
    controller.applicationDidFinishLaunching();
    applyOptions(controller, options, startFolder, services.mayAsk());
    const UnixSignals unixSignals;
    const BatchRunner::Wishes wishes = {options.dryRun, options.existing != ExistingPolicy::Skip};
    BatchRunner runner(&controller, services.face(), services.reporter(), wishes);
    connectSignals(unixSignals, runner);
    runner.setPart(options.part);
    runner.start(sources);
    const int status = application.exec();
    controller.applicationWillTerminate();
    return status;
}

int convert(QCoreApplication& application, const ConsoleOptions& options)
{
    std::FILE* terminal = keptStream(stdout);
    if (terminal == nullptr) {
        std::perror("tavrix-batch");
        return exitSomeFailed;
    }
    int status = exitSomeFailed;
    {
        Services services(terminal, options);
        // Diagnostics belong in the detail log; what is written before it is open would only litter the terminal.
        if (std::freopen("/dev/null", "a", stderr) != nullptr) {
            status = runBatch(application, services, options);
        }
    }
    std::fclose(terminal);
    return status;
}

// The diagnostics of the program's parts belong in no report.
int printReport()
{
    if (!dropStream(stderr)) {
        return exitSomeFailed;
    }
    std::fputs(problemReport().toUtf8().constData(), stdout);
    return std::ferror(stdout) != 0 || std::fflush(stdout) != 0 ? exitSomeFailed : exitAllDone;
}

} // namespace

int main(int argc, char** argv)
{
    if (!fillStandardStreams()) {
        return exitSomeFailed;
    }
    useUtf8Locale();
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
    case ConsoleOptions::Mode::System:
        return printReport();
    case ConsoleOptions::Mode::Wrong:
        return wrongUsage(options.error);
    case ConsoleOptions::Mode::Convert:
        break;
    }
    if (const QString missing = missingSource(absolutePaths(options.sources)); !missing.isNull()) {
        return wrongUsage(formatText(consoleText("Con_missing"), {missing}));
    }
    if (!options.output.isNull() && !options.dryRun && !QDir().mkpath(absolutePaths({options.output}).first())) {
        return wrongUsage(formatText(consoleText("Con_badOutput"), {options.output}));
    }
    return convert(application, options);
}
