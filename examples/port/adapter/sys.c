/* sys.c - the media system and its clock, in microseconds over the chip's ticks. */
#include "mi_sys.h"

#include <stdio.h>
#include <string.h>
#include <time.h>

#include "adapter.h"

/* Asserts, with this compiler, that the seams' records lie in memory as the library has them. */
#include "seam_layouts.h"

pthread_mutex_t topology_lock = PTHREAD_MUTEX_INITIALIZER;

static pthread_mutex_t clock_lock = PTHREAD_MUTEX_INITIALIZER;
static int is_up;          /* guarded by clock_lock, like the offset */
static uint64_t offset_us; /* media clock less the chip's, modulo 2^64 */

/* --------------------------------------------------------------------- what the sources share --- */

int system_is_up(void)
{
    pthread_mutex_lock(&clock_lock);
    const int up = is_up;
    pthread_mutex_unlock(&clock_lock);
    return up;
}

int32_t code_of(enum MI_ModuleId module, TernStatus status)
{
    switch (status) {
    case TERN_OK: return MI_SUCCESS;
    case TERN_NO_POWER: return MI_ERROR(module, MI_REASON_NOT_READY);
    case TERN_BAD_ARGUMENT: return MI_ERROR(module, MI_REASON_BAD_VALUE);
    case TERN_NO_UNIT:
    case TERN_NO_MEMORY: return MI_ERROR(module, MI_REASON_NO_MEMORY);
    case TERN_FULL: return MI_ERROR(module, MI_REASON_BUFFER_FULL);
    case TERN_NO_SIGNAL: return MI_ERROR(module, MI_REASON_ABSENT);
    }
    return MI_ERROR(module, MI_REASON_FAULT);
}

int64_t monotonic_us(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000000 + now.tv_nsec / 1000;
}

int64_t deadline_us(int32_t timeout_ms)
{
    return timeout_ms < 0 ? INT64_MAX : monotonic_us() + (int64_t)timeout_ms * 1000;
}

void condition_init(pthread_cond_t *condition)
{
    pthread_condattr_t attr;
    pthread_condattr_init(&attr);
    pthread_condattr_setclock(&attr, CLOCK_MONOTONIC);
    pthread_cond_init(condition, &attr);
    pthread_condattr_destroy(&attr);
}

void condition_wait(pthread_cond_t *condition, pthread_mutex_t *lock, int64_t until_us)
{
    if (until_us == INT64_MAX) {
        pthread_cond_wait(condition, lock);
        return;
    }
    const struct timespec until = {(time_t)(until_us / 1000000), (long)(until_us % 1000000) * 1000};
    pthread_cond_timedwait(condition, lock, &until);
}

/* ------------------------------------------------------------------------------ start and clock --- */

static uint64_t chip_us(void)
{
    const uint64_t ticks = tern_ticks();
    const uint64_t per_ms = TERN_TICKS_PER_SECOND / 1000;
    return ticks / per_ms * 1000 + ticks % per_ms * 1000 / per_ms;
}

int32_t MI_SYS_Init(void)
{
    const TernStatus status = tern_wake();
    pthread_mutex_lock(&clock_lock);
    if (status == TERN_OK) is_up = 1;
    pthread_mutex_unlock(&clock_lock);
    return code_of(MI_MODULE_SYS, status);
}

int32_t MI_SYS_GetVersion(MI_SYS_Version *version)
{
    if (version == NULL) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    if (!system_is_up()) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NOT_READY);
    snprintf(version->text, sizeof version->text, "%s", tern_firmware());
    return MI_SUCCESS;
}

/* Give the media clock a new time, but none that lies behind `least_us`. */
static int32_t set_clock(uint64_t time_us, int forwards_only)
{
    pthread_mutex_lock(&clock_lock);
    const int up = is_up;
    const uint64_t now_us = chip_us();
    if (up && (!forwards_only || time_us > now_us + offset_us)) offset_us = time_us - now_us;
    pthread_mutex_unlock(&clock_lock);
    return up ? MI_SUCCESS : MI_ERROR(MI_MODULE_SYS, MI_REASON_NOT_READY);
}

int32_t MI_SYS_GetCurPts(uint64_t *pts)
{
    if (pts == NULL) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    pthread_mutex_lock(&clock_lock);
    const int up = is_up;
    if (up) *pts = chip_us() + offset_us;
    pthread_mutex_unlock(&clock_lock);
    return up ? MI_SUCCESS : MI_ERROR(MI_MODULE_SYS, MI_REASON_NOT_READY);
}

int32_t MI_SYS_InitPtsBase(uint64_t base)
{
    return set_clock(base, 0);
}

int32_t MI_SYS_SyncPts(uint64_t pts)
{
    return set_clock(pts, 1);
}
