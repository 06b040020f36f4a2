/* part_of_board_io.c - a request goes to the porter's function, all else to the system's own. */
#include <fcntl.h>
#include <stdio.h>
#include <sys/ioctl.h>
#include <time.h>

#include "board_io.h"

static int failures;

#define EXPECT(condition)                                                                                    \
    do {                                                                                                     \
        if (condition) break;                                                                                \
        printf("%s:%d: %s\n", __FILE__, __LINE__, #condition);                                               \
        ++failures;                                                                                          \
    } while (0)

int main(void)
{
    EXPECT(board_ioctl(7000, 0, NULL) == 42);

    /* Passed on: how many bytes of a file are left to read. */
    const int file = board_open("/proc/self/exe", O_RDONLY);
    int left = 0;
    unsigned char magic[4] = {0};
    EXPECT(file > 0);
    EXPECT(board_ioctl(file, FIONREAD, &left) == 0);
    EXPECT(left > 1000);
    EXPECT(board_read(file, magic, sizeof magic) == 4 && magic[1] == 'E' && magic[2] == 'L');
    EXPECT(board_ioctl(-1, FIONREAD, &left) == -1);
    EXPECT(board_close(file) == 0);
    EXPECT(board_close(file) == -1);

    EXPECT(board_run_command("exit 3") == 3);
    const int64_t before_us = board_time_us();
    board_sleep_us(20000);
    EXPECT(board_time_us() - before_us >= 20000);
    EXPECT(before_us / 1000000 - (int64_t)time(NULL) <= 0);
    return failures != 0;
}
