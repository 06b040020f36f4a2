/*
 * live_clock.h - when the pictures of a network camera were taken, by the recorder's own clock.
 *
 * A camera's time stamps tell the distances between its pictures better than their arrival does. They tell
 * nothing else: they begin anywhere, run a little fast or slow, and jump when the camera's clock is set or
 * its stream begins anew. So the clock keeps one number, which is added to a stamp of the camera to get the
 * recorder's monotonic time, and compares that time of every picture with its arrival:
 *
 *   within 200 ms     the camera's distance holds. The number follows the earliest arrivals, by half a
 *                     percent at most, so that a camera's clock that runs fast or slow is followed and
 *                     jitter is not.
 *   late              the connection stalled and the picture waited: it keeps its time, and the number
 *                     stays as it is. When the pictures after it do not catch up, it was the camera that
 *                     stalled, and its pictures get the times at which they arrive.
 *   early, or back    the camera's clock was set: its pictures get the times at which they arrive.
 *
 * RTSP carries presentation times only, so decoding times are computed from them. A decoder holds some
 * pictures back to reorder them; the decoding time of a picture is the earliest presentation time among those
 * that are held back when it comes, its own included.
 *
 * All times are microseconds. Threads: the one that reads the input.
 */
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "camera/unit_clock.h"

namespace nvrec
{

/** Decoding times out of presentation times in the order of decoding. */
class DecodingOrder
{
public:
    void set_stream(double frame_rate, int held_back);
    void begin();
    int64_t decoding_time(int64_t pts_us);
    int64_t frame_us() const { return frame_us_; }

private:
    int64_t frame_us_ = 40'000;
    size_t held_back_ = 0;
    std::vector<int64_t> waiting_; /* presentation times not yet reached, sorted */
    std::optional<int64_t> newest_us_, last_us_;
};

class LiveClock
{
public:
    struct Stamp {
        int64_t due_us;    /* when to decode, from the camera's first unit on */
        int64_t pts_us;    /* when to show, likewise                          */
        int64_t at_us;     /* due_us on the monotonic clock                   */
        int64_t jumped_us; /* the camera's clock was set by so much; 0 = not  */
    };

    /** A packet that was read, and when it came. */
    struct Arrived {
        UnitClock::PacketTimes times;
        int64_t arrived_us;
    };

    void set_stream(double frame_rate, int held_back) { order_.set_stream(frame_rate, held_back); }

    /**
     * The connection was opened. `first` are the packets up to the first one that the reader had to wait for.
     * The one with the least delay tells when the first one was taken; all others have waited somewhere.
     */
    void begin(const std::vector<Arrived> &first);

    Stamp stamp(const Arrived &unit);

    /** What is to be added to a time of the stream's own clock to get one of due_us. */
    std::optional<int64_t> offset_us() const;

    /** The monotonic time from which due_us counts. Two streams of one camera share it. */
    std::optional<int64_t> epoch_us() const { return epoch_us_; }
    void set_epoch_us(int64_t epoch_us) { epoch_us_ = epoch_us; }

private:
    struct Late {
        int64_t arrived_us, camera_us;
    };
    int64_t first_pts_of(const std::vector<Arrived> &first) const;
    int64_t pts_of(const UnitClock::PacketTimes &times);
    int64_t place(int64_t camera_us, int64_t arrived_us);
    int64_t jump(int64_t camera_us, int64_t arrived_us);
    void follow(int64_t late_us, int64_t arrived_us, int64_t step_us);
    bool camera_stood_still(int64_t camera_us, int64_t arrived_us);

    DecodingOrder order_;
    std::optional<int64_t> add_us_; /* to the camera's time: monotonic time              */
    std::optional<int64_t> epoch_us_;
    int64_t last_pts_us_ = 0; /* of the last unit, for one without */
    int64_t last_camera_us_ = 0, last_arrived_us_ = 0;
    std::optional<int64_t> last_at_us_; /* of the last unit of all sessions              */
    std::optional<Late> late_;          /* where the pictures at hand began to be late   */
    int64_t window_from_us_ = 0;        /* of the search for the earliest arrival        */
    int64_t earliest_us_ = INT64_MAX;   /* least lateness in it                          */
    int64_t to_follow_us_ = 0;          /* still to be added                             */
};

/** Time of day of a monotonic time. */
class TimeOfDay
{
public:
    /**
     * The recorder's wall clock is compared with the monotonic one at each call; a difference of less
     * than 20 ms to what held before is that of reading two clocks, and changes nothing.
     */
    int64_t of(int64_t monotonic_us);

private:
    std::optional<int64_t> ahead_us_; /* of the wall clock */
};

} // namespace nvrec
