/*
 * waiting_sound.h - keeps sound that was read and not taken yet, with times on the pictures' clock.
 *
 * When a camera's clock is set, the recorder notices it with the next picture only. Sound that comes before
 * that picture has times that may be hours off. It is left out, since it would wait for hours and hold up the
 * sound behind it.
 *
 * Threads: the one that reads the input.
 */
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace nvrec
{

/**
 * Due times of the last two pictures of a network camera, in microseconds. Sound that is far from both has a
 * wrong time.
 */
struct SoundPlace {
    static constexpr int64_t kFarthest_us = 5'000'000; /* jitter, and cameras whose sound has another clock */

    int64_t before_us = 0, last_us = 0;

    bool is_near(int64_t us) const { return us >= before_us - kFarthest_us && us <= last_us + kFarthest_us; }
};

/** @tparam Sound  has a pts_us */
template <typename Sound> class WaitingSound
{
public:
    /**
     * @param offset_us  to be added to the sound's times
     * @param place      of a network camera; null for a file, whose times hold
     */
    void add(std::vector<Sound> sounds, int64_t offset_us, const SoundPlace *place)
    {
        for (Sound &sound : sounds) {
            sound.pts_us += offset_us;
            if (sound.pts_us < 0 || (place && !place->is_near(sound.pts_us))) continue;
            while (place && !waiting_.empty() && waiting_.back().pts_us > sound.pts_us)
                waiting_.pop_back(); /* its time is too late */
            waiting_.push_back(std::move(sound));
        }
    }

    /** Up to a time; INT64_MAX = all there is. */
    std::vector<Sound> take(int64_t until_us)
    {
        const auto end = std::ranges::find_if(
            waiting_, [until_us](const Sound &sound) { return sound.pts_us > until_us; });
        std::vector<Sound> taken(std::make_move_iterator(waiting_.begin()), std::make_move_iterator(end));
        waiting_.erase(waiting_.begin(), end);
        return taken;
    }

    /** When the first is due. */
    std::optional<int64_t> first_us() const
    {
        return waiting_.empty() ? std::nullopt : std::optional(waiting_.front().pts_us);
    }

    void clear() { waiting_.clear(); }

private:
    std::vector<Sound> waiting_;
};

} // namespace nvrec
