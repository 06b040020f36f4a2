/*
 * interposed_open.cpp - the ways to open a file: a path of the board's nodes leads to the board, every other
 * one to the C library. A path counts as it is spelt; fopen() is not among them.
 */
#include <cstdarg>
#include <fcntl.h>

#include "nodes/next.h"
#include "nodes/openings.h"

// The checking variants of the C library's headers, which declare them only where they are used.
extern "C" {
int __open_2(const char *path, int flags);
int __open64_2(const char *path, int flags);
int __openat_2(int folder, const char *path, int flags);
int __openat64_2(int folder, const char *path, int flags);
}

namespace vboard_remote
{
namespace
{

DEFINE_NEXT(open)
DEFINE_NEXT(open64)
DEFINE_NEXT(openat)
DEFINE_NEXT(openat64)
DEFINE_NEXT(creat)
DEFINE_NEXT(creat64)
DEFINE_NEXT(__open_2)
DEFINE_NEXT(__open64_2)
DEFINE_NEXT(__openat_2)
DEFINE_NEXT(__openat64_2)

} // namespace
} // namespace vboard_remote

#define EXPORTED __attribute__((visibility("default")))

// `mode`, which is there only when a file may be made.
#define TAKE_MODE                                                                                            \
    mode_t mode = 0;                                                                                         \
    if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {                                        \
        va_list arguments;                                                                                   \
        va_start(arguments, flags);                                                                          \
        mode = static_cast<mode_t>(va_arg(arguments, unsigned));                                             \
        va_end(arguments);                                                                                   \
    }

using vboard_remote::is_board_path;
using vboard_remote::open_board_node;

extern "C" {

EXPORTED int open(const char *path, int flags, ...)
{
    TAKE_MODE
    return is_board_path(path) ? open_board_node(path, flags) : NEXT(open)(path, flags, mode);
}

EXPORTED int open64(const char *path, int flags, ...)
{
    TAKE_MODE
    return is_board_path(path) ? open_board_node(path, flags) : NEXT(open64)(path, flags, mode);
}

EXPORTED int openat(int folder, const char *path, int flags, ...)
{
    TAKE_MODE
    return is_board_path(path) ? open_board_node(path, flags) : NEXT(openat)(folder, path, flags, mode);
}

EXPORTED int openat64(int folder, const char *path, int flags, ...)
{
    TAKE_MODE
    return is_board_path(path) ? open_board_node(path, flags) : NEXT(openat64)(folder, path, flags, mode);
}

EXPORTED int creat(const char *path, mode_t mode)
{
    return is_board_path(path) ? open_board_node(path, O_CREAT | O_WRONLY | O_TRUNC)
                               : NEXT(creat)(path, mode);
}

EXPORTED int creat64(const char *path, mode_t mode)
{
    return is_board_path(path) ? open_board_node(path, O_CREAT | O_WRONLY | O_TRUNC)
                               : NEXT(creat64)(path, mode);
}

EXPORTED int __open_2(const char *path, int flags)
{
    return is_board_path(path) ? open_board_node(path, flags) : NEXT(__open_2)(path, flags);
}

EXPORTED int __open64_2(const char *path, int flags)
{
    return is_board_path(path) ? open_board_node(path, flags) : NEXT(__open64_2)(path, flags);
}

EXPORTED int __openat_2(int folder, const char *path, int flags)
{
    return is_board_path(path) ? open_board_node(path, flags) : NEXT(__openat_2)(folder, path, flags);
}

EXPORTED int __openat64_2(int folder, const char *path, int flags)
{
    return is_board_path(path) ? open_board_node(path, flags) : NEXT(__openat64_2)(folder, path, flags);
}

} // extern "C"
