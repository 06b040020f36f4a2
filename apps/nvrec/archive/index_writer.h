/*
 * index_writer.h - the index of a directory that is being recorded into: a thread with a bounded
 * queue, so that whoever records never waits for the index, whatever its disk does.
 *
 *   recordings --> queue (bounded) --> thread: open the index, cut torn files back and take unknown
 *                                      ones in, then write what is queued, together, once a second,
 *                                      and see to retention
 *
 * What the index does not take, because its disk is full or fails, or because another process writes,
 * is kept and repeated, all of it, once a second.
 *
 * One recorder at a time records into a directory: a lock on nvrec.lock in it, which goes with the
 * process. When the queue is full, what comes is dropped and counted; the files say it again at the
 * next start. An index that cannot be opened is kept in memory and tried again every minute (see
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
    /** What it has to tell: the line, and whether something is wrong. */
    using Teller = std::function<void(bool trouble, const std::string &line)>;

    explicit IndexWriter(Teller on_line = {});
    /** stop(), without waiting long for a disk that hangs. */
    ~IndexWriter();
    IndexWriter(const IndexWriter &) = delete;
    IndexWriter &operator=(const IndexWriter &) = delete;

    /**
     * Begin. Gives back at once; what follows on the writer's thread is told by on_line(). Call it
     * before anything is recorded into the directory: what lies there now is taken for finished.
     */
    void start(const std::string &directory, const RetentionOptions &retention = {});

    /**
     * Wait until the directory is locked and its index is open.
     * @return empty, or why nothing may be recorded there: another recorder does, or the disk did not
     *         answer within the limit
     */
    std::string wait_open(std::chrono::milliseconds limit);

    /* What is recorded. None of these waits. */
    void segment_begun(const SegmentRow &row);
    void segment_grown(const std::string &path, int64_t to_us, int64_t bytes);
    void segment_ended(const std::string &path, int64_t to_us, int64_t bytes);
    /** A file that was begun and holds nothing was removed again. */
    void segment_removed(const std::string &path);
    void gap(const GapRow &row);
    void event(const EventRow &row);

    /** Other retention from now on. */
    void set_retention(const RetentionOptions &retention);

    /**
     * The disk is full: delete the oldest recordings that are not pinned until so much is free. Waits
     * at most the limit, so call it from a thread that writes, and from no other.
     * @param one_goes  delete one in any case: a quota or a reserve refuses what the disk calls free
     * @return true = there is room now
     */
    bool free_space(int64_t bytes, std::chrono::milliseconds limit, bool one_goes = false);

    /** What retention did and what it sees. */
    RetentionState retention_state() const;

    /** Entries that the queue had no room for, or that the index did not take to the end. */
    uint64_t dropped() const;

    /**
     * Write what is queued and end. @return false = the disk did not let it within the limit: the
     * thread is left to the end of the process, and the index lacks what was queued.
     */
    bool stop(std::chrono::milliseconds limit);

private:
    struct State;
    static void run(const std::shared_ptr<State> &state);

    std::shared_ptr<State> state_;
};

} // namespace nvrec
