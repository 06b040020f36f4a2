/*
 * camera_reader.h - one [[camera]] of a configuration.
 *
 * Threads: one.
 */
#pragma once

#include <string>

#include "config/config.h"
#include "config/table_reader.h"

namespace nvrec::config
{

/** Read and check it, but for what it has to do with others. @return whether it holds a password. */
bool read_camera(TableReader &table, Camera *camera);

/** "rtsp://..." and the like, as against the path of a file. */
bool has_scheme(const std::string &address);

} // namespace nvrec::config
