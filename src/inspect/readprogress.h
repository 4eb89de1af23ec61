// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How far a long piece of work is, told by how much of what it has to read has been read.

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

namespace tavrix
{

// Prints lines "Processing (12%)", as the encoders' do, from its beginning to its end; nothing where the system does
// not count what a program reads. The percents rise and stay below 100.
class ReadProgress
{
public:
    // The stream is not owned. `expected`: bytes that the work reads, about.
    ReadProgress(std::FILE* stream, double expected);
    ~ReadProgress();
    ReadProgress(const ReadProgress&) = delete;
    ReadProgress& operator=(const ReadProgress&) = delete;

private:
    void watch();

    std::FILE* stream_;
    double expected_;
    double before_ = 0;
    bool over_ = false;
    std::mutex mutex_;
    std::condition_variable ends_;
    std::thread thread_;
};

} // namespace tavrix
