/*
 * disk_writer.h - the one thread that touches the recordings' disk, and the queue in front of it.
 *
 *   recordings --append--> [ chunks, bounded in bytes ] --> write -> sync within a second -> close
 *
 * The queue rides out a disk that stands still for ten seconds while eight cameras of 4 Mbit/s are
 * recorded. When it is full, recordings leave their frames in the frame pools, which overwrite their oldest
 * frames and count them. A recording still adds the chunk at hand, so the queue may exceed its bound by one
 * chunk for each recording.
 *
 * If a chunk cannot be written whole, the file is cut back to its length before, so that a file can always be
 * played. A file that cannot be synced is cut back to its last synced length and given up. When the disk is
 * full, room is asked for (free_space) before a file is given up. A file that has no name any more, because
 * it or its directory was deleted, is given up, and its contents do not count as written.
 *
 * A call that has not come back for two seconds means that the disk hangs. Nothing can wake a thread that
 * waits for a disk, so finish() leaves the thread running until the process ends. Everything that the thread
 * uses lives as long as the thread.
 *
 * Threads: one of its own; append() and the like on any.
 */
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/clock.h"
#include "record/container_file.h"
#include "record/file_system.h"
#include "record/output_file.h"
#include "wall/recording_status.h"

namespace nvrec
{

constexpr uint64_t kMostQueued_bytes = 48u << 20; /* 10 s of 8 cameras of 4 Mbit/s are 40 MB   */
constexpr auto kDiskHangsAfter = std::chrono::seconds(2);
constexpr auto kLongestDiskEnd = std::chrono::seconds(30); /* of finish(), over a disk that is slow */

/**
 * Calls that report files, for the index. Called on the disk writer's thread; they must not wait for
 * anything.
 */
struct OutputEvents {
    std::function<void(const std::string &path, const OutputFile &)> begun;
    std::function<void(const std::string &path, int64_t until_us, uint64_t bytes)> grown; /* time of day */
    std::function<void(const std::string &path, int64_t until_us, uint64_t bytes)> ended;
    std::function<void(const std::string &path)> removed; /* there is nothing in it */
};

struct DiskWriterOptions {
    std::string directory;
    std::shared_ptr<FileSystem> files = std::make_shared<FileSystem>();

    /** Holds the directory, instead of the disk writer. @return why not */
    std::function<std::string()> hold_directory;

    /**
     * Make room for so many bytes, for instance by recycling; false = not so much room can be made. The
     * first request is for more than the piece at hand needs; if that fails, the second is for its size.
     * @param in_vain  room was made before, and the disk still refuses as full. Its count of free bytes is
     * not to be trusted then: something has to be deleted
     */
    std::function<bool(uint64_t bytes, bool in_vain)> free_space;
    OutputEvents events;
    std::function<void()> on_news; /* take_lines() or the status have something new */
    uint64_t most_queued_bytes = kMostQueued_bytes;
};

class DiskWriter
{
public:
    explicit DiskWriter(DiskWriterOptions options);
    ~DiskWriter();
    DiskWriter(const DiskWriter &) = delete;
    DiskWriter &operator=(const DiskWriter &) = delete;

    /** Append to a file; its first chunk creates it. `until_us` is the time of day at the chunk's end. */
    void append(const std::shared_ptr<OutputFile> &file, FileChunk chunk, int64_t until_us);

    /** Nothing will be appended any more. */
    void end(const std::shared_ptr<OutputFile> &file);

    /**
     * Wait while the queue is full. @return false when `given_up` returns true; wake_waiting() makes it ask
     * again.
     */
    bool wait_for_room(const std::function<bool()> &given_up);
    void wake_waiting();

    /** Wait until all that was queued has been dealt with; for tests and producers that may wait. */
    void wait_until_idle();

    /** What is not on the disk yet when the disk does not answer. */
    struct Leftover {
        uint64_t pictures = 0, bytes = 0;
        std::vector<std::string> paths; /* as far as they have one */
    };

    /**
     * Write what is queued and end the thread. It waits one second for a disk that does not answer, and up to
     * half a minute for a slow one.
     * @return true = all was dealt with
     */
    bool finish(Leftover *leftover);

    DiskStatus status() const;

    /** Age of the oldest bytes of a file that wait. */
    double lag_s(const OutputFile &file) const;

    /** Why the directory could not be made or held; empty = it could. Known after the first chunk. */
    std::string directory_trouble() const;

    /** How often the disk took recordings again after it had refused them. */
    uint64_t recoveries() const;

    /** Lines for the user that came up since. */
    std::vector<std::string> take_lines();

    /** When the call to the disk that is under way has to return at the latest; max() = none is under way. */
    Clock::time_point heartbeat_deadline() const;

private:
    struct State;
    std::shared_ptr<State> state_;
    std::thread thread_;
};

} // namespace nvrec
