/*
 * playback.h - recorded streams on the display.
 */
#ifndef NVRHAL_PLAYBACK_H
#define NVRHAL_PLAYBACK_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/frame.h"
#include "nvrhal/limits.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Decoders keep the codec of their cameras: for a recording of another codec call vdec_recreate after
 * ext_playback_start, and back with the camera's codec before ext_playback_exit. "Playback thread":
 * one thread makes all calls of this header.
 *
 *   ext_playback_start, vdec_recreate where the codec differs, a layout, buffers ...,
 *   ext_playback_stop, vdec_recreate back, ext_playback_exit, a layout
 */

/**
 * Hand the display over to playback: live frames are refused from now on, the ports are bound to the
 * playback decoders and nothing of the live picture is left.
 * @param chnn_bits          any value; only printed
 * @param signal_split_mode  any value; only printed
 * @return 0, or -1
 * Errors: -1 when a port could not be bound: playback then owns the display all the same.
 * Thread: playback thread.
 */
NVRHAL_API int32_t ext_playback_start(uint32_t chnn_bits, int32_t signal_split_mode);

/**
 * Borrow the library's only playback buffer.
 * @param rec  out: length = NVRHAL_MAX_SEND_BYTES, the buffer's size in bytes; data = the buffer
 * @return 0, or -1
 * Errors: -1 for null.
 * Thread: playback thread.
 * Ownership: the buffer is the library's; the application may fill it until ext_playback_set_buf.
 */
NVRHAL_API int32_t ext_playback_get_buf(FrameInfo *rec);

/**
 * Deliver a filled buffer. Reads media, length, data, channel, display_rate and pts, which is handed to
 * the decoder as it is, in the application's own unit.
 *
 *   length 0 or above NVRHAL_MAX_SEND_BYTES  flush: what port `channel` shows and holds is dropped
 *   FRAME_MEDIA_VIDEO   one encoded frame for decoder channel 0 to NVRHAL_PLAYBACK_CHANNELS - 1;
 *                       larger numbers are dropped. 8 bytes that begin 1, 1 flush the port instead.
 *                       display_rate 2 doubles the display's frame rate; other values leave it as it
 *                       is. Waits up to 20 ms for room.
 *   FRAME_MEDIA_AUDIO   a block of sound (FrameInfo), of which length / 324 units are played: one unit
 *                       takes 324 bytes, two take 648, although the header stands there once. Waits
 *                       for room in the audio output without limit.
 *
 * @param rec  in and out; data may be the application's own memory, too. On return data is null.
 * @return 1 = flushed, 0 = consumed or dropped, -1 = failed
 * Errors: -1 for null, a port that cannot be cleared, a decoder that failed or had no room, sound while
 *         audio_ctrl.mode is 0, and media of other kinds but none.
 * Thread: playback thread.
 * Ownership: the bytes are used during the call; the buffer is free again.
 */
NVRHAL_API int32_t ext_playback_set_buf(FrameInfo *rec);

/**
 * Give the audio output back to live sound: audio_ctrl.mode becomes AUDIO_USE_LIVE. Nothing else stops:
 * pictures go on, and sound that is delivered afterwards is still played.
 * @return 0
 * Errors: none.
 * Thread: playback thread.
 */
NVRHAL_API int32_t ext_playback_stop(void);

/**
 * Back to live view: every channel's frames are decoded again. Apply a layout next.
 * @return 0
 * Errors: only printed.
 * Thread: playback thread.
 */
NVRHAL_API int32_t ext_playback_exit(void);

/**
 * Switch a display port of device 0 off.
 * @param channel  0 to NVRHAL_DISPLAY_PORTS - 1
 * @return 0, or other than 0
 * Errors: other than 0 when the platform refused.
 * Thread: playback thread.
 */
NVRHAL_API int32_t ext_playback_disable_channel(uint32_t channel);

/**
 * Enter a single enlarged picture: wait up to about 100 ms until the channel's decoder has consumed
 * what it was sent, then clear its port and flush it.
 * @param channel  0 to N - 1
 * @return 0
 * Errors: only printed.
 * Thread: playback thread.
 */
NVRHAL_API int32_t ext_signal_spilt_start(uint32_t channel);

/**
 * Leave a single enlarged picture; does what ext_signal_spilt_start does.
 * @param channel  0 to N - 1
 * @return 0
 * Errors: only printed.
 * Thread: playback thread.
 */
NVRHAL_API int32_t ext_signal_spilt_exit(uint32_t channel);

/**
 * Reset every camera channel's decoder.
 * @return 0
 * Errors: only printed.
 * Thread: playback thread.
 */
NVRHAL_API int32_t ext_resetplaychn(void);

/**
 * Stop every camera channel's decoder.
 * @return 0
 * Errors: only printed.
 * Thread: playback thread.
 */
NVRHAL_API int32_t ext_stopplaychn(void);

/**
 * The video standard code, which start-up sets to 0.
 * @return 1 = 25 frames per second, any other value = 30
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t local_get_videoformat(void);

#ifdef __cplusplus
}
#endif

#endif
