/*
 * retention.h - which recordings go, so that others have room: by total size, by age, and by what is
 * left on the disk. The oldest go first, whichever camera's they are; pinned ones and the files that
 * are being written never. While the index is in memory alone, nothing goes unless the pins can be read.
 *
 * Gaps and events go with the recordings of their time.
 *
 * A file that cannot be deleted is passed over until apply() is called again, and said; so that a
 * directory that lets none go takes little time, no more than a few are.
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
    int64_t total_bytes = 0; /* of all recordings                                        */
    int64_t oldest_us = 0;   /* when the oldest of them begins; 0 = there is none        */
    int64_t free_bytes = -1; /* of the disk; -1 = not known                              */
    uint64_t deleted = 0;    /* files                                                    */
    int64_t deleted_bytes = 0;
    std::string trouble; /* what it could not do last; empty = all is as wanted      */
};

class Recycler
{
public:
    /** @param deleted  told of every file that went; may be empty */
    Recycler(Index &index, std::function<void(const SegmentRow &)> deleted = {})
        : index_(index), told_(std::move(deleted))
    {
    }

    void set(const RetentionOptions &options) { options_ = options; }

    /** Delete what is too much or too old now. At most so many files a call, the rest in the next one. */
    void apply(int64_t now_us, int most_files = 64);

    /**
     * Delete the oldest until so many bytes are free on the disk.
     * @param one_goes  one of them, whatever is free
     * @return whether they are
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
