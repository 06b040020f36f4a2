/*
 * intake.h - brings the index of a directory in line with the files in it: takes in files that it
 * does not know or knows with another size, drops entries whose file has gone, and cuts torn files
 * back to their last whole fragment.
 *
 *   ch03-main-20261121-140000.mp4        what nvrec calls its recordings: channel, stream, local time
 *   ch03-main-20261121-140000+0100.mp4   of the first picture, the offset from UTC where it is there;
 *   ch03-main-20261121-140000-2.mkv      a number where the name was taken
 *
 * Files with other names are left alone. The file itself tells its length, its camera and when it begins.
 * Files of earlier versions do not tell when they begin: their names do, to the second.
 *
 * Threads: the one that has the index.
 */
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archive/index.h"

namespace nvrec
{

struct IntakeOptions {
    bool repair = false; /* nothing is being written there: cut torn ends off, all files are finished */
};

/** What was done. */
struct IntakeResult {
    size_t added = 0;               /* that the index did not know    */
    size_t updated = 0;             /* that had changed               */
    size_t removed = 0;             /* entries whose file has gone    */
    size_t cut = 0;                 /* files with a torn end, cut back */
    std::vector<std::string> lines; /* what a user should know: torn and unreadable files */
};

/** What the name of a recording tells. */
struct RecordingName {
    int channel = -1;
    std::string stream;
    int64_t from_us = 0;
};
std::optional<RecordingName> recording_name(std::string_view file);

/** A recording in a directory. */
struct ListedFile {
    std::string name;
    int64_t bytes = 0;
    RecordingName says;
};
std::vector<ListedFile> list_recordings(const std::string &directory);

/**
 * @param files  from list_recordings() for the index's directory; when torn ends are to be cut off, listed
 * before anything was recorded into it
 */
IntakeResult take_in(Index &index, const std::vector<ListedFile> &files, const IntakeOptions &options);

} // namespace nvrec
