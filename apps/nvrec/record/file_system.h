/*
 * file_system.h - the system calls that the disk writer makes, one function each. Tests replace it by one
 * that refuses or hangs.
 *
 * Results: 0, or the errno of the failure.
 *
 * Threads: the disk writer's.
 */
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace nvrec
{

class FileSystem
{
public:
    virtual ~FileSystem() = default;

    /** Make a directory and all above it, and sync them; 0 if it is there already. */
    virtual int make_directories(const std::string &path);

    /** Hold a directory for this process. EWOULDBLOCK = another one has it. */
    virtual int lock_directory(const std::string &path, int *descriptor);

    /** Create a file of mode 0640, which must not be there yet. */
    virtual int create(const std::string &path, int *descriptor);

    /** Write all of the bytes at an offset. */
    virtual int write(int descriptor, std::span<const uint8_t> bytes, int64_t at);
    virtual int sync(int descriptor);

    /** Sync the names in a directory, so that a new file is still found after a power cut. */
    virtual int sync_directory(const std::string &path);
    virtual int truncate(int descriptor, int64_t size);

    /** Whether an open file still has a name, so that anybody can find it. */
    virtual bool has_name(int descriptor);
    virtual int close(int descriptor);
    virtual int remove(const std::string &path);
};

} // namespace nvrec
