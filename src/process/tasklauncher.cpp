// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/tasklauncher.h"

#include "base/dialogue/runloopgate.h"
#include "base/text/log.h"
#include "base/text/text.h"
#include "process/chain.h"
#include "process/childprocess.h"
#include "process/notificationcenter.h"
#include "sys/transfer.h"

#include <QDateTime>
#include <QPointer>
#include <QSocketNotifier>

#include <array>
#include <csignal>

namespace tavrix
{

namespace
{

// A notifier may be given up inside its own signal, so it is destroyed by the event loop.
struct NotifierRelease {
    void operator()(QSocketNotifier* notifier) const
    {
        notifier->setEnabled(false);
        notifier->deleteLater();
    }
};
using Notifier = std::unique_ptr<QSocketNotifier, NotifierRelease>;

struct Stream {
    Descriptor fd;
    Notifier notifier;
    qint64 left = 0; // bytes that waited when the last process ended

    void close()
    {
        notifier.reset();
        fd.reset();
        left = 0;
    }
};

} // namespace

void TaskLauncherDelegate::taskLauncherDidReceiveNewString(taskLauncher* /*launcher*/, const QString& /*text*/) {}
void TaskLauncherDelegate::taskLauncherDidReceiveNewData(taskLauncher* /*launcher*/, const QByteArray& /*data*/) {}
void TaskLauncherDelegate::taskLauncherTaskDidEnd(taskLauncher* /*launcher*/) {}
void TaskLauncherDelegate::taskLauncherTaskDidSuspend(taskLauncher* /*launcher*/) {}
void TaskLauncherDelegate::taskLauncherTaskDidResume(taskLauncher* /*launcher*/) {}

// Any callback may destroy the launcher, and this object with it: after one, nothing is touched before the owner is
// known to be alive.
struct taskLauncher::Private {
    explicit Private(taskLauncher* launcher) : q(launcher) {}

    void begin(Chain&& started);
    void watch();
    void processEnded(size_t index);
    void lastProcessEnded(int status, bool bySignal);
    void streamReadable(Stream& stream);
    void readOnce(Stream& stream);
    void drainStep();
    void queueDrainStep();
    void gateOpened();
    void deliver(const QByteArray& chunk);
    void stopWatching();

    taskLauncher* q;
    TaskLauncherDelegate* delegate = nullptr;
    std::vector<ChildProcess> tasks;
    std::vector<Notifier> exitNotifiers;
    std::array<Stream, 2> streams; // the error stream is served first
    QMetaObject::Connection gateConnection;
    bool hasChain = false;
    bool watching = false;
    bool held = false; // something waits for the gate
    bool lastEnded = false;
    int lastStatus = 0;
    bool lastBySignal = false;
    bool alreadyNotified = false;
    bool isRunning = false;
    bool isSuspended = false;
    bool terminateNoAbort = false;
    bool convert = false;
    int terminationStatus = 0;
    int uid = 0;
    Environment environment;
};

void taskLauncher::Private::begin(Chain&& started)
{
    stopWatching();
    killAndReap(tasks);
    tasks = std::move(started.processes);
    streams[0].fd = std::move(started.error);
    streams[1].fd = std::move(started.output);
    hasChain = true;
    held = false;
    lastEnded = false;
    watch();
    if (!started.lastExists) {
        lastProcessEnded(ChildProcess::statusNotStarted, false);
    }
}

void taskLauncher::Private::watch()
{
    watching = true;
    gateConnection = connect(&RunLoopGate::instance(), &RunLoopGate::opened, q, [this] { gateOpened(); });
    for (Stream& stream : streams) {
        if (!stream.fd.isOpen()) {
            continue;
        }
        stream.notifier.reset(new QSocketNotifier(stream.fd.get(), QSocketNotifier::Read));
        connect(stream.notifier.get(), &QSocketNotifier::activated, q, [this, &stream] { streamReadable(stream); });
    }
    for (size_t index = 0; index < tasks.size(); ++index) {
        exitNotifiers.emplace_back(new QSocketNotifier(tasks[index].exitDescriptor(), QSocketNotifier::Read));
        connect(exitNotifiers.back().get(), &QSocketNotifier::activated, q, [this, index] { processEnded(index); });
    }
}

void taskLauncher::Private::stopWatching()
{
    watching = false;
    disconnect(gateConnection);
    for (Stream& stream : streams) {
        stream.close();
    }
    exitNotifiers.clear();
}

void taskLauncher::Private::processEnded(size_t index)
{
    if (!watching || !tasks[index].reapIfEnded()) {
        return;
    }
    exitNotifiers[index].reset();
    if (index + 1 == tasks.size() && !lastEnded) {
        lastProcessEnded(tasks[index].status(), tasks[index].endedBySignal());
    }
}

// Only what waits in the pipes now was written by the chain itself: a background job that holds them open may write for
// ever and must not delay the end.
void taskLauncher::Private::lastProcessEnded(int status, bool bySignal)
{
    lastEnded = true;
    lastStatus = status;
    lastBySignal = bySignal;
    for (Stream& stream : streams) {
        stream.notifier.reset();
        stream.left = waitingBytes(stream.fd.get());
    }
    queueDrainStep();
}

void taskLauncher::Private::streamReadable(Stream& stream)
{
    if (!watching || lastEnded || !stream.fd.isOpen()) {
        return;
    }
    if (RunLoopGate::instance().isClosed()) {
        held = true;
        stream.notifier->setEnabled(false);
        return;
    }
    readOnce(stream);
}

// At end of stream the notifier goes: it would fire without end while the process lives on.
void taskLauncher::Private::readOnce(Stream& stream)
{
    QByteArray chunk;
    switch (readChunk(stream.fd.get(), chunk)) {
    case ReadState::Data:
        stream.left -= chunk.size();
        deliver(chunk);
        return;
    case ReadState::End:
        stream.close();
        return;
    case ReadState::Nothing:
        stream.left = 0;
        return;
    }
}

void taskLauncher::Private::queueDrainStep()
{
    QMetaObject::invokeMethod(
        q, [this] { drainStep(); }, Qt::QueuedConnection);
}

// One chunk per turn of the event loop, so that whatever a callback asks for comes in between.
void taskLauncher::Private::drainStep()
{
    if (!watching || !lastEnded) {
        return;
    }
    if (RunLoopGate::instance().isClosed()) {
        held = true;
        return;
    }
    for (Stream& stream : streams) {
        if (!stream.fd.isOpen() || stream.left <= 0) {
            continue;
        }
        const QPointer<taskLauncher> alive(q);
        readOnce(stream);
        if (alive) {
            queueDrainStep();
        }
        return;
    }
    terminationStatus = lastStatus;
    terminateNoAbort = true;
    q->terminate();
}

void taskLauncher::Private::gateOpened()
{
    if (!held || RunLoopGate::instance().isClosed()) {
        return;
    }
    held = false;
    for (Stream& stream : streams) {
        if (stream.notifier) {
            stream.notifier->setEnabled(true);
        }
    }
    if (lastEnded) {
        queueDrainStep();
    }
}

void taskLauncher::Private::deliver(const QByteArray& chunk)
{
    if (!delegate) {
        return;
    }
    if (convert) {
        delegate->taskLauncherDidReceiveNewData(q, chunk);
        return;
    }
    const QString text = decodedUtf8(chunk);
    if (!text.isNull()) {
        delegate->taskLauncherDidReceiveNewString(q, text);
    }
}

taskLauncher::taskLauncher(QObject* parent) : QObject(parent), d_(std::make_unique<Private>(this)) {}

taskLauncher::~taskLauncher()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    d_->stopWatching();
    killAndReap(d_->tasks);
}

