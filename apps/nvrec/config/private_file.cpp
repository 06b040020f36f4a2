/* private_file.cpp - see private_file.h. */
#include "config/private_file.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nvrec::config
{
namespace
{

constexpr size_t kMost_bytes = 1 << 20;
constexpr mode_t kOthers = S_IRWXG | S_IRWXO;

FileText fail(const std::string &reason)
{
    FileText none;
    none.error = reason;
    return none;
}

std::string error_text()
{
    return "it cannot be read: " + std::system_category().message(errno);
}

} // namespace

FileText read_file(const std::string &path)
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); /* a pipe would wait */
    if (descriptor < 0) return fail(error_text());
    struct stat found;
    FileText file;
    if (fstat(descriptor, &found) != 0) {
        file = fail(error_text());
    } else if (!S_ISREG(found.st_mode)) {
        file = fail("it is no regular file");
    } else {
        file.mode = found.st_mode & 07777;
        file.is_private = (found.st_mode & kOthers) == 0 && (found.st_uid == geteuid() || found.st_uid == 0);
        char bytes[4096];
        ssize_t count = 0;
        while (file.text.size() <= kMost_bytes && (count = read(descriptor, bytes, sizeof bytes)) > 0)
            file.text.append(bytes, static_cast<size_t>(count));
        if (count < 0) file = fail(error_text());
        if (file.text.size() > kMost_bytes) file = fail("it is larger than 1 MB");
    }
    close(descriptor);
    return file;
}

} // namespace nvrec::config
