/* gpio_lines.h - the board's output lines by number. */
#pragma once

#include <cstdint>

#include "nvrhal.h"

namespace nvrhal
{

enum OutputLine : uint32_t {
    kWifiPowerLine = BOARD_LINE_WIFI_POWER,
    kWifiResetLine = BOARD_LINE_WIFI_RESET,
    kBuzzerLine = BOARD_LINE_BUZZER,
    kRecordLine = BOARD_LINE_RECORD,
    kDiskLedLine = BOARD_LINE_DISK_LED,
};

} // namespace nvrhal
