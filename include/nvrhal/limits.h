/*
 * limits.h - the numbers that the library and the application must agree on.
 */
#ifndef NVRHAL_LIMITS_H
#define NVRHAL_LIMITS_H

#include "nvrhal/api.h"

/* Channels. */
#define NVRHAL_MAX_CAMERAS       16 /* DeviceParams::vi_chn_num at most                                 */
#define NVRHAL_MAX_DECODERS      17 /* one a camera, and the spare one of snapshots during playback     */
#define NVRHAL_DISPLAY_PORTS     16 /* of a display device; every pane takes one                        */
#define NVRHAL_MASK_CHANNELS     8  /* channels that have a bit of their own in cur_display_chnn        */
#define NVRHAL_PLAYBACK_CHANNELS 8  /* channels that ext_playback_set_buf plays                         */
#define NVRHAL_STORED_CHANNELS   8  /* channels that a frame pool stores: 0 to 7, whatever N is         */

/* The key queue: how many slots its reader goes round, and how many of them its writer. */
#define NVRHAL_KEY_SLOTS        256
#define NVRHAL_KEY_WRITER_SLOTS 128

/* Live frames and the playback buffer. */
#define NVRHAL_MAX_SEND_BYTES 655360 /* largest live frame or audio block, and the playback buffer      */

/*
 * The rings that start-up makes for every channel of the three frame pools: the largest frame and the
 * readers' safe distance, the ring of frames, in bytes, and how many frames the index describes.
 */
#define NVRHAL_MAIN_FRAME_BYTES  393216
#define NVRHAL_MAIN_RING_BYTES   983040
#define NVRHAL_MAIN_RING_FRAMES  768
#define NVRHAL_SUB_FRAME_BYTES   131072
#define NVRHAL_SUB_RING_BYTES    327680
#define NVRHAL_SUB_RING_FRAMES   256
#define NVRHAL_AUDIO_FRAME_BYTES 340
#define NVRHAL_AUDIO_RING_BYTES  13600
#define NVRHAL_AUDIO_RING_FRAMES 40

/* Sound: G.711 A-law, one channel. */
#define NVRHAL_SOUND_RATE_HZ      8000 /* samples, and bytes, a second                                  */
#define NVRHAL_SOUND_HEADER_BYTES 4    /* in front of a block's samples; never read                     */
#define NVRHAL_SOUND_UNIT_BYTES   320  /* 40 ms: what one block is cut into                             */

/* A snapshot, pixels. */
#define NVRHAL_SNAPSHOT_WIDTH  352
#define NVRHAL_SNAPSHOT_HEIGHT 288

/*
 * Extent of zoom coordinates, pixels, on an output of 1920 x 1080: all cameras' pictures count as that
 * large, whatever their size. ext_vidoe_image_zoom says what it is on other outputs.
 */
#define NVRHAL_ZOOM_WIDTH  1920
#define NVRHAL_ZOOM_HEIGHT 1080

#endif
