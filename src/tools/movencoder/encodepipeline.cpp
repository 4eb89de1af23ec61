// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/encodepipeline.h"

#include <algorithm>

namespace tavrix::movencoder
{

EncodePipeline::EncodePipeline(std::vector<PictureWorker> workers) : workers_(std::move(workers))
{
    threads_.reserve(workers_.size());
    for (const PictureWorker& worker : workers_) {
        threads_.emplace_back([this, &worker] { work(worker); });
    }
}

EncodePipeline::~EncodePipeline()
{
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        unstarted_.clear();
    }
    waiting_.notify_all();
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

void EncodePipeline::submit(FramePtr picture, std::int64_t time, std::int64_t duration)
{
    auto job = std::make_shared<Job>();
    job->picture = std::move(picture);
    job->coded.time = time;
    job->coded.duration = duration;
    jobs_.push_back(job);
    {
        const std::lock_guard lock(mutex_);
        unstarted_.push_back(std::move(job));
    }
    waiting_.notify_one();
}

void EncodePipeline::repeat(std::int64_t time, std::int64_t duration)
{
    auto job = std::make_shared<Job>();
    job->coded.time = time;
    job->coded.duration = duration;
    job->done = true;
    jobs_.push_back(std::move(job));
}

Result<CodedPicture> EncodePipeline::take()
{
    const std::shared_ptr<Job> job = std::move(jobs_.front());
    jobs_.pop_front();
    std::unique_lock lock(mutex_);
    done_.wait(lock, [&] { return job->done; });
    if (!job->result) {
        return Failure{job->result.reason()};
    }
    if (!job->coded.bytes) {
        job->coded.bytes = lastBytes_;
    }
    lastBytes_ = job->coded.bytes;
    return std::move(job->coded);
}

void EncodePipeline::work(const PictureWorker& worker)
{
    std::unique_lock lock(mutex_);
    for (;;) {
        waiting_.wait(lock, [&] { return ending_ || !unstarted_.empty(); });
        if (ending_) {
            return;
        }
        const std::shared_ptr<Job> job = std::move(unstarted_.front());
        unstarted_.pop_front();
        lock.unlock();
        auto bytes = std::make_shared<std::vector<std::uint8_t>>();
        job->result = worker(*job->picture, *bytes);
        job->coded.bytes = std::move(bytes);
        job->picture.reset();
        lock.lock();
        job->done = true;
        done_.notify_one();
    }
}

unsigned usableCores()
{
    constexpr unsigned most = 64;
    return std::clamp(std::thread::hardware_concurrency(), 1U, most);
}

} // namespace tavrix::movencoder
