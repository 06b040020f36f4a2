/*
 * stream.h - main streams, network streams and sound, stored and fetched.
 */
#ifndef NVRHAL_STREAM_H
#define NVRHAL_STREAM_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Store a frame of a channel's main stream, network stream or sound. Reads of *frame: frame_type
 * (video), length, width and height (video; they become the channel's stream attributes, stored or
 * not), data, and the low 32 bits of pts.
 * @return ext_set_primary_video_stream: 0, also when the frame was refused; the others: 0, or -1 =
 *         refused (see kx_stream_sendFrameToPool). A null frame: -1.
 * Thread: one producer per channel and stream.
 */
NVRHAL_API int32_t ext_set_primary_video_stream(uint32_t channel, const FrameInfo *frame);
NVRHAL_API int32_t ext_set_network_video_stream(uint32_t channel, const FrameInfo *frame);
NVRHAL_API int32_t ext_set_audio_stream(uint32_t channel, const FrameInfo *frame);

/**
 * Fetch the next stored frame of a channel; the first call starts at the oldest safe one. The
 * library keeps one position per channel and stream.
 *
 * Fills frame_type, media, length, width, height, data, channel, local_time (now) and pts. Video:
 * pts is the stored 32-bit stamp, sign-extended; width and height are those stored last; stream_id
 * and display_rate stay as they are. Audio: frame_type, width, height and display_rate are 0,
 * stream_id is channel + 2 N, pts is always 1. data points into the pool and must not be written
 * to; be done with it before the producer has come round again.
 * @param channel  below N
 * @return 0; -1 = nothing new, or a bad argument. Thread: one consumer per channel and stream.
 */
NVRHAL_API int32_t ext_get_primary_video_stream(uint32_t channel, FrameInfo *frame);
NVRHAL_API int32_t ext_get_network_video_stream(uint32_t channel, FrameInfo *frame);
NVRHAL_API int32_t ext_get_audio_stream(uint32_t channel, FrameInfo *frame);

/** Talkback capture: there is none. @return -1. Thread: any. */
NVRHAL_API int32_t ext_get_audio_speek_stream(void);

/** The wall clock, microseconds since 1970-01-01 00:00 UTC. Thread: any. */
NVRHAL_API int64_t local_get_curtime(void);

#ifdef __cplusplus
}
#endif

#endif
