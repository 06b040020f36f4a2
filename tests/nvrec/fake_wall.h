/* fake_wall.h - a wall without a screen for tests of single modules, which can wait until it is woken. */
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "stand_in_wall.h"

namespace nvrec_test
{

using namespace nvrec; // NOLINT(google-build-using-namespace): for tests
using namespace std::chrono_literals;

/* A wall without a screen, which can wait until it is woken. */
class FakeWall final : public nvrec_test::StandInWall
{
public:
    using StandInWall::StandInWall;

    void wake() override
    {
        const std::scoped_lock guard(lock_);
        ++wakes_;
        woken_.notify_all();
    }

    /* Give a module turns, one for each wake, until `done` holds; false when the wall is not woken any more.
     */
    template <typename Done> bool turn_until(Module &module, Done done)
    {
        for (;;) {
            module.take_turn(Clock::now());
            if (done()) return true;
            if (!wait_for_wake()) return false;
        }
    }

    /* False when the wall is not woken any more. */
    bool wait_for_wake()
    {
        std::unique_lock guard(lock_);
        if (!woken_.wait_for(guard, 20s, [this] { return wakes_ > 0; })) return false;
        wakes_ = 0;
        return true;
    }

private:
    std::mutex lock_;
    std::condition_variable woken_;
    int wakes_ = 0;
};

} // namespace nvrec_test
