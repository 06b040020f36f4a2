/*
 * board_io_virtual.cpp - board_io.h over device nodes in software and the board clock. Descriptors
 * are the board's own numbers, far from the PC's, and nothing of the PC is ever opened or run.
 */
#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>

#include "board_io.h"
#include "devices/device_node.h"
#include "media/call.h"
#include "media/clock.h"
#include "media/modules.h"
#include "vboard_nodes.h"

namespace vboard
{
namespace
{

constexpr int kFirstDescriptor = 1000;
constexpr int kCommandNotFound = 127; // as the shell says it

struct Mapping {
    std::shared_ptr<OpenNode> node; // a mapping outlives its descriptor
    size_t size;
};

struct IoState {
    std::mutex mutex;
    std::map<int, std::shared_ptr<OpenNode>> open; // by descriptor
    std::map<void *, Mapping> mapped;              // by address
    Waitable sleep;                                // nothing but time ends a sleep
};

IoState &state()
{
    static IoState *io = new IoState;
    return *io;
}

CallSite open_site{"board_open"};
CallSite close_site{"board_close"};
CallSite read_site{"board_read"};
CallSite ioctl_site{"board_ioctl"};
CallSite map_site{"board_map"};
CallSite unmap_site{"board_unmap"};
CallSite command_site{"board_run_command"};
CallSite sleep_site{"board_sleep_us"};

int refuse_with(int error, const char *what, int descriptor)
{
    refuse_plainly("%s %d", what, descriptor);
    errno = error;
    return -1;
}

std::shared_ptr<OpenNode> find_open(int descriptor)
{
    IoState &io = state();
    const std::lock_guard guard(io.mutex);
    const auto found = io.open.find(descriptor);
    return found != io.open.end() ? found->second : nullptr;
}

int open_node(const char *path, int flags)
{
    DeviceNode *node = path != nullptr ? find_node(path) : nullptr;
    if (node == nullptr) {
        refuse_plainly("this board has no device node \"%s\"", path != nullptr ? path : "(null)");
        errno = ENOENT;
        return -1;
    }
    std::shared_ptr<OpenNode> opening = node->open(flags);
    if (opening == nullptr) return -1;
    IoState &io = state();
    const std::lock_guard guard(io.mutex);
    int descriptor = kFirstDescriptor;
    while (io.open.contains(descriptor))
        ++descriptor;
    io.open.emplace(descriptor, std::move(opening));
    return descriptor;
}

int close_node(int descriptor)
{
    std::shared_ptr<OpenNode> closing; // let go outside the lock
    IoState &io = state();
    {
        const std::lock_guard guard(io.mutex);
        const auto found = io.open.find(descriptor);
        if (found != io.open.end()) {
            closing = std::move(found->second);
            io.open.erase(found);
        }
    }
    if (closing == nullptr) return refuse_with(EBADF, "no open descriptor", descriptor);
    closing->follow({});
    return 0;
}

void *map_node(int descriptor, size_t size)
{
    const std::shared_ptr<OpenNode> node = find_open(descriptor);
    if (node == nullptr) {
        refuse_with(EBADF, "no open descriptor", descriptor);
        return nullptr;
    }
    void *address = node->map(size);
    if (address == nullptr) return nullptr;
    IoState &io = state();
    const std::lock_guard guard(io.mutex);
    io.mapped[address] = {node, size};
    return address;
}

int unmap_node(void *address, size_t size)
{
    std::shared_ptr<OpenNode> node;
    IoState &io = state();
    {
        const std::lock_guard guard(io.mutex);
        const auto found = io.mapped.find(address);
        if (found != io.mapped.end() && found->second.size == size) { // never beyond what was given
            node = std::move(found->second.node);
            io.mapped.erase(found);
        }
    }
    if (node == nullptr) {
        refuse_plainly("no %zu bytes are mapped there", size);
        errno = EINVAL;
        return -1;
    }
    return node->unmap(address, size);
}

// Loading a driver is the one thing that the library asks the shell for; this board's drivers are
// there from the start.
int run_command(const char *command)
{
    if (command == nullptr) return refuse_plainly("no command");
    if (strncmp(command, "insmod ", 7) == 0) {
        warn("\"%s\" is not run: the driver is part of the board", command);
        return 0;
    }
    refuse_plainly("\"%s\" is not run: this board has no shell", command);
    return kCommandNotFound;
}

int sleep_us(uint32_t microseconds)
{
    IoState &io = state();
    const int64_t until_us = clock_now_us() + microseconds;
    std::unique_lock lock(io.sleep.mutex);
    wait_until(io.sleep, lock, until_us, [] { return false; });
    return 0;
}

} // namespace

void nodes_reset()
{
    IoState &io = state();
    {
        const std::lock_guard guard(io.mutex);
        io.mapped.clear();
        io.open.clear();
    }
    reset_all_nodes();
}

} // namespace vboard

using namespace vboard;

extern "C" {

int board_open(const char *path, int flags)
{
    return platform_call(
        open_site, [&] { return open_node(path, flags); }, path, flags);
}

int board_close(int descriptor)
{
    return platform_call(
        close_site, [&] { return close_node(descriptor); }, descriptor);
}

int board_read(int descriptor, void *buffer, size_t size)
{
    return platform_call(
        read_site,
        [&] {
            const std::shared_ptr<OpenNode> node = find_open(descriptor);
            return node != nullptr ? node->read(buffer, size)
                                   : refuse_with(EBADF, "no open descriptor", descriptor);
        },
        descriptor, buffer, uint64_t{size});
}

int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    return platform_call(
        ioctl_site,
        [&] {
            const std::shared_ptr<OpenNode> node = find_open(descriptor);
            return node != nullptr ? node->ioctl(request, argument)
                                   : refuse_with(EBADF, "no open descriptor", descriptor);
        },
        descriptor, uint64_t{request}, static_cast<const void *>(argument));
}

void *board_map(int descriptor, size_t size)
{
    return platform_call(
        map_site, [&] { return map_node(descriptor, size); }, descriptor, uint64_t{size});
}

int board_unmap(void *address, size_t size)
{
    return platform_call(
        unmap_site, [&] { return unmap_node(address, size); }, static_cast<const void *>(address),
        uint64_t{size});
}

int board_run_command(const char *command)
{
    return platform_call(
        command_site, [&] { return run_command(command); }, command);
}

void board_sleep_us(uint32_t microseconds)
{
    platform_call(
        sleep_site, [&] { return sleep_us(microseconds); }, microseconds);
}

int64_t board_time_us(void)
{
    return clock_wall_us();
}

int vboard_node_exists(const char *path)
{
    return path != nullptr && find_node(path) != nullptr ? 1 : 0;
}

int vboard_node_pending(int descriptor)
{
    const std::shared_ptr<OpenNode> node = find_open(descriptor);
    if (node == nullptr) return refuse_with(EBADF, "no open descriptor", descriptor);
    return node->is_pending() ? 1 : 0;
}

int vboard_node_follow(int descriptor, vboard_node_follower follower, void *user)
{
    const std::shared_ptr<OpenNode> node = find_open(descriptor);
    if (node == nullptr) return refuse_with(EBADF, "no open descriptor", descriptor);
    std::function<void()> tell;
    if (follower != nullptr) tell = [=] { follower(descriptor, user); };
    if (!node->follow(std::move(tell)))
        return refuse_plainly("descriptor %d is followed already", descriptor);
    return 0;
}

} // extern "C"
