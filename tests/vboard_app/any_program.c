/*
 * any_program.c - a program that is run on the board: does what its arguments say, one after the other.
 *
 *   print TEXT     on standard output        complain TEXT   on standard error
 *   boot           print what it was booted with
 *   environment    print LD_PRELOAD, VBOARD_REMOTE_FD and ANY_PROGRAM, "-" where there is none
 *   files          print the soft limit of open files, and how many are open
 *   wait           for a signal, and print its number
 *   fork           a child that lives for a while longer; print its process number
 *   become NAME    the program NAME by exec
 *   exit N         kill N
 */
#include <dirent.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <unistd.h>

static const char *value(const char *name)
{
    const char *text = getenv(name);
    return text != NULL ? text : "-";
}

static void print_files(void)
{
    struct rlimit limit;
    int open_files = -3; /* ".", ".." and the folder itself */
    DIR *folder = opendir("/proc/self/fd");
    getrlimit(RLIMIT_NOFILE, &limit);
    while (folder != NULL && readdir(folder) != NULL)
        ++open_files;
    printf("%lu %d\n", (unsigned long)limit.rlim_cur, open_files);
}

static void wait_for_signal(void)
{
    sigset_t all;
    int number = 0;
    sigfillset(&all);
    sigwait(&all, &number);
    printf("signal %d\n", number);
}

int main(int argc, char **argv)
{
    setvbuf(stdout, NULL, _IOLBF, 0);
    for (int i = 1; i < argc; ++i) {
        const char *what = argv[i];
        const char *next = i + 1 < argc ? argv[i + 1] : "";
        if (strcmp(what, "print") == 0)
            puts(next), ++i;
        else if (strcmp(what, "complain") == 0)
            fprintf(stderr, "%s\n", next), ++i;
        else if (strcmp(what, "boot") == 0)
            puts(value("BOOT"));
        else if (strcmp(what, "environment") == 0)
            printf("%s %s %s\n", value("LD_PRELOAD"), value("VBOARD_REMOTE_FD"), value("ANY_PROGRAM"));
        else if (strcmp(what, "files") == 0)
            print_files();
        else if (strcmp(what, "wait") == 0) {
            /* Blocked before anybody can be told that the program waits. */
            sigset_t all;
            sigfillset(&all);
            sigprocmask(SIG_SETMASK, &all, NULL);
            puts("waits");
            wait_for_signal();
        } else if (strcmp(what, "fork") == 0) {
            const pid_t child = fork();
            if (child == 0) {
                sleep(2);
                _exit(0);
            }
            printf("child %d\n", (int)child);
        } else if (strcmp(what, "become") == 0)
            execlp(next, next, argv[i + 2], (char *)NULL);
        else if (strcmp(what, "exit") == 0)
            return atoi(next);
        else if (strcmp(what, "kill") == 0)
            kill(getpid(), atoi(next)), ++i;
    }
    return 0;
}
