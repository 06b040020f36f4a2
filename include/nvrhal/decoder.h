/*
 * decoder.h - decoder channels, and what connects them to display ports.
 */
#ifndef NVRHAL_DECODER_H
#define NVRHAL_DECODER_H

#include <stdint.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Opaque here: platform/include has it. */
struct MI_VDEC_Stream;

/*
 * Thread, where nothing else is said: the channel's own thread, or the UI thread while that one is
 * quiet. Calls on different channels may run in parallel.
 */

/**
 * Create and start decoder channels 0..count-1 (never above N) for whole frames of up to the size of
 * enNorm_vga's timing, each with an output port of one pane of an even grid of count panes.
 * @param codec_type  0 H.264, 1 H.265, 2 JPEG   @param count  below 1 creates none
 * @return 0, -1 when a channel could not be created, or the platform's code for an output size that
 *         was refused; the channels before it keep running. Thread: UI thread.
 */
NVRHAL_API int32_t vdec_create(uint32_t codec_type, int32_t count);

/**
 * Create and start one channel. Its stream buffer has 512 KiB up to 720x576, 1 MiB up to 2088960
 * pixels, 2 MiB beyond.
 * @param width,height  largest picture, pixels   @param codec_type  0 H.264, 1 H.265, 2 JPEG
 * @param video_mode  1 = whole frames per send, 0 = any cut of the stream
 * @return 0, -1 for a bad codec type or a null size, or the platform's code.
 */
NVRHAL_API int32_t vdec_open_chn(uint32_t channel, const uint16_t *width, const uint16_t *height,
                                 uint32_t codec_type, uint32_t video_mode);

/** Create and start one channel for any cut of a stream of up to the screen's size; the output size stays
 * the platform's default. @param codec_type  0 H.264, 1 H.265, 2 JPEG. @return 0 or -1. */
NVRHAL_API int32_t vdec_create_chnn(uint32_t codec_type, uint32_t channel);

/** Stop, destroy and create a channel (vdec_create_chnn) for codec code 1 = H.265, any other = H.264.
 * @return 0, the platform's code when it could not be taken away, -1 when it could not be created. */
NVRHAL_API int32_t vdec_recreate(uint32_t channel, uint32_t codec_code);

/** Stop and start a channel: what is queued is lost. @return 0 when it runs again, else the platform's
 * code. */
NVRHAL_API int32_t vdec_resetchn(uint32_t channel);

/** Reset every camera channel, 0 to N-1; failures are only printed. @return 0. Thread: UI thread. */
NVRHAL_API int32_t vdec_resetallchn(void);

/** Stop a channel. @return 0 when stopped, else the platform's code. */
NVRHAL_API int32_t vdec_stopdecrecv(uint32_t channel);

/** Stop every camera channel, 0 to N-1; failures are only printed. Thread: UI thread. */
NVRHAL_API void vdec_stopalldecchn(void);

/**
 * Stop and destroy a channel. @param wait  1 = in between wait, 40 ms at a time and without limit,
 * until no picture and no stream frame is left in it; any other value = do not wait
 * @return 0, or the platform's code at the first failure.
 */
NVRHAL_API int32_t vdec_wait_destroy_chn(uint32_t channel, int32_t wait, uint32_t ignored);

/** Send encoded data, waiting up to 20 ms for room; a failure resets the channel. The platform copies the
 * bytes. @param stream  the platform's record; null is the platform's to refuse. @return 0 or -1. */
NVRHAL_API int32_t vdec_send_stream(uint32_t channel, const struct MI_VDEC_Stream *stream);

/** Bind decoder channel i to display port i of device 0 for i in 0..count-1. @return 0, also for a count
 * below 1, or -1 at the first failure. Thread: UI thread. */
NVRHAL_API int32_t vdec_bind_vpss(int32_t count);

/** Disconnect a decoder channel from a display port of device 0: output port 0 from display port `port`, or
 * output port `port` from display port dst_port. @return 0 or -1. Thread: UI thread. */
NVRHAL_API int32_t vdec_unbind_vpss(uint32_t channel, uint32_t port);
NVRHAL_API int32_t vdec_unbind_vo(uint32_t channel, uint32_t port, uint32_t dst_port);

/** Connect or disconnect output port 0 of a decoder channel and a display port of device dev; every picture
 * passes. @return 0, or -1 when the platform refused: the binding is as it was. Thread: UI thread. */
NVRHAL_API int32_t vo_bind_vpss(int32_t dev, uint32_t disp_port, uint32_t channel, uint32_t ignored);
NVRHAL_API int32_t vo_unbind_vpss(int32_t dev, uint32_t disp_port, uint32_t channel, uint32_t ignored);

/** Disconnect whatever feeds a display port. The source is handed over as zeros; a platform that must be
 * told the source refuses. @return the platform's result. Thread: UI thread. */
NVRHAL_API int32_t vo_unbind_vi(int32_t dev, uint32_t disp_port);

#ifdef __cplusplus
}
#endif

#endif
