/* line_drag.cpp - see line_drag.h. */
#include "play/line_drag.h"

#include <utility>

namespace nvrec
{
namespace
{

constexpr auto kBetweenJumps = std::chrono::milliseconds(300);

} // namespace

std::optional<int64_t> LineDrag::press(int64_t place_us)
{
    held_ = true;
    waiting_.reset();
    return place_us;
}

std::optional<int64_t> LineDrag::move(int64_t place_us, Clock::time_point now)
{
    if (!held_) return std::nullopt;
    waiting_ = place_us;
    return take_due(now);
}

std::optional<int64_t> LineDrag::release()
{
    held_ = false;
    return std::exchange(waiting_, std::nullopt);
}

std::optional<int64_t> LineDrag::take_due(Clock::time_point now)
{
    if (now < next_at_) return std::nullopt;
    return std::exchange(waiting_, std::nullopt);
}

void LineDrag::went(Clock::time_point now)
{
    next_at_ = now + kBetweenJumps;
}

} // namespace nvrec
