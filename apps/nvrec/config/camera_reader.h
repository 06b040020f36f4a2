/*
 * camera_reader.h - reads one [[camera]] of a configuration.
 *
 * Threads: one.
 */
#pragma once

#include <string>

#include "config/config.h"
#include "config/table_reader.h"

namespace nvrec::config
{

/**
 * Read and check it by itself; how it fits to other cameras is checked elsewhere. @return whether it holds a
 * password.
 */
bool read_camera(TableReader &table, Camera *camera);

/** Whether it is an address like "rtsp://..." and not the path of a file. */
bool has_scheme(const std::string &address);

} // namespace nvrec::config
