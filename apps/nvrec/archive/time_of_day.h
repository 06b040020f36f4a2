/*
 * time_of_day.h - times as a user writes them, and as nvrec writes them.
 *
 *   2026-11-21T14:05:00+01:00   date and time; seconds, their parts and the offset may be left out,
 *                               a blank may stand for the T, Z for +00:00
 *   2026-11-21                  its midnight
 *   14:05[:30]                  today
 *   today, yesterday            their midnight; with a time behind it, that time
 *   -10m                        before now: s, m, h, d, also together (-1h30m)
 *   +10m                        after the time that it is said with, as --to after --from
 *   now
 *
 * Times without an offset are local. When an hour occurs twice, the first one is meant; an offset picks the
 * other. A time that a day does not have is an error.
 *
 * Threads: any.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nvrec
{

/**
 * The time that a text names.
 * @param now_us   microseconds since 1970
 * @param from_us  what "+10m" counts from; nothing = that is not allowed here
 * @param problem  what is wrong with it, when it names none
 */
std::optional<int64_t> read_time(std::string_view text, int64_t now_us, std::string *problem,
                                 std::optional<int64_t> from_us = std::nullopt);

/** Now, by the recorder's clock, in microseconds since 1970. */
int64_t wall_now_us();

/** How far the recorder's clock is ahead of the monotonic one: what changes when it is set. */
int64_t wall_ahead_us();

/** "2026-11-21 14:05:00 +0100", local; read_time() reads it. */
std::string time_text(int64_t wall_us);

/** "2026-11-21T14:05:00.250000+01:00", for programs. */
std::string iso_time(int64_t wall_us);

/** "1:02:03" or "2:03". */
std::string duration_text(int64_t us);

} // namespace nvrec
