/*
 * board.c - device nodes, shell, sleep and wall clock. The contracts are those of board_io.h.
 *
 * A function that is taken out here is the system's own: see platform/linux/board_linux.h, which also has
 * what a function may pass on what it does not want to do itself.
 */
#include "board_io.h"

#include "unsupported.h"

/**
 * Open a device node. A node may be open several times at once.
 *
 * @param path   one of the nodes, NUL-terminated. "/dev/fb1" to "/dev/fb3" are tried once, and need not be
 *               there
 * @param flags  as <fcntl.h>: O_RDWR, O_RDONLY for the front panel, O_RDWR | O_SYNC | O_CREAT for "/dev/mem"
 * @return a descriptor of 1 or more: the library takes 0 for one that is not open; or -1
 * Order: none.
 * Thread: any.
 * Memory: `path` is the caller's.
 * Time: 100 ms at most.
 * Errors: ENOENT: there is no such node; EACCES, ENOMEM and what else the system says.
 * Failure: as the node's header says.
 */
int board_open(const char *path, int flags)
{
    (void)path;
    (void)flags;
    board_unsupported(__func__);
    return -1;
}

/**
 * Close a descriptor. A mapping that was made through it stays.
 *
 * @param descriptor  of board_open
 * @return 0, or -1
 * Order: after board_open, once.
 * Thread: any. A read that waits on it in another thread may end or go on.
 * Time: 100 ms at most.
 * Errors: EBADF: not open.
 * Failure: ignored; ext_keyboard_close passes it on.
 */
int board_close(int descriptor)
{
    (void)descriptor;
    board_unsupported(__func__);
    return -1;
}

/**
 * Read events of a node: one whole record, or nothing.
 *
 * @param descriptor  of board_open
 * @param buffer      filled
 * @param size        bytes, the size of the node's record
 * @return bytes read; 0 when there is no event; or -1
 * Order: after board_open. Each opening is given every event that came since it was opened.
 * Thread: any; a point at which a cancelled thread may end.
 * Memory: `buffer` is the caller's. What is not read stays as it was.
 * Time: as the node does: it may wait for an event as long as it likes. Where there is none it should
 *   wait 50 ms or more, or for ever, as the remote-key reader of the library reads in a loop without a
 *   pause; the front panel's node returns at once.
 * Errors: EBADF: not open; EINVAL: a buffer that is too small for a record, or a node that is not read.
 * Failure: taken for "no event".
 */
int board_read(int descriptor, void *buffer, size_t size)
{
    (void)descriptor;
    (void)buffer;
    (void)size;
    board_unsupported(__func__);
    return -1;
}

/**
 * Issue a driver request.
 *
 * @param descriptor  of board_open
 * @param request     a code of the drivers' headers, 32 bits, not sign-extended
 * @param argument    pointer to the request's record or, where the driver wants a plain value, that
 *                    value cast to a pointer
 * @return the driver's result, 0 or more; or -1
 * Order: after board_open; more as the request's comment says.
 * Thread: any.
 * Memory: the record is the caller's.
 * Time: at once, unless the request's comment says otherwise.
 * Errors: EBADF: not open; ENOTTY: a request that the node does not know; EINVAL: a record or a value that
 *   it refuses.
 * Failure: as the request's comment says.
 */
int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    (void)descriptor;
    (void)request;
    (void)argument;
    board_unsupported(__func__);
    return -1;
}

/**
 * Map a node's memory, from its beginning, shared, readable and writable. The library maps the
 * framebuffer, clears all of it, and draws there.
 *
 * @param descriptor  of board_open
 * @param size        bytes; the library gives what FBIOGET_FSCREENINFO said
 * @return the address, below 4 GiB where the application wants to know it (ext_get_fb_info tells it in a
 *         32-bit word); null on failure
 * Order: after board_open. The same memory may be mapped several times: every switch of the output maps
 *   it anew, and the old mapping stays for whoever still draws there.
 * Thread: any.
 * Memory: stays mapped until board_unmap or the end of the process, whatever happens to the descriptor.
 * Time: 100 ms at most.
 * Errors: EBADF: not open; EINVAL: a size that the node does not have; ENODEV: a node without memory; ENOMEM.
 * Failure: printed; start-up ends with -1, or the switch of the output fails.
 */
void *board_map(int descriptor, size_t size)
{
    (void)descriptor;
    (void)size;
    board_unsupported(__func__);
    return NULL;
}

/**
 * Undo board_map.
 *
 * @param address  of board_map
 * @param size     bytes, as given to board_map
 * @return 0, or -1
 * Order: once for a mapping; the library unmaps only when the set-up of the framebuffer fails later on.
 * Thread: any.
 * Memory: nobody may touch the memory any more.
 * Time: 100 ms at most.
 * Errors: EINVAL: nothing of this size is mapped there.
 * Failure: ignored.
 */
int board_unmap(void *address, size_t size)
{
    (void)address;
    (void)size;
    board_unsupported(__func__);
    return -1;
}

/**
 * Run a shell command and wait for it. The library gives one, GPIO_LOAD_COMMAND: a board whose drivers
 * are there from the start may return 0 without running anything.
 *
 * @param command  NUL-terminated
 * @return the command's exit status, or -1 when it could not be run or was ended by a signal
 * Order: before GPIO_NODE is opened.
 * Thread: any; the library's start-up.
 * Memory: `command` is the caller's.
 * Time: as long as the command takes.
 * Errors: 127 when there is no such command; the command's own.
 * Failure: ignored: a driver that is loaded already fails as well. That the node is missing is then seen.
 */
int board_run_command(const char *command)
{
    (void)command;
    board_unsupported(__func__);
    return -1;
}

/**
 * Sleep. A board with a clock of its own sleeps on that clock. A signal does not end it.
 *
 * @param microseconds  100 to 3000000 in the library; not less than these
 * Order: none.
 * Thread: any; a point at which a cancelled thread ends: the record lamp's thread is stopped so.
 * Time: the microseconds, and what the scheduler adds: 10 ms at most, as a layout's and a drain's pauses
 *   add up.
 * Errors: none.
 * Failure: none.
 */
void board_sleep_us(uint32_t microseconds)
{
    (void)microseconds;
    board_unsupported(__func__);
}

/**
 * The wall clock.
 *
 * @return microseconds since 1970-01-01 00:00 UTC; steps when somebody sets the clock
 * Order: none.
 * Thread: any.
 * Time: at once, some microseconds: it is read for every stored frame.
 * Errors: none.
 * Failure: none.
 */
int64_t board_time_us(void)
{
    board_unsupported(__func__);
    return 0;
}
