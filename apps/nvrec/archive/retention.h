/*
 * retention.h - deletes old recordings to make room: by total size, by age, and by what is free on the disk.
 * The oldest recording is deleted first, whichever camera it belongs to; pinned recordings and files that are
 * being written are never deleted. While the index is in memory only, nothing is deleted unless the pins can
 * be read.
 *
 * Gaps and events are deleted with the recordings of their time.
 *
 * A file that cannot be deleted is skipped until apply() is called again, and the first of them is named in
 * the state. After a few skipped files the call gives up, so that a directory in which no file can be deleted
 * does not take long.
 *
 * Threads: the one that has the index.
 */
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "archive/index.h"

namespace nvrec
{

struct RetentionOptions {
    int64_t most_bytes = 0; /* of all recordings in the directory; 0 = no limit        */
    int64_t most_age_s = 0; /* of a recording's end; 0 = no limit                      */
    int64_t least_free = 0; /* bytes of the disk that are kept free; 0 = until it is full */
};

/** What retention did since the start, and what it saw last. */
struct RetentionState {
    int64_t total_bytes = 0; /* of all recordings                                 */
    int64_t oldest_us = 0;   /* when the oldest of them begins; 0 = there is none */
    int64_t free_bytes = -1; /* of the disk; -1 = not known                       */
    uint64_t deleted = 0;    /* files                                             */
    int64_t deleted_bytes = 0;
    std::string trouble; /* what it could not do last; empty = all is as wanted      */
};

class Recycler
{
public:
    /** @param deleted  called for every file that was deleted; may be empty */
    Recycler(Index &index, std::function<void(const SegmentRow &)> deleted = {})
        : index_(index), told_(std::move(deleted))
    {
    }

    void set(const RetentionOptions &options) { options_ = options; }

    /**
     * Delete what is too much or too old now: at most so many files in one call, the rest in the next one.
     */
    void apply(int64_t now_us, int most_files = 64);

    /** Whether so many bytes would be free if all was deleted that may be. */
    bool may_make_room(int64_t bytes);

    /**
     * Delete the oldest until so many bytes are free on the disk.
     * @param one_goes  delete at least one file, whatever is free
     * @return whether so many bytes are free now
     */
    bool make_room(int64_t bytes, bool one_goes = false);

    const RetentionState &state() const { return state_; }

private:
    bool knows_pins();
    bool remove_oldest(const char *why);
    std::optional<SegmentRow> delete_oldest_file(const char *why);
    void look();

    Index &index_;
    const std::function<void(const SegmentRow &)> told_;
    RetentionOptions options_;
    RetentionState state_;
    std::vector<std::string> passed_over_; /* files that could not be deleted    */
    std::string not_deleted_;              /* the first of them, and why it could not */
};

/** Bytes that a process may still write into the directory; -1 = not known. */
int64_t free_bytes_of(const std::string &directory);

} // namespace nvrec
