/*
 * clip.h - a part of a camera's recordings as one file, cut without encoding anything.
 *
 *   files of the index -> demuxer -> packets from the key frame before `from` to the last picture
 *   before `to` -> muxer -> clip.mp4 (or .mkv)
 *
 * A clip runs by the time of day from its first picture on: while nothing was recorded, its last picture
 * stays. Without `exact` it begins at a key frame and ends before one, so that it holds all of the span and a
 * little more; with it, an edit list in the MP4 file tells players to show the span alone, to the
 * millisecond. Sound is copied as it was recorded. Gaps in A-law sound are filled with silence, since a file
 * has no other way to say that such sound pauses.
 *
 * A file ends where the codec, the picture size or the parameter sets change, and the rest goes into
 * clip-2.mp4, clip-3.mp4 and so on. When the recorder's clock was set back, a part of the time was recorded
 * twice: what was recorded the second time goes into a further file, too.
 *
 * Threads: any one.
 */
#pragma once

#include <string>
#include <vector>

#include "archive/index.h"

namespace nvrec
{

struct ClipOptions {
    std::string path; /* of the clip; .mp4, .mov or .mkv */
    TimeSpan span;    /* what it is to hold              */
    bool exact = false;
    bool overwrite = false; /* files that are there, of those beside `path` */
};

/** One file that was written. */
struct ClipFile {
    std::string path;
    TimeSpan span; /* what it shows */
    int64_t pictures = 0;
};

struct ClipResult {
    std::vector<ClipFile> files;
    std::vector<TimeSpan> gaps;          /* of the span, that are not recorded           */
    std::vector<std::string> unreadable; /* recordings that could not be read, and why  */
    bool write_failed = false;           /* that is the reason                          */
    std::string problem;                 /* why there is no clip, or not all of it        */
};

/** What a clip may be called; empty = that is fine. */
std::string clip_path_problem(const std::string &path, bool exact);

/** @param segments  of one camera and stream: those that overlap the span, in order */
ClipResult write_clip(const std::vector<SegmentRow> &segments, const ClipOptions &options);

} // namespace nvrec
