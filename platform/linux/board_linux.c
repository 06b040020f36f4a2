/*
 * board_linux.c - board I/O over the system's own calls, for a real board. See board_linux.h for the names.
 */
#include "board_linux.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

enum { kNodeMode = 0644 }; /* of a node that O_CREAT makes */

int board_linux_open(const char *path, int flags)
{
    return open(path, flags, kNodeMode);
}

int board_linux_close(int descriptor)
{
    return close(descriptor);
}

int board_linux_read(int descriptor, void *buffer, size_t size)
{
    return (int)read(descriptor, buffer, size);
}

int board_linux_ioctl(int descriptor, unsigned long request, void *argument)
{
    return ioctl(descriptor, request, argument);
}

void *board_linux_map(int descriptor, size_t size)
{
    void *address = mmap(NULL, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    return address == MAP_FAILED ? NULL : address;
}

int board_linux_unmap(void *address, size_t size)
{
    return munmap(address, size);
}

int board_linux_run_command(const char *command)
{
    int status = system(command);
    if (status == -1 || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

void board_linux_sleep_us(uint32_t microseconds)
{
    struct timespec rest = {microseconds / 1000000, (long)(microseconds % 1000000) * 1000};
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

int64_t board_linux_time_us(void)
{
    struct timeval now;
    gettimeofday(&now, NULL);
    return (int64_t)now.tv_sec * 1000000 + now.tv_usec;
}
