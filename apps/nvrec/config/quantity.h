/*
 * quantity.h - reads lengths of time, sizes and hours as a configuration writes them.
 *
 *   time    90 (seconds), "90 s", "15 min", "1 h", "30 days"
 *   size    "500 GB", "1.5 TB", "256 MiB"
 *   hours   "08:00-18:00", "Mon-Fri 08:00-18:00", "Sat,Sun 00:00-24:00", "22:00-06:00"
 *
 * Threads: any.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "config/config.h"

namespace nvrec::config
{

/** Seconds, of 0 or more. */
std::optional<double> seconds_of(const std::string &text);

/** Bytes, of 0 or more; a number without a unit is none. */
std::optional<int64_t> bytes_of(const std::string &text);

std::optional<Hours> hours_of(const std::string &text);

} // namespace nvrec::config
