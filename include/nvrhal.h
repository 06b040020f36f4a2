/*
 * nvrhal.h - the media and hardware abstraction library of a network video recorder.
 *
 * An application starts the device (ext_device_init), lays panes out, sends frames, stores and fetches
 * streams, takes snapshots, plays sound, draws its GUI, reads keys, drives the board, and detaches the
 * display at the end (ext_device_quit). Each concern has a header in nvrhal/, which compiles alone;
 * this one includes them all.
 *
 * Conventions
 *   Results: 0 = success and -1 = failure unless a function says otherwise; some pass a negative code
 *   of the media platform through.
 *   Channels count from 0. N is the number of camera channels, DeviceParams::vi_chn_num, 1 to 16.
 *   "Output pixels" are pixels of the display's current timing.
 *   Ranges are what a caller should keep to. A number outside of them never touches foreign memory: the
 *   call is refused, or does what the platform makes of it.
 *   Threads: "any" = callable from every thread at any time after ext_device_init; "UI thread" =
 *   callable from one thread at a time, together with all others so marked; "channel thread" = calls
 *   for one channel come from one thread, channels may run in parallel. Other threads are named where
 *   they are used.
 *   Ownership: records are the caller's and are only used during the call unless stated otherwise. A
 *   function without a line on it takes and gives no memory.
 *   Log: the library prints what it does, and the platform calls whose failure matters, to standard
 *   output, or hands it to the application's function (nvrhal_set_log). Frames that go through print
 *   nothing. What is called often and prints a line each time, of some 65 bytes: ext_keyboard_value and
 *   ext_mouse_get_status (keys.h says how to avoid it), the framebuffer's calls, drawRect, and most
 *   functions that set something.
 *
 * The state after power-on and ext_device_init
 *   The screen is dark until the first layout. The buzzer sounds until ext_buzzer_set(0). The watchdog
 *   runs out after 100 s unless it is fed (Set_Wdt_Fing(1), wdt_feed_pt()) or switched off
 *   (ext_wdg_set(0)). Decoders expect H.265. The panel's node is opened by ext_keyboard_initial, the
 *   receiver's by hi_remotekey_proc, the mouse's by the application.
 *
 * The calls of an application
 *   A recorder with all of this needs these functions and objects; nvrec uses no others.
 *     start      ext_device_init ext_device_quit globalVoDev nvrhal_set_log
 *     live       ext_send_stream vdec_resetchn
 *     layout     ext_change_display_format ext_change_zoom_format cur_display_chnn
 *     zoom       ext_vidoe_image_zoom vo_for_ezoom zoom_channel zoom_arg zoom_flag_click
 *     playback   ext_playback_start ext_playback_get_buf ext_playback_set_buf ext_playback_stop
 *                ext_playback_exit ext_signal_spilt_start ext_signal_spilt_exit vdec_recreate
 *                playback_status
 *     streams    ext_set_primary_video_stream ext_set_network_video_stream ext_set_audio_stream
 *                ext_get_primary_video_stream ext_get_network_video_stream kx_stream_getStartPos
 *                kx_stream_getOneFrame
 *     snapshot   ext_set_snap_channel_enable ext_get_jpeg_stream ext_release_jpeg_buf cur_snap_chnn
 *     sound      ext_set_audio_live_channel ext_set_audio_output_volume
 *     GUI        g_osd_info ext_get_fb_info ext_tde_begin_job ext_tde_end_job drawRect getFBColorFmt
 *                OSD_MAKECOLOR_U16 s_OSDCompInfo CurseValue MOUSE_IMAGE_WIDTH MOUSE_IMAGE_HEIGHT
 *                qrencode GetBmpInfo
 *     text       GetGB2312ToUnicodeLength FromGb2312ToUnicode GetUnicodeLength UnicodeToUTF8
 *                SimplifiedToTraditionalUTF8
 *     keys       ext_keyboard_initial ext_keyboard_value ext_keyboard_close hi_remotekey_proc key_que
 *     mouse      ext_mouse_get_status g_mouse_fd g_s32KeyValue g_bMouseEvent g_mouse_lock
 *     board      ext_buzzer_set ext_rtc_time_system hi_start_record_proc hi_stop_record_proc
 *     watchdog   ext_wdg_set local_wdg_set_timeout Set_Wdt_Fing wdt_feed_pt
 *     analog     ext_get_video_loss_status ext_alarm_status_get InitMotion SetMotionArea GetMotionArea
 *
 * Names that are there for the binary interface
 *   Every name here is one that applications have been linked against, spelt as it was then: "vidoe",
 *   "spilt", "speek" and "chagne" too, the prefixes of media platforms (vo_, vdec_, venc_, ST_, hi_),
 *   and data objects beside functions. They are kept so that such an application goes on running, not
 *   for taste. Whoever begins anew needs none of
 *     accepted.h   all of it: hardware of sister boards
 *     display.h    start_disp, vo_* and ST_*, which start-up and layouts call themselves; ext_vo_buffer_*
 *     decoder.h    all but vdec_recreate and vdec_resetchn
 *     layout.h     global_bindarg, old_global_bindarg, set_bind_para
 *     snapshot.h   venc_* and test_save_jpeg_to_file, steps and diagnoses
 *     picture.h    all of it: values that nothing here reads
 *     gui.h        fb_*, ext_fb_*, ext_app_buf_addr, memopen, drawRect_*, ST_*
 *     keys.h       localKey_init and what it starts, hi_start_key_proc, hi_stop_key_proc
 *     board.h      local_gpio_init, local_wdg_init, hi_record_proc
 */
#ifndef NVRHAL_H
#define NVRHAL_H

#include "nvrhal/accepted.h"
#include "nvrhal/analog.h"
#include "nvrhal/api.h"
#include "nvrhal/audio.h"
#include "nvrhal/board.h"
#include "nvrhal/decoder.h"
#include "nvrhal/device.h"
#include "nvrhal/display.h"
#include "nvrhal/frame.h"
#include "nvrhal/gui.h"
#include "nvrhal/image.h"
#include "nvrhal/input_nodes.h"
#include "nvrhal/key_codes.h"
#include "nvrhal/keys.h"
#include "nvrhal/layout.h"
#include "nvrhal/limits.h"
#include "nvrhal/live.h"
#include "nvrhal/log.h"
#include "nvrhal/picture.h"
#include "nvrhal/playback.h"
#include "nvrhal/pool.h"
#include "nvrhal/snapshot.h"
#include "nvrhal/stream.h"
#include "nvrhal/text.h"

#endif
