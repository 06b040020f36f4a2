/*
 * snapshot.h - one JPEG picture of a channel.
 */
#ifndef NVRHAL_SNAPSHOT_H
#define NVRHAL_SNAPSHOT_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Opaque here: platform/include has it. */
struct MI_VENC_Stream;

/** Size of a snapshot, pixels. */
typedef struct SnapSize {
    uint32_t width, height;
} SnapSize;

/** Allow snapshots, for good. @return 0. Thread: any. */
NVRHAL_API int32_t ext_set_snap_channel_enable(void);

/**
 * Take one 352 x 288 JPEG of a channel. Waits up to 2.5 s for a picture; the channel's frames must
 * keep coming in through ext_send_stream meanwhile, also when it is not shown. During playback the
 * picture is decoded from the next key frame on.
 * @param frame  in: channel. Out: frame_type 1, media FRAME_MEDIA_JPEG, width, height, length, data,
 *               local_time. data is the caller's until ext_release_jpeg_buf.
 * @return 0 = taken, or snapshots are not enabled (nothing is filled); -1 or a platform code. After
 *         a failure data is not to be released. During playback the result is that of stopping the
 *         spare decoder: check that data has been filled.
 *         The spare decoder keeps its codec: for H.264 cameras call vdec_recreate(N, 0) once before.
 * Thread: any, one snapshot at a time.
 */
NVRHAL_API int32_t ext_get_jpeg_stream(FrameInfo *frame);

/** Free a snapshot's data and set it to null; null data is accepted. @return 0. Thread: any. */
NVRHAL_API int32_t ext_release_jpeg_buf(FrameInfo *frame);

/**
 * The snapshot's steps, in the order ext_get_jpeg_stream takes them: build the pipeline from a
 * decoder channel (@return 0, -1, or 31 for pictures smaller than the snapshot), fetch one picture
 * (@return 0 or -1), take the pipeline down (@return 0).
 */
NVRHAL_API int32_t venc_snap_start(uint32_t decoder_channel, uint32_t encoder_channel, SnapSize *size);
NVRHAL_API int32_t venc_snap_process(uint32_t encoder_channel, FrameInfo *frame);
NVRHAL_API int32_t venc_snap_stop(uint32_t decoder_channel, uint32_t encoder_channel);

/**
 * Write an encoder stream to "./YEAR_MM_DD-hh_mm_ss.jpg" (local time, MM from 00) and print the head
 * of each pack. @return 0.
 */
NVRHAL_API int32_t test_save_jpeg_to_file(const struct MI_VENC_Stream *stream);

/**
 * Start a real-time thread that does nothing, and wait 2 s. @return 0, or -1 when it could not be
 * created, for want of the privilege for one.
 */
NVRHAL_API int32_t venc_start_getstream(uint32_t value);

#ifdef __cplusplus
}
#endif

#endif
