/*
 * file_system.h - what the disk writer asks of the system, one function a call. Tests put another one
 * in its place, which refuses or hangs.
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

    /** A directory and those above it, which are on the disk then; there already = 0. */
    virtual int make_directories(const std::string &path);

    /** Hold a directory for this process. EWOULDBLOCK = another one has it. */
    virtual int lock_directory(const std::string &path, int *descriptor);

    /** Create a file, mode 0640, that is not there yet. */
    virtual int create(const std::string &path, int *descriptor);

    /** All of the bytes, at a place. */
    virtual int write(int descriptor, std::span<const uint8_t> bytes, int64_t at);
    virtual int sync(int descriptor);

    /** The names in a directory, so that a new file is found behind a power cut. */
    virtual int sync_directory(const std::string &path);
    virtual int truncate(int descriptor, int64_t size);

    /** Whether an open file still has a name, so that anybody can find it. */
    virtual bool has_name(int descriptor);
    virtual int close(int descriptor);
    virtual int remove(const std::string &path);
};

} // namespace nvrec
