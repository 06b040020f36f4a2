/* directory_lock.cpp - see directory_lock.h. */
#include "archive/directory_lock.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace nvrec
{
namespace
{

constexpr off_t kIndexByte = 1;

struct flock whole_file()
{
    struct flock range = {};
    range.l_type = F_WRLCK;
    return range;
}

struct flock index_byte()
{
    struct flock range = whole_file();
    range.l_start = kIndexByte;
    range.l_len = 1;
    return range;
}

bool is_locked(const std::string &directory, struct flock range)
{
    const int file = ::open((directory + "/" + kLockName).c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    const bool locked = ::fcntl(file, F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
    ::close(file);
    return locked;
}

} // namespace

DirectoryLock::~DirectoryLock()
{
    if (file_ >= 0) ::close(file_);
}

std::string DirectoryLock::take(const std::string &directory)
{
    const std::string path = directory + "/" + kLockName;
    if (file_ < 0) file_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0640);
    if (file_ < 0) return path + ": " + std::strerror(errno);
    struct flock range = whole_file();
    if (::fcntl(file_, F_OFD_SETLK, &range) == 0) return {};
    return directory + ": another recorder records into this directory";
}

void DirectoryLock::set_index_kept_up(bool kept_up)
{
    struct flock range = index_byte();
    if (!kept_up) range.l_type = F_UNLCK;
    ::fcntl(file_, F_OFD_SETLK, &range);
}

bool is_recorded_into(const std::string &directory)
{
    return is_locked(directory, whole_file());
}

bool is_index_kept_up(const std::string &directory)
{
    return is_locked(directory, index_byte());
}

} // namespace nvrec
