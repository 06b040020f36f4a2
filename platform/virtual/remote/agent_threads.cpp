/* agent_threads.cpp - see agent_threads.h. */
#include "agent_threads.h"

#include <algorithm>
#include <csignal>
#include <pthread.h>
#include <sys/syscall.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace vboard_remote
{
namespace
{

struct Known {
    std::mutex mutex;
    std::vector<pid_t> threads; // sorted
};

Known &known()
{
    static auto *threads = new Known;
    return *threads;
}

pid_t own_number()
{
    return static_cast<pid_t>(syscall(SYS_gettid));
}

void add_self()
{
    Known &list = known();
    const std::lock_guard guard(list.mutex);
    list.threads.insert(std::upper_bound(list.threads.begin(), list.threads.end(), own_number()),
                        own_number());
}

void remove_self()
{
    Known &list = known();
    const std::lock_guard guard(list.mutex);
    std::erase(list.threads, own_number());
}

} // namespace

bool start_agent_thread(std::function<void()> body)
{
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before); // inherited by the new thread
    bool started = true;
    try {
        std::thread([run = std::move(body)] {
            pthread_setname_np(pthread_self(), "vboard-remote");
            add_self();
            run();
            remove_self();
        }).detach();
    } catch (const std::system_error &) {
        started = false;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

std::vector<pid_t> agent_threads()
{
    Known &list = known();
    const std::lock_guard guard(list.mutex);
    return list.threads;
}

bool Workers::run(std::function<void()> job)
{
    const std::lock_guard guard(mutex_);
    if (jobs_.size() >= idle_) {
        if (threads_ >= kMost || !start_agent_thread([this] { work(); })) return false;
        ++threads_;
        ++idle_; // from now on: it takes the job as soon as it runs
    }
    jobs_.push_back(std::move(job));
    changed_.notify_one();
    return true;
}

void Workers::work()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [&] { return !jobs_.empty(); });
        const std::function<void()> job = std::move(jobs_.front());
        jobs_.pop_front();
        --idle_;
        lock.unlock();
        job();
        lock.lock();
        ++idle_;
    }
}

} // namespace vboard_remote
