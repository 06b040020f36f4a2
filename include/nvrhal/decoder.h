/*
 * decoder.h - decoder channels, and what connects them to display ports.
 */
#ifndef NVRHAL_DECODER_H
#define NVRHAL_DECODER_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Opaque here: platform/include has it. */
struct MI_VDEC_Stream;

/*
 * "Decoder thread": the thread of that channel's frames, or the UI thread while that one is quiet.
 * Calls on different channels may run in parallel.
 */

/**
 * Create and start decoder channels 0 to count - 1 (never above N) for whole frames of up to the size
 * of enNorm_vga's timing, each with an output port of one pane of an even grid of count panes. Start-up
 * calls it.
 * @param codec_type  enum FrameCodec, or 2 = JPEG
 * @param count       1 to N + 1; 0 or less creates none
 * @return 0, -1, or the platform's code
 * Errors: -1 when a channel could not be created, the platform's code for an output size that was
 *         refused; the channels before it keep running.
 * Thread: UI thread.
 */
NVRHAL_API int32_t vdec_create(uint32_t codec_type, int32_t count);

/**
 * Create and start one channel. Its stream buffer has 512 KiB up to 720x576, 1 MiB up to 2088960
 * pixels, 2 MiB beyond.
 * @param channel     0 to NVRHAL_MAX_DECODERS - 1, absent
 * @param width       largest picture, pixels, 1 or more
 * @param height      largest picture, pixels, 1 or more
 * @param codec_type  enum FrameCodec, or 2 = JPEG
 * @param video_mode  1 = whole frames per send, 0 = any cut of the stream
 * @return 0, -1, or the platform's code
 * Errors: -1 for a bad codec type or a null size; the platform's code when it refused.
 * Thread: decoder thread.
 * Ownership: the sizes are used during the call only.
 */
NVRHAL_API int32_t vdec_open_chn(uint32_t channel, const uint16_t *width, const uint16_t *height,
                                 uint32_t codec_type, uint32_t video_mode);

/**
 * Create and start one channel for any cut of a stream of up to the size of enNorm_vga's timing; the
 * output size stays the platform's default.
 * @param codec_type  enum FrameCodec, or 2 = JPEG
 * @param channel     0 to NVRHAL_MAX_DECODERS - 1, absent
 * @return 0, or -1
 * Errors: -1 for a bad codec type, or when the platform refused.
 * Thread: decoder thread.
 */
NVRHAL_API int32_t vdec_create_chnn(uint32_t codec_type, uint32_t channel);

/**
 * Stop, destroy and create a channel (vdec_create_chnn): what is queued is lost, and decoding begins
 * at the next key frame. Whether its binding to a display port outlives it is the platform's choice.
 *
 * ext_send_stream does this by itself when a live channel's codec changes. Playback does not: call it
 * after ext_playback_start for every channel whose recording has another codec than its camera, and
 * with the camera's codec again before ext_playback_exit, since ext_send_stream remembers the codec
 * that it gave the channel. Apply a layout afterwards: it sizes and binds the decoder as it is by then.
 * @param channel     0 to N
 * @param codec_code  enum FrameCodec; any other = H.264
 * @return 0, -1, or the platform's code
 * Errors: the platform's code when the channel could not be stopped or destroyed, -1 when it could not
 *         be created: the channel is then stopped, or absent.
 * Thread: decoder thread.
 */
NVRHAL_API int32_t vdec_recreate(uint32_t channel, uint32_t codec_code);

/**
 * Stop and start a channel: what is queued is lost.
 * @param channel  0 to N
 * @return 0 when it runs again, else the platform's code
 * Errors: printed.
 * Thread: decoder thread.
 */
NVRHAL_API int32_t vdec_resetchn(uint32_t channel);

/**
 * Reset every camera channel, 0 to N - 1.
 * @return 0
 * Errors: only printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t vdec_resetallchn(void);

/**
 * Stop a channel.
 * @param channel  0 to N
 * @return 0, or the platform's code
 * Errors: printed.
 * Thread: decoder thread.
 */
NVRHAL_API int32_t vdec_stopdecrecv(uint32_t channel);

