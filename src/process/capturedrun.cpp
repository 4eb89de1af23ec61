// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/capturedrun.h"

#include "base/files/posixfile.h"
#include "base/text/log.h"
#include "process/silencewatch.h"
#include "sys/transfer.h"

#include <QElapsedTimer>

#include <algorithm>
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

qint64 silenceLimit = 0;

// Tells, now and then, whether a child has been silent for too long.
class Patience
{
public:
    explicit Patience(pid_t group) : group_(group)
    {
        watch_.begin();
        sinceLook_.start();
    }
    // Milliseconds to wait for the child at a time.
    [[nodiscard]] static int turn() { return silenceLimit > 0 ? lookEvery : -1; }
    void heard() { watch_.heard(); }
    [[nodiscard]] bool isOver()
    {
        if (silenceLimit <= 0 || sinceLook_.elapsed() < lookEvery) {
            return false;
        }
        // What is longer than two turns this program has been stopped for.
        const qint64 passed = std::min<qint64>(sinceLook_.restart(), 2 * lookEvery);
        return watch_.pass(passed, silenceLimit, [this] { return activityOfGroups({group_}); });
    }

private:
    static constexpr int lookEvery = 200;

    pid_t group_;
    SilenceWatch watch_;
    QElapsedTimer sinceLook_;
};

// Fails when the child could not be watched or is silent for too long; it then still runs.
Result<void, QString> collect(ChildProcess& child, int fd, QByteArray& output)
{
    pollfd watched[2] = {{fd, POLLIN, 0}, {child.exitDescriptor(), POLLIN, 0}};
    Patience patience(child.pid());
    QByteArray chunk;
    bool open = true;
    for (;;) {
        if (poll(watched, 2, Patience::turn()) < 0) {
            if (errno != EINTR) {
                return Failure{systemErrorText()};
            }
            continue;
        }
        if (patience.isOver()) {
            return Failure{QStringLiteral("it said and did nothing and was ended")};
        }
        if (watched[1].revents != 0 && child.reapIfEnded()) {
            if (open) {
                readRest(fd, output);
            }
            return {};
        }
        if (watched[0].revents == 0) {
            continue;
        }
        const ReadState state = readChunk(fd, chunk);
        output += chunk;
        patience.heard();
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

void setCapturedSilence(qint64 milliseconds)
{
    silenceLimit = milliseconds;
}

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
    if (const Result<void, QString> whole = collect(*child, pipe.readEnd.get(), run.output); !whole) {
        std::vector<ChildProcess> unwatched;
        unwatched.push_back(std::move(*child));
        killAndReap(unwatched);
        return failed(setup.program, whole.reason());
    }
    run.status = child->status();
    run.rest = std::move(pipe.readEnd);
    return run;
}

} // namespace tavrix
