/* scaler_channel.h - the scaler's place in the binding graph. */
#ifndef VBOARD_SCALER_CHANNEL_H
#define VBOARD_SCALER_CHANNEL_H

#include <atomic>

#include "media/ticket.h"

namespace vboard
{

bool scaler_channel_exists(uint32_t channel);

/* A picture for the channel's input. */
void scaler_channel_take(uint32_t channel, const TicketPtr &ticket, const std::atomic<bool> &abandoned);

} // namespace vboard

#endif
