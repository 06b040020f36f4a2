/*
 * seam_layouts.h - sizes and offsets of every record of the two seams, asserted where it is included.
 *
 * Library, platform and drivers are compiled apart from one another, by different compilers perhaps. Who
 * includes this header in one source has its own compiler prove that it sees the records as they are
 * meant: little-endian, 64-bit words of records at 4 bytes, no packing beyond that. Records without
 * pointers have one layout everywhere (SEAM_SIZE, SEAM_AT); that of records with pointers is stated for
 * the 32-bit target, and not looked at elsewhere (SEAM32_SIZE, SEAM32_AT).
 */
#ifndef SEAM_LAYOUTS_H
#define SEAM_LAYOUTS_H

#include <stddef.h>

#include "ad_driver.h"
#include "fb_driver.h"
#include "gpio_driver.h"
#include "ir_driver.h"
#include "mi_ao.h"
#include "mi_common.h"
#include "mi_disp.h"
#include "mi_divp.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mi_venc.h"
#include "mouse_driver.h"

#ifdef __cplusplus
#define SEAM_ASSERT(condition, text) static_assert(condition, text)
#else
#define SEAM_ASSERT(condition, text) _Static_assert(condition, text)
#endif

#define SEAM_SIZE(type, bytes) SEAM_ASSERT(sizeof(type) == (bytes), #type " must be " #bytes " bytes")
#define SEAM_AT(type, field, offset)                                                                         \
    SEAM_ASSERT(offsetof(type, field) == (offset), #type "." #field " must stand at " #offset)
#define SEAM32_SIZE(type, bytes)                                                                             \
    SEAM_ASSERT(sizeof(void *) != 4 || sizeof(type) == (bytes), #type " must be " #bytes " bytes")
#define SEAM32_AT(type, field, offset)                                                                       \
    SEAM_ASSERT(sizeof(void *) != 4 || offsetof(type, field) == (offset),                                    \
                #type "." #field " must stand at " #offset)

#ifdef __BYTE_ORDER__
SEAM_ASSERT(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
            "records lie in memory as a little-endian chip has them");
#endif

/* mi_common.h */
SEAM_SIZE(MI_Rect, 8);
SEAM_AT(MI_Rect, x, 0);
SEAM_AT(MI_Rect, y, 2);
SEAM_AT(MI_Rect, width, 4);
SEAM_AT(MI_Rect, height, 6);

/* mi_sys.h */
SEAM_SIZE(MI_SYS_Version, 128);
SEAM_AT(MI_SYS_Version, text, 0);
SEAM_SIZE(MI_SYS_ChnPort, 16);
SEAM_AT(MI_SYS_ChnPort, module, 0);
SEAM_AT(MI_SYS_ChnPort, device, 4);
SEAM_AT(MI_SYS_ChnPort, channel, 8);
SEAM_AT(MI_SYS_ChnPort, port, 12);

/* mi_vdec.h */
SEAM_SIZE(MI_VDEC_ChnAttr, 32);
SEAM_AT(MI_VDEC_ChnAttr, codec, 0);
SEAM_AT(MI_VDEC_ChnAttr, stream_buffer_bytes, 4);
SEAM_AT(MI_VDEC_ChnAttr, priority, 8);
SEAM_AT(MI_VDEC_ChnAttr, max_width, 12);
SEAM_AT(MI_VDEC_ChnAttr, max_height, 16);
SEAM_AT(MI_VDEC_ChnAttr, video_mode, 20);
SEAM_AT(MI_VDEC_ChnAttr, reference_frames, 24);
SEAM_AT(MI_VDEC_ChnAttr, decode_buffers, 28);
SEAM_SIZE(MI_VDEC_ChnStat, 12);
SEAM_AT(MI_VDEC_ChnStat, left_stream_bytes, 0);
SEAM_AT(MI_VDEC_ChnStat, left_stream_frames, 4);
SEAM_AT(MI_VDEC_ChnStat, left_pictures, 8);
SEAM32_SIZE(MI_VDEC_Stream, 24);
SEAM32_AT(MI_VDEC_Stream, address, 0);
SEAM32_AT(MI_VDEC_Stream, length_bytes, 4);
SEAM32_AT(MI_VDEC_Stream, pts, 8);
SEAM32_AT(MI_VDEC_Stream, end_of_frame, 16);
SEAM32_AT(MI_VDEC_Stream, end_of_stream, 20);
SEAM_SIZE(MI_VDEC_OutputPortAttr, 4);
SEAM_AT(MI_VDEC_OutputPortAttr, width, 0);
SEAM_AT(MI_VDEC_OutputPortAttr, height, 2);

/* mi_disp.h */
SEAM_SIZE(MI_DISP_PubAttr, 16);
SEAM_AT(MI_DISP_PubAttr, background, 0);
SEAM_AT(MI_DISP_PubAttr, interface_type, 4);
SEAM_AT(MI_DISP_PubAttr, timing, 8);
SEAM_AT(MI_DISP_PubAttr, frame_rate, 12);
SEAM_SIZE(MI_DISP_VideoLayerAttr, 24);
SEAM_AT(MI_DISP_VideoLayerAttr, window, 0);
SEAM_AT(MI_DISP_VideoLayerAttr, width, 8);
SEAM_AT(MI_DISP_VideoLayerAttr, height, 12);
SEAM_AT(MI_DISP_VideoLayerAttr, pixel_format, 16);
SEAM_AT(MI_DISP_VideoLayerAttr, reserved, 20);
SEAM_SIZE(MI_DISP_InputPortAttr, 12);
SEAM_AT(MI_DISP_InputPortAttr, window, 0);
SEAM_AT(MI_DISP_InputPortAttr, source_width, 8);
SEAM_AT(MI_DISP_InputPortAttr, source_height, 10);

/* mi_hdmi.h */
SEAM32_SIZE(MI_HDMI_InitParam, 8);
SEAM32_AT(MI_HDMI_InitParam, callback, 0);
SEAM32_AT(MI_HDMI_InitParam, user_param, 4);
SEAM_SIZE(MI_HDMI_Attr, 56);
SEAM_AT(MI_HDMI_Attr, connected, 0);
SEAM_AT(MI_HDMI_Attr, video_enabled, 4);
SEAM_AT(MI_HDMI_Attr, video_timing, 8);
SEAM_AT(MI_HDMI_Attr, output_mode, 12);
SEAM_AT(MI_HDMI_Attr, colour_type, 16);
SEAM_AT(MI_HDMI_Attr, deep_colour, 20);
SEAM_AT(MI_HDMI_Attr, audio_enabled, 24);
SEAM_AT(MI_HDMI_Attr, audio_multichannel, 28);
SEAM_AT(MI_HDMI_Attr, audio_sample_rate, 32);
SEAM_AT(MI_HDMI_Attr, audio_bit_depth, 36);
SEAM_AT(MI_HDMI_Attr, audio_coding, 40);
SEAM_AT(MI_HDMI_Attr, avi_infoframe, 44);
SEAM_AT(MI_HDMI_Attr, audio_infoframe, 48);
SEAM_AT(MI_HDMI_Attr, spd_infoframe, 52);
SEAM_SIZE(MI_HDMI_SinkInfo, 16);
SEAM_AT(MI_HDMI_SinkInfo, connected, 0);
SEAM_AT(MI_HDMI_SinkInfo, hdmi, 4);
SEAM_AT(MI_HDMI_SinkInfo, preferred_width, 8);
SEAM_AT(MI_HDMI_SinkInfo, preferred_height, 12);

/* mi_ao.h */
SEAM_SIZE(MI_AO_PubAttr, 32);
SEAM_AT(MI_AO_PubAttr, sample_rate, 0);
SEAM_AT(MI_AO_PubAttr, bit_width, 4);
SEAM_AT(MI_AO_PubAttr, work_mode, 8);
SEAM_AT(MI_AO_PubAttr, sound_mode, 12);
SEAM_AT(MI_AO_PubAttr, frame_count, 16);
SEAM_AT(MI_AO_PubAttr, samples_per_frame, 20);
SEAM_AT(MI_AO_PubAttr, channels, 24);
SEAM_AT(MI_AO_PubAttr, codec_channels, 28);
SEAM_SIZE(MI_AO_AdecAttr, 12);
SEAM_AT(MI_AO_AdecAttr, codec, 0);
SEAM_AT(MI_AO_AdecAttr, sample_rate, 4);
SEAM_AT(MI_AO_AdecAttr, sound_mode, 8);
SEAM32_SIZE(MI_AO_Frame, 168);
SEAM32_AT(MI_AO_Frame, bit_width, 0);
SEAM32_AT(MI_AO_Frame, sound_mode, 4);
SEAM32_AT(MI_AO_Frame, data, 8);
SEAM32_AT(MI_AO_Frame, pts, 72);
SEAM32_AT(MI_AO_Frame, sequence, 80);
SEAM32_AT(MI_AO_Frame, length_bytes, 84);
SEAM32_AT(MI_AO_Frame, pool_id, 88);
SEAM32_AT(MI_AO_Frame, reserved, 152);

/* mi_divp.h */
SEAM_SIZE(MI_DIVP_ChnAttr, 32);
SEAM_AT(MI_DIVP_ChnAttr, max_width, 0);
SEAM_AT(MI_DIVP_ChnAttr, max_height, 4);
SEAM_AT(MI_DIVP_ChnAttr, noise_reduction, 8);
SEAM_AT(MI_DIVP_ChnAttr, deinterlace, 12);
SEAM_AT(MI_DIVP_ChnAttr, rotation, 16);
SEAM_AT(MI_DIVP_ChnAttr, crop, 20);
SEAM_AT(MI_DIVP_ChnAttr, mirror, 28);
SEAM_AT(MI_DIVP_ChnAttr, flip, 29);
SEAM_AT(MI_DIVP_ChnAttr, reserved, 30);
SEAM_SIZE(MI_DIVP_OutputPortAttr, 16);
SEAM_AT(MI_DIVP_OutputPortAttr, width, 0);
SEAM_AT(MI_DIVP_OutputPortAttr, height, 4);
SEAM_AT(MI_DIVP_OutputPortAttr, pixel_format, 8);
SEAM_AT(MI_DIVP_OutputPortAttr, compression, 12);

/* mi_venc.h */
SEAM_SIZE(MI_VENC_ChnAttr, 32);
SEAM_AT(MI_VENC_ChnAttr, codec, 0);
SEAM_AT(MI_VENC_ChnAttr, max_width, 4);
SEAM_AT(MI_VENC_ChnAttr, max_height, 8);
SEAM_AT(MI_VENC_ChnAttr, stream_buffer_bytes, 12);
SEAM_AT(MI_VENC_ChnAttr, width, 16);
SEAM_AT(MI_VENC_ChnAttr, height, 20);
SEAM_AT(MI_VENC_ChnAttr, by_frame, 24);
SEAM_AT(MI_VENC_ChnAttr, restart_rows, 28);
SEAM_SIZE(MI_VENC_JpegParam, 8);
SEAM_AT(MI_VENC_JpegParam, quality, 0);
SEAM_AT(MI_VENC_JpegParam, reserved, 4);
SEAM32_SIZE(MI_VENC_Pack, 136);
SEAM32_AT(MI_VENC_Pack, address, 0);
SEAM32_AT(MI_VENC_Pack, length_bytes, 4);
SEAM32_AT(MI_VENC_Pack, pts, 8);
SEAM32_AT(MI_VENC_Pack, offset_bytes, 16);
SEAM32_AT(MI_VENC_Pack, frame_end, 20);
SEAM32_AT(MI_VENC_Pack, reserved, 24);
SEAM32_SIZE(MI_VENC_Stream, 16);
SEAM32_AT(MI_VENC_Stream, packs, 0);
SEAM32_AT(MI_VENC_Stream, pack_count, 4);
SEAM32_AT(MI_VENC_Stream, sequence, 8);
SEAM32_AT(MI_VENC_Stream, handle, 12);

/* ad_driver.h */
SEAM_SIZE(AdChipValue, 8);
SEAM_AT(AdChipValue, selector, 0);
SEAM_AT(AdChipValue, value, 4);
SEAM_SIZE(AdWorkMode, 3);
SEAM_AT(AdWorkMode, chip, 0);
SEAM_AT(AdWorkMode, mode, 1);
SEAM_AT(AdWorkMode, input, 2);
SEAM_SIZE(AdSampleRate, 12);
SEAM_AT(AdSampleRate, selector, 0);
SEAM_AT(AdSampleRate, rate_code, 4);
SEAM_AT(AdSampleRate, zero, 8);
SEAM_SIZE(AdVideoLoss, 12);
SEAM_AT(AdVideoLoss, chip, 0);
SEAM_AT(AdVideoLoss, input, 4);
SEAM_AT(AdVideoLoss, lost, 8);
SEAM_SIZE(AdColorAdjust, 12);
SEAM_AT(AdColorAdjust, values, 0);
SEAM_SIZE(AdMotionArea, 642);
SEAM_AT(AdMotionArea, chip, 0);
SEAM_AT(AdMotionArea, input, 1);
SEAM_AT(AdMotionArea, mask, 2);
SEAM_SIZE(AdMotionSensitivity, 8);
SEAM_AT(AdMotionSensitivity, chip, 0);
SEAM_AT(AdMotionSensitivity, input, 1);
SEAM_AT(AdMotionSensitivity, unused, 2);
SEAM_AT(AdMotionSensitivity, sensitivity, 4);
SEAM_SIZE(AdMotionQuery, 8);
SEAM_AT(AdMotionQuery, chip, 0);
SEAM_AT(AdMotionQuery, input, 1);
SEAM_AT(AdMotionQuery, unused, 2);
SEAM_AT(AdMotionQuery, result, 4);

/* fb_driver.h */
SEAM_SIZE(FbDisplayLayer, 52);
SEAM_AT(FbDisplayLayer, x, 0);
SEAM_AT(FbDisplayLayer, y, 4);
SEAM_AT(FbDisplayLayer, dst_width, 8);
SEAM_AT(FbDisplayLayer, dst_height, 12);
SEAM_AT(FbDisplayLayer, display_width, 16);
SEAM_AT(FbDisplayLayer, display_height, 20);
SEAM_AT(FbDisplayLayer, screen_width, 24);
SEAM_AT(FbDisplayLayer, screen_height, 28);
SEAM_AT(FbDisplayLayer, premultiplied, 32);
SEAM_AT(FbDisplayLayer, color_format, 36);
SEAM_AT(FbDisplayLayer, output_color_space, 40);
SEAM_AT(FbDisplayLayer, plane, 44);
SEAM_AT(FbDisplayLayer, mask, 48);
SEAM_SIZE(FbColorKey, 4);
SEAM_AT(FbColorKey, enabled, 0);
SEAM_AT(FbColorKey, red, 1);
SEAM_AT(FbColorKey, green, 2);
SEAM_AT(FbColorKey, blue, 3);
SEAM_SIZE(FbGlobalAlpha, 7);
SEAM_AT(FbGlobalAlpha, enabled, 0);
SEAM_AT(FbGlobalAlpha, per_pixel, 1);
SEAM_AT(FbGlobalAlpha, global_alpha, 2);
SEAM_AT(FbGlobalAlpha, zero_bit_alpha, 3);
SEAM_AT(FbGlobalAlpha, driver_fields, 4);
SEAM_AT(FbGlobalAlpha, further_enabled, 6);

/* gpio_driver.h */
SEAM_SIZE(GpioLine, 8);
SEAM_AT(GpioLine, line, 0);
SEAM_AT(GpioLine, value, 4);

/* ir_driver.h */
SEAM_SIZE(IrFrame, 12);
SEAM_AT(IrFrame, unused, 0);
SEAM_AT(IrFrame, code, 4);
SEAM_AT(IrFrame, state, 8);

/* mouse_driver.h */
SEAM_SIZE(MouseEvent, 20);
SEAM_AT(MouseEvent, type, 0);
SEAM_AT(MouseEvent, buttons, 4);
SEAM_AT(MouseEvent, x, 8);
SEAM_AT(MouseEvent, y, 12);
SEAM_AT(MouseEvent, wheel, 16);

#endif
