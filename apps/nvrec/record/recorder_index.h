/*
 * recorder_index.h - between a recorder and the index of its directory. The recorder tells of files, gaps and
 * events; the index holds the directory for this process, and makes room on a full disk.
 *
 * A directory may appear late, or disappear and come back as another one. Each time it is locked anew, and
 * the index of the directory that is there now is used.
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

constexpr auto kLongestIndexEnd = std::chrono::seconds(5); /* the disk has just taken a write */

/** Something that happened at a camera. */
struct RecordedEvent {
    int channel = 0;
    int64_t at_us = 0; /* time of day */
    std::string kind;  /* "alarm", "motion", "outside" */
    std::string text;
};

/** Receives what is recorded. None of these calls may wait. */
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

    /** Change the name of the camera on a channel from now on. */
    void set_name(int channel, const std::string &name);

    void set_retention(const RetentionOptions &retention);
    RetentionState retention_state() const;

    /** Write what is queued, within this time. */
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
