/*
 * live.h - live frames in, and which of them are shown.
 */
#ifndef NVRHAL_LIVE_H
#define NVRHAL_LIVE_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/frame.h"
#include "nvrhal/limits.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The selection state: plain words that the application may write. */

/**
 * Channels on screen: bit n = channel n, for the first NVRHAL_MASK_CHANNELS; 255 = all. Rebuilt by every
 * layout.
 */
extern NVRHAL_API uint8_t cur_display_chnn;

/** Channel being snapped, 255 = none. */
extern NVRHAL_API int32_t cur_snap_chnn;

/** 1 while playback owns the display. */
extern NVRHAL_API uint32_t playback_status;

/** The application sets 1 while electronic zoom is on: only zoom_channel's frames are accepted. */
extern NVRHAL_API uint32_t vo_for_ezoom;

/** Channel of the last single-pane layout. */
extern NVRHAL_API uint32_t zoom_channel;

/** For the application to set; only printed by the key reader. */
extern NVRHAL_API uint32_t zoom_flag_click;

/** {channel, channel, 0} of the secondary output's last single-pane layout. */
extern NVRHAL_API uint32_t zoom_arg_pre[3];

/** The application's own counterpart of zoom_arg_pre. */
extern NVRHAL_API uint32_t zoom_arg[3];

/**
 * Send one live video frame to its decoder, or one block of sound to the loudspeaker.
 *
 * A frame of another codec than the channel's last one recreates the decoder (vdec_recreate), which
 * then waits for a key frame. Sending waits for room: video up to 20 ms, sound without limit. Nothing
 * is printed for a frame that goes through.
 *
 * @param frame         reads media, length (1 to NVRHAL_MAX_SEND_BYTES), data, channel; of video also
 *                      width and height, pixels, which become those of the channel's main and network
 *                      stream attributes, and pts, which is handed to the decoder as it is, in the
 *                      application's own unit. Video: channel 0 to NVRHAL_MAX_DECODERS - 1; one from
 *                      NVRHAL_MASK_CHANNELS on is shown only while cur_display_chnn is 255. Sound: a
 *                      header and units (FrameInfo); a remainder is dropped, and the channel counts
 *                      only while zoomed. Media of other kinds are accepted and ignored.
 * @param codec         video: enum FrameCodec; any other = H.264
 * @param link_quality  quality of the channel's link as the application measures it, 1 to 100; 0 = not
 *                      measured, never reset. The worse, the smaller the backlog that is tolerated
 *                      before the decoder is reset: 2 MiB from 85 on; 160 or 128 KiB from 60 on; 96 or
 *                      48 KiB below. Negative tolerates 2 MiB.
 * @param rate_class    any; a class, not a rate: below 5 tolerates the larger backlog of a band
 * @return 0, also when the channel is not shown and the frame was dropped; or -1
 * Errors: -1 for null, a bad length, media none, and while another channel is zoomed into; for video also
 *         for a bad channel, during playback (but for the channel that is snapped), and when the decoder
 *         failed or had no room: it has been reset then. A block that the output refuses is only printed.
 * Thread: channel thread.
 * Ownership: the bytes are copied during the call.
 */
NVRHAL_API int32_t ext_send_stream(const FrameInfo *frame, uint32_t codec, int32_t link_quality,
                                   int32_t rate_class);

#ifdef __cplusplus
}
#endif

#endif
