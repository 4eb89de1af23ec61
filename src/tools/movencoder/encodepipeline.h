// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sys/result.h"
#include "tools/movencoder/avsupport.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// Encodes pictures on all cores and hands them back in their order.
namespace tavrix::movencoder
{

struct CodedPicture {
    std::shared_ptr<const std::vector<std::uint8_t>> bytes;
    std::int64_t time = 0;
    std::int64_t duration = 0;
};

// Encodes one picture into `bytes`. Each thread has one of its own.
using PictureWorker = std::function<Result<void>(const AVFrame& picture, std::vector<std::uint8_t>& bytes)>;

class EncodePipeline
{
public:
    // One thread for each worker.
    explicit EncodePipeline(std::vector<PictureWorker> workers);
    EncodePipeline(const EncodePipeline&) = delete;
    EncodePipeline& operator=(const EncodePipeline&) = delete;
    // Pictures that nobody took are dropped.
    ~EncodePipeline();

    // Whether a picture should be taken before the next is submitted, so that the queue does not grow without end.
    [[nodiscard]] bool full() const { return jobs_.size() >= 2 * threads_.size(); }
    [[nodiscard]] bool empty() const { return jobs_.empty(); }
    void submit(FramePtr picture, std::int64_t time, std::int64_t duration);
    // The picture before, once more. There must have been one.
    void repeat(std::int64_t time, std::int64_t duration);
    // Waits for the oldest picture. The pipeline must not be empty.
    [[nodiscard]] Result<CodedPicture> take();

private:
    struct Job {
        FramePtr picture; // null: the one before is repeated
        CodedPicture coded;
        Result<void> result;
        bool done = false;
    };

    void work(const PictureWorker& worker);

    std::vector<PictureWorker> workers_;
    std::mutex mutex_;
    std::condition_variable waiting_;       // for the threads: there is a job, or the end
    std::condition_variable done_;          // for take()
    std::deque<std::shared_ptr<Job>> jobs_; // in order, touched by the owner's thread only
    std::deque<std::shared_ptr<Job>> unstarted_;
    std::shared_ptr<const std::vector<std::uint8_t>> lastBytes_;
    bool ending_ = false;
    std::vector<std::thread> threads_;
};

// The cores that this process may use.
[[nodiscard]] unsigned usableCores();

} // namespace tavrix::movencoder
