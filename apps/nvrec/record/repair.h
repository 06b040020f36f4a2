/*
 * repair.h - recordings whose end was torn off: by a power cut, a full disk, a recorder that died.
 *
 * MP4: boxes follow one another. A file is whole when it ends with the index of its fragments (mfra);
 * otherwise it is cut back behind its last whole fragment (moof and the mdat behind it).
 * MKV: a segment of unknown size holds clusters; it is cut back behind the last whole one.
 *
 * Threads: any; nobody may write the file meanwhile.
 */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nvrec
{

struct RepairResult {
    int64_t cut_bytes = 0; /* 0 = its end is whole                       */
    bool removed = false;  /* there was nothing in it that can be played */
    std::string problem;   /* it could not be read, cut or removed       */
};

/** Look at a file's end, and mend it where it was torn. Other files than recordings are left alone. */
RepairResult repair_end(const std::string &path);

/** The last two files of every stream in a directory, those that may have been torn. */
std::vector<std::string> newest_recordings(const std::string &directory);

} // namespace nvrec
