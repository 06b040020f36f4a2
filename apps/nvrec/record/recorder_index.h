/*
 * recorder_index.h - what a recorder tells the index of its directory: files, gaps, events; and what
 * it has from it: the directory held for this process, and room on a full disk.
 *
 * A directory may come late, or go and come back as another one: each time it is held anew, the index
 * is that of the directory that is there.
 *
 * Threads: any.
 */
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "archive/index_writer.h"
#include "record/disk_writer.h"

namespace nvrec
{

constexpr auto kLongestIndexEnd = std::chrono::seconds(5); /* a disk that just wrote, writes */

/** Something that happened at a camera. */
struct RecordedEvent {
    int channel = 0;
    int64_t at_us = 0; /* time of day */
    std::string kind;  /* "alarm", "motion", "outside" */
    std::string text;
};

/** Whoever keeps books of what is recorded. None of these may wait. */
struct RecorderHooks {
    OutputEvents files; /* on the disk writer's thread */
    std::function<void(int channel, const std::string &stream, int64_t from_us, int64_t to_us,
                       const std::string &why)>
        gap; /* on a recording's thread; times of day */
    std::function<void(const RecordedEvent &)> event;

    /** As DiskWriterOptions has them. */
    std::function<std::string()> hold_directory;
    std::function<bool(uint64_t bytes, bool in_vain)> free_space;
};

class RecorderIndex
{
public:
    RecorderIndex(std::string directory, std::map<int, std::string> names, IndexWriter::Teller on_line);

    /** @param recycle  a full disk has the oldest recordings deleted */
    RecorderHooks hooks(bool recycle);

    /** What the camera there is called from now on. */
    void set_name(int channel, const std::string &name);

    void set_retention(const RetentionOptions &retention);
    RetentionState retention_state() const;

    /** Write what is queued; the disk has so long. */
    void stop(std::chrono::milliseconds limit);

private:
    std::string hold();
    std::shared_ptr<IndexWriter> writer() const;
    std::string name_of(int channel) const;

    const std::string directory_;
    const IndexWriter::Teller on_line_;

    mutable std::mutex lock_; /* guards what follows */
    std::map<int, std::string> names_;
    RetentionOptions retention_;
    std::shared_ptr<IndexWriter> writer_; /* null = the directory is not held */
};

} // namespace nvrec
