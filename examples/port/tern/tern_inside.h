/* tern_inside.h - what the parts of the simulation share. Everything is guarded by one lock. */
#ifndef TERN_INSIDE_H
#define TERN_INSIDE_H

#include <pthread.h>
#include <stdint.h>

#include "tern.h"

extern pthread_mutex_t tern_lock;

/* Microseconds of a clock that only goes forward. */
int64_t tern_now_us(void);

/* Wait on a condition, whose clock is that of tern_now_us, until then. The lock is held. */
void tern_wait_until(pthread_cond_t *changed, int64_t until_us);

/* A condition for tern_wait_until. */
void tern_condition(pthread_cond_t *changed);

int tern_is_awake(void);

/* A decoder has a picture: tiles take it. 1 when one did. The lock is held. */
int tern_tiles_take(const TernDecoder *decoder);

/* A decoder goes: tiles let go of it. The lock is held. */
void tern_tiles_cut(const TernDecoder *decoder);

/* A test picture as JPEG. The length, or 0 when there is no room. */
size_t tern_jpeg(const TernGrab *grab);

#endif
