/*
 * index_writer.h - keeps the index of a directory that is being recorded into: a thread with a bounded queue,
 * so that recordings never wait for the index, whatever its disk does.
 *
 *   recordings --> queue (bounded) --> thread: open the index, cut torn files back and take unknown
 *                                      ones in, then write what is queued, together, once a second,
 *                                      and see to retention
 *
 * When a write fails, because the disk is full or broken or because another process writes, all of it is kept
 * and repeated once a second.
 *
 * One recorder at a time records into a directory: it holds a lock on nvrec.lock, which the system releases
 * when the process ends. When the queue is full, new entries are dropped and counted; the next start takes
 * them from the files. An index that cannot be opened is kept in memory and tried again every minute (see
 * index_in_memory.h).
 *
 * Threads: all calls from any thread. on_line() is called from the writer's thread.
 */
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "archive/index.h"
#include "archive/retention.h"

namespace nvrec
{

class IndexWriter
{
public:
    /** Receives messages for the user. @param trouble  something is wrong */
    using Teller = std::function<void(bool trouble, const std::string &line)>;

    explicit IndexWriter(Teller on_line = {});
    /** Calls stop() with a short limit, so that a disk that hangs is not waited for. */
    ~IndexWriter();
    IndexWriter(const IndexWriter &) = delete;
    IndexWriter &operator=(const IndexWriter &) = delete;

    /**
     * Start the thread and return at once; on_line() tells what happens on the thread. Call it before
     * anything is recorded into the directory: all files that are there now are taken for finished.
     */
    void start(const std::string &directory, const RetentionOptions &retention = {});

    /**
     * Wait until the directory is locked and its index is open.
     * @return empty, or why nothing may be recorded there: another recorder does so, or the disk did not
     * answer within the limit
     */
    std::string wait_open(std::chrono::milliseconds limit);

    /* Entries for what is recorded. None of these calls waits. */
    void segment_begun(const SegmentRow &row);
    void segment_grown(const std::string &path, int64_t to_us, int64_t bytes);
    void segment_ended(const std::string &path, int64_t to_us, int64_t bytes);
    /** A file that was begun was removed again, since nothing is in it. */
    void segment_removed(const std::string &path);
    void gap(const GapRow &row);
    void event(const EventRow &row);

    /** Change the retention from now on. */
    void set_retention(const RetentionOptions &retention);

    /**
     * The disk is full: delete the oldest recordings that are not pinned until so many bytes are free. It
     * waits up to the limit, so only the thread that writes the recordings calls it.
     * @param one_goes  delete at least one: under a quota or a reserve the disk refuses bytes that it calls
     * free
     * @return true = there is room now
     */
    bool free_space(int64_t bytes, std::chrono::milliseconds limit, bool one_goes = false);

    /** What retention has deleted, and what it saw last. */
    RetentionState retention_state() const;

    /** Entries that were lost: the queue had no room, or the index did not take them before the end. */
    uint64_t dropped() const;

    /**
     * Write what is queued and end the thread. @return false = the disk did not finish within the limit: the
     * thread stays until the process ends, and the index lacks what was queued.
     */
    bool stop(std::chrono::milliseconds limit);

private:
    struct State;
    static void run(const std::shared_ptr<State> &state);

    std::shared_ptr<State> state_;
};

} // namespace nvrec