/**
 * Stop every camera channel, 0 to N - 1.
 * Errors: only printed.
 * Thread: UI thread.
 */
NVRHAL_API void vdec_stopalldecchn(void);

/**
 * Stop and destroy a channel.
 * @param channel  0 to N
 * @param wait     1 = in between wait, 40 ms at a time and without limit, until no picture and no
 *                 stream frame is left in it; any other = do not wait
 * @param ignored  any value
 * @return 0, or the platform's code
 * Errors: it stops at the first failure.
 * Thread: decoder thread.
 */
NVRHAL_API int32_t vdec_wait_destroy_chn(uint32_t channel, int32_t wait, uint32_t ignored);

/**
 * Send encoded data, waiting up to 20 ms for room in the channel's stream buffer.
 * @param channel  0 to N
 * @param stream   the platform's record; null is handed to the platform, which refuses it
 * @return 0, or -1
 * Errors: -1 when the platform refused or had no room in time: the channel has been reset then.
 * Thread: decoder thread.
 * Ownership: the platform copies the bytes during the call.
 */
NVRHAL_API int32_t vdec_send_stream(uint32_t channel, const struct MI_VDEC_Stream *stream);

/**
 * Bind decoder channel i to display port i of device 0, for i from 0 to count - 1.
 * @param count  1 to NVRHAL_DISPLAY_PORTS; 0 or less binds nothing
 * @return 0, or -1
 * Errors: it stops at the first failure; the bindings before it stay.
 * Thread: UI thread.
 */
NVRHAL_API int32_t vdec_bind_vpss(int32_t count);

/**
 * Disconnect a decoder channel's output port 0 from a display port of device 0.
 * @param channel  decoder channel, 0 to N
 * @param port     display port, 0 to NVRHAL_DISPLAY_PORTS - 1
 * @return 0, or -1
 * Errors: -1 when the platform refused: the binding is as it was.
 * Thread: UI thread.
 */
NVRHAL_API int32_t vdec_unbind_vpss(uint32_t channel, uint32_t port);

/**
 * Disconnect an output port of a decoder channel from a display port of device 0.
 * @param channel   decoder channel, 0 to N
 * @param port      its output port, 0 on this board
 * @param dst_port  display port, 0 to NVRHAL_DISPLAY_PORTS - 1
 * @return 0, or -1
 * Errors: -1 when the platform refused: the binding is as it was.
 * Thread: UI thread.
 */
NVRHAL_API int32_t vdec_unbind_vo(uint32_t channel, uint32_t port, uint32_t dst_port);

/**
 * Connect output port 0 of a decoder channel to a display port; every picture passes.
 * @param dev        display device, -1 to 2
 * @param disp_port  display port, 0 to NVRHAL_DISPLAY_PORTS - 1
 * @param channel    decoder channel, 0 to N
 * @param ignored    any value
 * @return 0, or -1
 * Errors: -1 when the platform refused: the binding is as it was.
 * Thread: UI thread.
 */
NVRHAL_API int32_t vo_bind_vpss(int32_t dev, uint32_t disp_port, uint32_t channel, uint32_t ignored);

/**
 * Disconnect output port 0 of a decoder channel from a display port.
 * @param dev        display device, -1 to 2
 * @param disp_port  display port, 0 to NVRHAL_DISPLAY_PORTS - 1
 * @param channel    decoder channel, 0 to N
 * @param ignored    any value
 * @return 0, or -1
 * Errors: -1 when the platform refused: the binding is as it was.
 * Thread: UI thread.
 */
NVRHAL_API int32_t vo_unbind_vpss(int32_t dev, uint32_t disp_port, uint32_t channel, uint32_t ignored);

/**
 * Disconnect whatever feeds a display port. The source is handed over as zeros; a platform that must
 * be told the source refuses.
 * @param dev        display device, -1 to 2
 * @param disp_port  display port, 0 to NVRHAL_DISPLAY_PORTS - 1
 * @return the platform's result
 * Errors: the platform's code; nothing is printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t vo_unbind_vi(int32_t dev, uint32_t disp_port);

#ifdef __cplusplus
}
#endif

#endif
