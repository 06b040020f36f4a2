/*
 * on_board.c - a program that is linked with the board: shows nothing, and does what its arguments say, one
 * after the other.
 *
 *   print TEXT    watchdog S    start it with that time, and never feed it
 *   fork          a child that uses the board's node, and lives on for a second
 *   wait          for a signal, and print its number
 *   exit N        kill N
 */
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <linux/watchdog.h>

#include "board_io.h"
#include "mi_sys.h"

static void start_watchdog(int seconds)
{
    const int file = board_open("/dev/watchdog", O_RDWR);
    if (file < 0) abort();
    if (board_ioctl(file, WDIOC_SETTIMEOUT, &seconds) != 0) abort();
    if (board_ioctl(file, WDIOC_SETOPTIONS, (void *)WDIOS_ENABLECARD) != 0) abort();
}

int main(int argc, char **argv)
{
    setvbuf(stdout, NULL, _IOLBF, 0);
    if (MI_SYS_Init() != 0) return 99;
    for (int i = 1; i < argc; ++i) {
        const char *what = argv[i];
        const char *next = i + 1 < argc ? argv[i + 1] : "";
        if (strcmp(what, "print") == 0)
            puts(next), ++i;
        else if (strcmp(what, "watchdog") == 0)
            start_watchdog(atoi(next)), ++i;
        else if (strcmp(what, "fork") == 0) {
            if (fork() == 0) {
                sleep(1);
                _exit(0);
            }
        } else if (strcmp(what, "wait") == 0) {
            sigset_t all;
            int number = 0;
            sigfillset(&all);
            sigprocmask(SIG_SETMASK, &all, NULL);
            puts("waits");
            sigwait(&all, &number);
            printf("signal %d\n", number);
        } else if (strcmp(what, "exit") == 0)
            return atoi(next);
        else if (strcmp(what, "kill") == 0)
            kill(getpid(), atoi(next)), ++i;
    }
    return 0;
}
