/*
 * output_file.h - one file of a recording on its way to the disk, which the recording and the disk writer
 * share, and the counts that both keep.
 *
 * Threads: the recording's and the disk writer's; the counts may be read on any.
 */
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "record/pool_reader.h"

namespace nvrec
{

/** What is on the disk of one recording, over all of its files. The disk writer counts. */
class OutputTally
{
public:
    std::atomic<uint64_t> pictures = 0, sounds = 0, bytes = 0;

    void begin(const std::string &path)
    {
        const std::scoped_lock guard(lock_);
        files_.push_back(path);
        current_ = path;
    }

    /** @param kept  the file stays, with something in it */
    void end(const std::string &path, bool kept)
    {
        const std::scoped_lock guard(lock_);
        if (!kept) std::erase(files_, path);
        if (current_ == path) current_.clear();
    }

    /** Oldest first. */
    std::vector<std::string> files() const
    {
        const std::scoped_lock guard(lock_);
        return files_;
    }

    /** That is written now; empty = none. */
    std::string current() const
    {
        const std::scoped_lock guard(lock_);
        return current_;
    }

private:
    mutable std::mutex lock_; /* guards what follows */
    std::vector<std::string> files_;
    std::string current_;
};

/** Why a file was given up. */
enum class OutputTrouble { kNone, kFull, kGone, kRefused };

class OutputFile
{
public:
    /* What the file is; not changed after begin(). */
    int channel = 0;
    std::string stream;
    std::string name, ending; /* without directory; "-2" is put between them where it is taken */
    int64_t from_us = 0;      /* time of day of its first picture */
    std::shared_ptr<OutputTally> tally;
    std::shared_ptr<PoolEvent> given_up; /* set when it is; may be null */

    std::atomic<bool> closed = false; /* the disk writer has done with it */

    /** Why the disk writer gave the file up, with its path and the reason; kNone = it is being written. */
    struct Trouble {
        OutputTrouble kind = OutputTrouble::kNone;
        std::string path, reason;
        int64_t until_us = 0; /* time of day up to which it holds something; 0 = nothing */
    };
    Trouble trouble() const
    {
        const std::scoped_lock guard(lock_);
        return trouble_;
    }
    void give_up(Trouble trouble)
    {
        {
            const std::scoped_lock guard(lock_);
            trouble_ = std::move(trouble);
        }
        if (given_up) given_up->set();
    }

private:
    mutable std::mutex lock_; /* guards it */
    Trouble trouble_;
};

} // namespace nvrec
