/*
 * vdec_channel.h - decoder channels: a bounded queue of encoded bytes and a worker each.
 *
 *     absent -> stopped <-> started        Create, Start, Stop
 *        ^---------|                       Destroy, when stopped
 *
 * Locks of a channel, in this order: `control` (one of create, destroy, start, stop at a time), then
 * the Waitable's mutex (the queue and the state), then those of the graph and the display. The
 * worker decodes and delivers with none of them held.
 */
#ifndef VBOARD_VDEC_CHANNEL_H
#define VBOARD_VDEC_CHANNEL_H

#include <cstdint>

#include "mi_vdec.h"
#include "vboard.h"

namespace vboard
{

constexpr uint32_t kDecoderChannels = VBOARD_DECODER_CHANNELS;

/* Created, in whatever state. */
bool vdec_exists(uint32_t channel);

int32_t vdec_create(uint32_t channel, const MI_VDEC_ChnAttr *attr);
int32_t vdec_destroy(uint32_t channel);
int32_t vdec_start(uint32_t channel);
int32_t vdec_stop(uint32_t channel);
int32_t vdec_get_attr(uint32_t channel, MI_VDEC_ChnAttr *attr);
int32_t vdec_get_stat(uint32_t channel, MI_VDEC_ChnStat *stat);
int32_t vdec_send(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms);
int32_t vdec_set_output(uint32_t channel, const MI_VDEC_OutputPortAttr *attr);
int32_t vdec_get_output(uint32_t channel, MI_VDEC_OutputPortAttr *attr);

/* Behind the control face. */
int vdec_read_counters(uint32_t channel, vboard_decoder_stat *stat);
int vdec_read_backlog(uint32_t channel, uint32_t *bytes, uint32_t *sends);
int vdec_wait_idle(uint32_t channel, int32_t timeout_ms);
int vdec_wait_all_idle(int32_t timeout_ms);

} // namespace vboard

#endif
