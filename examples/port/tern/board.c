/* board.c - what is on the simulated evaluation board beside the chip. */
#define _GNU_SOURCE /* MAP_32BIT */
#include "tern_board.h"

#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include "tern_hand.h"
#include "tern_inside.h"

enum {
    kOsdBytes = 3840 * 2160 * 2,
    kPhysical = 0x30000000,
    kLines = 128,
    kAnalogInputs = 16,
    kMostEvents = 64,
};

/* --- graphics plane --- */

void tern_osd_memory(size_t *bytes, uint32_t *physical)
{
    *bytes = kOsdBytes;
    *physical = kPhysical;
}

void *tern_osd_map(void)
{
    static FILE *memory; /* a file without a name, which all mappings share */
    pthread_mutex_lock(&tern_lock);
    if (memory == NULL && (memory = tmpfile()) != NULL && ftruncate(fileno(memory), kOsdBytes) != 0) {
        fclose(memory);
        memory = NULL;
    }
    void *address = MAP_FAILED;
    int flags = MAP_SHARED;
#ifdef MAP_32BIT
    flags |= MAP_32BIT;
#endif
    if (memory != NULL) address = mmap(NULL, kOsdBytes, PROT_READ | PROT_WRITE, flags, fileno(memory), 0);
    pthread_mutex_unlock(&tern_lock);
    return address != MAP_FAILED ? address : NULL;
}

void tern_osd_unmap(void *address)
{
    munmap(address, kOsdBytes);
}

int tern_osd_set(const TernOsd *settings)
{
    const uint64_t pixel = settings->ink == TERN_INK_8888 ? 4 : 2;
    return settings->width * pixel * ((uint64_t)settings->top + settings->height) <= kOsdBytes ? 0 : -1;
}

/* --- lines, lamp, watchdog, clock --- */

static int levels[kLines]; /* level + 1; 0 = no output */
static int lamp;
static int64_t dog_until_us; /* 0 = disarmed */
static unsigned dog_ms;
static int dog_barked;
static int64_t clock_offset;

int tern_line_out(unsigned line, int level)
{
    if (line >= kLines) return -1;
    pthread_mutex_lock(&tern_lock);
    levels[line] = (level != 0) + 1;
    pthread_mutex_unlock(&tern_lock);
    return 0;
}

int tern_line_level(unsigned line)
{
    if (line >= kLines) return -1;
    pthread_mutex_lock(&tern_lock);
    const int level = levels[line] - 1;
    pthread_mutex_unlock(&tern_lock);
    return level;
}

void tern_lamp(int lit)
{
    pthread_mutex_lock(&tern_lock);
    lamp = lit;
    pthread_mutex_unlock(&tern_lock);
}

int tern_eye_lamp(void)
{
    pthread_mutex_lock(&tern_lock);
    const int lit = lamp;
    pthread_mutex_unlock(&tern_lock);
    return lit;
}

/* The lock is held. */
static void look_at_dog(void)
{
    if (dog_until_us == 0 || tern_now_us() < dog_until_us) return;
    dog_until_us = 0;
    dog_barked = 1;
}

static void set_dog(unsigned milliseconds)
{
    pthread_mutex_lock(&tern_lock);
    look_at_dog();
    dog_ms = milliseconds;
    dog_until_us = milliseconds > 0 ? tern_now_us() + (int64_t)milliseconds * 1000 : 0;
    pthread_mutex_unlock(&tern_lock);
}

void tern_dog_arm(unsigned milliseconds)
{
    set_dog(milliseconds);
}

void tern_dog_disarm(void)
{
    set_dog(0);
}

void tern_dog_feed(void)
{
    pthread_mutex_lock(&tern_lock);
    look_at_dog();
    if (dog_until_us != 0) dog_until_us = tern_now_us() + (int64_t)dog_ms * 1000;
    pthread_mutex_unlock(&tern_lock);
}

int tern_eye_dog_barked(void)
{
    pthread_mutex_lock(&tern_lock);
    look_at_dog();
    const int barked = dog_barked;
    pthread_mutex_unlock(&tern_lock);
    return barked;
}

int64_t tern_clock_get(void)
{
    pthread_mutex_lock(&tern_lock);
    const int64_t seconds = (int64_t)time(NULL) + clock_offset;
    pthread_mutex_unlock(&tern_lock);
    return seconds;
}

