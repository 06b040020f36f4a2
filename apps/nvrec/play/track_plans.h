/*
 * track_plans.h - which recordings are played as which camera, and when.
 *
 * Files that nvrec recorded say by their names whose they are: those of one camera and stream are one
 * track, each at its time. Where all cameras' recordings overlap in time they play in step; otherwise
 * every track begins with its first picture. Any other file is a track of its own.
 *
 * Threads: main thread.
 */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "archive/archive_reader.h"
#include "play/playback_track.h"

namespace nvrec
{

/** What is played, and the time of day of its place 0; no base = places are all there is. */
struct PlayPlan {
    std::vector<TrackPlan> tracks;
    int64_t base_us = 0;
    bool has_base = false;
    /** What is recorded of each track: places. Empty where that is not known. */
    std::vector<std::vector<TimeSpan>> recorded;
};

/** Of files that a user names. */
PlayPlan plan_of_files(const std::vector<std::string> &files);

/** Of cameras of a directory, all that is recorded of them. */
PlayPlan plan_of_archive(Index &index, const std::vector<CameraRow> &cameras, const std::string &stream);

} // namespace nvrec
