/* gpio_lines.h - the board's output lines by number. */
#pragma once

#include <cstdint>

namespace nvrhal
{

enum OutputLine : uint32_t {
    kWifiPowerLine = 25,
    kWifiResetLine = 26,
    kBuzzerLine = 28,
    kRecordLine = 34,
    kDiskLedLine = 90,
};

} // namespace nvrhal
