/* ringing_wall.h - a wall without a screen, whose rings can be waited for. For tests of single modules. */
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "stand_in_wall.h"

namespace nvrec_test
{

using namespace nvrec; // NOLINT(google-build-using-namespace): for tests
using namespace std::chrono_literals;

/* A wall without a screen, whose rings can be waited for. */
class FakeWall final : public nvrec_test::StandInWall
{
public:
    using StandInWall::StandInWall;

    void wake() override
    {
        const std::scoped_lock guard(lock_);
        ++rings_;
        rung_.notify_all();
    }

    /* Give a module turns, one a ring, until it holds; false when nobody rings any more. */
    template <typename Done> bool turn_until(Module &module, Done done)
    {
        for (;;) {
            module.take_turn(Clock::now());
            if (done()) return true;
            std::unique_lock guard(lock_);
            if (!rung_.wait_for(guard, 20s, [this] { return rings_ > 0; })) return false;
            rings_ = 0;
        }
    }

private:
    std::mutex lock_;
    std::condition_variable rung_;
    int rings_ = 0;
};

} // namespace nvrec_test
