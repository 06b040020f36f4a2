/*
 * ao_playout.h - the card inside an audio output: a bounded queue of samples that leaves at the
 * device's rate, behind volume and mute.
 *
 *     queue() -> waiting samples -> settle(now) -> gain -> 16 bit -> history, and the caller
 *
 * The clock plays. When a block meets an empty queue, its first sample is played then and there, and
 * sample n follows n / rate later. What has been played is worked out by settle, which must run
 * before anything that depends on it: queueing, a change of the gain, a look at the counters.
 *
 * No lock and no clock of its own: the device that owns it brings both. Times are board clock.
 */
#ifndef VBOARD_AO_PLAYOUT_H
#define VBOARD_AO_PLAYOUT_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "media/ao_history.h"

namespace vboard
{

class Playout
{
public:
    Playout(uint32_t rate_hz, size_t capacity);

    uint32_t rate_hz() const { return rate_hz_; }
    size_t capacity() const { return capacity_; }
    size_t queued() const { return waiting_.size(); }
    uint64_t clipped() const { return clipped_; }
    uint64_t ran_dry() const { return ran_dry_; }
    const SoundHistory &history() const { return history_; }

    /* Factor on every sample played from now on; 0 = silence. */
    void set_gain(float gain) { gain_ = gain; }

    bool has_room(size_t count) const { return waiting_.size() + count <= capacity_; }

    /* When `count` more samples fit, if nobody else queues any; and when all is, or was, played. */
    int64_t room_at_us(size_t count) const;
    int64_t empty_at_us() const;

    /* Append samples, +-1.0 at full scale. The caller has seen to the room. */
    void queue(const std::vector<float> &samples, int64_t now_us);

    /* Play what is due; the samples played, valid until the next call. */
    const std::vector<int16_t> &settle(int64_t now_us);

private:
    int64_t time_of(uint64_t samples_since_start) const;

    const uint32_t rate_hz_;
    const size_t capacity_;
    std::deque<float> waiting_;
    int64_t start_us_ = 0;            // when the sound that is playing began
    uint64_t played_since_start_ = 0; // samples of it
    float gain_ = 1;
    uint64_t clipped_ = 0;
    uint64_t ran_dry_ = 0;
    std::vector<int16_t> just_played_;
    SoundHistory history_;
};

} // namespace vboard

#endif
