// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "process/tasklauncher.h"

#include <functional>
#include <vector>

namespace tavrix::test
{

// A launcher without processes. The test decides what its chain writes and when it ends; callbacks come as from the
// real one: never while an application-modal alert is open, the end once, and a release inside a callback is allowed.
class FakeLauncher : public taskLauncher
{
public:
    // Answers what the launch returns: 0 starts the pretended chain.
    using LaunchHandler = std::function<int(FakeLauncher*, const QStringList&)>;

    explicit FakeLauncher(LaunchHandler onLaunch);

    // What the pretended chain writes as soon as it runs.
    void setFirstWords(const QString& text) { firstWords_ = text; }

    int launchTasksWithArguments(const QStringList& arguments) override;
    [[nodiscard]] bool isRunning() const override { return running_; }
    [[nodiscard]] bool isSuspended() const override { return suspended_; }
    [[nodiscard]] int terminationStatus() const override { return status_; }
    [[nodiscard]] bool endedBySignal() const override { return bySignal_; }
    void suspend() override;
    void resume() override;
    void terminate() override;
    [[nodiscard]] ChildActivity activity() const override { return did; }

    ChildActivity did; // what the pretended chain has done so far

    // What the pretended chain does. Nothing happens after it has ended.
    void write(const QString& text);
    void end(int status);
    void endBySignal(int signal);

    [[nodiscard]] const QStringList& arguments() const { return arguments_; }
    // Told to end, or ended by itself with the report still waiting.
    [[nodiscard]] bool isEnding() const { return ending_; }

private:
    void keep(std::function<void()> event, bool isEnd);
    void deliver();

    LaunchHandler onLaunch_;
    QStringList arguments_;
    QString firstWords_;
    std::vector<std::function<void()>> waiting_;
    bool started_ = false;
    bool running_ = false;
    bool suspended_ = false;
    bool ending_ = false;
    bool endedByItself_ = false;
    bool reported_ = false;
    int status_ = 0;
    bool bySignal_ = false;
};

} // namespace tavrix::test
