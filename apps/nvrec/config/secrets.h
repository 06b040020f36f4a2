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

/** Check the status page's token, from either file. A short token is a fault, since it could be guessed. */
void read_token(TableReader &status, std::string *token);

/** Put the passwords into a configuration whose cameras were read before. Faults never repeat one. */
void read_secrets(const std::string &path, Config *config, Faults *faults);

} // namespace nvrec::config
