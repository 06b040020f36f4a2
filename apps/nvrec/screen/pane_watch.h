/*
 * pane_watch.h - finds out what each pane has to tell of its camera: from the camera's status, the frames
 * that pass by, the layout, and the analog inputs.
 *
 * Threads: on_unit() on the cameras', all else on the main one.
 */
#pragma once

#include <array>
#include <atomic>
#include <functional>

#include "camera/camera_status.h"
#include "nvrhal/limits.h"
#include "screen/analog_inputs.h"
#include "screen/pane_state.h"
#include "wall/module.h"

namespace nvrec
{

class PaneWatch
{
public:
    /** @param changed  called when a pane may have to tell something else; from any thread */
    void start(WallControl &wall, std::function<void()> changed);

    void on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts);

    /** Another camera stands on the channel: nothing of it has been seen. */
    void forget(int channel);

    /** All panes' decoders have been flushed. */
    void on_layout(Clock::time_point now) { laid_out_at_ = now; }

    /** Ask the analog inputs, once a second at most. */
    void look(Clock::time_point now);

    PaneState state_of(const Feeder &camera, Clock::time_point now) const;

    /** When a pane has to tell something else if no frame comes until then. */
    Clock::time_point next_change(Clock::time_point now) const;

private:
    static constexpr size_t kMostChannels = NVRHAL_MAX_CAMERAS;

    /* Of one camera; times are ticks of the clock, 0 = never. */
    struct Seen {
        std::atomic<Clock::rep> unit_at = 0;
        std::atomic<uint64_t> refused_bytes = 0; /* of the last key frame, when it is too large; else 0 */
        std::atomic<bool> sound = false;         /* its sound is taken                                  */
        std::atomic<bool> notice = false; /* its pane has a notice that the next picture ends           */
    };

    PaneNotice notice_of(const CameraStatus &status, uint64_t too_large_bytes, Clock::time_point now) const;

    WallControl *wall_ = nullptr;
    std::function<void()> changed_;
    mutable std::array<Seen, kMostChannels> seen_;
    Clock::time_point laid_out_at_;
    AnalogInputs analog_;
    Clock::time_point looked_at_;
};

} // namespace nvrec
