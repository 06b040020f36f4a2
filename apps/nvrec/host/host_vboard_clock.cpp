/*
 * host_vboard_clock.cpp - clock.h on the clock of the board in software.
 *
 * While that clock runs, a wait is one of the system's, with the board's time as its end. While it
 * is taken, nothing but a wake or a jump of the clock ends a wait. The board tells of every jump, and
 * every thread that waits here then looks at the clock anew.
 *
 * Waiting threads are counted as the board's sleepers. A thread that is woken is no sleeper from the
 * moment it is woken, before it has run: a test that waits for all threads to be asleep knows that
 * they have done what they were woken for.
 *
 * Lock order: a caller's mutex, the list of jump listeners, a Condition's own mutex.
 */
#include <algorithm>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "host/clock.h"
#include "vboard.h"

namespace nvrec
{
namespace
{

/* What is called after every jump of the clock. */
class JumpListeners
{
public:
    JumpListeners() { vboard_clock_follow(tell, this); }

    void add(void *owner, void (*call)(void *owner))
    {
        const std::scoped_lock guard(mutex_);
        all_.push_back({owner, call});
    }

    /* Returns when no call to the owner is running any more. */
    void remove(const void *owner)
    {
        const std::scoped_lock guard(mutex_);
        std::erase_if(all_, [owner](const Listener &listener) { return listener.owner == owner; });
    }

private:
    struct Listener {
        void *owner;
        void (*call)(void *owner);
    };

    static void tell(void *self)
    {
        auto &listeners = *static_cast<JumpListeners *>(self);
        const std::scoped_lock guard(listeners.mutex_);
        for (const Listener &listener : listeners.all_)
            listener.call(listener.owner);
    }

    std::mutex mutex_;
    std::vector<Listener> all_;
};

/* Outlives every static object that waits. */
JumpListeners &jump_listeners()
{
    static auto *listeners = new JumpListeners;
    return *listeners;
}

int64_t board_time_us(Clock::time_point when)
{
    return when.time_since_epoch().count();
}

/* Until then on a clock that runs. A wait may end early, so an hour is as good as for ever. */
Clock::duration time_until(Clock::time_point when)
{
    constexpr Clock::duration kLongest = std::chrono::hours(1);
    if (when == Clock::time_point::max()) return kLongest;
    return std::clamp(when - Clock::now(), Clock::duration::zero(), kLongest);
}

bool clock_stands()
{
    return vboard_clock_is_taken() == 1;
}

} // namespace

Clock::time_point Clock::now()
{
    return time_point(duration(vboard_clock_us()));
}

WallTime wall_time()
{
    return WallTime(std::chrono::microseconds(vboard_clock_wall_us()));
}

struct Condition::State {
    struct Sleeper {
        int64_t deadline_us;
        bool woken = false;
    };

    State()
    {
        jump_listeners().add(this, [](void *self) { static_cast<State *>(self)->on_jump(); });
    }
    ~State() { jump_listeners().remove(this); }
    State(const State &) = delete;
    State &operator=(const State &) = delete;

    void on_jump()
    {
        const std::scoped_lock guard(mutex);
        ++wakes;
        changed.notify_all();
    }

    void wake(Sleeper &sleeper)
    {
        if (std::exchange(sleeper.woken, true)) return;
        vboard_clock_remove_sleeper(sleeper.deadline_us);
    }

    std::mutex mutex; /* guards what follows */
    std::condition_variable changed;
    uint64_t wakes = 0;
    std::vector<Sleeper *> sleepers;
};

Condition::Condition() : state_(std::make_unique<State>()) {}
Condition::~Condition() = default;

uint64_t Condition::wake_count() const
{
    const std::scoped_lock guard(state_->mutex);
    return state_->wakes;
}

void Condition::notify()
{
    const std::scoped_lock guard(state_->mutex);
    ++state_->wakes;
    for (State::Sleeper *sleeper : state_->sleepers)
        state_->wake(*sleeper);
    state_->changed.notify_all();
}

void Condition::wait_once(std::unique_lock<std::mutex> &lock, uint64_t seen, Clock::time_point when)
{
    std::unique_lock guard(state_->mutex);
    if (state_->wakes != seen) return;
    lock.unlock();

    State::Sleeper self = {board_time_us(when)};
    state_->sleepers.push_back(&self);
    vboard_clock_add_sleeper(self.deadline_us);
    const auto woken = [&] { return state_->wakes != seen; };
    if (clock_stands()) {
        state_->changed.wait(guard, woken);
    } else {
        state_->changed.wait_for(guard, time_until(when), woken);
    }
    std::erase(state_->sleepers, &self);
    state_->wake(self);

    guard.unlock();
    lock.lock();
}

bool wait_readable(int descriptor, Clock::time_point when)
{
    const int jumped = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (jumped < 0) return false;
    int jump_event = jumped;
    jump_listeners().add(&jump_event, [](void *event) { eventfd_write(*static_cast<int *>(event), 1); });
    vboard_clock_add_sleeper(board_time_us(when));

    bool readable = false;
    for (bool over = false; !over;) {
        eventfd_t jumps;
        eventfd_read(jumped, &jumps); /* first: a jump after this ends the poll */
        pollfd sources[] = {{descriptor, POLLIN, 0}, {jumped, POLLIN, 0}};
        const auto left_ms = std::chrono::ceil<std::chrono::milliseconds>(time_until(when)).count();
        const int found = poll(sources, 2, clock_stands() && left_ms > 0 ? -1 : static_cast<int>(left_ms));
        readable = found > 0 && sources[0].revents != 0;
        over = readable || found < 0 || left_ms == 0;
    }

    vboard_clock_remove_sleeper(board_time_us(when));
    jump_listeners().remove(&jump_event);
    close(jumped);
    return readable;
}

struct DescriptorWait::State {
    State() : jumped(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    {
        jump_listeners().add(this, [](void *self) { eventfd_write(static_cast<State *>(self)->jumped, 1); });
    }
    ~State()
    {
        jump_listeners().remove(this);
        close(jumped);
    }
    State(const State &) = delete;
    State &operator=(const State &) = delete;

    const int jumped;
    std::vector<pollfd> sources;
};

DescriptorWait::DescriptorWait() : state_(std::make_unique<State>()) {}
DescriptorWait::~DescriptorWait() = default;

int DescriptorWait::wait(pollfd *sources, size_t count, Clock::time_point when)
{
    std::vector<pollfd> &all = state_->sources;
    all.assign(sources, sources + count);
    all.push_back({state_->jumped, POLLIN, 0});
    vboard_clock_add_sleeper(board_time_us(when));
    int found = 0;
    for (bool over = false; !over;) {
        eventfd_t jumps;
        eventfd_read(state_->jumped, &jumps); /* first: a jump after this ends the poll */
        const auto left_ms = std::chrono::ceil<std::chrono::milliseconds>(time_until(when)).count();
        const int limit_ms = clock_stands() && left_ms > 0 ? -1 : static_cast<int>(left_ms);
        found = poll(all.data(), all.size(), limit_ms);
        if (found > 0 && all.back().revents != 0) --found;
        over = found != 0 || left_ms == 0;
    }
    vboard_clock_remove_sleeper(board_time_us(when));
    std::copy_n(all.begin(), count, sources);
    return std::max(found, 0);
}

} // namespace nvrec
