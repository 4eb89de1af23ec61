#include "tools/movencoder/movencoder.h"

#include "sys/fileidentity.h"
#include "sys/safeoutput.h"
#include "sys/transfer.h"
#include "tools/movencoder/conversion.h"
#include "tools/movencoder/formatchoice.h"
#include "tools/movencoder/options.h"
#include "tools/movencoder/progress.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

extern "C" {
#include <libavutil/log.h>
}

namespace tavrix::movencoder
{

namespace
{

void complain(const std::string& message)
{
    // There is nowhere left to tell that standard error cannot be written.
    static_cast<void>(writeAll(STDERR_FILENO, "movencoder: " + message + "\n"));
}

// Opening a pipe would wait for a writer, and a movie is read back and forth. A missing file is told by the reader.
bool inputAllowed(const std::string& path, std::string& error)
{
    const auto status = followedStatus(path.c_str());
    if (!status || S_ISREG(status->st_mode)) {
        return true;
    }
    error = path + ": not a regular file";
    return false;
}

// Whether `output` may be written: it must not be one of the files that are read, nor anything but a file.
bool outputAllowed(const Options& options, std::string& error)
{
    const auto target = followedStatus(options.output.c_str());
    if (!target) {
        return true;
    }
    if (!S_ISREG(target->st_mode)) {
        error = options.output + ": not a regular file";
        return false;
    }
    for (const std::string* path : {&options.input, &options.settings}) {
        const auto source = followedStatus(path->c_str());
        if (source && sameFile(*source, *target)) {
            error = options.output + ": output and " + (path == &options.input ? "input" : "settings") +
                    " are the same file";
            return false;
        }
    }
    return true;
}

// The row's first pass loses its name at once: should this tool and its program be killed, nobody is left to remove it.
// Where that fails the file is read and, at the end of the row, removed by its name.
void openNameless(InputMovie& input, Descriptor& file)
{
    file = openFile(input.name.c_str(), O_RDONLY);
    if (file.isOpen() && unlink(input.name.c_str()) == 0) {
        input.path = "/proc/self/fd/" + std::to_string(file.get());
    }
}

bool work(const Options& options, std::string& error)
{
    if (!inputAllowed(options.input, error) || !outputAllowed(options, error)) {
        return false;
    }
    auto format = options.format;
    InputMovie input{options.input, options.input};
    Descriptor firstPass;
    if (!format) {
        format = formatOfRunningRow(preferencesPath(), options.input, options.output);
        if (format && isFirstPassOf(options.output, options.input)) {
            openNameless(input, firstPass);
        }
    }
    std::string reason;
    const auto settings = readSettings(options.settings, reason);
    if (!settings) {
        error = options.settings + ": " + reason;
        return false;
    }
    const auto& section = settings->of(format.value_or(settings->defaultFormat));
    if (!section) {
        error = options.settings + ": there is no section for " + formatName(*format);
        return false;
    }
    auto output = SafeOutput::open(options.output);
    if (!output) {
        error = options.output + ": " + output.reason();
        return false;
    }
    if (!convertMovie(input, options.output, output->fd(), format.value_or(settings->defaultFormat), *section, error)) {
        return false;
    }
    if (const auto published = output->commit(); !published) {
        error = options.output + ": " + published.reason();
        return false;
    }
    return true;
}

} // namespace

int run(const std::vector<std::string>& arguments)
{
    // A full disk, a size limit and a reader that went away are answered by the calls themselves.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    av_log_set_level(AV_LOG_ERROR);
    std::string error;
    const auto options = parseOptions(arguments, error);
    if (!options) {
        complain(error + "\nTry \"movencoder --help\".");
        return exitUsage;
    }
    if (options->help) {
        return writeAll(STDOUT_FILENO, helpText()) ? exitDone : exitFailed;
    }
    if (!work(*options, error)) {
        complain(error);
        return exitFailed;
    }
    Progress::complete();
    return exitDone;
}

} // namespace tavrix::movencoder
