/*
 * running_wall.h - the recorder's wall with its modules in this process, on a thread of its
 * own, while the test moves the mouse on the board. For tests.
 *
 * Threads: the wall's main thread is the one started here; all functions belong to the test's.
 */
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "wall/wall.h"

namespace nvrec_test
{

constexpr auto kPatience = std::chrono::seconds(60); /* ends a hanging test */

/** What the wall shows once it has acted on everything that came. */
struct WallState {
    int pointers = 0; /* mouse events so far */
    int enlarged = -1;
    int selected = 0;
};

/* Added last and in the first layer, it sees every event before the others; it has its turn after them. */
class Witness final : public nvrec::Module
{
public:
    bool start(nvrec::WallControl &wall) override
    {
        const std::scoped_lock guard(lock_);
        wall_ = &wall;
        return true;
    }

    /** What the cameras were sent so far. */
    uint64_t sent(size_t channel)
    {
        const std::scoped_lock guard(lock_);
        return wall_->cameras().at(channel)->counters().sent;
    }

    nvrec::InputLayer input_layer() const override { return nvrec::InputLayer::kMenu; }

    bool on_pointer(const nvrec::PointerEvent &) override
    {
        ++pointers_;
        return false;
    }

    nvrec::Clock::time_point take_turn(nvrec::Clock::time_point) override
    {
        const std::scoped_lock guard(lock_);
        state_ = {pointers_, wall_->enlarged(), wall_->selected()};
        seen_ = true;
        if (end_asked_) wall_->end(0);
        changed_.notify_all();
        return nvrec::Clock::time_point::max();
    }

    /** Wait for the turn after so many mouse events. @return whether it came. */
    bool wait_for(int pointers, WallState *state)
    {
        std::unique_lock guard(lock_);
        const bool came =
            changed_.wait_for(guard, kPatience, [&] { return seen_ && state_.pointers >= pointers; });
        *state = state_;
        return came;
    }

    void ask_to_end()
    {
        {
            const std::scoped_lock guard(lock_);
            end_asked_ = true;
        }
        if (wall_) wall_->wake(); /* none = it did not come up */
    }

private:
    int pointers_ = 0; /* the wall's thread only */
    std::mutex lock_;  /* guards what follows */
    std::condition_variable changed_;
    nvrec::WallControl *wall_ = nullptr;
    WallState state_;
    bool seen_ = false, end_asked_ = false;
};

class RunningWall
{
public:
    /** Without a window, its log on standard output. */
    explicit RunningWall(nvrec::WallOptions options) : wall_(without_screen(std::move(options))) {}

    ~RunningWall()
    {
        if (thread_.joinable()) end();
    }

    /** For its modules, before start(). */
    nvrec::Wall &wall() { return wall_; }

    /** @return false = it did not come up. */
    bool start()
    {
        auto witness = std::make_unique<Witness>();
        witness_ = witness.get();
        wall_.add(std::move(witness));
        thread_ = std::thread([this] { exit_code_ = wall_.run(); });
        return witness_->wait_for(0, &state_);
    }

    /** What a camera was sent so far. */
    uint64_t sent(size_t channel) { return witness_->sent(channel); }

    /** Do something that is so many mouse events, and wait until the wall has acted on the last one. */
    WallState after(const std::function<void()> &hand, int events = 1)
    {
        hand();
        if (!witness_->wait_for(state_.pointers + events, &state_)) state_ = {-1, -2, -2};
        return state_;
    }

    /** Wait until it ends by itself. @return the wall's exit code. */
    int wait_for_end()
    {
        thread_.join();
        return exit_code_;
    }

    /** @return the wall's exit code. */
    int end()
    {
        witness_->ask_to_end();
        thread_.join();
        return exit_code_;
    }

private:
    static nvrec::WallOptions without_screen(nvrec::WallOptions options)
    {
        options.window = nvrec::WindowMode::kOff;
        options.log_path = "-";
        return options;
    }

    nvrec::Wall wall_;
    Witness *witness_ = nullptr; /* the wall's */
    WallState state_;
    std::thread thread_;
    int exit_code_ = -1;
};

} // namespace nvrec_test
