/* call_follow.h - whoever is told of platform calls as they end, and of refusals. */
#ifndef VBOARD_CALL_FOLLOW_H
#define VBOARD_CALL_FOLLOW_H

#include "vboard_calls.h"

namespace vboard
{

/* The calling thread's number: 1 for the first that asks. */
uint32_t thread_number();

/* Any thread. Nothing happens while nobody follows. */
void tell_call_follower(const vboard_call &call);
void tell_refusal_follower(const char *line);

} // namespace vboard

#endif
