/*
 * outages.h - finds the times of which a recording keeps nothing although it was wanted: the camera sent
 * nothing, frames were lost, or the disk refused them. Such a gap lies inside a file or between two files.
 *
 * Whether nothing came is decided by the monotonic clock, so that setting the recorder's clock is no outage.
 * A gap has times of day. Inside a file they are that file's own times, so that the gap lies inside it.
 *
 * Threads: one.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "record/pool_reader.h"

namespace nvrec
{

constexpr int64_t kClockJump_us = 2'000'000; /* of the time of day against the monotonic clock */
constexpr int64_t kGap_us = 2'000'000;       /* more without a picture is told to the index    */

class Outages
{
public:
    struct Gap {
        int64_t from_us = 0, to_us = 0; /* time of day */
        std::string why;
        int64_t since_us = 0; /* its beginning by the monotonic clock */
    };

    /**
     * A picture has gone into a file.
     * @param place_us  its time of day by the file's own times
     * @param begins    it is the first one there
     * @return the gap before it, if there is one
     */
    std::optional<Gap> note(const PoolFrame &frame, int64_t place_us, bool begins);

    /** Frames were lost since the last picture. */
    void lost();

    /** The disk kept nothing of the last picture's file after that time of day, because of `why`. */
    void fell_back(int64_t until_us, const std::string &why);

    /** Recording is not wanted any more, or another camera follows: the next picture has no gap before it. */
    void forget();

private:
    struct Last {
        int64_t place_us = 0, taken_at_us = 0; /* time of day */
        int64_t arrived_us = 0;                /* monotonic   */
        int64_t clock_ahead_us = 0;
    };
    std::optional<Last> last_;
    std::string why_; /* empty = the camera sent nothing */
};

} // namespace nvrec
