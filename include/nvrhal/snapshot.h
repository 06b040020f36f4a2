/*
 * snapshot.h - one JPEG picture of a channel.
 */
#ifndef NVRHAL_SNAPSHOT_H
#define NVRHAL_SNAPSHOT_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/frame.h"
#include "nvrhal/limits.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Opaque here: platform/include has it. */
struct MI_VENC_Stream;

/** Size of a snapshot. */
typedef struct SnapSize {
    uint32_t width, height; /* pixels */
} SnapSize;

/**
 * Allow snapshots, for good.
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_set_snap_channel_enable(void);

/**
 * Take one JPEG of a channel, NVRHAL_SNAPSHOT_WIDTH x NVRHAL_SNAPSHOT_HEIGHT pixels. Waits up to 2.5 s
 * for a picture; the channel's frames must keep coming in through ext_send_stream meanwhile, also when
 * it is not shown. During playback the picture is decoded by the spare decoder from the next key frame
 * on; that decoder keeps its codec: for H.264 cameras call vdec_recreate(N, NVRHAL_CODEC_H264)
 * once before.
 *
 * Clear the record first, but for its channel. A picture is there when length is not 0 afterwards,
 * whatever the result: it is 0 also when snapshots are not enabled, when nothing is filled; and during
 * playback it is that of stopping the spare decoder.
 *
 * @param frame  in: channel, 0 to N - 1. Out: frame_type 1, media FRAME_MEDIA_JPEG, width and height in
 *               pixels, length in bytes, data, local_time in microseconds.
 * @return 0, -1, or a platform code
 * Errors: -1 for null, a decoder whose pictures are smaller than the snapshot (its width or height), a
 *         pipeline that cannot be built, no picture in time, no memory; a platform code for a spare
 *         decoder that cannot be rebuilt or stopped. Data may be an address that has been freed
 *         already: never give ext_release_jpeg_buf a record whose length is 0 after a failure.
 * Thread: any, one snapshot at a time.
 * Ownership: data is the caller's until ext_release_jpeg_buf.
 */
NVRHAL_API int32_t ext_get_jpeg_stream(FrameInfo *frame);

/**
 * Free a snapshot's data and set it to null.
 * @param frame  a record that ext_get_jpeg_stream filled; null, and null data, are accepted
 * @return 0
 * Errors: none.
 * Thread: any.
 * Ownership: data goes back to the library.
 */
NVRHAL_API int32_t ext_release_jpeg_buf(FrameInfo *frame);

/**
 * First step of ext_get_jpeg_stream: build the pipeline from a decoder channel.
 * @param decoder_channel  0 to N
 * @param encoder_channel  0 to N - 1
 * @param size             out: NVRHAL_SNAPSHOT_WIDTH x NVRHAL_SNAPSHOT_HEIGHT pixels
 * @return 0, -1, or 31
 * Errors: 31 for a decoder whose pictures are smaller than the snapshot, -1 when the platform refused:
 *         what has been built stays until venc_snap_stop.
 * Thread: any, one snapshot at a time.
 * Ownership: size is the caller's.
 */
NVRHAL_API int32_t venc_snap_start(uint32_t decoder_channel, uint32_t encoder_channel, SnapSize *size);

/**
 * Second step: fetch one picture.
 * @param encoder_channel  0 to N - 1
 * @param frame            out: media, length in bytes, data, local_time in microseconds
 * @return 0, or -1
 * Errors: as ext_get_jpeg_stream.
 * Thread: any, one snapshot at a time.
 * Ownership: data is the caller's until ext_release_jpeg_buf.
 */
NVRHAL_API int32_t venc_snap_process(uint32_t encoder_channel, FrameInfo *frame);

/**
 * Third step: take the pipeline down.
 * @param decoder_channel  0 to N
 * @param encoder_channel  0 to N - 1
 * @return 0
 * Errors: only printed.
 * Thread: any, one snapshot at a time.
 */
NVRHAL_API int32_t venc_snap_stop(uint32_t decoder_channel, uint32_t encoder_channel);

/**
 * A diagnosis: write an encoder stream to "./YEAR_MM_DD-hh_mm_ss.jpg" (local time, MM from 00) and
 * print the head of each pack.
 * @param stream  the platform's record
 * @return 0
 * Errors: a file that cannot be created is only printed; on a full disk the file ends early.
 * Thread: any.
 * Ownership: used during the call only.
 */
NVRHAL_API int32_t test_save_jpeg_to_file(const struct MI_VENC_Stream *stream);

/**
 * A diagnosis: start a real-time thread that does nothing, and wait 2 s.
 * @param value  any; handed to the thread
 * @return 0, or -1
 * Errors: -1 when the thread could not be created, for want of the privilege for one.
 * Thread: any.
 */
NVRHAL_API int32_t venc_start_getstream(uint32_t value);

#ifdef __cplusplus
}
#endif

#endif
