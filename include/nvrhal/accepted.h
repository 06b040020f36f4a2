/*
 * accepted.h - operations that this hardware does not need.
 *
 * They stand in the binary interface so that an application written for a sister board links and
 * runs. Each takes any arguments, or none, and looks at none of them.
 */
#ifndef NVRHAL_ACCEPTED_H
#define NVRHAL_ACCEPTED_H

#include "nvrhal/api.h"

/*
 * The parameter list of an operation that takes anything. C++ and the newest C write it (...). Before
 * C23 only () takes any arguments; in C23 () takes none. Compilers learned the new list at their own
 * pace, and their drafts of C23 announce themselves alike: gcc 12 still refuses (...) there.
 */
#if defined(__cplusplus)
#define NVRHAL_ANYTHING ...
#elif !defined(__STDC_VERSION__) || __STDC_VERSION__ <= 201710L
#define NVRHAL_ANYTHING
#elif defined(__clang__) && __clang_major__ < 15
#define NVRHAL_ANYTHING
#elif defined(__GNUC__) && !defined(__clang__) && __GNUC__ < 13
#define NVRHAL_ANYTHING
#else
#define NVRHAL_ANYTHING ...
#endif

/* An empty list is meant here: the warning about it is off for these declarations alone. */
#if defined(__GNUC__) && !defined(__cplusplus)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wstrict-prototypes"
#endif

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Memory, bindings and overlay regions, which the platform manages by itself.
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int vo_mem_config(NVRHAL_ANYTHING);
NVRHAL_API int vo_bindvowbc(NVRHAL_ANYTHING);
NVRHAL_API int vo_unbindvowbc(NVRHAL_ANYTHING);
NVRHAL_API int vo_bind_vi(NVRHAL_ANYTHING);
NVRHAL_API int vodh0_bind_vodsd0(NVRHAL_ANYTHING);
NVRHAL_API int voChn_unbind_viChn(NVRHAL_ANYTHING);
NVRHAL_API int vpss_mem_config(NVRHAL_ANYTHING);
NVRHAL_API int vpss_create_vpss(NVRHAL_ANYTHING);
NVRHAL_API int vpss_stop(NVRHAL_ANYTHING);
NVRHAL_API int vi_bind_vpss(NVRHAL_ANYTHING);
NVRHAL_API int vi_unbind_vpss(NVRHAL_ANYTHING);
NVRHAL_API int vi_bind_vpss_chan(NVRHAL_ANYTHING);
NVRHAL_API int vi_unbind_vpss_chan(NVRHAL_ANYTHING);
NVRHAL_API int venc_bind_vo(NVRHAL_ANYTHING);
NVRHAL_API int venc_mem_config(NVRHAL_ANYTHING);
NVRHAL_API int venc_bind_vpss(NVRHAL_ANYTHING);
NVRHAL_API int venc_unbind_vpss(NVRHAL_ANYTHING);
NVRHAL_API int venc_stop_getstream(NVRHAL_ANYTHING);
NVRHAL_API int vdec_mem_config(NVRHAL_ANYTHING);
NVRHAL_API int vdec_bind_vo(NVRHAL_ANYTHING);
NVRHAL_API int rgn_mem_config(NVRHAL_ANYTHING);
NVRHAL_API int rgn_overlay_change_alpha(NVRHAL_ANYTHING);
NVRHAL_API int rgn_create(NVRHAL_ANYTHING);
NVRHAL_API int rgn_detach_frm_chn(NVRHAL_ANYTHING);
NVRHAL_API int rgn_destroy(NVRHAL_ANYTHING);
NVRHAL_API int rgn_show_or_hide(NVRHAL_ANYTHING);
NVRHAL_API int rgn_overlay_chg_color(NVRHAL_ANYTHING);

