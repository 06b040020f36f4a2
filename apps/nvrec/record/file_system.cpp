/* file_system.cpp - see file_system.h. */
#include "record/file_system.h"

#include <cerrno>
#include <filesystem>
#include <vector>

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

/* Errors of a file system that lacks the call, or of a path that is no ordinary file, such as a device. */
bool is_unknown_call(int error)
{
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP; /* ENOTSUP is the same */
}

} // namespace

int FileSystem::make_directories(const std::string &path)
{
    std::error_code error;
    std::vector<std::filesystem::path> missing;
    std::filesystem::path part = std::filesystem::absolute(path, error).lexically_normal();
    for (; part.has_relative_path() && !std::filesystem::exists(part, error); part = part.parent_path())
        missing.push_back(part);
    std::filesystem::create_directories(path, error);
    int result = error.value();
    for (; result == 0 && !missing.empty(); missing.pop_back()) /* from above */
        result = sync_directory(missing.back().parent_path());
    return result;
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
    return is_unknown_call(result) ? 0 : result;
}

int FileSystem::sync_directory(const std::string &path)
{
    const int directory = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0) return errno == EACCES ? 0 : errno; /* it can be written and not be read */
    const int result = result_of(fsync(directory));
    ::close(directory);
    return is_unknown_call(result) || result == EBADF || result == EPERM ? 0 : result; /* of directories */
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
    const int result = result_of(::close(descriptor));
    return result == EINTR ? 0 : result; /* it is closed */
}

int FileSystem::remove(const std::string &path)
{
    return result_of(unlink(path.c_str()));
}

} // namespace nvrec
