/* node_calls.cpp - see node_calls.h. */
#include "nodes/node_calls.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <map>
#include <sys/mman.h>
#include <unistd.h>

#include "board_functions.h"
#include "watchdog_driver.h"

namespace vboard_remote
{
namespace
{

struct Mappings {
    std::mutex mutex;
    std::map<void *, size_t> sizes;
    std::atomic<size_t> count{0}; // of them, to leave others' munmap() alone
};

Mappings &mappings()
{
    static auto *all = new Mappings;
    return *all;
}

int fail(int error)
{
    errno = error;
    return -1;
}

// A fault that was set for the call leaves errno as it is; a program wants to see a reason.
template <typename Call> auto with_reason(Call call)
{
    errno = 0;
    const auto result = call();
    if (errno == 0) errno = EIO;
    return result;
}

size_t whole_pages(size_t size)
{
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return (size + page - 1) / page * page;
}

} // namespace

ssize_t read_node(Opening &opening, int descriptor, void *buffer, size_t size)
{
    if (is_other_process()) return fail(ENODEV);
    const int caller_errno = errno;
    std::unique_lock may_not_wait(opening.reading, std::defer_lock);
    const bool is_nonblocking = opening.has_records && (fcntl(descriptor, F_GETFL) & O_NONBLOCK) != 0;
    if (is_nonblocking) {
        may_not_wait.lock();
        if (vboard_node_pending(opening.board) != 1) return fail(EAGAIN);
    }
    const int got = with_reason([&] { return board_read(opening.board, buffer, size); });
    opening.update();
    if (got == 0 && is_nonblocking) return fail(EAGAIN); // another thread was faster
    if (got >= 0) errno = caller_errno;
    return got;
}

ssize_t write_node(Opening &opening, size_t size)
{
    if (is_other_process()) return fail(ENODEV);
    if (opening.path != WATCHDOG_NODE) return fail(EINVAL);
    if (size == 0) return 0;
    const int caller_errno = errno;
    if (with_reason([&] { return board_ioctl(opening.board, WDIOC_KEEPALIVE, nullptr); }) < 0) return -1;
    errno = caller_errno;
    return static_cast<ssize_t>(size);
}

int request_of_node(Opening &opening, unsigned long request, void *argument)
{
    if (is_other_process()) return fail(ENODEV);
    const int caller_errno = errno;
    const auto code = static_cast<uint32_t>(request); // programs that pass it as an int extend its sign
    const int result = with_reason([&] { return board_ioctl(opening.board, code, argument); });
    if (result >= 0) errno = caller_errno;
    return result;
}

void *map_node(Opening &opening, size_t size, int flags, off64_t offset)
{
    const auto failed = [](int error) {
        errno = error;
        return MAP_FAILED;
    };
    if (is_other_process()) return failed(ENODEV);
    const int type = flags & MAP_TYPE;
    const bool is_shared = type == MAP_SHARED || type == MAP_SHARED_VALIDATE;
    if (!is_shared || (flags & (MAP_FIXED | MAP_FIXED_NOREPLACE)) != 0 || offset != 0) return failed(EINVAL);
    const int caller_errno = errno;
    void *address = with_reason([&] { return board_map(opening.board, size); });
    if (address == nullptr) return MAP_FAILED;
    Mappings &all = mappings();
    const std::lock_guard guard(all.mutex);
    all.sizes[address] = size;
    all.count = all.sizes.size();
    errno = caller_errno;
    return address;
}

bool unmap_node(void *address, size_t size, int &result)
{
    Mappings &all = mappings();
    if (all.count.load(std::memory_order_relaxed) == 0 || is_other_process()) return false;
    size_t mapped = 0;
    {
        const std::lock_guard guard(all.mutex);
        const auto found = all.sizes.find(address);
        if (found == all.sizes.end()) return false;
        if (whole_pages(size) != whole_pages(found->second)) {
            result = fail(EINVAL); // the board gives back a mapping only as a whole
            return true;
        }
        mapped = found->second;
        all.sizes.erase(found);
        all.count = all.sizes.size();
    }
    result = with_reason([&] { return board_unmap(address, mapped); });
    return true;
}

} // namespace vboard_remote
