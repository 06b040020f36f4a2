/* key_queue.h - the key queue's two ends. Threads: any; see key_queue.cpp for the bounds. */
#pragma once

#include <cstdint>

namespace nvrhal
{

/** Put a key of the IR remote into the queue. Never waits; a full queue loses its keys. */
void enqueue_remote_key(uint32_t code);

/** True when there is nothing to take. Looks without the lock. */
bool key_queue_is_empty();

/** Take the slot at the read index: source and code. False when the index is outside the slots. */
bool dequeue_key(uint32_t &source, uint32_t &code);

/** Both indexes to the first slot. */
void clear_key_queue();

} // namespace nvrhal
