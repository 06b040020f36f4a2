/* double_click.h - two clicks on the same picture within half a second count as one double click. */
#pragma once

#include "host/clock.h"

namespace nvrec
{

class DoubleClick
{
public:
    /** A click on a channel's picture; -1 = on none. @return true = it is the second one. */
    bool is_second(int channel, Clock::time_point now)
    {
        const bool second = channel >= 0 && channel == channel_ && now - at_ <= kApart;
        channel_ = second ? -1 : channel; /* a third click is a first one again */
        at_ = now;
        return second;
    }

private:
    static constexpr auto kApart = std::chrono::milliseconds(500);

    int channel_ = -1; /* of the last click */
    Clock::time_point at_;
};

} // namespace nvrec