int taskLauncher::launchTasksWithArguments(const QStringList& arguments)
{
    if (arguments.isEmpty()) {
        return 1;
    }
    d_->terminateNoAbort = false;
    d_->isRunning = true;
    d_->isSuspended = false;
    QList<ChainCommand> commands;
    if (const int code = parsedChain(arguments, commands); code != 0) {
        return code;
    }
    d_->begin(startChain(commands, d_->environment));
    return 0;
}

void taskLauncher::setDelegate(TaskLauncherDelegate* delegate)
{
    d_->delegate = delegate;
}

TaskLauncherDelegate* taskLauncher::delegate() const
{
    return d_->delegate;
}

void taskLauncher::dontConvertDataToString(bool flag)
{
    d_->convert = flag;
}

void taskLauncher::setEnvironment(const Environment& environment)
{
    d_->environment = environment;
}

const taskLauncher::Environment& taskLauncher::environment() const
{
    return d_->environment;
}

int taskLauncher::uid()
{
    if (d_->uid == 0) {
        d_->uid = static_cast<int>(QDateTime::currentSecsSinceEpoch());
        NotificationCenter& center = NotificationCenter::defaultCenter();
        center.addObserver(this, fabKillTasks, d_->uid, [this] { terminate(); });
        center.addObserver(this, fabPauseTasks, d_->uid, [this] { suspend(); });
        center.addObserver(this, fabResumeTasks, d_->uid, [this] { resume(); });
    }
    return d_->uid;
}

bool taskLauncher::isRunning() const
{
    return d_->isRunning;
}

bool taskLauncher::isSuspended() const
{
    return d_->isSuspended;
}

int taskLauncher::terminationStatus() const
{
    return d_->terminationStatus;
}

bool taskLauncher::endedBySignal() const
{
    return d_->terminateNoAbort && d_->lastBySignal;
}

ChildActivity taskLauncher::activity() const
{
    std::vector<pid_t> groups;
    for (const ChildProcess& task : d_->tasks) {
        groups.push_back(task.pid());
    }
    return activityOfGroups(groups);
}

// The consumer stops before its producers.
void taskLauncher::suspend()
{
    if (!d_->hasChain || !d_->isRunning || d_->isSuspended) {
        return;
    }
    for (auto task = d_->tasks.rbegin(); task != d_->tasks.rend(); ++task) {
        task->signalGroup(SIGSTOP);
    }
    d_->isSuspended = true;
    if (d_->delegate) {
        d_->delegate->taskLauncherTaskDidSuspend(this);
    }
}

void taskLauncher::resume()
{
    if (!d_->hasChain || !d_->isSuspended) {
        return;
    }
    for (const ChildProcess& task : d_->tasks) {
        task.signalGroup(SIGCONT);
    }
    d_->isSuspended = false;
    if (d_->delegate) {
        d_->delegate->taskLauncherTaskDidResume(this);
    }
}

void taskLauncher::terminate()
{
    d_->isRunning = false;
    if (!d_->hasChain) {
        return;
    }
    NotificationCenter::defaultCenter().removeObserver(this);
    d_->stopWatching();
    const QPointer<taskLauncher> alive(this);
    resume();
    if (!alive) {
        return;
    }
    killAndReap(d_->tasks);
    if (!d_->terminateNoAbort) {
        d_->terminationStatus = statusInterrupted;
    }
    if (d_->delegate && !d_->alreadyNotified) {
        d_->alreadyNotified = true;
        d_->delegate->taskLauncherTaskDidEnd(this);
    }
}

} // namespace tavrix
