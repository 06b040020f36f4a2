/*
 * ao_history.h - what an audio output has played lately: a ring of samples, and the runs in which
 * they were played. A run is a stretch of samples without a pause, its first one at a known time.
 *
 * No lock and no clock of its own: the device that owns it brings both.
 */
#ifndef VBOARD_AO_HISTORY_H
#define VBOARD_AO_HISTORY_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace vboard
{

struct SoundLevel {
    double peak = 0; // of full scale, 0 to 1
    double rms = 0;
};

class SoundHistory
{
public:
    SoundHistory(uint32_t rate_hz, uint32_t kept_ms);

    /* A run begins; what is appended from now on belongs to it. */
    void begin_run(int64_t start_us);
    void append(const int16_t *samples, size_t count);

    /* Samples so far, and the number of the first one that is still kept. */
    uint64_t total() const { return total_; }
    uint64_t first_kept() const { return total_ > ring_.size() ? total_ - ring_.size() : 0; }

    /* Copy from sample `first`, which must be kept. The number copied. */
    size_t read(uint64_t first, int16_t *samples, size_t count) const;

    /* Level of the `window_ms` before `now_us`; pauses are silence. */
    SoundLevel level(int64_t now_us, uint32_t window_ms) const;

private:
    struct Run {
        int64_t start_us;
        uint64_t first; // number of its first sample
        uint64_t count;
    };

    uint32_t rate_hz_;
    std::vector<int16_t> ring_;
    std::deque<Run> runs_;
    uint64_t total_ = 0;
};

} // namespace vboard

#endif
