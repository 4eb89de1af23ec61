// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/toolprocess.h"

#include "base/files/posixfile.h"
#include "sys/transfer.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <poll.h>

namespace tavrix
{

ToolProcess::ToolProcess(QObject* parent) : QObject(parent) {}

ToolProcess::~ToolProcess()
{
    stopListening();
    if (child_.empty()) {
        return;
    }
    askToEnd();
    constexpr int patienceMilliseconds = 2000;
    pollfd exit{child_.front().exitDescriptor(), POLLIN, 0};
    ::poll(&exit, 1, patienceMilliseconds);
    killAndReap(child_);
}

bool ToolProcess::start(const QString& tool, const QStringList& arguments)
{
    Pipe pipe = makePipe(PipeReader::Parent);
    if (!pipe.isOpen() || isRunning()) {
        return false;
    }
    ChildSetup setup;
    setup.program = QCoreApplication::applicationDirPath() + QLatin1Char('/') + tool;
    setup.arguments = arguments;
    setup.output = pipe.writeEnd.get();
    setup.error = pipe.writeEnd.get();
    Result<ChildProcess, QString> child = ChildProcess::start(setup);
    if (!child) {
        return false;
    }
    child_.push_back(std::move(*child));
    pipe_ = std::move(pipe.readEnd);
    output_ = new QSocketNotifier(pipe_.get(), QSocketNotifier::Read, this);
    connect(output_, &QSocketNotifier::activated, this, &ToolProcess::takeOutput);
    exit_ = new QSocketNotifier(child_.front().exitDescriptor(), QSocketNotifier::Read, this);
    connect(exit_, &QSocketNotifier::activated, this, &ToolProcess::takeEnd);
    return true;
}

void ToolProcess::askToEnd()
{
    if (!child_.empty()) {
        // One that was paused hears nothing else.
        child_.front().signalGroup(SIGCONT);
        child_.front().signalGroup(SIGTERM);
    }
}

void ToolProcess::takeOutput()
{
    QByteArray chunk;
    const ReadState state = readChunk(pipe_.get(), chunk);
    if (state == ReadState::End) {
        output_->setEnabled(false);
    }
    if (!chunk.isEmpty()) {
        Q_EMIT wrote(chunk);
    }
}

void ToolProcess::takeEnd()
{
    if (child_.empty() || !child_.front().reapIfEnded()) {
        return;
    }
    // What it wrote last has come before its end.
    while (output_->isEnabled()) {
        pollfd rest{pipe_.get(), POLLIN, 0};
        if (::poll(&rest, 1, 0) <= 0) {
            break;
        }
        takeOutput();
    }
    const int status = child_.front().status();
    stopListening();
    child_.clear();
    Q_EMIT ended(status);
}

void ToolProcess::stopListening()
{
    for (QSocketNotifier** notifier : {&output_, &exit_}) {
        if (*notifier != nullptr) {
            (*notifier)->setEnabled(false);
            (*notifier)->deleteLater(); // this may be one of its own calls
            *notifier = nullptr;
        }
    }
    pipe_ = Descriptor();
}

} // namespace tavrix
