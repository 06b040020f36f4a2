/*
 * mutant.h - what the mutants share. A mutant is a shared object that a dynamic linker puts between a
 * program and the platform (LD_PRELOAD): it defines one or a few functions of the two seams, hands their
 * calls on to the platform below, and breaks one contract on the way. mutants.txt says which.
 */
#ifndef MUTANT_H
#define MUTANT_H

#ifndef _GNU_SOURCE
#define _GNU_SOURCE /* RTLD_NEXT */
#endif

#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

enum {
    kChannels = 64, /* decoder channels that a mutant keeps a state of */
    kDevices = 4,   /* display devices -1 to 2 */
};

static inline void *next_symbol(const char *name)
{
    void *found = dlsym(RTLD_NEXT, name);
    if (found == NULL) {
        fprintf(stderr, "mutant: the platform has no %s\n", name);
        abort();
    }
    return found;
}

/* The platform's own function of a name. */
#define PLATFORM(name) ((__typeof__(&name))next_symbol(#name))

/* Real time, which no platform steps. */
static inline int64_t real_time_us(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000000 + now.tv_nsec / 1000;
}

static inline void real_sleep_us(int64_t microseconds)
{
    const struct timespec rest = {microseconds / 1000000, (long)(microseconds % 1000000) * 1000};
    nanosleep(&rest, NULL);
}

#endif
