/*
 * archive_reader.h - opens a directory of recordings to look for something in it, while a recorder may be at
 * work there.
 *
 * When a recorder is at work and keeps the index file up to date, the index is used as it is. Otherwise the
 * files that the index does not know are taken in first. When the directory cannot be written, an index in
 * memory is used instead of the file.
 *
 * Threads: one at a time.
 */
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archive/index.h"

namespace nvrec
{

struct Archive {
    Index index;
    bool recorded_into = false;     /* a recorder is at work there now */
    bool in_memory = false;         /* the directory cannot be written */
    std::vector<std::string> notes; /* what a user should know         */
};

/** @return empty, or why it cannot be read. */
std::string open_archive(const std::string &directory, Archive *archive);

/**
 * The cameras that a user means by a name or a channel number. A name is looked for first; an empty text
 * means all cameras. @param problem  why there are none, with the nearest known name
 */
std::vector<CameraRow> cameras_named(Index &index, const std::string &text, std::string *problem);

/** The known name that looks most like a text; empty = none looks like it. */
std::string nearest_name(std::string_view text, const std::vector<std::string> &known);

/** Their numbers, for a query. */
std::vector<int64_t> numbers_of(const std::vector<CameraRow> &cameras);

/** Where a time of a camera lies. */
struct Place {
    std::optional<SegmentRow> segment; /* that holds it; nothing = it is not recorded    */
    int64_t offset_us = 0;             /* from that file's first picture on              */
    std::optional<GapRow> gap;         /* what is known of a time that is not recorded   */
    std::optional<SegmentRow> before;  /* not recorded: the nearest file on either side, and for a gap
                                          inside a file its part on that side              */
    std::optional<SegmentRow> after;
};
Place find_place(Index &index, const IndexQuery &query, int64_t at_us);

} // namespace nvrec
