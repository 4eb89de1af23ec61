#include "process/capturedrun.h"

#include "base/log.h"
#include "base/posixfile.h"
#include "sys/transfer.h"

#include <cerrno>
#include <poll.h>

namespace tavrix
{

namespace
{

// What is read after the exit is limited to what waited then: a background job may write for ever.
void readRest(int fd, QByteArray& output)
{
    QByteArray chunk;
    for (qint64 left = waitingBytes(fd); left > 0; left -= chunk.size()) {
        if (readChunk(fd, chunk) != ReadState::Data) {
            return;
        }
        output += chunk;
    }
}

// False (and errno) when the child could not be watched; it then still runs.
bool collect(ChildProcess& child, int fd, QByteArray& output)
{
    pollfd watched[2] = {{fd, POLLIN, 0}, {child.exitDescriptor(), POLLIN, 0}};
    QByteArray chunk;
    bool open = true;
    for (;;) {
        if (poll(watched, 2, -1) < 0) {
            if (errno != EINTR) {
                return false;
            }
            continue;
        }
        if (watched[1].revents != 0 && child.reapIfEnded()) {
            if (open) {
                readRest(fd, output);
            }
            return true;
        }
        if (watched[0].revents == 0) {
            continue;
        }
        const ReadState state = readChunk(fd, chunk);
        output += chunk;
        if (state == ReadState::End) {
            open = false;
            watched[0].fd = -1;
            watched[0].revents = 0;
        }
    }
}

std::nullopt_t failed(const QString& program, const QString& reason)
{
    logLine(QStringLiteral("task failure        :-( %@ : %@"), {program, reason});
    return std::nullopt;
}

} // namespace

std::optional<CapturedRun> runCaptured(ChildSetup setup, bool errorToo, const std::function<void(int)>& started)
{
    Pipe pipe = makePipe(PipeReader::Parent);
    if (!pipe.isOpen()) {
        return failed(setup.program, systemErrorText());
    }
    setup.output = pipe.writeEnd.get();
    if (errorToo) {
        setup.error = pipe.writeEnd.get();
    }
    Result<ChildProcess, QString> child = ChildProcess::start(setup);
    pipe.writeEnd.reset();
    if (!child) {
        return failed(setup.program, child.reason());
    }
    CapturedRun run;
    run.pid = child->pid();
    if (started) {
        started(run.pid);
    }
    if (!collect(*child, pipe.readEnd.get(), run.output)) {
        const QString reason = systemErrorText();
        std::vector<ChildProcess> unwatched;
        unwatched.push_back(std::move(*child));
        killAndReap(unwatched);
        return failed(setup.program, reason);
    }
    run.status = child->status();
    run.rest = std::move(pipe.readEnd);
    return run;
}

} // namespace tavrix
