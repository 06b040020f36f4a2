/*
 * board_io.h - the operating system as the library uses it.
 *
 * Device nodes, the shell, sleeping and the wall clock go through these functions and never
 * through the system's own, so that a board in software or a test can stand underneath. Ordinary
 * files, threads and mutexes are plain C library and POSIX. Every function is safe from any thread.
 */
#ifndef BOARD_IO_H
#define BOARD_IO_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Open a device node. flags: as <fcntl.h> (O_RDONLY, O_RDWR, O_SYNC, O_CREAT). A descriptor, or -1. */
int board_open(const char *path, int flags);

/** Close a descriptor. 0, or -1. */
int board_close(int descriptor);

/** Read up to `size` bytes. Bytes read, 0 at the end, or -1. May wait, as the node does. */
int board_read(int descriptor, void *buffer, size_t size);

/**
 * Issue a driver request. `argument` is a pointer to the request's record or, where the driver
 * wants a plain value, that value cast to a pointer. The driver's result; negative = failure.
 */
int board_ioctl(int descriptor, unsigned long request, void *argument);

/** Map `size` bytes of a node from offset 0, shared, readable and writable. Null on failure. */
void *board_map(int descriptor, size_t size);

/** Undo board_map. 0, or -1. */
int board_unmap(void *address, size_t size);

/** Run a shell command and wait for it. Its exit status, or -1. */
int board_run_command(const char *command);

/** Sleep. A board with a clock of its own sleeps on that clock. */
void board_sleep_us(uint32_t microseconds);

/** The wall clock: microseconds since 1970-01-01 00:00 UTC. */
int64_t board_time_us(void);

#ifdef __cplusplus
}
#endif

#endif
