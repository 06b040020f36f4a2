/*
 * fake_agent.c - stands in for libvboard-remote.so: speaks its channel without a board behind it.
 *
 * It says hello (unless FAKE_AGENT=silent; FAKE_AGENT=unlinked says that there is no board), waits for
 * "boot", and answers every request with {"was": <the whole request>}, besides these:
 *
 *   state      what lies outside of the board: monitor pulled, clock chip at 1000, input 3 lost
 *   picture    4 x 2 pixels
 *   panel      no answer at all
 *   hold       an error
 *   release    the watchdog expires
 *
 * The texts of requests are looked at as plain bytes: enough for what the tests send.
 */
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static int channel = -1;

static void write_message(const char *text, const void *blob, uint32_t blob_bytes)
{
    const uint32_t json_bytes = (uint32_t)strlen(text);
    if (write(channel, &json_bytes, 4) != 4 || write(channel, &blob_bytes, 4) != 4) return;
    if (write(channel, text, json_bytes) != (ssize_t)json_bytes) return;
    if (blob_bytes > 0 && write(channel, blob, blob_bytes) != (ssize_t)blob_bytes) return;
}

static int read_whole(void *bytes, size_t size)
{
    for (size_t got = 0; got < size;) {
        const ssize_t part = read(channel, (char *)bytes + got, size - got);
        if (part <= 0) return -1;
        got += (size_t)part;
    }
    return 0;
}

static int read_message(char *text, size_t room)
{
    uint32_t bytes[2];
    if (read_whole(bytes, sizeof bytes) != 0 || bytes[0] >= room) return -1;
    if (read_whole(text, bytes[0]) != 0) return -1;
    text[bytes[0]] = '\0';
    return 0;
}

static int asks_for(const char *text, const char *request)
{
    char pattern[64];
    snprintf(pattern, sizeof pattern, "\"do\":\"%s\"", request);
    return strstr(text, pattern) != NULL;
}

static void answer(const char *text)
{
    static char reply[1 << 20];
    const char *id_text = strstr(text, "\"id\":");
    const long id = id_text ? atol(id_text + 5) : 0;
    if (asks_for(text, "panel")) return;
    if (asks_for(text, "release")) {
        snprintf(reply, sizeof reply, "{\"id\":%ld,\"ok\":{}}", id);
        write_message(reply, NULL, 0);
        write_message("{\"event\":\"watchdog\",\"data\":{\"expired_at_us\":1}}", NULL, 0);
        return;
    }
    if (asks_for(text, "picture")) {
        snprintf(reply, sizeof reply, "{\"id\":%ld,\"ok\":{\"width\":4,\"height\":2,\"blank\":false}}", id);
        write_message(reply, "ABCDEFGHuuvv", 12);
        return;
    }
    if (asks_for(text, "hold"))
        snprintf(reply, sizeof reply,
                 "{\"id\":%ld,\"error\":{\"code\":\"refused\",\"message\":\"no such "
                 "button\",\"parameter\":\"button\"}}",
                 id);
    else if (asks_for(text, "state"))
        snprintf(reply, sizeof reply,
                 "{\"id\":%ld,\"ok\":{\"clock\":{\"us\":5,\"wall_us\":7000000,\"taken\":false},\"monitor\":{"
                 "\"plugged\":"
                 "false,\"signal\":false},\"rtc\":{\"seconds\":1000,\"battery\":true},\"analog\":{\"inputs\":"
                 "[{\"input\":"
                 "3,\"lost\":true,\"moving\":2}]}}}",
                 id);
    else
        snprintf(reply, sizeof reply, "{\"id\":%ld,\"ok\":{\"was\":%s}}", id, text);
    write_message(reply, NULL, 0);
}

static void *serve(void *unused)
{
    static char text[1 << 20];
    (void)unused;
    while (read_message(text, sizeof text) == 0)
        answer(text);
    return NULL;
}

__attribute__((constructor)) static void begin(void)
{
    static char boot[1 << 16];
    const char *descriptor = getenv("VBOARD_REMOTE_FD");
    const char *as = getenv("FAKE_AGENT");
    if (descriptor == NULL) return;
    channel = atoi(descriptor);
    fcntl(channel, F_SETFD, FD_CLOEXEC);
    unsetenv("VBOARD_REMOTE_FD");
    unsetenv("LD_PRELOAD");
    if (as != NULL && strcmp(as, "silent") == 0) return;
    const int linked = as == NULL || strcmp(as, "unlinked") != 0;
    write_message(linked ? "{\"event\":\"hello\",\"data\":{\"linked\":true}}"
                         : "{\"event\":\"hello\",\"data\":{\"linked\":false}}",
                  NULL, 0);
    if (read_message(boot, sizeof boot) != 0) return;
    setenv("BOOT", boot, 1);
    answer(boot);
    /* Signals are for the program's own threads. */
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread;
    pthread_create(&thread, NULL, serve, NULL);
    pthread_sigmask(SIG_SETMASK, &before, NULL);
}
