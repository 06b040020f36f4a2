/* service.cpp - see service.h. */
#include "controls/service.h"

#include "host/service.h"

namespace nvrec
{

bool Service::start(WallControl &wall)
{
    host::tell_service_manager("READY=1\nSTATUS=" + std::to_string(wall.cameras().size()) + " channels");
    return true;
}

void Service::stop()
{
    host::tell_service_manager("STOPPING=1");
}

} // namespace nvrec
