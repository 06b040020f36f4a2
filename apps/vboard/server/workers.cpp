/* workers.cpp - see workers.h. */
#include "server/workers.h"

namespace vboard_app
{

bool Workers::run(std::function<void()> job)
{
    std::lock_guard lock(mutex_);
    if (ends_ || jobs_.size() >= most_) return false;
    if (idle_ <= jobs_.size() && threads_.size() < most_) threads_.emplace_back([this] { work(); });
    jobs_.push_back(std::move(job));
    changed_.notify_one();
    return true;
}

void Workers::stop()
{
    std::vector<std::thread> threads;
    {
        std::lock_guard lock(mutex_);
        ends_ = true;
        jobs_.clear();
        threads.swap(threads_);
    }
    changed_.notify_all();
    for (std::thread &thread : threads)
        thread.join();
}

void Workers::work()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        ++idle_;
        changed_.wait(lock, [&] { return ends_ || !jobs_.empty(); });
        --idle_;
        if (ends_) return;
        const std::function<void()> job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        job();
        lock.lock();
    }
}

} // namespace vboard_app
