/*
 * directory_lock.h - tells other processes who records into a directory: locks on bytes of its file
 * nvrec.lock. The system releases them when the process ends, however it ends.
 *
 *   byte 0, bytes 2 and up   a recorder is at work here
 *   byte 1                   that recorder keeps the index file up to date
 *
 * Threads: one a lock; the questions from any.
 */
#pragma once

#include <string>

namespace nvrec
{

/** Held by the recorder that records into the directory. */
constexpr const char *kLockName = "nvrec.lock";

class DirectoryLock
{
public:
    DirectoryLock() = default;
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock &) = delete;
    DirectoryLock &operator=(const DirectoryLock &) = delete;

    /** Take the lock; one recorder at a time can have it. @return empty, or why not. */
    std::string take(const std::string &directory);

    /**
     * Say whether the index file is kept up to date from now on; after take() it is. Only once take()
     * succeeded.
     */
    void set_index_kept_up(bool kept_up);

private:
    int file_ = -1;
};

/** Whether a recorder, in this process or another, records into a directory now. */
bool is_recorded_into(const std::string &directory);

/** Whether a recorder does, and keeps the directory's index file up to date. */
bool is_index_kept_up(const std::string &directory);

} // namespace nvrec
