/*
 * run_options.h - what a configuration says, as options of the rooms that do it.
 *
 * Threads: main.
 */
#pragma once

#include <string>

#include "config/config.h"
#include "config/read.h"

namespace nvrec
{

struct CameraSource;
struct ControlOptions;
struct ListenOptions;
struct LogOptions;
struct OverlayOptions;
struct RecorderOptions;
struct WallOptions;

/** Print every fault to standard error. @return the exit status. */
int print_faults(const config::Reading &reading);

/** A line on a camera, without its password: name, addresses, when it is recorded. */
std::string shown_camera(const config::Config &config, const config::Camera &camera);

CameraSource source_of(const config::Camera &camera);

LogOptions log_options(const config::Config &config);
void fill(const config::Config &config, WallOptions *options);
void fill(const config::Config &config, RecorderOptions *options);
void fill(const config::Config &config, OverlayOptions *options);
void fill(const config::Config &config, ControlOptions *options);
void fill(const config::Config &config, ListenOptions *options);

} // namespace nvrec
