/* workers.h - threads that carry requests out, so that one that waits holds no other up. */
#ifndef VBOARD_APP_SERVER_WORKERS_H
#define VBOARD_APP_SERVER_WORKERS_H

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace vboard_app
{

/* Threads are started as they are needed and kept. Any thread. */
class Workers
{
public:
    explicit Workers(size_t most) : most_(most) {}
    ~Workers() { stop(); }

    /* Run a job beside the others. False: as many as there may be are at work, and as many wait. */
    bool run(std::function<void()> job);

    /* Wait for the jobs at work; those that wait are not begun. */
    void stop();

private:
    void work();

    const size_t most_;
    std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    std::deque<std::function<void()>> jobs_;
    std::vector<std::thread> threads_;
    size_t idle_ = 0;
    bool ends_ = false;
};

} // namespace vboard_app

#endif
