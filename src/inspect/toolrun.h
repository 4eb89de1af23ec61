// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// One run of a tool, or of work in a copy of this program, beside the program's own work, with both of its streams and
// a limit in time.

#include "process/childprocess.h"

#include <QByteArray>
#include <QStringList>

#include <chrono>
#include <functional>
#include <vector>

namespace tavrix
{

struct ToolAnswer {
    QByteArray output;
    QByteArray errors;
    QString failure;        // why it could not be run; nothing when it ran
    bool outOfTime = false; // it was ended because it took too long
    bool succeeded = false; // it has ended by itself with status 0
};

struct ToolLimits {
    int seconds = 60;                             // for the whole run
    qsizetype outputBytes = qsizetype{64} * 1024; // what comes after is read and dropped
    qsizetype errorBytes = qsizetype{8} << 20U;   // likewise
};

// The tool runs from the construction on; it is killed with everything it has started when the object goes. Main
// thread only.
class ToolRun
{
public:
    // Work gets the descriptors of the two streams and returns the status.
    using Work = std::function<int(int output, int errors)>;

    // Element 0 is the tool's path.
    explicit ToolRun(const QStringList& arguments, const ToolLimits& limits = {});
    // Only while this program has no other thread.
    explicit ToolRun(const Work& work, const ToolLimits& limits = {});
    ~ToolRun();
    ToolRun(const ToolRun&) = delete;
    ToolRun& operator=(const ToolRun&) = delete;

    // Waits for the end. Once only.
    [[nodiscard]] ToolAnswer finish();

private:
    struct Stream {
        Descriptor pipe;
        QByteArray* bytes = nullptr;
        qsizetype limit = 0;
        bool read();
    };
    using Started = Result<ChildProcess, QString>;
    void begin(const std::function<Started(int output, int errors)>& start);
    void collect();
    [[nodiscard]] int millisecondsLeft() const;
    void end();

    ToolLimits limits_;
    std::chrono::steady_clock::time_point deadline_;
    std::vector<ChildProcess> child_;
    Stream output_;
    Stream errors_;
    ToolAnswer answer_;
};

} // namespace tavrix
