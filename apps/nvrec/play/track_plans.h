/*
 * track_plans.h - decides which recordings are played as which camera, and when.
 *
 * Names of nvrec's recordings tell channel and stream: files of the same channel and stream make one track,
 * each at its time. If the recordings of all cameras overlap in time, they play in step; otherwise every
 * track begins with its first picture. Any other file is a track of its own.
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

/** What is played, and the time of day of place 0; no base = there are no times of day. */
struct PlayPlan {
    std::vector<TrackPlan> tracks;
    int64_t base_us = 0;
    bool has_base = false;
    /** The recorded places of each track; empty when they are not known. */
    std::vector<std::vector<TimeSpan>> recorded;
};

/** The plan for files that a user names. */
PlayPlan plan_of_files(const std::vector<std::string> &files);

/** The plan for all recordings of some cameras of a directory. */
PlayPlan plan_of_archive(Index &index, const std::vector<CameraRow> &cameras, const std::string &stream);

} // namespace nvrec
