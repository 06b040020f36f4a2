/*
 * agent_threads.h - the agent's own threads: they take no signal of the program, and are known by their
 * number, so that "is the program quiet" leaves them out.
 */
#ifndef VBOARD_REMOTE_AGENT_THREADS_H
#define VBOARD_REMOTE_AGENT_THREADS_H

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <sys/types.h>
#include <vector>

namespace vboard_remote
{

/* Start a thread that is never joined. False: the system has none left. */
bool start_agent_thread(std::function<void()> body);

/* Kernel numbers of the agent's threads, sorted. */
std::vector<pid_t> agent_threads();

/*
 * Threads for requests that may wait. They are started as they are needed and kept. Any thread.
 */
class Workers
{
public:
    /* Run a job beside all others. False: as many as there may be are at work. */
    bool run(std::function<void()> job);

private:
    static constexpr size_t kMost = 32;

    void work();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> jobs_; // one for an idle thread each, at most
    size_t threads_ = 0, idle_ = 0;
};

} // namespace vboard_remote

#endif
