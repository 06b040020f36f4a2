/*
 * segment.h - cuts recordings into files, and names the files.
 *
 * A day of local time is cut into slots of equal length, from midnight on; a recording goes on in a
 * new file at the first key frame in another slot. A name tells the channel, the stream and the
 * local time of the first frame: ch03-main-20261121-140000.mp4.
 */
#pragma once

#include <cstdint>
#include <string>

namespace nvrec
{

constexpr int kHour_s = 3600;

/** The slot that a time lies in, by its number of local time. */
int64_t segment_slot(int64_t wall_clock_us, int segment_s);

/**
 * Times in the same slot go into the same file. At the end of daylight saving an hour of local time comes a
 * second time: the slot has the same number and another offset from UTC.
 */
struct Segment {
    int64_t slot = 0;
    long utc_offset_s = 0;
    bool operator==(const Segment &) const = default;
};
Segment segment_of(int64_t wall_clock_us, int segment_s);

/**
 * "ch03-main-20261121-140000", without directory and ending. A local time that comes a second time has its
 * offset from UTC added: "ch03-main-20261025-020000+0100".
 */
std::string segment_name(int channel, const std::string &stream, int64_t wall_clock_us);

/** A path for that name in the directory that is not taken yet, with "-2", "-3" ... added if needed. */
std::string free_segment_path(const std::string &directory, const std::string &name,
                              const std::string &ending);

} // namespace nvrec