void tern_clock_set(int64_t seconds)
{
    pthread_mutex_lock(&tern_lock);
    clock_offset = seconds - (int64_t)time(NULL);
    pthread_mutex_unlock(&tern_lock);
}

/* --- inputs --- */

struct TernInputs {
    TernInputs *next;
    enum TernInput from;
    TernEvent events[kMostEvents];
    unsigned first, count;
};

static TernInputs *all_inputs;
static pthread_cond_t came;
static pthread_once_t came_once = PTHREAD_ONCE_INIT;

static void make_condition(void)
{
    tern_condition(&came);
}

TernInputs *tern_inputs_open(enum TernInput from)
{
    pthread_once(&came_once, make_condition);
    TernInputs *inputs = calloc(1, sizeof *inputs);
    if (inputs == NULL) return NULL;
    inputs->from = from;
    pthread_mutex_lock(&tern_lock);
    inputs->next = all_inputs;
    all_inputs = inputs;
    pthread_mutex_unlock(&tern_lock);
    return inputs;
}

void tern_inputs_close(TernInputs *inputs)
{
    pthread_mutex_lock(&tern_lock);
    TernInputs **at = &all_inputs;
    while (*at != inputs)
        at = &(*at)->next;
    *at = inputs->next;
    pthread_mutex_unlock(&tern_lock);
    free(inputs);
}

static void unlock(void *argument)
{
    (void)argument;
    pthread_mutex_unlock(&tern_lock);
}

int tern_inputs_next(TernInputs *inputs, TernEvent *event, unsigned milliseconds)
{
    const int64_t until_us = tern_now_us() + (int64_t)milliseconds * 1000;
    int got = 0;
    pthread_mutex_lock(&tern_lock);
    pthread_cleanup_push(unlock, NULL); /* a reader may be cancelled here */
    while (inputs->count == 0 && tern_now_us() < until_us)
        tern_wait_until(&came, until_us);
    if (inputs->count > 0) {
        *event = inputs->events[inputs->first];
        inputs->first = (inputs->first + 1) % kMostEvents;
        --inputs->count;
        got = 1;
    }
    pthread_cleanup_pop(1);
    return got;
}

static void post(const TernEvent *event)
{
    pthread_once(&came_once, make_condition);
    pthread_mutex_lock(&tern_lock);
    for (TernInputs *inputs = all_inputs; inputs != NULL; inputs = inputs->next) {
        if (inputs->from != event->from) continue;
        if (inputs->count == kMostEvents) {
            inputs->first = (inputs->first + 1) % kMostEvents;
            --inputs->count;
        }
        inputs->events[(inputs->first + inputs->count++) % kMostEvents] = *event;
    }
    pthread_cond_broadcast(&came);
    pthread_mutex_unlock(&tern_lock);
}

static void press(enum TernInput from, uint32_t code)
{
    TernEvent event = {.from = from, .code = code, .down = 1};
    post(&event);
    event.down = 0;
    post(&event);
}

void tern_hand_panel(uint32_t code)
{
    press(TERN_INPUT_PANEL, code);
}

void tern_hand_remote(uint32_t code)
{
    press(TERN_INPUT_REMOTE, code);
}

void tern_hand_mouse(int dx, int dy, uint32_t buttons, int roll)
{
    const TernEvent event = {.from = TERN_INPUT_MOUSE, .dx = dx, .dy = dy, .buttons = buttons, .roll = roll};
    post(&event);
}

/* --- analog inputs --- */

static int lost[kAnalogInputs];
static unsigned moving[kAnalogInputs];

int tern_analog_has_signal(unsigned input)
{
    if (input >= kAnalogInputs) return -1;
    pthread_mutex_lock(&tern_lock);
    const int there = !lost[input];
    pthread_mutex_unlock(&tern_lock);
    return there;
}

unsigned tern_analog_motion(unsigned input)
{
    pthread_mutex_lock(&tern_lock);
    const unsigned blocks = input < kAnalogInputs ? moving[input] : 0;
    pthread_mutex_unlock(&tern_lock);
    return blocks;
}

void tern_hand_analog(unsigned input, int has_signal, unsigned moving_blocks)
{
    if (input >= kAnalogInputs) return;
    pthread_mutex_lock(&tern_lock);
    lost[input] = !has_signal;
    moving[input] = moving_blocks;
    pthread_mutex_unlock(&tern_lock);
}
