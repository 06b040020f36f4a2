/*
 * board_linux.h - board I/O over the system's own calls, under names of its own.
 *
 * Each function does what the one of board_io.h does whose name it has without "linux_". The board_*
 * functions in defaults/ call them, one in each source, so that every one of those that a porter's
 * platform defines itself takes the default's place, and only that one. What such a function does not
 * want to do itself it passes on to here:
 *
 *     int board_ioctl(int descriptor, unsigned long request, void *argument)
 *     {
 *         if (descriptor == lines) return my_lines(request, argument);
 *         return board_linux_ioctl(descriptor, request, argument);
 *     }
 */
#ifndef BOARD_LINUX_H
#define BOARD_LINUX_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

int board_linux_open(const char *path, int flags);
int board_linux_close(int descriptor);
int board_linux_read(int descriptor, void *buffer, size_t size);
int board_linux_ioctl(int descriptor, unsigned long request, void *argument);
void *board_linux_map(int descriptor, size_t size);
int board_linux_unmap(void *address, size_t size);
int board_linux_run_command(const char *command);
void board_linux_sleep_us(uint32_t microseconds);
int64_t board_linux_time_us(void);

#ifdef __cplusplus
}
#endif

#endif
