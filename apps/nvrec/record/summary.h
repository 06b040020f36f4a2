/* summary.h - counts of what the recorder stored, read back and wrote: closing table and JSON. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "record/pool_reader.h"

namespace nvrec
{

/** One stream of one channel. frames.read = written + skipped. */
struct RecordingReport {
    int channel = 0;
    std::string stream; /* "main", "network", "sound" */
    PoolCounters frames;
    uint64_t written = 0;           /* frames that are in a file                                 */
    uint64_t skipped = 0;           /* read, and before a key frame, without a file, or not wanted */
    uint64_t bytes = 0;             /* of all files; sound lies in the main stream's              */
    std::vector<std::string> files; /* paths, oldest first                                         */
    std::string trouble;            /* the last one, if any                                        */
};

/** The closing table, one text a line. */
std::vector<std::string> table_of(const std::vector<RecordingReport> &recordings);

/** `"recordings": [...]`, a member of the object that --json writes. */
std::string json_of(const std::vector<RecordingReport> &recordings);

} // namespace nvrec
