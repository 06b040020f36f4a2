/* file_system.cpp - see file_system.h. */
#include "record/file_system.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nvrec
{
namespace
{

constexpr mode_t kFileMode = 0640;

int result_of(int returned)
{
    return returned < 0 ? errno : 0;
}

} // namespace

int FileSystem::make_directories(const std::string &path)
{
    std::error_code error;
    std::filesystem::create_directories(path, error);
    return error.value();
}

int FileSystem::lock_directory(const std::string &path, int *descriptor)
{
    *descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (*descriptor < 0) return errno;
    if (flock(*descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return 0; /* some cannot lock */
    ::close(*descriptor);
    *descriptor = -1;
    return EWOULDBLOCK;
}

int FileSystem::create(const std::string &path, int *descriptor)
{
    *descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode);
    return result_of(*descriptor);
}

int FileSystem::write(int descriptor, std::span<const uint8_t> bytes, int64_t at)
{
    while (!bytes.empty()) {
        const ssize_t written = pwrite(descriptor, bytes.data(), bytes.size(), at);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : EIO;
        bytes = bytes.subspan(static_cast<size_t>(written));
        at += written;
    }
    return 0;
}

int FileSystem::sync(int descriptor)
{
    const int result = result_of(fdatasync(descriptor));
    return result == EINVAL ? 0 : result; /* what cannot be synced is none of a disk's files */
}

int FileSystem::truncate(int descriptor, int64_t size)
{
    return result_of(ftruncate(descriptor, size));
}

bool FileSystem::has_name(int descriptor)
{
    struct stat facts = {};
    return fstat(descriptor, &facts) != 0 || facts.st_nlink > 0;
}

int FileSystem::close(int descriptor)
{
    return result_of(::close(descriptor));
}

int FileSystem::remove(const std::string &path)
{
    return result_of(unlink(path.c_str()));
}

} // namespace nvrec
