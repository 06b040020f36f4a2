/* key_state.h - descriptors, thread handles and gate flags of the key readers. */
#pragma once

#include <cstdint>
#include <pthread.h>

#include "nvrhal.h"

namespace nvrhal
{

/** The front panel, -1 = closed. Shared by the key calls and the record indicator, without a lock. */
extern int32_t keyFd;

/** The remote's receiver, -1 = closed. Opened by the remote-key reader, closed by the key calls. */
extern int32_t remoteFd;

/** Open the front panel if keyFd is -1. Its descriptor, or the negative result of opening it. */
int32_t open_front_panel();

/** Threads of the two readers, 0 = none, guarded by key_threads_lock. */
extern pthread_t localkeyThread;
extern pthread_t remotekeyThread;
extern pthread_mutex_t key_threads_lock;

/** The handle as the log shows it. */
inline unsigned long thread_number(pthread_t thread)
{
    return static_cast<unsigned long>(thread);
}

/**
 * The zoom gate, mode 0: a zoom key has armed the gate; other keys have passed it. Written by the
 * remote-key reader.
 */
extern int32_t first_zoom_key_flag;
extern int32_t zoom_key_flag;

} // namespace nvrhal
