/*
 * secrets.h - the passwords of a configuration, in a file of their own, which only its user can read:
 *
 *   [camera.yard]
 *   user = "admin"
 *   password = "..."
 *
 *   [status]
 *   token = "..."
 *
 * Threads: any.
 */
#pragma once

#include <string>

#include "config/config.h"
#include "config/faults.h"

namespace nvrec::config
{

/** Put them into a configuration whose cameras are read. Faults never repeat one. */
void read_secrets(const std::string &path, Config *config, Faults *faults);

} // namespace nvrec::config
