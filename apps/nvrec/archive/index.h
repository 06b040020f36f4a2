/*
 * index.h - what is recorded in a directory: an SQLite database beside the recordings, nvrec.sqlite.
 *
 *   cameras    number, channel, name
 *   segments   a file each: camera, stream, from, to, bytes, whether it is finished
 *   gaps       camera, stream, from, to, why: times inside or between files of which nothing is kept,
 *              though it was wanted
 *   events     camera, time, kind, text
 *   pins       camera, from, to: what retention never deletes
 *
 * All times are times of day as the recorder's clock said, in microseconds since 1970. A file is
 * known by its name in the directory, so that the directory may be moved.
 *
 * The files are the truth and the index is made from them. An index that is missing, damaged or of another
 * version is made anew (see intake.h), and files that it does not know are taken in. Events and pins exist
 * only in the index; they are saved from a damaged one as far as they can be read.
 *
 * The database writes ahead (WAL), so that readers and the one writer do not wait for each other, and
 * a crash leaves a whole index that may lack its last two seconds; mode 0640.
 *
 * Threads: one at a time an Index; as many Indexes as wanted, in any process.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "archive/database.h"
#include "archive/directory_lock.h"

namespace nvrec
{

constexpr const char *kIndexName = "nvrec.sqlite";

/** A camera in the directory's index: a channel and a name. */
struct CameraRow {
    int64_t id = 0;
    int channel = -1;
    std::string name; /* empty = nobody named it: recordings of earlier versions */

    /** How a user is told of it: the name, or "channel 3". */
    std::string shown() const;
    bool operator==(const CameraRow &) const = default;
};

/** A time span: from_us belongs to it, to_us no longer does. */
struct TimeSpan {
    int64_t from_us = 0, to_us = 0;
    bool operator==(const TimeSpan &) const = default;
};

/** One file. */
struct SegmentRow {
    int channel = -1;
    std::string camera; /* name, may be empty      */
    std::string stream = "main";
    std::string path; /* when written: any path of the file; when read: with the directory in front */
    int64_t from_us = 0;
    int64_t to_us = 0; /* end of what the file holds by now */
    int64_t bytes = 0;
    bool finished = false; /* nothing is added to it any more   */
};

struct GapRow {
    int channel = -1;
    std::string camera;
    std::string stream = "main";
    int64_t from_us = 0, to_us = 0;
    std::string why; /* "no video", "lost", "the disk is full" ... */
};

struct EventRow {
    int channel = -1;
    std::string camera;
    int64_t at_us = 0;
    std::string kind; /* "alarm", "motion", "outside" ... */
    std::string text;
};

struct PinRow {
    int64_t id = 0;
    int channel = -1;
    std::string camera;
    TimeSpan span;
};

/**
 * Whether a gap lies inside a file. Only then is a time that the file covers not recorded. A gap between two
 * files says nothing about a third one, which may cover the same time because the clock was set.
 */
bool is_within(const GapRow &gap, const SegmentRow &segment);

/** What a question is about. */
struct IndexQuery {
    std::vector<int64_t> cameras; /* their numbers; empty = all */
    std::string stream = "main";  /* empty = all                 */
    TimeSpan span = {INT64_MIN, INT64_MAX};
};

/** Who opens an index: the recorder that holds the directory's lock, or anybody else. */
enum class OpenedBy { kReader, kRecorder };

class Index
{
public:
    /**
     * Open the index of a directory. One that is missing, damaged or of another version is made anew; then it
     * is empty, made_anew() is true, and the caller has to take the files in. While a recorder is at work, a
     * reader does not touch its index, whatever is wrong with it.
     * @return empty, or why not.
     */
    std::string open(const std::string &directory, OpenedBy user = OpenedBy::kReader);

    /** An index in memory only, for a directory that cannot be written. Empty at first, without pins. */
    std::string open_in_memory(const std::string &directory);
    bool in_memory() const { return in_memory_; }

    void close() { database_.close(); }
    void swap(Index &other);
    bool made_anew() const { return made_anew_; }
    /** What was done with a damaged index; empty = there was none. */
    const std::string &note() const { return note_; }
    const std::string &directory() const { return directory_; }
    std::string error() const { return database_.error(); }

    /* Its contents. */
    std::vector<CameraRow> cameras();
    std::vector<SegmentRow> segments(const IndexQuery &query, int64_t most = INT64_MAX);
    std::vector<GapRow> gaps(const IndexQuery &query);
    std::vector<EventRow> events(const IndexQuery &query);
    std::vector<PinRow> pins();
    std::optional<SegmentRow> segment(const std::string &path);

    /** All files in the index by name, with their size and whether they are finished. */
    struct KnownFile {
        int64_t bytes = 0;
        bool finished = false;
    };
    std::unordered_map<std::string, KnownFile> known_files();

    /** The last segment that begins before a time, and the first one that begins at it or later. */
    std::optional<SegmentRow> segment_before(const IndexQuery &query, int64_t at_us);
    std::optional<SegmentRow> segment_after(const IndexQuery &query, int64_t at_us);

    /**
     * What is recorded, each file's own gaps taken out: spans that do not touch, in order. Pieces that lie
     * no more than `joined_us` apart count as one.
     */
    std::vector<TimeSpan> recorded(const IndexQuery &query, int64_t joined_us);

    /** Bytes of all segments. */
    int64_t total_bytes();

    /** Bytes of the finished segments that no pin touches. */
    int64_t unpinned_bytes();

    /**
     * The oldest finished segment that no pin touches and that is not in the list; nothing = there is none.
     */
    std::optional<SegmentRow> oldest_unpinned(const std::vector<std::string> &but_paths = {});

    /* Changes. @return false = error() says why. */
    bool put_segment(const SegmentRow &row);
    bool grow_segment(const std::string &path, int64_t to_us, int64_t bytes, bool finished);
    bool remove_segment(const std::string &path);
    /** A gap that begins where another one ends, for the same reason, is added to that one. */
    bool put_gap(const GapRow &row);
    /**
     * Delete gaps and events from before a time, except those that lie in a recording or a pin of their
     * camera.
     */
    bool forget_before(int64_t at_us);
    bool put_event(const EventRow &row);

    /** Pin a time of a camera. @return the pin's number, 0 = failed. */
    int64_t put_pin(int64_t camera, const TimeSpan &span);
    /**
     * Unpin a time of a camera; the parts of its pins outside of that time stay.
     * @return how many pins it touched
     */
    int remove_pins(int64_t camera, const TimeSpan &span);

    /** Number of a camera; a new camera is added. */
    int64_t camera_number(int channel, const std::string &name);

    Database &database() { return database_; }

private:
    enum class Content { kNothing, kWhole, kUnusable, kNotKnown /* error() says why */ };

    Content look();
    bool make_tables();
    bool set_aside(const std::string &path);
    std::string path_of(const std::string &name) const { return directory_ + "/" + name; }
    SegmentRow segment_of(const Statement &row) const;
    std::vector<SegmentRow> segments_where(const std::string &condition, const IndexQuery &query,
                                           const std::string &order, int64_t most);

    Database database_;
    std::string directory_;
    std::string note_;
    bool made_anew_ = false;
    bool in_memory_ = false;
};

/** The name of a file in its directory. */
std::string name_in_directory(const std::string &path);

} // namespace nvrec
