/* venc_channel.h - the encoder's place in the binding graph. */
#ifndef VBOARD_VENC_CHANNEL_H
#define VBOARD_VENC_CHANNEL_H

#include <atomic>

#include "media/ticket.h"

namespace vboard
{

bool venc_channel_exists(uint32_t channel);

/* A picture to encode. */
void venc_channel_take(uint32_t channel, const TicketPtr &ticket, const std::atomic<bool> &abandoned);

} // namespace vboard

#endif
