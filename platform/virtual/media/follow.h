/* follow.h - followers of display devices: one callback per refresh, or per step. */
#ifndef VBOARD_FOLLOW_H
#define VBOARD_FOLLOW_H

#include <cstdint>

#include "vboard.h"

namespace vboard
{

int follow_set(int32_t device, vboard_follower follower, void *user);

/* Under step pacing: compose, and call the follower if there is one. */
void follow_step(int32_t device);

/* The pacing has changed: the refresh thread starts or stops to follow. */
void follow_set_pacing(int32_t device, uint32_t pacing);

void follow_reset();

} // namespace vboard

#endif
