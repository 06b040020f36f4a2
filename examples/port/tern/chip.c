/* chip.c - the simulated chip's power, clock and lock. */
#include "tern_inside.h"

#include <time.h>

pthread_mutex_t tern_lock = PTHREAD_MUTEX_INITIALIZER;

static int awake;
static int64_t woke_us;

int64_t tern_now_us(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000000 + now.tv_nsec / 1000;
}

void tern_condition(pthread_cond_t *changed)
{
    pthread_condattr_t attr;
    pthread_condattr_init(&attr);
    pthread_condattr_setclock(&attr, CLOCK_MONOTONIC);
    pthread_cond_init(changed, &attr);
    pthread_condattr_destroy(&attr);
}

void tern_wait_until(pthread_cond_t *changed, int64_t until_us)
{
    const struct timespec until = {(time_t)(until_us / 1000000), (long)(until_us % 1000000) * 1000};
    pthread_cond_timedwait(changed, &tern_lock, &until);
}

TernStatus tern_wake(void)
{
    pthread_mutex_lock(&tern_lock);
    if (!awake) woke_us = tern_now_us();
    awake = 1;
    pthread_mutex_unlock(&tern_lock);
    return TERN_OK;
}

int tern_is_awake(void)
{
    return awake;
}

const char *tern_firmware(void)
{
    return "Tern 2.4";
}

uint64_t tern_ticks(void)
{
    pthread_mutex_lock(&tern_lock);
    const int64_t since_us = awake ? tern_now_us() - woke_us : 0;
    pthread_mutex_unlock(&tern_lock);
    return (uint64_t)since_us * (TERN_TICKS_PER_SECOND / 1000) / 1000;
}
