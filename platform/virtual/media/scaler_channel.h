/*
 * scaler_channel.h - scaler channels: pictures from a decoder at a size of their own, one worker each.
 *
 *     absent -> stopped <-> started        Create, Start, Stop
 *        ^---------|                       Destroy, when stopped
 *
 * Pictures wait in a queue of the depth set for the output port; when it is full the oldest makes
 * room, so a decoder is never held back. The worker scales and delivers with no lock held. Locks of
 * a channel: `control` (one state change at a time), then `mutex` (queue and state).
 */
#ifndef VBOARD_SCALER_CHANNEL_H
#define VBOARD_SCALER_CHANNEL_H

#include <atomic>
#include <cstdint>

#include "media/picture_ref.h"
#include "mi_divp.h"

namespace vboard
{

constexpr uint32_t kScalerChannels = 16;

int32_t scaler_create(uint32_t channel, const MI_DIVP_ChnAttr *attr);
int32_t scaler_destroy(uint32_t channel);
int32_t scaler_start(uint32_t channel);
int32_t scaler_stop(uint32_t channel);
int32_t scaler_set_output(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr);
int32_t scaler_get_output(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr);

/* How many pictures may wait behind the output port; 0 = the board's own choice. */
int32_t scaler_set_depth(uint32_t channel, uint32_t port, uint32_t queue_depth);

/* ---- the binding graph's side ---- */

/* Created, in whatever state. */
bool scaler_channel_exists(uint32_t channel);

/* A picture for the channel's input; ignored while the channel is stopped. Never waits. */
void scaler_channel_take(uint32_t channel, const PictureRefPtr &ref, const std::atomic<bool> &abandoned);

} // namespace vboard

#endif
