/*
 * run_options.h - what a configuration says, as options of the rooms that do it.
 *
 * Threads: main.
 */
#pragma once

#include <string>
#include <vector>

#include "config/config.h"
#include "config/read.h"
#include "controls/event_inputs.h"
#include "wall/aspect.h"

namespace nvrec
{

struct CameraSource;
struct ControlOptions;
struct ListenOptions;
struct LogOptions;
struct OverlayOptions;
struct RecorderOptions;
struct RecordingPlan;
struct RetentionOptions;
struct WallOptions;

/** Print every fault to standard error. @return the exit status. */
int print_faults(const config::Reading &reading);

/** A line on a camera, without its password: name, addresses, when it is recorded. */
std::string shown_camera(const config::Config &config, const config::Camera &camera);

CameraSource source_of(const config::Camera &camera);
Aspect aspect_of(const config::Camera &camera);

RecordingPlan plan_of(const config::Plan &plan);
RetentionOptions retention_of(const config::Retention &retention);

/** The board's inputs that are events for cameras, by channel; those without a name are free. */
std::vector<EventInputs::Watched> watched_inputs(const std::vector<config::Camera> &channels);

LogOptions log_options(const config::Config &config);
void fill(const config::Config &config, WallOptions *options);
void fill(const config::Config &config, RecorderOptions *options);
void fill(const config::Config &config, OverlayOptions *options);
void fill(const config::Config &config, ControlOptions *options);
void fill(const config::Config &config, ListenOptions *options);

} // namespace nvrec
