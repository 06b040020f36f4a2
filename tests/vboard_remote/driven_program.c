/*
 * driven_program.c - a program on the board that a test leads, as an application in C would be: it opens the
 * board's nodes by itself, with the system's own calls, and knows nothing of whoever looks at it.
 *
 * Commands come on standard input, one a line; each is answered with one line on standard output: a result,
 * or "-1 NAME" with the error's name.
 */
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "board_io.h"
#include "fb_driver.h"
#include "keyboard_driver.h"
#include "mi_ao.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "rtc_driver.h"
#include "vboard.h"
#include "watchdog_driver.h"

static void tell(long result)
{
    if (result < 0)
        printf("%ld %s\n", result, strerrorname_np(errno));
    else
        printf("%ld\n", result);
}

/* What a read gave, in hexadecimal. */
static void tell_bytes(ssize_t size, const unsigned char *bytes)
{
    if (size < 0) {
        tell(size);
        return;
    }
    printf("%zd", size);
    for (ssize_t i = 0; i < size; ++i)
        printf("%s%02x", i == 0 ? " " : "", bytes[i]);
    printf("\n");
}

static int64_t real_us(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000000 + now.tv_nsec / 1000;
}

static void open_node(char *path)
{
    char *flags = strchr(path, ' ');
    int how = O_RDWR;
    if (flags != NULL) {
        *flags = '\0';
        if (strchr(flags + 1, 'n') != NULL) how |= O_NONBLOCK;
        if (strchr(flags + 1, 'e') != NULL) how |= O_CLOEXEC;
        if (strchr(flags + 1, '@') != NULL) {
            tell(openat(AT_FDCWD, path, how));
            return;
        }
    }
    tell(open(path, how));
}

static void wait_for(const char *way, int descriptor, int timeout_ms)
{
    if (strcmp(way, "poll") == 0) {
        struct pollfd one = {descriptor, POLLIN, 0};
        tell(poll(&one, 1, timeout_ms));
    } else if (strcmp(way, "select") == 0) {
        fd_set set;
        struct timeval patience = {timeout_ms / 1000, timeout_ms % 1000 * 1000};
        FD_ZERO(&set);
        FD_SET(descriptor, &set);
        tell(select(descriptor + 1, &set, NULL, NULL, &patience));
    } else {
        const int group = epoll_create1(EPOLL_CLOEXEC);
        struct epoll_event event = {EPOLLIN, {.fd = descriptor}};
        epoll_ctl(group, EPOLL_CTL_ADD, descriptor, &event);
        tell(epoll_wait(group, &event, 1, timeout_ms));
        close(group);
    }
}

static void request(const char *what, int descriptor, int value)
{
    if (strcmp(what, "lamp") == 0) {
        uint32_t lit = (uint32_t)value;
        tell(ioctl(descriptor, KEYBOARD_RECORD_LAMP, &lit));
    } else if (strcmp(what, "enable") == 0) {
        tell(ioctl(descriptor, WDIOC_SETOPTIONS, (void *)(uintptr_t)WDIOS_ENABLECARD));
    } else if (strcmp(what, "seconds") == 0) {
        int32_t seconds = value;
        tell(ioctl(descriptor, WDIOC_SETTIMEOUT, &seconds));
    } else if (strcmp(what, "year") == 0) {
        struct rtc_time time = {0};
        const int result = ioctl(descriptor, RTC_RD_TIME, &time);
        tell(result < 0 ? result : time.tm_year + 1900);
    } else if (strcmp(what, "signed") == 0) { /* as programs do that keep requests in an int */
        tell(ioctl(descriptor, (unsigned long)(int)WDIOC_KEEPALIVE, NULL));
    } else {
        tell(ioctl(descriptor, 0x7777, &value));
    }
}

static void *mapped;

static void map_memory(int descriptor, size_t size, int flags)
{
    mapped = mmap(NULL, size, PROT_READ | PROT_WRITE, flags, descriptor, 0);
    if (mapped == MAP_FAILED) {
        tell(-1);
        return;
    }
    memset(mapped, 0x5a, 4096);
    tell(((unsigned char *)mapped)[4095]);
}

/* What a child sees: each of these, as one number, or its errno's name. */
static void look_from_child(int descriptor)
{
    fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        unsigned char bytes[64];
        uint32_t lit = 1;
        tell(read(descriptor, bytes, sizeof bytes));
        tell(ioctl(descriptor, KEYBOARD_RECORD_LAMP, &lit));
        tell(open("/dev/watchdog", O_RDWR));
        tell(close(descriptor));
        const int file = open("/dev/null", O_RDONLY); /* takes the number that became free */
        tell(file == descriptor ? 0 : 1);
        tell(read(file, bytes, sizeof bytes));
        fflush(stdout);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    printf("child %d\n", WIFEXITED(status) ? WEXITSTATUS(status) : -1);
}

static void *sleep_on_board(void *microseconds)
{
    board_sleep_us((uint32_t)(uintptr_t)microseconds);
    printf("slept\n");
    return NULL;
}

