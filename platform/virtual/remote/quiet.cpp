/*
 * quiet.cpp - whether every thread of the program waits.
 *
 * The kernel tells of each thread whether it waits and how often it has been switched away from. All
 * threads are looked at twice. One that waits both times with the same count has not run in between; so
 * at the moment between the two rounds none of them ran, and none was about to: a thread that had been
 * woken would be running or would have been counted. From then on only something outside of the program
 * can begin anything: the clock's next step, a request, or a file or network that it waits for.
 */
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <thread>
#include <unistd.h>

#include "agent_threads.h"
#include "requests.h"

namespace vboard_remote
{
namespace
{

using Steady = std::chrono::steady_clock;

struct ThreadLook {
    pid_t thread;
    uint64_t switches; // voluntary and other ones
    bool operator==(const ThreadLook &) const = default;
};

uint64_t number_behind(const char *text, const char *heading)
{
    const char *found = strstr(text, heading);
    return found != nullptr ? strtoull(found + strlen(heading), nullptr, 10) : 0;
}

// False: it runs, or is about to. A thread that has ended meanwhile waits for ever.
bool look_at(int tasks, const char *name, ThreadLook &look)
{
    char path[64];
    snprintf(path, sizeof path, "%s/status", name);
    const int file = openat(tasks, path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return true;
    char text[4096];
    const ssize_t size = read(file, text, sizeof text - 1);
    close(file);
    if (size <= 0) return true;
    text[size] = '\0';
    const char *state = strstr(text, "State:\t");
    if (state == nullptr) return false;
    look.switches = number_behind(text, "\nvoluntary_ctxt_switches:") +
                    number_behind(text, "\nnonvoluntary_ctxt_switches:");
    return strchr("SZX", state[strlen("State:\t")]) != nullptr; // asleep, or at its end
}

// All threads but the agent's. False as soon as one runs.
bool look_at_all(const std::vector<pid_t> &left_out, std::vector<ThreadLook> &looks)
{
    looks.clear();
    DIR *tasks = opendir("/proc/self/task");
    if (tasks == nullptr) return false;
    bool all_wait = true;
    while (const dirent *entry = all_wait ? readdir(tasks) : nullptr) {
        const auto thread = static_cast<pid_t>(atoi(entry->d_name));
        if (thread <= 0 || std::binary_search(left_out.begin(), left_out.end(), thread)) continue;
        ThreadLook look = {thread, 0};
        all_wait = look_at(dirfd(tasks), entry->d_name, look);
        looks.push_back(look);
    }
    closedir(tasks);
    return all_wait;
}

} // namespace

bool wait_quiet(int timeout_ms)
{
    const Steady::time_point give_up = Steady::now() + std::chrono::milliseconds(timeout_ms);
    std::vector<ThreadLook> first, second;
    for (auto pause = std::chrono::microseconds(20);;
         pause = std::min(pause * 2, std::chrono::microseconds(500))) {
        const std::vector<pid_t> own = agent_threads();
        if (look_at_all(own, first) && look_at_all(own, second) && first == second) return true;
        if (Steady::now() >= give_up) return false;
        std::this_thread::sleep_for(pause);
    }
}

} // namespace vboard_remote
