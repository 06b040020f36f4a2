/*
 * accepted.h - operations that this hardware does not need.
 */
#ifndef NVRHAL_ACCEPTED_H
#define NVRHAL_ACCEPTED_H

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** An operation that this hardware does not need: takes anything, does nothing, returns 0. */
#ifdef __cplusplus
#define NVRHAL_NOOP(name) NVRHAL_API int name(...)
#else
#define NVRHAL_NOOP(name) NVRHAL_API int name()
#endif

/* Decoders and bindings. */
NVRHAL_NOOP(vo_mem_config);
NVRHAL_NOOP(vo_bindvowbc);
NVRHAL_NOOP(vo_unbindvowbc);
NVRHAL_NOOP(vo_bind_vi);
NVRHAL_NOOP(vodh0_bind_vodsd0);
NVRHAL_NOOP(voChn_unbind_viChn);
NVRHAL_NOOP(vpss_mem_config);
NVRHAL_NOOP(vpss_create_vpss);
NVRHAL_NOOP(vpss_stop);
NVRHAL_NOOP(vi_bind_vpss);
NVRHAL_NOOP(vi_unbind_vpss);
NVRHAL_NOOP(vi_bind_vpss_chan);
NVRHAL_NOOP(vi_unbind_vpss_chan);
NVRHAL_NOOP(venc_bind_vo);
NVRHAL_NOOP(venc_mem_config);
NVRHAL_NOOP(venc_bind_vpss);
NVRHAL_NOOP(venc_unbind_vpss);
NVRHAL_NOOP(venc_stop_getstream);
NVRHAL_NOOP(vdec_mem_config);
NVRHAL_NOOP(vdec_bind_vo);
NVRHAL_NOOP(rgn_mem_config);
NVRHAL_NOOP(rgn_overlay_change_alpha);
NVRHAL_NOOP(rgn_create);
NVRHAL_NOOP(rgn_detach_frm_chn);
NVRHAL_NOOP(rgn_destroy);
NVRHAL_NOOP(rgn_show_or_hide);
NVRHAL_NOOP(rgn_overlay_chg_color);

/* Pausing playback is not delivering. Ignore the result. */
NVRHAL_NOOP(ext_playback_set_pause_flag);

/* Audio. */
NVRHAL_NOOP(audio_aenc_proc);
NVRHAL_NOOP(audio_ai_proc);
NVRHAL_NOOP(audio_enable_ai);
NVRHAL_NOOP(audio_stop_ao);
NVRHAL_NOOP(audio_ao_bind_adec);
NVRHAL_NOOP(audio_ao_unbind_adec);
NVRHAL_NOOP(audio_deinit);
NVRHAL_NOOP(ext_audio_speek_get_buf);
NVRHAL_NOOP(ext_release_audio_speek_buf);
NVRHAL_NOOP(ext_set_audio_input_volume);

/* Display and pictures. */
NVRHAL_NOOP(ext_vo_buffer_clear1);
NVRHAL_NOOP(ext_get_video_md_alarm);
NVRHAL_NOOP(ext_change_local_frame_quality);
NVRHAL_NOOP(ext_change_net_frame_rate);
NVRHAL_NOOP(ext_change_default_rate);
NVRHAL_NOOP(ext_change_net_frame_quality);
NVRHAL_NOOP(ext_change_local_frame_rate);
NVRHAL_NOOP(ext_exchang_vga_hd_color);
NVRHAL_NOOP(ext_change_qcif_channel);
NVRHAL_NOOP(ext_change_local_video_size);
NVRHAL_NOOP(ext_set_video_brightness);
NVRHAL_NOOP(ext_set_video_hue);
NVRHAL_NOOP(ext_set_video_contrast);
NVRHAL_NOOP(ext_set_video_saturation);
NVRHAL_NOOP(ext_change_spot_display);

/* Accepted, with any arguments, and not needed on this board: an entry trace. These return 1 ... */
NVRHAL_NOOP(ext_capture_start);
NVRHAL_NOOP(ext_capture_stop);
NVRHAL_NOOP(ext_chagne_system_time_flag);
NVRHAL_NOOP(ext_set_voutdev_brightness);
NVRHAL_NOOP(ext_led_set);
NVRHAL_NOOP(ext_release_buf);
NVRHAL_NOOP(ext_rec_water_mark_set);
NVRHAL_NOOP(ext_rec_water_mask_clean);
NVRHAL_NOOP(ext_set_output_nomenu_image);
NVRHAL_NOOP(ext_err_get_last_value);
NVRHAL_NOOP(ext_lcd_screen_onoff);
NVRHAL_NOOP(ext_get_flash_param);
NVRHAL_NOOP(ext_get_board_used_chip_type);
NVRHAL_NOOP(ext_rec_osd_print);
NVRHAL_NOOP(ext_rec_osd_clean);
NVRHAL_NOOP(ext_set_cover_area);
NVRHAL_NOOP(ext_clean_cover_area);
/* ... and these 0. */
NVRHAL_NOOP(ext_alarm_output_set);
NVRHAL_NOOP(ext_change_display_zorder);

#undef NVRHAL_NOOP

#ifdef __cplusplus
}
#endif

#endif
