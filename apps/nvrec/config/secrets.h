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
#include "config/table_reader.h"

namespace nvrec::config
{

/** The status page's token, from either file. Nobody is to guess it: a short one is a fault. */
void read_token(TableReader &status, std::string *token);

/** Put them into a configuration whose cameras are read. Faults never repeat one. */
void read_secrets(const std::string &path, Config *config, Faults *faults);

} // namespace nvrec::config