/**
 * Pausing playback: it is the application that stops delivering.
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int ext_playback_set_pause_flag(NVRHAL_ANYTHING);

/**
 * Keys: the readers translate them (keys.h).
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API void translateKey(NVRHAL_ANYTHING);
NVRHAL_API void hi_localkey_proc(NVRHAL_ANYTHING);

/**
 * The HDMI audio path, which needs no start. It prints its entry trace.
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API void audio_start_hdmi(NVRHAL_ANYTHING);

/**
 * Sound capture and switching the output off, which this board does not have. They print an entry trace.
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int audio_aenc_proc(NVRHAL_ANYTHING);
NVRHAL_API int audio_ai_proc(NVRHAL_ANYTHING);
NVRHAL_API int audio_enable_ai(NVRHAL_ANYTHING);
NVRHAL_API int audio_stop_ao(NVRHAL_ANYTHING);
NVRHAL_API int audio_ao_bind_adec(NVRHAL_ANYTHING);
NVRHAL_API int audio_ao_unbind_adec(NVRHAL_ANYTHING);
NVRHAL_API int audio_deinit(NVRHAL_ANYTHING);
NVRHAL_API int ext_audio_speek_get_buf(NVRHAL_ANYTHING);
NVRHAL_API int ext_release_audio_speek_buf(NVRHAL_ANYTHING);
NVRHAL_API int ext_set_audio_input_volume(NVRHAL_ANYTHING);

/**
 * Settings of pictures and streams, which are the cameras' own.
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int ext_vo_buffer_clear1(NVRHAL_ANYTHING);
NVRHAL_API int ext_get_video_md_alarm(NVRHAL_ANYTHING);
NVRHAL_API int ext_change_local_frame_quality(NVRHAL_ANYTHING);
NVRHAL_API int ext_change_net_frame_rate(NVRHAL_ANYTHING);
NVRHAL_API int ext_change_default_rate(NVRHAL_ANYTHING);
NVRHAL_API int ext_change_net_frame_quality(NVRHAL_ANYTHING);
NVRHAL_API int ext_change_local_frame_rate(NVRHAL_ANYTHING);
NVRHAL_API int ext_exchang_vga_hd_color(NVRHAL_ANYTHING);
NVRHAL_API int ext_change_qcif_channel(NVRHAL_ANYTHING);
NVRHAL_API int ext_change_local_video_size(NVRHAL_ANYTHING);
NVRHAL_API int ext_set_video_brightness(NVRHAL_ANYTHING);
NVRHAL_API int ext_set_video_hue(NVRHAL_ANYTHING);
NVRHAL_API int ext_set_video_contrast(NVRHAL_ANYTHING);
NVRHAL_API int ext_set_video_saturation(NVRHAL_ANYTHING);
NVRHAL_API int ext_change_spot_display(NVRHAL_ANYTHING);

/**
 * Capture, overlays, water marks, lamps and flash, which this board does not have. They print an entry
 * trace. The result is what applications were written against.
 * @return 1
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int ext_capture_start(NVRHAL_ANYTHING);
NVRHAL_API int ext_capture_stop(NVRHAL_ANYTHING);
NVRHAL_API int ext_chagne_system_time_flag(NVRHAL_ANYTHING);
NVRHAL_API int ext_set_voutdev_brightness(NVRHAL_ANYTHING);
NVRHAL_API int ext_led_set(NVRHAL_ANYTHING);
NVRHAL_API int ext_release_buf(NVRHAL_ANYTHING);
NVRHAL_API int ext_rec_water_mark_set(NVRHAL_ANYTHING);
NVRHAL_API int ext_rec_water_mask_clean(NVRHAL_ANYTHING);
NVRHAL_API int ext_set_output_nomenu_image(NVRHAL_ANYTHING);
NVRHAL_API int ext_err_get_last_value(NVRHAL_ANYTHING);
NVRHAL_API int ext_lcd_screen_onoff(NVRHAL_ANYTHING);
NVRHAL_API int ext_get_flash_param(NVRHAL_ANYTHING);
NVRHAL_API int ext_get_board_used_chip_type(NVRHAL_ANYTHING);
NVRHAL_API int ext_rec_osd_print(NVRHAL_ANYTHING);
NVRHAL_API int ext_rec_osd_clean(NVRHAL_ANYTHING);
NVRHAL_API int ext_set_cover_area(NVRHAL_ANYTHING);
NVRHAL_API int ext_clean_cover_area(NVRHAL_ANYTHING);

/**
 * Alarm outputs and the order of the layers, likewise. They print an entry trace.
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int ext_alarm_output_set(NVRHAL_ANYTHING);
NVRHAL_API int ext_change_display_zorder(NVRHAL_ANYTHING);

#ifdef __cplusplus
}
#endif

#if defined(__GNUC__) && !defined(__cplusplus)
#pragma GCC diagnostic pop
#endif

#endif
