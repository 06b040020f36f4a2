/*
 * camera_meter.h - measures how a camera's stream comes in: whether it comes at all, how fast, how evenly,
 * and how much of it is missing.
 *
 * Silence is told by monotonic time alone, so that neither a camera's clock nor the recorder's
 * calendar hides it. Rates are those of the last four seconds.
 *
 * Threads: any; it has a lock of its own.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

#include "camera/camera_status.h"
#include "host/clock.h"

namespace nvrec
{

class CameraMeter
{
public:
    CameraMeter() : began_at_(Clock::now()) {}

    /** A frame came. @param camera_us  its time on the camera's own clock, where that is known */
    void arrived(Clock::time_point at, size_t bytes, bool key, std::optional<int64_t> camera_us);

    /** So many packets did not come. */
    void missed(uint64_t packets);

    /** The connection is opened anew, or the camera's clock was set: distances begin again. */
    void begin_again();

    /** The library took a frame that it was to show, or did not. */
    void handed_on(bool key, bool accepted);

    /** Nothing more will come, by its own end. */
    void ended();

    /** Fill in state, since and the measured values; the rest of the status stays as it is. */
    void tell(CameraStatus *status, Clock::time_point now) const;

private:
    struct Arrival {
        Clock::time_point at;
        size_t bytes;
    };
    void forget_before(Clock::time_point when);

    mutable std::mutex lock_; /* guards what follows */
    const Clock::time_point began_at_;
    std::optional<Clock::time_point> arrived_at_;    /* the last one                                  */
    Clock::time_point live_since_;                   /* the first one behind the last silence         */
    std::optional<Clock::time_point> refused_since_; /* until a key frame is taken                */
    std::optional<Clock::time_point> ended_at_;
    std::deque<Arrival> arrivals_; /* of the last seconds */
    std::optional<Clock::time_point> key_at_;
    double key_distance_s_ = 0;
    std::optional<int64_t> transit_us_; /* of the last frame: arrival less the camera's time */
    double jitter_us_ = 0;
    double received_ = 0, missed_ = 0; /* packets, older ones count less */
};

} // namespace nvrec
