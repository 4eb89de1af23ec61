// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/toolrun.h"

#include "base/files/posixfile.h"
#include "sys/transfer.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>
#include <poll.h>

namespace tavrix
{

namespace
{

// So much fits into the pipe that the tool need not wait while this program is busy; the system may allow less.
constexpr int roomyPipe = 1 << 20;

} // namespace

ToolRun::ToolRun(const QStringList& arguments, const ToolLimits& limits)
    : limits_(limits), deadline_(std::chrono::steady_clock::now() + std::chrono::seconds(limits.seconds))
{
    if (arguments.isEmpty()) {
        answer_.failure = systemErrorText(EINVAL);
        return;
    }
    begin([&arguments](int output, int errors) {
        ChildSetup setup;
        setup.program = arguments.first();
        setup.arguments = arguments.mid(1);
        setup.toolLocale = true;
        setup.output = output;
        setup.error = errors;
        return ChildProcess::start(setup);
    });
}

ToolRun::ToolRun(const Work& work, const ToolLimits& limits)
    : limits_(limits), deadline_(std::chrono::steady_clock::now() + std::chrono::seconds(limits.seconds))
{
    begin([&work](int output, int errors) {
        return ChildProcess::startCopy([&work, output, errors] { return work(output, errors); });
    });
}

void ToolRun::begin(const std::function<Started(int output, int errors)>& start)
{
    Pipe output = makePipe(PipeReader::Parent);
    Pipe errors = makePipe(PipeReader::Parent);
    if (!output.isOpen() || !errors.isOpen()) {
        answer_.failure = systemErrorText();
        return;
    }
    ::fcntl(output.readEnd.get(), F_SETPIPE_SZ, roomyPipe);
    ::fcntl(errors.readEnd.get(), F_SETPIPE_SZ, roomyPipe);
    Started child = start(output.writeEnd.get(), errors.writeEnd.get());
    if (!child) {
        answer_.failure = child.reason();
        return;
    }
    child_.push_back(std::move(*child));
    output_ = {std::move(output.readEnd), &answer_.output, limits_.outputBytes};
    errors_ = {std::move(errors.readEnd), &answer_.errors, limits_.errorBytes};
}

ToolRun::~ToolRun()
{
    end();
}

void ToolRun::end()
{
    killAndReap(child_);
}

int ToolRun::millisecondsLeft() const
{
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline_ - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 1000));
}

// False when the stream has ended.
bool ToolRun::Stream::read()
{
    QByteArray chunk;
    const ReadState state = readChunk(pipe.get(), chunk);
    bytes->append(chunk.left(std::max<qsizetype>(0, limit - bytes->size())));
    return state != ReadState::End;
}

// Until the tool has ended and both streams are empty; what it leaves running does not keep the streams open for us.
void ToolRun::collect()
{
    std::array<Stream*, 2> streams{&output_, &errors_};
    std::array<pollfd, 3> watched{pollfd{output_.pipe.get(), POLLIN, 0}, pollfd{errors_.pipe.get(), POLLIN, 0},
                                  pollfd{child_.front().exitDescriptor(), POLLIN, 0}};
    bool ended = false;
    for (;;) {
        const int left = millisecondsLeft();
        if (left == 0) {
            answer_.outOfTime = true;
            return;
        }
        const int ready = ::poll(watched.data(), watched.size(), ended ? 0 : left);
        if (ready < 0 && errno != EINTR) {
            answer_.failure = systemErrorText();
            return;
        }
        bool any = false;
        for (std::size_t i = 0; ready > 0 && i < streams.size(); ++i) {
            if (watched.at(i).revents != 0) {
                any = true;
                if (!streams.at(i)->read()) {
                    watched.at(i).fd = -1;
                }
            }
        }
        if (ended && !any) {
            answer_.succeeded = !child_.front().endedBySignal() && child_.front().status() == 0;
            return;
        }
        ended = ended || (ready > 0 && watched.back().revents != 0 && child_.front().reapIfEnded());
    }
}

ToolAnswer ToolRun::finish()
{
    if (answer_.failure.isNull() && !child_.empty()) {
        collect();
    }
    end();
    return std::move(answer_);
}

} // namespace tavrix
