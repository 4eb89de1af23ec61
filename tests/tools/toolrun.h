// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the built ffmpeg tool on small clips made with the installed ffmpeg.
#pragma once

#include "support/temphome.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tavrix::test
{

using Words = std::vector<std::string>;

struct ToolEnd {
    bool bySignal = false;
    int code = -1;
    std::string out;
    std::string err;
};

// A tool that runs, in a process group of its own.
class RunningTool
{
public:
    struct Options {
        std::map<std::string, std::string> environment;
        std::string workingFolder;
        long fileSizeLimit = -1; // bytes
        std::string input;       // for its standard input
        std::vector<int> ignoredSignals;
        std::vector<int> closedStreams;
        int errorStream = -1; // its error stream, in place of what `ToolEnd` has then nothing of
    };

    RunningTool(const Words& arguments, const Options& options);
    ~RunningTool();
    RunningTool(const RunningTool&) = delete;
    RunningTool& operator=(const RunningTool&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    // Its child; 0 until there is one.
    [[nodiscard]] pid_t child() const;
    void signalGroup(int signal) const;
    [[nodiscard]] bool hasEnded();
    [[nodiscard]] ToolEnd wait();

private:
    pid_t pid_ = -1;
    int status_ = 0;
    bool reaped_ = false;
    TempFolder folder_;
};

[[nodiscard]] std::string toolPath();
[[nodiscard]] ToolEnd runTool(const Words& arguments, const RunningTool::Options& options = {});

// The path of a clip of that kind ("mts", "avi", "mov", "long"), made once per test program.
[[nodiscard]] std::string clip(const std::string& kind);

// What ffprobe says of the first stream of `kind` ("v", "a"): "key=value" lines.
[[nodiscard]] std::string probed(const std::string& file, const std::string& kind, const std::string& entries);

[[nodiscard]] Words entriesOf(const std::string& folder);
[[nodiscard]] std::string fileContents(const std::string& path);
void writeFile(const std::string& path, const std::string& text);
// Whether the process exists and is no zombie.
[[nodiscard]] bool isAlive(pid_t pid);
[[nodiscard]] bool contains(const std::string& text, const std::string& part);

// A test with a folder of its own for the tool's files.
class ToolTest : public testing::Test
{
protected:
    [[nodiscard]] std::string folderPath() const { return folder_.path().toStdString(); }
    [[nodiscard]] std::string name(const std::string& file) const { return folderPath() + '/' + file; }
    [[nodiscard]] Words entries() const { return entriesOf(folderPath()); }

private:
    TempFolder folder_;
};

} // namespace tavrix::test
