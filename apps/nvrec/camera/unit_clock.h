/*
 * unit_clock.h - when the units of an input are due, and when they are shown, counted in
 * microseconds from the input's first unit on.
 *
 * Containers say so by their time stamps, which begin anywhere; a bare stream carries none and runs
 * at its frame rate. A pass is what is read between two beginnings: of a file that is begun again, or of a
 * connection that was opened again. Due times go on from pass to pass and never fall back. Where the stamps
 * of one pass fall back by more than a second, files were joined: time goes on one frame later.
 *
 * Threads: the one that reads the input.
 */
#pragma once

#include <cstdint>
#include <optional>

namespace nvrec
{

class UnitClock
{
public:
    /** What a packet says of its time, on the stream's own clock. */
    struct PacketTimes {
        std::optional<int64_t> pts_us;
        std::optional<int64_t> dts_us;
        int64_t pts_behind_dts_us = 0; /* when both are there; rounded by itself */
        bool key = false;
        bool before_start = false; /* only decoded for later ones, not shown: an edit list begins later */
    };

    struct Stamp {
        int64_t due_us; /* when to decode */
        int64_t pts_us; /* when to show   */
    };

    /** Frames a second, and how many units the decoder holds back before it shows the first. */
    void set_stream(double frame_rate, int held_back);

    /** For transport streams: take stamps that jump forward for those of another file, joined to this one. */
    void set_may_be_joined(bool may_be) { may_be_joined_ = may_be; }

    /** The first pass; or another one after so long. */
    void begin();
    void begin_after(int64_t away_us);

    /** Another pass of the same file, one frame behind the last unit. */
    void begin_again();

    /** From now on times are places in the file; the next unit has this number in the file. */
    void go_to_places()
    {
        pass_start_us_ = last_due_us_ = joined_us_ = 0;
        last_dts_us_.reset();
    }
    void set_next_number(int64_t number) { next_number_ = number; }
    /** The number of a unit due at that place. */
    int64_t number_at(int64_t due_us) const;

    /** Stamp the unit that was read next. */
    Stamp stamp(const PacketTimes &times);

    /** How many units of the pass were stamped, or the number of the next one in the file. */
    int64_t next_number() const { return next_number_; }

    /** What is to be added to a time of the stream's own clock; nothing before the first unit. */
    std::optional<int64_t> offset_us() const;

    /** Time stamp of the first picture of the file; 0 = it has none. */
    int64_t first_pts_us() const { return first_pts_us_.value_or(0); }

private:
    void look_for_join(int64_t dts_us);

    double frame_rate_ = 0;
    int held_back_ = 0;
    int64_t next_number_ = 0;
    int64_t pass_start_us_ = 0;           /* due time of this pass's first unit         */
    std::optional<int64_t> first_dts_us_; /* the pass's first decoding time stamp       */
    std::optional<int64_t> first_pts_us_; /* the file's first presentation time stamp   */
    std::optional<int64_t> last_dts_us_;  /* of the last unit                           */
    int64_t joined_us_ = 0;               /* by how much joined files' stamps lie apart */
    int64_t last_due_us_ = 0;
    bool may_be_joined_ = false;
};

} // namespace nvrec
