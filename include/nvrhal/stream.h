/*
 * stream.h - main streams, network streams and sound, stored and fetched.
 */
#ifndef NVRHAL_STREAM_H
#define NVRHAL_STREAM_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/frame.h"
#include "nvrhal/limits.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Three frame pools (pool.h) by channel number, one FrameInfo a call. Of pts a pool keeps the low 32
 * bits in the producer's unit, which wrap round: microseconds do after 71 minutes. A frame larger than
 * a pool's largest is not stored.
 */

/**
 * Store a frame of a channel's main stream.
 * @param channel  0 to NVRHAL_STORED_CHANNELS - 1
 * @param frame    reads frame_type, length (1 to NVRHAL_MAIN_FRAME_BYTES bytes), data, and the low 32
 *                 bits of pts, in the producer's own unit. Its width and height, pixels, become the
 *                 channel's stream attributes, also when the pool refuses the frame.
 * @return 0, also for a frame that the pool refused; -1 for null
 * Errors: a frame that the pool refuses (no bytes, too many, a bad channel) is lost, and the result does
 *         not say so: compare its length before.
 * Thread: one producer a channel and stream.
 * Ownership: the bytes are copied during the call.
 */
NVRHAL_API int32_t ext_set_primary_video_stream(uint32_t channel, const FrameInfo *frame);

/**
 * Store a frame of a channel's network stream.
 * @param channel  0 to NVRHAL_STORED_CHANNELS - 1
 * @param frame    reads frame_type, length (1 to NVRHAL_SUB_FRAME_BYTES bytes), data, and the low 32
 *                 bits of pts, in the producer's own unit. Its width and height, pixels, become the
 *                 channel's stream attributes, also when the pool refuses the frame.
 * @return 0, or -1
 * Errors: -1 for null, or a frame that the pool refused (no bytes, too many, a bad channel).
 * Thread: one producer a channel and stream.
 * Ownership: the bytes are copied during the call.
 */
NVRHAL_API int32_t ext_set_network_video_stream(uint32_t channel, const FrameInfo *frame);

/**
 * Store a block of a channel's sound.
 * @param channel  0 to NVRHAL_STORED_CHANNELS - 1
 * @param frame    reads length (1 to NVRHAL_AUDIO_FRAME_BYTES bytes), data, and the low 32 bits of
 *                 pts, in the producer's own unit; every block counts as a key frame
 * @return 0, or -1
 * Errors: -1 for null, or a block that the pool refused (no bytes, too many, a bad channel).
 * Thread: one producer a channel and stream.
 * Ownership: the bytes are copied during the call.
 */
NVRHAL_API int32_t ext_set_audio_stream(uint32_t channel, const FrameInfo *frame);

/**
 * Fetch the next stored frame of a channel's main stream; the first call starts at the oldest safe one. The
 * library keeps one position a channel and stream. A call that finds nothing prints nothing.
 * @param channel  0 to N - 1; from NVRHAL_STORED_CHANNELS on there is never a frame
 * @param frame    out: media, length in bytes, data, channel, local_time (now, microseconds), frame_type,
 * width and height, which are those stored last, in pixels, and pts: the stored 32 bits, sign-extended.
 * stream_id and display_rate stay as they are.
 * @return 0, or -1
 * Errors: -1 when there is nothing new, nothing at a safe distance (printed), for a bad channel, or null.
 * Thread: one consumer a channel and stream.
 * Ownership: data points into the pool and must not be written to. It is overwritten in time: be done
 *            with it, or copy it, before the producer comes within the largest frame of it.
 */
NVRHAL_API int32_t ext_get_primary_video_stream(uint32_t channel, FrameInfo *frame);

/**
 * Fetch the next stored frame of a channel's network stream; the first call starts at the oldest safe one.
 * The library keeps one position a channel and stream. A call that finds nothing prints nothing.
 * @param channel  0 to N - 1; from NVRHAL_STORED_CHANNELS on there is never a frame
 * @param frame    out: media, length in bytes, data, channel, local_time (now, microseconds), frame_type,
 * width and height, which are those stored last, in pixels, and pts: the stored 32 bits, sign-extended.
 * stream_id and display_rate stay as they are.
 * @return 0, or -1
 * Errors: -1 when there is nothing new, nothing at a safe distance (printed), for a bad channel, or null.
 * Thread: one consumer a channel and stream.
 * Ownership: data points into the pool and must not be written to. It is overwritten in time: be done
 *            with it, or copy it, before the producer comes within the largest frame of it.
 */
NVRHAL_API int32_t ext_get_network_video_stream(uint32_t channel, FrameInfo *frame);

/**
 * Fetch the next stored block of a channel's sound; the first call starts at the oldest safe one. The library
 * keeps one position a channel and stream. A call that finds nothing prints nothing.
 * @param channel  0 to N - 1; from NVRHAL_STORED_CHANNELS on there is never a frame
 * @param frame    out: media, length in bytes, data, channel, local_time (now, microseconds), stream_id =
 *                 channel + 2 N, pts = 1 always; frame_type, width, height and display_rate are 0
 * @return 0, or -1
 * Errors: -1 when there is nothing new, nothing at a safe distance (printed), for a bad channel, or null.
 * Thread: one consumer a channel and stream.
 * Ownership: data points into the pool and must not be written to. It is overwritten in time: be done
 *            with it, or copy it, before the producer comes within the largest frame of it.
 */
NVRHAL_API int32_t ext_get_audio_stream(uint32_t channel, FrameInfo *frame);

/**
 * Talkback capture: there is none.
 * @return -1
 * Errors: always.
 * Thread: any.
 */
NVRHAL_API int32_t ext_get_audio_speek_stream(void);

/**
 * The wall clock.
 * @return microseconds since 1970-01-01 00:00 UTC
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int64_t local_get_curtime(void);

#ifdef __cplusplus
}
#endif

#endif
