/*
 * board.c - device nodes of a board that has none. Sleep and wall clock are the system's own: they are not
 * defined here, and the defaults of platform/linux take their places.
 */
#include <errno.h>
#include <pthread.h>
#include <string.h>

#include "board_io.h"
#include "board_linux.h"
#include "gpio_driver.h"
#include "node.h"

enum { kFirstDescriptor = 100, kMostOpen = 64, kMostMapped = 256 };

typedef struct Opening {
    const NodeKind *kind; /* null = free */
    void *state;
    int users;   /* calls that are in it */
    int closing; /* the last of them lets go */
} Opening;

typedef struct Mapping {
    const NodeKind *kind; /* null = free */
    void *address;
    size_t size; /* as it was asked for */
} Mapping;

static const NodeKind *const nodes[] = {
    &node_framebuffer, &node_watchdog, &node_clock, &node_lines,
    &node_panel,       &node_remote,   &node_mouse, &node_analog,
};

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards the tables, no call of a node */
static Opening table[kMostOpen];
static Mapping mappings[kMostMapped];

int node_refuses_value(void)
{
    errno = EINVAL;
    return -1;
}

int node_knows_no_request(void)
{
    errno = ENOTTY;
    return -1;
}

static int give_descriptor(const NodeKind *kind, void *state)
{
    int descriptor = -1;
    pthread_mutex_lock(&lock);
    for (int i = 0; i < kMostOpen && descriptor < 0; ++i) {
        if (table[i].kind != NULL) continue;
        table[i] = (Opening){kind, state, 0, 0};
        descriptor = kFirstDescriptor + i;
    }
    pthread_mutex_unlock(&lock);
    if (descriptor < 0) errno = EMFILE;
    return descriptor;
}

int board_open(const char *path, int flags)
{
    (void)flags;
    for (size_t i = 0; i < sizeof nodes / sizeof nodes[0]; ++i) {
        if (strcmp(nodes[i]->path, path) != 0) continue;
        void *state = NULL;
        if (nodes[i]->open != NULL && (state = nodes[i]->open()) == NULL) {
            errno = ENOMEM;
            return -1;
        }
        const int descriptor = give_descriptor(nodes[i], state);
        if (descriptor < 0 && nodes[i]->close != NULL) nodes[i]->close(state);
        return descriptor;
    }
    errno = ENOENT;
    return -1;
}

/* An opening that is used from now on, or null with errno. */
static Opening *use(int descriptor)
{
    const int index = descriptor - kFirstDescriptor;
    Opening *opening = NULL;
    pthread_mutex_lock(&lock);
    if (index >= 0 && index < kMostOpen && table[index].kind != NULL && !table[index].closing) {
        opening = &table[index];
        ++opening->users;
    }
    pthread_mutex_unlock(&lock);
    if (opening == NULL) errno = EBADF;
    return opening;
}

static void stop_using(void *argument)
{
    Opening *opening = argument;
    Opening last = {NULL, NULL, 0, 0};
    pthread_mutex_lock(&lock);
    if (--opening->users == 0 && opening->closing) {
        last = *opening;
        opening->kind = NULL;
    }
    pthread_mutex_unlock(&lock);
    if (last.kind != NULL && last.kind->close != NULL) last.kind->close(last.state);
}

int board_close(int descriptor)
{
    Opening *opening = use(descriptor);
    if (opening == NULL) return -1;
    pthread_mutex_lock(&lock);
    opening->closing = 1;
    pthread_mutex_unlock(&lock);
    stop_using(opening);
    return 0;
}

int board_read(int descriptor, void *buffer, size_t size)
{
    Opening *opening = use(descriptor);
    if (opening == NULL) return -1;
    int got = -1;
    pthread_cleanup_push(stop_using, opening); /* a reader may be cancelled while it waits */
    got = opening->kind->read != NULL ? opening->kind->read(opening->state, buffer, size)
                                      : node_refuses_value();
    pthread_cleanup_pop(1);
    return got;
}

int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    Opening *opening = use(descriptor);
    if (opening == NULL) return -1;
    const int result = opening->kind->request(opening->state, request, argument);
    stop_using(opening);
    return result;
}

/* 0 = there is no room to note it. */
static int note_mapping(const NodeKind *kind, void *address, size_t size)
{
    int noted = 0;
    pthread_mutex_lock(&lock);
    for (int i = 0; i < kMostMapped && !noted; ++i) {
        noted = mappings[i].kind == NULL;
        if (noted) mappings[i] = (Mapping){kind, address, size};
    }
    pthread_mutex_unlock(&lock);
    return noted;
}

void *board_map(int descriptor, size_t size)
{
    Opening *opening = use(descriptor);
    if (opening == NULL) return NULL;
    const NodeKind *kind = opening->kind;
    void *address = NULL;
    if (kind->map != NULL)
        address = kind->map(size);
    else
        errno = ENODEV;
    stop_using(opening);
    if (address == NULL || note_mapping(kind, address, size)) return address;
    kind->unmap(address);
    errno = ENOMEM;
    return NULL;
}

/* Only what was mapped, with its size. */
int board_unmap(void *address, size_t size)
{
    const NodeKind *kind = NULL;
    pthread_mutex_lock(&lock);
    for (int i = 0; i < kMostMapped && kind == NULL; ++i) {
        if (mappings[i].kind == NULL || mappings[i].address != address || mappings[i].size != size) continue;
        kind = mappings[i].kind;
        mappings[i].kind = NULL;
    }
    pthread_mutex_unlock(&lock);
    if (kind == NULL) return node_refuses_value();
    kind->unmap(address);
    return 0;
}

/* No driver has to be loaded here. */
int board_run_command(const char *command)
{
    return strcmp(command, GPIO_LOAD_COMMAND) == 0 ? 0 : board_linux_run_command(command);
}
