/*
 * service.h - the service manager of the machine, when it has started this process: it is told that the
 * recorder stands, and that it lives. Two implementations, one of which is linked: over libsystemd, and
 * for machines without it, where nothing is told.
 *
 * Threads: any.
 */
#pragma once

#include <chrono>
#include <string>

namespace nvrec::host
{

/** Tell it something, "READY=1" and the like; nothing where there is none. */
void tell_service_manager(const std::string &state);

/** How often it wants to hear "WATCHDOG=1" at least; zero = it does not. */
std::chrono::microseconds service_watchdog();

} // namespace nvrec::host
