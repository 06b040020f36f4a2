/*
 * status.h - the whole state of the recorder at one time, for "nvrec status" and the status page.
 *
 * Threads: collect_status() on the main thread; the rest are values.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "camera/camera_status.h"
#include "controls/board_state.h"
#include "host/host.h"
#include "wall/recording_status.h"

namespace nvrec
{

class WallControl;

/** What is kept of the recordings, and what the disk has left. */
struct ArchiveStatus {
    int64_t total_bytes = 0; /* of all recordings                            */
    int64_t oldest_us = 0;   /* when the oldest begins; 0 = there is none    */
    int64_t free_bytes = -1; /* of the disk, for recordings; -1 = not known  */
    uint64_t deleted = 0;    /* files that made room                         */
    int64_t limit_bytes = 0; /* for all recordings together; 0 = none        */
    int64_t limit_age_s = 0; /* 0 = none                                     */
    std::string trouble;     /* what could not be done; empty = nothing      */
};

struct CameraLine {
    int channel = 0;
    std::string name;    /* as the user calls it                    */
    std::string address; /* as it may be shown                      */
    CameraStatus status;
    uint64_t sent = 0;                            /* frames that the library took              */
    std::optional<host::DecoderCounters> decoder; /* none = decoders do not tell */
    std::optional<host::DecoderBacklog> backlog;
    std::vector<RecordingStatus> recordings; /* main, network; none = nothing records */
};

struct RecorderStatus {
    std::string version; /* of nvrec             */
    std::string library; /* of the library       */
    int64_t at_us = 0;   /* time of day          */
    double up_s = 0;     /* since the wall began */
    std::vector<CameraLine> cameras;
    std::optional<DiskStatus> disk; /* none = nothing records */
    std::optional<ArchiveStatus> archive;
    std::optional<double> disk_left_s; /* at the present rate; none = not known, or nothing is written */
    std::vector<BoardRow> board;
};

/** @param limits  of what is kept, when there are some: limit_bytes and limit_age_s of it count */
RecorderStatus collect_status(WallControl &wall, const std::optional<ArchiveStatus> &limits,
                              Clock::time_point started);

/** A camera's name, or "Camera N" counted from 1. */
std::string camera_name_of(WallControl &wall, int channel);

/** The channel of a camera by its name or its channel's number; -1 = there is none. */
int camera_named(WallControl &wall, const std::string &name);

/** As a table in columns. */
std::string status_table(const RecorderStatus &status);

/** As one JSON object with a line end. */
std::string status_json(const RecorderStatus &status);

/** In Prometheus' text format, version 0.0.4. */
std::string status_metrics(const RecorderStatus &status);

} // namespace nvrec
