// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/readprogress.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <optional>
#include <string>

namespace tavrix
{

namespace
{

// Of this process, from whatever source.
std::optional<double> bytesRead()
{
    std::ifstream counters("/proc/self/io");
    std::string name;
    double number = 0;
    while (counters >> name >> number) {
        if (name == "rchar:") {
            return number;
        }
    }
    return std::nullopt;
}

} // namespace

ReadProgress::ReadProgress(std::FILE* stream, double expected) : stream_(stream), expected_(expected)
{
    const std::optional<double> before = bytesRead();
    if (!before || expected <= 0) {
        return;
    }
    before_ = *before;
    thread_ = std::thread([this] { watch(); });
}

ReadProgress::~ReadProgress()
{
    {
        const std::lock_guard lock(mutex_);
        over_ = true;
    }
    ends_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void ReadProgress::watch()
{
    // Signals are for the threads that know what to do with them.
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    constexpr std::chrono::milliseconds pause(200);
    constexpr int mostPercent = 99;
    int told = 0;
    std::unique_lock lock(mutex_);
    while (!ends_.wait_for(lock, pause, [this] { return over_; })) {
        const double read = bytesRead().value_or(before_) - before_;
        const int percent = static_cast<int>(std::clamp(read / expected_ * 100, 0.0, double{mostPercent}));
        if (percent > told) {
            told = percent;
            std::fprintf(stream_, "Processing (%d%%)\n", percent);
            std::fflush(stream_);
        }
    }
}

} // namespace tavrix
