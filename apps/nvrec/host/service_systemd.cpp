/* service_systemd.cpp - service.h over libsystemd. */
#include <cstdint>

#include <systemd/sd-daemon.h>

#include "host/service.h"

namespace nvrec::host
{

void tell_service_manager(const std::string &state)
{
    sd_notify(0, state.c_str());
}

std::chrono::microseconds service_watchdog()
{
    uint64_t period_us = 0;
    if (sd_watchdog_enabled(0, &period_us) <= 0) return {};
    return std::chrono::microseconds(period_us);
}

} // namespace nvrec::host
