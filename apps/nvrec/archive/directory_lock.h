/*
 * directory_lock.h - who records into a directory: locks on two bytes of its file nvrec.lock, which go
 * with the process, however that ends.
 *
 *   byte 0, and what follows byte 1   a recorder is at work here
 *   byte 1                            and the index file says what it does
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

    /** One recorder a directory. @return empty, or why not. */
    std::string take(const std::string &directory);

    /** Whether the index file is kept up from now on; it is at first. Once take() succeeded. */
    void set_index_kept_up(bool kept_up);

private:
    int file_ = -1;
};

/** Whether a recorder, of whichever process, records into a directory now. */
bool is_recorded_into(const std::string &directory);

/** Whether one does, and its index file says what it records. */
bool is_index_kept_up(const std::string &directory);

} // namespace nvrec
