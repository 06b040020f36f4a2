/*
 * venc_channel.h - encoder channels: pictures in, JPEG images out, one worker each.
 *
 *     absent -> idle <-> receiving         Create, StartRecvPic, StopRecvPic
 *        ^-------|                         Destroy, when idle
 *
 * A channel takes one picture at a time and holds its source back while it cannot: not receiving,
 * still encoding, or its stream buffer full. Images stay in the stream buffer from their encoding to
 * their release, also while the caller reads them. Locks of a channel: `control` (one state change
 * at a time), then the Waitable's mutex (everything else). The worker encodes with none of them
 * held.
 */
#ifndef VBOARD_VENC_CHANNEL_H
#define VBOARD_VENC_CHANNEL_H

#include <atomic>
#include <cstdint>

#include "media/picture_ref.h"
#include "mi_venc.h"

namespace vboard
{

constexpr uint32_t kEncoderChannels = 32;
constexpr uint32_t kJpegDevice = 1; // the device that JPEG channels belong to, as bindings name it

int32_t venc_create(uint32_t channel, const MI_VENC_ChnAttr *attr);
int32_t venc_destroy(uint32_t channel);
int32_t venc_reset_channel(uint32_t channel);
int32_t venc_get_jpeg(uint32_t channel, MI_VENC_JpegParam *param);
int32_t venc_set_jpeg(uint32_t channel, const MI_VENC_JpegParam *param);
int32_t venc_get_device(uint32_t channel, uint32_t *device);
int32_t venc_start(uint32_t channel);
int32_t venc_stop(uint32_t channel);
int32_t venc_get_stream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms);
int32_t venc_release_stream(uint32_t channel, MI_VENC_Stream *stream);

/* ---- the binding graph's side ---- */

bool venc_channel_exists(uint32_t device, uint32_t channel);

/* A picture to encode. Waits while the channel cannot take it, until `abandoned`. */
void venc_channel_take(uint32_t channel, const PictureRefPtr &ref, const std::atomic<bool> &abandoned);

/* Wake sources that wait in venc_channel_take, to look at `abandoned`. */
void venc_wake_sources();

} // namespace vboard

#endif
