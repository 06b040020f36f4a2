/* time_units.h - the board clock counts microseconds. */
#ifndef VBOARD_TIME_UNITS_H
#define VBOARD_TIME_UNITS_H

#include <cstdint>

namespace vboard
{

inline constexpr int64_t kSecond_us = 1000000;

} // namespace vboard

#endif