/* A decoder channel and a sound device, so that there is something to look at. */
static void set_up(void)
{
    MI_SYS_Init();
    const MI_VDEC_ChnAttr decoder = {.codec = MI_VDEC_CODEC_H264,
                                     .stream_buffer_bytes = 1 << 20,
                                     .max_width = 1920,
                                     .max_height = 1080,
                                     .video_mode = MI_VDEC_MODE_FRAME,
                                     .reference_frames = 2,
                                     .decode_buffers = 2};
    const int created = MI_VDEC_CreateChn(0, &decoder);
    const MI_AO_PubAttr sound = {.sample_rate = 8000,
                                 .bit_width = 0,
                                 .work_mode = 0,
                                 .sound_mode = 0,
                                 .frame_count = 6,
                                 .samples_per_frame = 320,
                                 .channels = 1,
                                 .codec_channels = 0};
    const int set = MI_AO_SetPubAttr(3, &sound);
    printf("%d %d %d\n", created, set, MI_AO_Enable(3));
}

/* Whether the line was understood. */
static int obey(char *line)
{
    char word[32] = "";
    int number = 0, value = 0;
    unsigned char bytes[256];
    char *rest = strchr(line, ' ');
    rest = rest != NULL ? rest + 1 : line + strlen(line);
    sscanf(line, "%31s", word);
    sscanf(rest, "%d %d", &number, &value);

    if (strcmp(word, "open") == 0)
        open_node(rest);
    else if (strcmp(word, "poll") == 0 || strcmp(word, "select") == 0 || strcmp(word, "epoll") == 0)
        wait_for(word, number, value);
    else if (strcmp(word, "read") == 0)
        tell_bytes(read(number, bytes, (size_t)value), bytes);
    else if (strcmp(word, "readv") == 0) {
        struct iovec parts[2] = {{bytes, 0}, {bytes, (size_t)value}};
        tell_bytes(readv(number, parts, 2), bytes);
    } else if (strcmp(word, "write") == 0)
        tell(write(number, "x", 1));
    else if (strcmp(word, "nonblock") == 0)
        tell(fcntl(number, F_SETFL, value != 0 ? O_NONBLOCK : 0));
    else if (strcmp(word, "dup") == 0)
        tell(dup(number));
    else if (strcmp(word, "dup2") == 0)
        tell(dup2(number, value));
    else if (strcmp(word, "dupfd") == 0)
        tell(fcntl(number, F_DUPFD_CLOEXEC, value));
    else if (strcmp(word, "close") == 0)
        tell(close(number));
    else if (strcmp(word, "close_range") == 0)
        tell(close_range((unsigned)number, (unsigned)value, 0));
    else if (strcmp(word, "map") == 0)
        map_memory(number, (size_t)value, MAP_SHARED);
    else if (strcmp(word, "map_private") == 0)
        map_memory(number, (size_t)value, MAP_PRIVATE);
    else if (strcmp(word, "unmap") == 0)
        tell(munmap(mapped, (size_t)number));
    else if (strcmp(word, "fork") == 0)
        look_from_child(number);
    else if (strcmp(word, "behind") == 0) { /* the descriptor goes, and libc's streams are how */
        fclose(fdopen(number, "r"));
        tell(open("/dev/null", O_RDWR));
    } else if (strcmp(word, "system") == 0) {
        fflush(stdout);
        printf("%d\n", system(rest));
    } else if (strcmp(word, "environment") == 0)
        printf("%s %s\n", getenv("LD_PRELOAD") != NULL ? getenv("LD_PRELOAD") : "-",
               getenv("VBOARD_REMOTE_FD") != NULL ? getenv("VBOARD_REMOTE_FD") : "-");
    else if (strcmp(word, "clock") == 0)
        printf("%lld %lld\n", (long long)vboard_clock_us(), (long long)board_time_us());
    else if (strcmp(word, "calls") == 0) {
        const int64_t began_us = real_us();
        for (int i = 0; i < number; ++i)
            board_close(0); /* refused, and so a line each unless the board is told to be silent */
        printf("%lld\n", (long long)(real_us() - began_us));
    } else if (strcmp(word, "sleep") == 0) {
        pthread_t thread;
        tell(pthread_create(&thread, NULL, sleep_on_board, (void *)(uintptr_t)number));
        pthread_detach(thread);
    } else if (strcmp(word, "spin") == 0) {
        const int64_t until_us = real_us() + (int64_t)number * 1000;
        while (real_us() < until_us) {
        }
        printf("spun\n");
    } else if (strcmp(word, "node") == 0) { /* board_open, as the library does */
        tell(board_open(rest, O_RDWR));
    } else if (strcmp(word, "setup") == 0)
        set_up();
    else if (strcmp(word, "exit") == 0)
        exit(number);
    else if (sscanf(line, "ioctl %31s %d %d", word, &number, &value) >= 2)
        request(word, number, value);
    else
        return 0;
    return 1;
}

int main(void)
{
    char line[256];
    setvbuf(stdout, NULL, _IOLBF, 0);
    printf("ready\n");
    while (fgets(line, sizeof line, stdin) != NULL) {
        line[strcspn(line, "\n")] = '\0';
        if (!obey(line)) printf("what is \"%s\"?\n", line);
    }
    return 0;
}
