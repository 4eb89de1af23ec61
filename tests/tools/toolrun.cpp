// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/toolrun.h"
#include "testpaths.h"

#include <QElapsedTimer>
#include <QProcess>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrix::test
{

namespace fs = std::filesystem;

namespace
{

std::vector<char*> pointers(const Words& words)
{
    std::vector<char*> list;
    list.reserve(words.size() + 1);
    for (const std::string& word : words) {
        list.push_back(const_cast<char*>(word.c_str()));
    }
    list.push_back(nullptr);
    return list;
}

void redirect(const std::string& path, int fd, int flags)
{
    const int opened = open(path.c_str(), flags, 0600);
    if (opened < 0 || dup2(opened, fd) < 0) {
        _exit(126);
    }
    close(opened);
}

void arrangeSurroundings(const RunningTool::Options& options)
{
    for (const auto& [name, value] : options.environment) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    for (const int signal : options.ignoredSignals) {
        std::signal(signal, SIG_IGN);
    }
    if (options.errorStream >= 0 && dup2(options.errorStream, STDERR_FILENO) < 0) {
        _exit(126);
    }
    for (const int stream : options.closedStreams) {
        close(stream);
    }
}

bool runInstalled(const Words& arguments)
{
    QStringList list = {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                        QStringLiteral("-y")};
    for (const std::string& argument : arguments) {
        list.append(QString::fromStdString(argument));
    }
    return QProcess::execute(QStringLiteral("/usr/bin/ffmpeg"), list) == 0;
}

// One folder for all clips of this test program; removed with it.
const TempFolder& clipFolder()
{
    static const TempFolder folder;
    return folder;
}

Words clipArguments(const std::string& kind)
{
    const Words sound = {"-f", "lavfi", "-i", "sine=1000:r=48000"};
    const auto picture = [](const std::string& text) {
        return Words{"-f", "lavfi", "-i", "testsrc2=" + text};
    };
    Words words;
    const auto add = [&](const Words& more) {
        words.insert(words.end(), more.begin(), more.end());
    };
    if (kind == "mts") {
        add(picture("s=640x360:r=60000/1001"));
        add(sound);
        add({"-t", "1", "-ac", "2", "-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-c:a", "ac3",
             "-f", "mpegts"});
    } else if (kind == "avi") {
        add(picture("s=320x240:r=30"));
        add(sound);
        add({"-t", "1", "-c:v", "mjpeg", "-c:a", "pcm_u8", "-f", "avi"});
    } else if (kind == "mov") {
        add(picture("s=640x360:r=25"));
        add(sound);
        add({"-t", "1", "-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-c:a", "aac", "-f", "mov"});
    } else {
        add(picture("s=640x360:r=25"));
        add({"-t", "20", "-c:v", "mpeg4", "-q:v", "8", "-f", "mov"});
    }
    return words;
}

} // namespace

RunningTool::RunningTool(const Words& arguments, const Options& options)
{
    Words words = {toolPath()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const std::string out = folder_.path().toStdString() + "/out";
    const std::string err = folder_.path().toStdString() + "/err";
    const std::string in = folder_.path().toStdString() + "/in";
    writeFile(in, options.input);
    const std::vector<char*> list = pointers(words);
    pid_ = fork();
    if (pid_ != 0) {
        setpgid(pid_, pid_);
        return;
    }
    setpgid(0, 0);
    redirect(in, STDIN_FILENO, O_RDONLY);
    redirect(out, STDOUT_FILENO, O_WRONLY | O_CREAT | O_TRUNC);
    redirect(err, STDERR_FILENO, O_WRONLY | O_CREAT | O_TRUNC);
    arrangeSurroundings(options);
    if (!options.workingFolder.empty() && chdir(options.workingFolder.c_str()) != 0) {
        _exit(126);
    }
    if (options.fileSizeLimit >= 0) {
        const rlimit limit = {static_cast<rlim_t>(options.fileSizeLimit), static_cast<rlim_t>(options.fileSizeLimit)};
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, SIG_IGN);
    }
    execv(words.front().c_str(), list.data());
    _exit(126);
}

RunningTool::~RunningTool()
{
    if (!reaped_) {
        signalGroup(SIGKILL);
        waitpid(pid_, &status_, 0);
    }
}

pid_t RunningTool::child() const
{
    std::ifstream list("/proc/" + std::to_string(pid_) + "/task/" + std::to_string(pid_) + "/children");
    pid_t child = 0;
    list >> child;
    return list ? child : 0;
}

void RunningTool::signalGroup(int signal) const
{
    kill(-pid_, signal);
}

bool RunningTool::hasEnded()
{
    if (!reaped_) {
        reaped_ = waitpid(pid_, &status_, WNOHANG) == pid_;
    }
    return reaped_;
}

ToolEnd RunningTool::wait()
{
    if (!reaped_) {
        reaped_ = waitpid(pid_, &status_, 0) == pid_;
    }
    ToolEnd end;
    end.bySignal = WIFSIGNALED(status_);
    end.code = end.bySignal ? WTERMSIG(status_) : WEXITSTATUS(status_);
    end.out = fileContents(folder_.path().toStdString() + "/out");
    end.err = fileContents(folder_.path().toStdString() + "/err");
    return end;
}

std::string toolPath()
{
    return std::string(TAVRIX_BUILD_RESOURCES) + "/tools/ffmpeg";
}

ToolEnd runTool(const Words& arguments, const RunningTool::Options& options)
{
    return RunningTool(arguments, options).wait();
}

std::string clip(const std::string& kind)
{
    std::string path = clipFolder().path().toStdString() + "/clip." + kind;
    if (!fs::exists(path)) {
        Words arguments = clipArguments(kind);
        arguments.push_back(path);
        EXPECT_TRUE(runInstalled(arguments)) << kind;
    }
    return path;
}

std::string probed(const std::string& file, const std::string& kind, const std::string& entries)
{
    // Under a name of its own: not every name is a text.
    const TempFolder folder;
    const std::string link = folder.path().toStdString() + "/probed";
    std::error_code failure;
    fs::copy_file(file, link, failure);
    QProcess process;
    process.start(QStringLiteral("/usr/bin/ffprobe"),
                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                   QString::fromStdString(kind), QStringLiteral("-show_entries"),
                   QString::fromStdString("stream=" + entries), QStringLiteral("-of"),
                   QStringLiteral("default=noprint_wrappers=1"), QString::fromStdString("file:" + link)});
    process.waitForFinished(30000);
    return process.readAllStandardOutput().toStdString();
}

Words entriesOf(const std::string& folder)
{
    Words names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
}

std::string fileContents(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

bool isAlive(pid_t pid)
{
    const std::string status = fileContents("/proc/" + std::to_string(pid) + "/stat");
    const auto close = status.rfind(") ");
    return close != std::string::npos && status[close + 2] != 'Z' && status[close + 2] != 'X';
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace tavrix::test
