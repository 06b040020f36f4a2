/*
 * snap_refusal.h - memory and threads that can be refused to the library, and what it did with them. The
 * linker puts these calls in front of the library's own (--wrap); threads lose their real-time attributes,
 * which a test need not be permitted to have.
 */
#pragma once

#include <cstdint>

namespace snap_refusal
{

extern bool memory, thread;

/** What the last thread was asked to be. */
extern int asked_policy, asked_priority;
extern bool asked_explicitly;
/** The first two words of what it was given. */
extern uint32_t given[2];
/** How many threads were waited for to their end. */
extern unsigned joined;

/** What was freed last. */
extern const void *last_freed;

} // namespace snap_refusal
