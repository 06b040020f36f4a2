/* openings.cpp - see openings.h. */
#include "nodes/openings.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "agent.h"
#include "board_functions.h"
#include "ir_driver.h"
#include "keyboard_driver.h"
#include "mouse_driver.h"

namespace vboard_remote
{

std::array<std::atomic<bool>, kMostDescriptors> board_descriptors;

namespace
{

struct Table {
    std::mutex mutex;
    std::map<int, OpeningPtr> openings; // by the program's descriptor
    struct stat event_file = {};        // what every eventfd looks like, to know one again
    pid_t process = getpid();           // whose table it is; a child of vfork only borrows it
};

Table &table()
{
    static auto *openings = new Table;
    return *openings;
}

bool is_read(const std::string &path)
{
    return path == KEYBOARD_NODE || path == IR_NODE || path == MOUSE_NODE;
}

void take_record(int, void *user)
{
    static_cast<Opening *>(user)->update();
}

// The table's mutex is held.
void set_known(int descriptor, bool known)
{
    board_descriptors[static_cast<size_t>(descriptor)].store(known, std::memory_order_relaxed);
}

// The table's mutex is held. The opening is let go by the caller, without the mutex.
OpeningPtr take_out(Table &openings, int descriptor)
{
    const auto found = openings.openings.find(descriptor);
    if (found == openings.openings.end()) return nullptr;
    OpeningPtr opening = std::move(found->second);
    openings.openings.erase(found);
    set_known(descriptor, false);
    if (!is_other_process()) opening->remove(descriptor); // in a child, its lock may never become free
    return opening;
}

bool is_still_an_eventfd(const Table &openings, int descriptor)
{
    struct stat now = {};
    return fstat(descriptor, &now) == 0 && now.st_ino == openings.event_file.st_ino &&
           now.st_dev == openings.event_file.st_dev && now.st_mode == openings.event_file.st_mode;
}

} // namespace

Opening::Opening(std::string node_path, int board_descriptor)
    : path(std::move(node_path)), board(board_descriptor), has_records(is_read(path))
{
    if (has_records) vboard_node_follow(board, take_record, this);
}

Opening::~Opening()
{
    if (!is_other_process()) board_close(board); // which ends the following, too
}

void Opening::update()
{
    if (!has_records) return;
    const std::lock_guard guard(mutex_);
    if (descriptors_.empty()) return;
    const bool pending = vboard_node_pending(board) == 1;
    if (pending == is_raised_) return;
    is_raised_ = pending;
    uint64_t count = 1;
    const long call = pending ? SYS_write : SYS_read; // neither waits: it goes from 0 to 1 and back
    syscall(call, *descriptors_.begin(), &count, sizeof count);
}

void Opening::add(int descriptor)
{
    const std::lock_guard guard(mutex_);
    descriptors_.insert(descriptor);
}

void Opening::remove(int descriptor)
{
    const std::lock_guard guard(mutex_);
    descriptors_.erase(descriptor);
}

bool is_board_path(const char *path)
{
    return path != nullptr && strncmp(path, "/dev/", 5) == 0 && has_agent() && board_is_linked() &&
           vboard_node_exists(path) == 1;
}

bool is_other_process()
{
    return getpid() != agent_process();
}

int open_board_node(const char *path, int flags)
{
    if (is_other_process()) { // and never the PC's own node
        errno = ENODEV;
        return -1;
    }
    const int caller_errno = errno;
    errno = 0;
    const int board = board_open(path, flags);
    if (board < 0) {
        if (errno == 0) errno = EIO; // a fault that was set for it
        return -1;
    }
    const int kind =
        ((flags & O_NONBLOCK) != 0 ? EFD_NONBLOCK : 0) | ((flags & O_CLOEXEC) != 0 ? EFD_CLOEXEC : 0);
    auto opening = std::make_shared<Opening>(path, board); // closes it when this fails
    const int descriptor = eventfd(0, kind);
    if (descriptor < 0) return -1;
    if (descriptor >= kMostDescriptors) {
        syscall(SYS_close, descriptor);
        errno = EMFILE;
        return -1;
    }
    Table &openings = table();
    OpeningPtr before; // closed behind the back of this library
    {
        const std::lock_guard guard(openings.mutex);
        before = take_out(openings, descriptor);
        fstat(descriptor, &openings.event_file);
        opening->add(descriptor);
        openings.openings.emplace(descriptor, opening);
        set_known(descriptor, true);
    }
    opening->update();
    errno = caller_errno;
    return descriptor;
}

OpeningPtr find_opening(int descriptor)
{
    Table &openings = table();
    OpeningPtr stale;
    const std::lock_guard guard(openings.mutex);
    const auto found = openings.openings.find(descriptor);
    if (found == openings.openings.end()) return nullptr;
    if (is_still_an_eventfd(openings, descriptor)) return found->second;
    if (getpid() == openings.process) stale = take_out(openings, descriptor);
    return nullptr;
}

void forget_descriptor(int descriptor)
{
    Table &openings = table();
    if (getpid() != openings.process) return;
    OpeningPtr closing;
    const std::lock_guard guard(openings.mutex);
    closing = take_out(openings, descriptor);
}

void forget_descriptors(unsigned first, unsigned last)
{
    for (unsigned descriptor = first; descriptor <= last && descriptor < kMostDescriptors; ++descriptor)
        if (is_board_descriptor(static_cast<int>(descriptor)))
            forget_descriptor(static_cast<int>(descriptor));
}

void note_duplicate(int descriptor, int duplicate)
{
    Table &openings = table();
    if (getpid() != openings.process || descriptor == duplicate) return;
    OpeningPtr replaced;
    const std::lock_guard guard(openings.mutex);
    replaced = take_out(openings, duplicate);
    const auto found = openings.openings.find(descriptor);
    if (found == openings.openings.end() || duplicate >= kMostDescriptors) return;
    if (!is_other_process()) found->second->add(duplicate);
    openings.openings.emplace(duplicate, found->second);
    set_known(duplicate, true);
}

void lock_openings()
{
    table().mutex.lock();
}

void unlock_openings()
{
    table().mutex.unlock();
}

void unlock_openings_of_child()
{
    table().process = getpid();
    table().mutex.unlock();
}

std::vector<ProgramNode> program_nodes()
{
    Table &openings = table();
    const std::lock_guard guard(openings.mutex);
    std::vector<ProgramNode> nodes;
    for (const auto &[descriptor, opening] : openings.openings)
        nodes.push_back({opening->path, descriptor});
    return nodes;
}

} // namespace vboard_remote
