/*
 * playback.h - recorded streams on the display.
 */
#ifndef NVRHAL_PLAYBACK_H
#define NVRHAL_PLAYBACK_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Hand the display over to playback: live frames are refused from now on, the ports are bound to
 * the playback decoders and nothing of the live picture is left. Both arguments are only printed.
 * @return 0; -1 when a port could not be bound: playback then owns the display all the same.
 * Thread: the playback thread, as all calls of this section.
 */
NVRHAL_API int32_t ext_playback_start(uint32_t chnn_bits, int32_t signal_split_mode);

/**
 * Borrow the library's only playback buffer. @param rec  out: length = 655360, data = the buffer,
 * which the application may fill until ext_playback_set_buf. @return 0, or -1 for null.
 */
NVRHAL_API int32_t ext_playback_get_buf(FrameInfo *rec);

/**
 * Deliver a filled buffer. Reads media, length, data, channel, display_rate and pts of *rec; data
 * may be the application's own memory, too. On return data is null: the bytes are used.
 *
 *   length 0 or above 655360    flush: what port `channel` shows and holds is dropped
 *   FRAME_MEDIA_VIDEO           one encoded frame for decoder channel 0 to 7; larger numbers are
 *                               dropped. 8 bytes that begin 1, 1 flush the port instead.
 *                               display_rate 2 doubles the display's frame rate; other values leave
 *                               the display's rate as it is.
 *   FRAME_MEDIA_AUDIO           4-byte header and length / 324 frames of 320 bytes of A-law; waits
 *                               for room in the audio output
 * @return 1 = flushed, 0 = consumed or dropped, -1 = failed, audio off, another kind, or null.
 */
NVRHAL_API int32_t ext_playback_set_buf(FrameInfo *rec);

/** Stop playback's audio; playback goes on. @return 0. */
NVRHAL_API int32_t ext_playback_stop(void);

/** Back to live view: every channel's frames are decoded again. Apply a layout next. @return 0. */
NVRHAL_API int32_t ext_playback_exit(void);

/** Switch display port `channel` of device 0 off. @return 0, or non-zero when it failed. */
NVRHAL_API int32_t ext_playback_disable_channel(uint32_t channel);

/**
 * Enter or leave a single enlarged picture: wait up to about 100 ms until the channel's decoder has
 * consumed what it was sent, then clear its port and flush it. Both do the same. @return 0.
 */
NVRHAL_API int32_t ext_signal_spilt_start(uint32_t channel);
NVRHAL_API int32_t ext_signal_spilt_exit(uint32_t channel);

/** Reset every camera channel's decoder. @return 0. */
NVRHAL_API int32_t ext_resetplaychn(void);

/** Stop every camera channel's decoder. @return 0. */
NVRHAL_API int32_t ext_stopplaychn(void);

/** The video standard code: 1 = 25 frames per second, any other value = 30. Thread: any. */
NVRHAL_API int32_t local_get_videoformat(void);

#ifdef __cplusplus
}
#endif

#endif
