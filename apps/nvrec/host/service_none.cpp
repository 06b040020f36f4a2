/* service_none.cpp - service.h where there is no service manager that would listen. */
#include "host/service.h"

namespace nvrec::host
{

void tell_service_manager(const std::string &) {}

std::chrono::microseconds service_watchdog()
{
    return {};
}

} // namespace nvrec::host
