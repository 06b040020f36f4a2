/*
 * board_thread_refusal.h - thread calls that can be made to fail. The linker puts them in front of
 * the library's own calls (--wrap); the test's threads are not affected.
 */
#pragma once

namespace thread_refusal
{

extern bool create, attr_init, attr_scope, attr_detach, attr_destroy;

/* What was asked for last; -1 while nothing was. */
extern int scope, detach_state;

/* How many threads were joined. */
extern unsigned joined;

} // namespace thread_refusal
