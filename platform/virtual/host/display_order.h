/*
 * display_order.h - when an H.264 picture may leave the decoder, for a viewer who wants it at once
 * and wants it in display order.
 *
 * A picture's place in display order is its picture order count. Streams without reordering count on
 * by a fixed step, so every picture leaves as soon as it is decoded. A count that leaves a gap says
 * that pictures in between may still come: the picture is kept back until the gap is filled, until
 * `patience` later pictures have gone past it without filling it, until a new sequence begins, or
 * until as many are kept back as the decoded picture buffer holds.
 *
 * libavcodec does the reordering; it gives at most one picture for each that it decodes and keeps
 * back as many as its has_b_frames says. This class follows what it holds and says, picture by
 * picture, what has_b_frames must be. Where the stream states its reordering, that number is it.
 *
 * Not thread-safe.
 */
#ifndef VBOARD_DISPLAY_ORDER_H
#define VBOARD_DISPLAY_ORDER_H

#include <cstdint>
#include <deque>
#include <optional>

#include "host/h264_headers.h"

namespace vboard
{

class DisplayOrder
{
public:
    enum class Coded { frame, top_field, bottom_field };

    /* The parameter sets that hold from the next picture on. */
    void set_sequence(const H264Sequence &sequence) { sequence_ = sequence; }

    /* Is everything held to be brought out before this IDR picture, so that no delay stays behind? */
    bool drains_before_idr() const;

    /*
     * A picture, or a field of one, goes into the decoder under a number of its own, ascending.
     * Gives how many pictures the decoder is to keep back after it.
     */
    unsigned goes_in(uint64_t id, int order_count, bool is_idr, Coded coded);

    /* Picture `id` came out; those that it overtook never will. */
    void came_out(uint64_t id);

    /*
     * The decoder is through with the picture that went in last. `kept_back` is its has_b_frames
     * afterwards, `failed` that it reported an error.
     */
    void done(unsigned kept_back, bool failed);

    /* The decoder was made to give all that it held: what has not come out never will. */
    void drained();

    /* The decoder was emptied unseen: what it held is of no interest any more. */
    void forget();

    /* Pictures that were decoded too late for their place in display order, since the last call, and
       others that the decoder swallowed without an error. */
    unsigned take_late();

private:
    struct Held {
        uint64_t id;
        uint64_t sequence; // counts IDR pictures
        int order_count;
        unsigned passed; // later pictures of its sequence with a higher count
        bool is_idr;
        bool failed;
    };
    struct Shown {
        uint64_t sequence;
        int order_count;
    };

    std::deque<Held>::iterator next_out();
    bool is_due(const Held &next) const;
    bool is_second_field(Coded coded) const;
    int step() const;
    void drop(const std::deque<Held>::const_iterator &lost);
    void note_shown(const Held &shown);
    void learn_distance(int distance);

    H264Sequence sequence_;
    std::deque<Held> held_;    // in decoding order
    std::deque<Held> missing_; // did not come out in their turn; those behind them have not yet either
    std::optional<Shown> last_shown_;
    Coded last_coded_ = Coded::frame;
    uint64_t sequence_number_ = 0;
    int highest_ = 0;           // order count of this sequence
    bool reorders_ = false;     // this sequence decodes a picture after one that is shown later
    bool expects_one_ = false;  // the decoder was to give a picture this time
    unsigned keeps_back_ = 0;   // what the decoder was told
    unsigned patience_ = 1;     // grows when a picture was late
    unsigned distances_ = 0;    // of successive pictures, seen so far
    int shortest_distance_ = 0; // of successive pictures, order counts
    unsigned late_ = 0;
};

} // namespace vboard

#endif
