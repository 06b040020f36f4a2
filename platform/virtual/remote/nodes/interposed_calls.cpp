/*
 * interposed_calls.cpp - calls on descriptors and mappings: those of the board's nodes lead to the board,
 * all others to the C library, after a look at one flag of a table.
 */
#include <cstdarg>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/uio.h>
#include <unistd.h>

#include "nodes/next.h"
#include "nodes/node_calls.h"
#include "nodes/openings.h"

// Of the C library's checking headers, which declare it only where it is used.
extern "C" ssize_t __read_chk(int descriptor, void *buffer, size_t size, size_t room);

namespace vboard_remote
{
namespace
{

DEFINE_NEXT(read)
DEFINE_NEXT(__read_chk)
DEFINE_NEXT(readv)
DEFINE_NEXT(write)
DEFINE_NEXT(writev)
DEFINE_NEXT(ioctl)
DEFINE_NEXT(close)
DEFINE_NEXT(close_range)
DEFINE_NEXT(closefrom)
DEFINE_NEXT(dup)
DEFINE_NEXT(dup2)
DEFINE_NEXT(dup3)
DEFINE_NEXT(fcntl)
DEFINE_NEXT(fcntl64)
DEFINE_NEXT(mmap)
DEFINE_NEXT(mmap64)
DEFINE_NEXT(munmap)

// Null: the C library is to be called.
OpeningPtr opening_of(int descriptor)
{
    return is_board_descriptor(descriptor) ? find_opening(descriptor) : nullptr;
}

// Requests that the kernel answers for every descriptor.
bool is_of_every_descriptor(unsigned long request)
{
    return request == FIONBIO || request == FIOCLEX || request == FIONCLEX;
}

int duplicated(int descriptor, int duplicate)
{
    if (duplicate >= 0 && is_board_descriptor(descriptor)) note_duplicate(descriptor, duplicate);
    return duplicate;
}

// dup2 and dup3: what the new number was before is closed by them.
template <typename Duplicate> int replaced(int descriptor, int wanted, Duplicate duplicate)
{
    const int made = duplicate();
    if (made >= 0 && (is_board_descriptor(descriptor) || is_board_descriptor(wanted)))
        note_duplicate(descriptor, made);
    return made;
}

ssize_t read_vector(Opening &opening, int descriptor, const iovec *parts, int count)
{
    for (int part = 0; part < count; ++part)
        if (parts[part].iov_len != 0)
            return read_node(opening, descriptor, parts[part].iov_base, parts[part].iov_len);
    return 0;
}

size_t bytes_of(const iovec *parts, int count)
{
    size_t bytes = 0;
    for (int part = 0; part < count; ++part)
        bytes += parts[part].iov_len;
    return bytes;
}

} // namespace
} // namespace vboard_remote

#define EXPORTED __attribute__((visibility("default")))

using namespace vboard_remote;

extern "C" {

EXPORTED ssize_t read(int descriptor, void *buffer, size_t size)
{
    if (const OpeningPtr opening = opening_of(descriptor))
        return read_node(*opening, descriptor, buffer, size);
    return NEXT(read)(descriptor, buffer, size);
}

EXPORTED ssize_t __read_chk(int descriptor, void *buffer, size_t size, size_t room)
{
    const OpeningPtr opening = opening_of(descriptor);
    if (opening == nullptr) return NEXT(__read_chk)(descriptor, buffer, size, room);
    if (size > room) abort();
    return read_node(*opening, descriptor, buffer, size);
}

EXPORTED ssize_t readv(int descriptor, const iovec *parts, int count)
{
    if (const OpeningPtr opening = opening_of(descriptor))
        return read_vector(*opening, descriptor, parts, count);
    return NEXT(readv)(descriptor, parts, count);
}

EXPORTED ssize_t write(int descriptor, const void *buffer, size_t size)
{
    if (const OpeningPtr opening = opening_of(descriptor)) return write_node(*opening, size);
    return NEXT(write)(descriptor, buffer, size);
}

EXPORTED ssize_t writev(int descriptor, const iovec *parts, int count)
{
    if (const OpeningPtr opening = opening_of(descriptor))
        return write_node(*opening, bytes_of(parts, count));
    return NEXT(writev)(descriptor, parts, count);
}

EXPORTED int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    const OpeningPtr opening = is_of_every_descriptor(request) ? nullptr : opening_of(descriptor);
    if (opening != nullptr) return request_of_node(*opening, request, argument);
    return NEXT(ioctl)(descriptor, request, argument);
}

EXPORTED int close(int descriptor)
{
    if (is_board_descriptor(descriptor)) forget_descriptor(descriptor);
    return NEXT(close)(descriptor);
}

EXPORTED int close_range(unsigned first, unsigned last, int flags) noexcept
{
    if (flags == 0) forget_descriptors(first, last);
    return NEXT(close_range)(first, last, flags);
}

EXPORTED void closefrom(int first) noexcept
{
    forget_descriptors(first < 0 ? 0 : static_cast<unsigned>(first), ~0u);
    NEXT(closefrom)(first);
}

EXPORTED int dup(int descriptor) noexcept
{
    return duplicated(descriptor, NEXT(dup)(descriptor));
}

EXPORTED int dup2(int descriptor, int wanted) noexcept
{
    return replaced(descriptor, wanted, [&] { return NEXT(dup2)(descriptor, wanted); });
}

EXPORTED int dup3(int descriptor, int wanted, int flags) noexcept
{
    return replaced(descriptor, wanted, [&] { return NEXT(dup3)(descriptor, wanted, flags); });
}

EXPORTED int fcntl(int descriptor, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    const int result = NEXT(fcntl)(descriptor, command, argument);
    return command == F_DUPFD || command == F_DUPFD_CLOEXEC ? duplicated(descriptor, result) : result;
}

EXPORTED int fcntl64(int descriptor, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    const int result = NEXT(fcntl64)(descriptor, command, argument);
    return command == F_DUPFD || command == F_DUPFD_CLOEXEC ? duplicated(descriptor, result) : result;
}

EXPORTED void *mmap(void *address, size_t size, int protection, int flags, int descriptor,
                    off_t offset) noexcept
{
    const OpeningPtr opening = (flags & MAP_ANONYMOUS) == 0 ? opening_of(descriptor) : nullptr;
    if (opening != nullptr) return map_node(*opening, size, flags, offset);
    return NEXT(mmap)(address, size, protection, flags, descriptor, offset);
}

EXPORTED void *mmap64(void *address, size_t size, int protection, int flags, int descriptor,
                      off64_t offset) noexcept
{
    const OpeningPtr opening = (flags & MAP_ANONYMOUS) == 0 ? opening_of(descriptor) : nullptr;
    if (opening != nullptr) return map_node(*opening, size, flags, offset);
    return NEXT(mmap64)(address, size, protection, flags, descriptor, offset);
}

EXPORTED int munmap(void *address, size_t size) noexcept
{
    int result = 0;
    if (unmap_node(address, size, result)) return result;
    return NEXT(munmap)(address, size);
}

} // extern "C"
