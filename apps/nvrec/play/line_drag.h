/*
 * line_drag.h - limits the jumps of a press on the time line that is held and moved.
 *
 * A jump takes its time: every shown recording goes back to a key frame and is decoded up to the
 * place. The mouse moves a hundred times a second. So playback jumps to the place of a press at once, follows
 * the drag a few times a second at most, and always jumps to the last place.
 *
 * Threads: one at a time.
 */
#pragma once

#include <cstdint>
#include <optional>

#include "host/clock.h"

namespace nvrec
{

class LineDrag
{
public:
    /* The place to jump to now; nothing = none yet. Places are the playback's. */
    std::optional<int64_t> press(int64_t place_us);
    std::optional<int64_t> move(int64_t place_us, Clock::time_point now);
    std::optional<int64_t> release();
    /** The place that waited and is due now. */
    std::optional<int64_t> take_due(Clock::time_point now);

    /** The jump is done: the next one comes no sooner than a while after that. */
    void went(Clock::time_point now);

    bool held() const { return held_; }
    /** The place to jump to later, and when; nothing and max() = none. */
    std::optional<int64_t> waiting() const { return waiting_; }
    Clock::time_point due_at() const { return waiting_ ? next_at_ : Clock::time_point::max(); }

private:
    bool held_ = false;
    std::optional<int64_t> waiting_;
    Clock::time_point next_at_;
};

} // namespace nvrec
