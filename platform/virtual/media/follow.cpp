/*
 * follow.cpp - followers and their refresh threads. A device has a refresh thread only while it is
 * followed; under step pacing the thread sleeps and vboard_display_step calls instead.
 *
 * With a running clock a refresh that comes too late is skipped; with a taken clock every refresh
 * that a step passes over is made, so that tests can count them.
 */
#include "media/follow.h"

#include <array>
#include <memory>
#include <thread>

#include "media/call.h"
#include "media/canvas.h"
#include "media/clock.h"
#include "media/display.h"

namespace vboard
{
namespace
{

struct Follow : Waitable { // `changed`: ending, or the pacing
    std::mutex control;    // one change of follower at a time

    // Guarded by the Waitable's mutex.
    vboard_follower follower = nullptr;
    void *user = nullptr;
    bool stepped = false;
    bool ending = false;
    std::thread thread;

    std::mutex calling; // held while the follower runs
};

Follow &follow_of(int32_t device)
{
    static auto *all = new std::array<Follow, kDevices>;
    return (*all)[static_cast<size_t>(device_index(device))];
}

void compose_and_call(Follow &follow, int32_t device)
{
    const std::lock_guard calling(follow.calling);
    vboard_follower follower = nullptr;
    void *user = nullptr;
    {
        const std::lock_guard guard(follow.mutex);
        follower = follow.follower;
        user = follow.user;
    }
    const CanvasLook look(device, follower != nullptr ? Overlay::yes : Overlay::no);
    if (follower != nullptr) follower(&look.picture(), user);
}

void run_refresh(Follow &follow, int32_t device)
{
    int64_t next_us = clock_now_us();
    std::unique_lock lock(follow.mutex);
    for (;;) {
        follow.changed.wait(lock, [&] { return follow.ending || !follow.stepped; });
        if (follow.ending) return;
        next_us += 1000000 / display_refresh_hz(device);
        const int64_t now_us = clock_now_us();
        if (next_us < now_us && !clock_is_taken()) next_us = now_us;
        wait_until(follow, lock, next_us, [&] { return follow.ending || follow.stepped; });
        if (follow.ending) return;
        if (follow.stepped) continue;
        lock.unlock();
        compose_and_call(follow, device);
        lock.lock();
    }
}

void end_following(Follow &follow)
{
    std::thread thread;
    {
        const std::lock_guard guard(follow.mutex);
        follow.ending = true;
        thread = std::move(follow.thread);
        follow.changed.notify_all();
    }
    if (thread.joinable()) thread.join();
    {
        const std::lock_guard guard(follow.mutex);
        follow.follower = nullptr;
        follow.ending = false;
    }
    const std::lock_guard no_call_runs(follow.calling);
}

} // namespace

int follow_set(int32_t device, vboard_follower follower, void *user)
{
    if (device_index(device) < 0) return refuse_plainly("display device %d", device);
    Follow &follow = follow_of(device);
    const std::lock_guard control(follow.control);
    if (follower == nullptr) {
        end_following(follow);
        return 0;
    }
    const std::lock_guard guard(follow.mutex);
    if (follow.follower != nullptr) return refuse_plainly("display device %d is followed already", device);
    follow.follower = follower;
    follow.user = user;
    follow.thread = std::thread([&follow, device] { run_refresh(follow, device); });
    return 0;
}

void follow_step(int32_t device)
{
    compose_and_call(follow_of(device), device);
}

void follow_set_pacing(int32_t device, uint32_t pacing)
{
    Follow &follow = follow_of(device);
    const std::lock_guard guard(follow.mutex);
    follow.stepped = pacing == VBOARD_PACING_STEP;
    follow.changed.notify_all();
}

void follow_reset()
{
    for (int32_t device = kFirstDevice; device < kFirstDevice + kDevices; ++device) {
        Follow &follow = follow_of(device);
        const std::lock_guard control(follow.control);
        end_following(follow);
        const std::lock_guard guard(follow.mutex);
        follow.stepped = false;
    }
}

} // namespace vboard
