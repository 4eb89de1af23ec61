// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/consoleface.h"

#include "base/text/format.h"
#include "base/text/text.h"
#include "console/consoletext.h"
#include "console/unixsignals.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace tavrix
{

namespace
{

struct TypedLine {
    enum class Ending { Typed, TimedOut, InputEnded, Interrupted };
    Ending ending = Ending::Typed;
    QString text; // only when typed
};

// One line of standard input. No event loop runs meanwhile, so that signals are looked for here.
TypedLine typedLine(int seconds)
{
    const QDeadlineTimer deadline(seconds == 0 ? -1 : qMax(0, seconds) * 1000LL);
    const int signalFile = watchedSignalsFile();
    std::array<pollfd, 2> inputs = {pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{signalFile, POLLIN, 0}};
    bool interrupted = false;
    bool typed = false;
    while (!typed && !interrupted) {
        const int wait = deadline.isForever() ? -1 : static_cast<int>(deadline.remainingTime());
        const int ready = ::poll(inputs.data(), inputs.size(), wait);
        if (ready == 0 || (ready < 0 && errno != EINTR)) {
            break;
        }
        interrupted = endingSignalWaits();
        typed = ready > 0 && inputs[0].revents != 0;
    }
    if (signalFile >= 0) {
        ::close(signalFile);
    }
    if (interrupted || !typed) {
        return {interrupted ? TypedLine::Ending::Interrupted : TypedLine::Ending::TimedOut, QString()};
    }
    std::array<char, 256> buffer = {};
    const ssize_t length = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (length <= 0) {
        return {TypedLine::Ending::InputEnded, QString()};
    }
    return {TypedLine::Ending::Typed, QString::fromUtf8(buffer.data(), length).trimmed()};
}

} // namespace

AlertOutcome typedAnswer(const QString& line, const QStringList& buttons, bool hasCheckBox)
{
    QString typed = line.trimmed().toLower();
    AlertOutcome outcome;
    if (hasCheckBox && typed.size() == 2 && typed.contains(QLatin1Char('*'))) {
        outcome.checked = true;
        typed.remove(QLatin1Char('*'));
    }
    if (typed.isEmpty()) {
        return outcome;
    }
    outcome.button = -1;
    for (qsizetype i = 0; i < buttons.size(); ++i) {
        if (typed == QString::number(i + 1)) {
            outcome.button = static_cast<int>(i);
        }
    }
    return outcome;
}

ConsoleFace::ConsoleFace(Reporter* reporter, bool mayAsk) : reporter_(reporter), mayAsk_(mayAsk) {}

void ConsoleFace::terminate()
{
    QCoreApplication::exit(exitCode_);
}

AlertOutcome ConsoleFace::runModal(const AlertRequest& request)
{
    if (mayAsk_ && request.buttons.size() > 1) {
        return ask(request);
    }
    const QString answer = request.buttons.size() > 1 ? request.buttons.first() : QString();
    reporter_->message(request.title, request.text, answer);
    return {};
}

AlertOutcome ConsoleFace::ask(const AlertRequest& request)
{
    QString choices;
    for (qsizetype i = 0; i < request.buttons.size(); ++i) {
        choices += formatText(QStringLiteral(" %d) %@"), {i + 1, request.buttons.at(i)});
    }
    if (request.hasCheckBox) {
        choices += formatText(QStringLiteral("  *) %@"), {request.checkBoxTitle});
    }
    // Who stops the program or closes its input has not agreed to the default, which may replace a file.
    const AlertOutcome notAgreed = {request.harmlessButton(), false};
    while (!endingSignalWaits()) {
        reporter_->message(request.title, request.text + choices, QString());
        const TypedLine line = typedLine(request.seconds);
        if (line.ending == TypedLine::Ending::Interrupted) {
            return notAgreed;
        }
        if (line.ending == TypedLine::Ending::InputEnded) {
            reporter_->message(consoleText("Con_noAnswer"), QString(), request.buttons.at(qMax(0, notAgreed.button)));
            return notAgreed;
        }
        if (line.ending == TypedLine::Ending::TimedOut) {
            reporter_->message(consoleText("Con_noAnswer"), QString(), request.buttons.first());
            return {-1, false};
        }
        const AlertOutcome outcome = typedAnswer(line.text, request.buttons, request.hasCheckBox);
        if (outcome.button >= 0) {
            return outcome;
        }
    }
    return notAgreed;
}

void ConsoleFace::showSheet(const AlertRequest& request, QObject* /*window*/, std::function<void(AlertOutcome)> done)
{
    reporter_->notice(request.title, request.text);
    if (done) {
        done({});
    }
}

std::optional<QString> ConsoleFace::runTextInput(const AlertRequest& request, const QString& defaultValue)
{
    reporter_->message(request.title, request.text, defaultValue);
    return defaultValue;
}

bool ConsoleFace::openUrl(const QUrl& /*url*/)
{
    return true;
}

bool ConsoleFace::openFileWith(const QString& /*path*/, const QString& /*application*/)
{
    return true;
}

bool ConsoleFace::reveal(const QString& /*path*/)
{
    return true;
}

void ConsoleFace::noteFileSystemChanged(const QString& /*path*/) {}

} // namespace tavrix
