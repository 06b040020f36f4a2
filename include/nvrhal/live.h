/*
 * live.h - live frames in, and which of them are shown.
 */
#ifndef NVRHAL_LIVE_H
#define NVRHAL_LIVE_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ======================================================================================= */
/* Live view: selection state                                                               */
/* ======================================================================================= */

/** Channels on screen: bit n = channel n, 255 = all. Rebuilt by every layout. */
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

/** {channel, channel, 0} of the secondary output's last single-pane layout; and its companion. */
extern NVRHAL_API uint32_t zoom_arg_pre[3];
extern NVRHAL_API uint32_t zoom_arg[3];

/* ======================================================================================= */
/* Live view: frames in                                                                     */
/* ======================================================================================= */

/**
 * Send one live video frame to its decoder, or one block of audio to the loudspeaker.
 *
 * Reads of *frame: media, length (1 to 655360 bytes), width, height, data, channel, pts. Video
 * channels are 0 to 16; one above 7 is shown only while cur_display_chnn is 255. An audio block is a
 * 4-byte header and 320-byte A-law frames; a remainder is dropped, and its channel counts only while
 * zoomed. Sending waits for room: video up to 20 ms, audio without limit. The bytes are copied.
 * Media of other kinds than none, video and audio are accepted and ignored.
 * @param codec         video: 1 = H.265, any other = H.264; a change recreates the decoder
 * @param link_quality  quality of the channel's link as the application measures it, 1 to 100;
 *                      0 = not measured, never reset. The worse, the smaller the backlog that is
 *                      tolerated before the decoder is reset; negative tolerates the most.
 * @param rate_class    below 5 tolerates the larger backlog of a band
 * @return 0 = accepted, also when the channel is not shown and the frame was dropped;
 *         -1 = refused (null, bad length or channel, kind 0, zoomed away, playback, decoder failure).
 * Thread: channel thread.
 */
NVRHAL_API int32_t ext_send_stream(const FrameInfo *frame, uint32_t codec, int32_t link_quality,
                                   int32_t rate_class);

#ifdef __cplusplus
}
#endif

#endif
