/*
 * nvrhal.h - the media and hardware abstraction library of a network video recorder.
 *
 * The header follows the life of the device: start it (ext_device_init), lay panes out, send
 * frames, store and fetch streams, take snapshots, play sound, draw the GUI, read keys, drive the
 * board, and detach the display at the end (ext_device_quit).
 *
 * Conventions
 *   Results: 0 = success and -1 = failure unless a function says otherwise; some pass a negative
 *   code of the media platform through.
 *   Channels count from 0. N is the number of camera channels, DeviceParams::vi_chn_num, 1 to 16.
 *   "Output pixels" are pixels of the display's current timing.
 *   Threads: "any thread" = callable from every thread at any time after ext_device_init;
 *   "UI thread" = callable from one thread at a time, together with all others so marked;
 *   "channel thread" = calls for one channel come from one thread, channels may run in parallel.
 *   Memory: records are the caller's and are only used during the call unless stated otherwise.
 *   The library prints what it does, and the platform calls whose failure matters, to standard
 *   output.
 */
#ifndef NVRHAL_H
#define NVRHAL_H

#include <linux/fb.h>
#include <pthread.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
/** An operation that this hardware does not need: takes anything, does nothing, returns 0. */
#define NVRHAL_NOOP(name) NVRHAL_API int name(...)
#else
#define NVRHAL_NOOP(name) NVRHAL_API int name()
#endif

#define NVRHAL_API __attribute__((visibility("default")))

/** A 64-bit word that a record keeps at 4-byte alignment, as the 32-bit target does. */
typedef uint64_t nvrhal_u64 __attribute__((aligned(4)));

/* Records of the media platform, opaque here: platform/include has them. */
struct MI_AO_PubAttr;
struct MI_DISP_PubAttr;
struct MI_VDEC_Stream;
struct MI_VENC_Stream;

/* ======================================================================================= */
/* The start-up block                                                                       */
/* ======================================================================================= */

/**
 * The start-up parameter block. 1068 bytes = 267 words of 32 bits, copied whole. The library
 * interprets the named words only and carries the others unread.
 */
typedef struct DeviceParams {
    uint32_t unread_0[129];       /*    0  the application's own                                  */
    uint32_t net_video_size[128]; /*  516  size code of each channel's network stream; 2 = 640x360 */
    int32_t vi_chn_num;           /* 1028  N, camera channels, 1 to 16                             */
    uint32_t unread_258[2];       /* 1032                                                          */
    int32_t vo_dev_type;          /* 1040  output device; 3 = no local video output                */
    uint32_t unread_261[2];       /* 1044                                                          */
    int32_t gui_width;            /* 1052  GUI width, pixels: 800, 1024, 1280, 1440, 1920 or 2560  */
    int32_t gui_height;           /* 1056  GUI height, pixels                                      */
    uint32_t unread_265[2];       /* 1060                                                          */
} DeviceParams;

/** Attributes of one channel's main or network stream. 52 bytes. */
typedef struct StreamAttr {
    uint32_t unread_0[4]; /*  0  carried                                                      */
    uint32_t size_class;  /* 16  5 = 960x576 main stream, 1 = 640x360 network stream          */
    uint32_t width;       /* 20  pixels; overwritten by every stored or live video frame      */
    uint32_t height;      /* 24  pixels; likewise                                             */
    uint32_t frame_rate;  /* 28  frames per second                                            */
    uint32_t quality_1;   /* 32  first image-quality value, stored only                       */
    uint32_t encode_mode; /* 36  stored only                                                  */
    uint32_t quality_2;   /* 40  stored only                                                  */
    uint32_t quality_3;   /* 44  stored only                                                  */
    uint32_t format;      /* 48  stored only                                                  */
} StreamAttr;

/** What a FrameInfo carries. */
enum FrameMedia {
    FRAME_MEDIA_NONE = 0,
    FRAME_MEDIA_VIDEO = 1,
    FRAME_MEDIA_AUDIO = 2,
    FRAME_MEDIA_JPEG = 17,
};

/**
 * One encoded frame. 60 bytes = fifteen 32-bit words on the 32-bit target. Which fields a call
 * reads or fills is said at the call.
 */
typedef struct FrameInfo {
    uint32_t frame_type;   /*  0  1 = key frame                                              */
    uint32_t media;        /*  4  enum FrameMedia                                            */
    uint32_t length;       /*  8  bytes at data                                              */
    uint32_t width;        /* 12  picture width, pixels                                      */
    uint32_t height;       /* 16  picture height, pixels                                     */
    void *data;            /* 20  the bytes                                                  */
    uint32_t channel;      /* 24  channel, from 0                                            */
    uint32_t stream_id;    /* 28  audio: channel + 2 N                                       */
    uint32_t display_rate; /* 32  playback buffers: display-rate mode, 2 = double            */
    uint32_t reserved[2];  /* 36  carried                                                    */
    nvrhal_u64 local_time; /* 44  microseconds since 1970-01-01 00:00 UTC                    */
    nvrhal_u64 pts;        /* 52  presentation time stamp                                    */
} FrameInfo;

/** The library's copy of the start-up block. */
extern NVRHAL_API DeviceParams DdvrInputParam;

/** N, the number of camera channels; 8 before start-up. Decoder channel N is a spare one. */
extern NVRHAL_API int32_t g_vi_chn_num;

/** Current display device: 0 main output, 2 further output, -1 secondary output. */
extern NVRHAL_API int32_t globalVoDev;

/** Output timing code that the display is started with; after an output switch a display output value. */
extern NVRHAL_API uint32_t enNorm_vga;

/** Attributes of each channel's main and network stream. */
extern NVRHAL_API StreamAttr major_stream[17];
extern NVRHAL_API StreamAttr minor_stream[16];

/**
 * Start the library: call once, before anything else. Brings up, in this order, the stream pools,
 * the media system, HDMI, N + 1 decoder channels, the display with N ports, the framebuffer,
 * audio, GPIO lines and the watchdog. Nothing is shown before the first layout.
 * @param params  the start-up block; copied. Null is refused.
 * @return 0, or -1 when a stage failed: the stages before it keep running. A watchdog that cannot
 *         be had is only reported.
 * Thread: one, once.
 */
NVRHAL_API int32_t ext_device_init(const DeviceParams *params);

/**
 * Start the display path again for the GUI: display ports, HDMI, framebuffer.
 * enNorm_vga is used as a display output value untranslated: of the codes that start-up sets, 6, 7
 * and 8 are values too (720x480, 720x576 and 1280x720), 4 is none and fails.
 * @return 0, or -1 when the display or the framebuffer failed: what was started stays so. HDMI
 *         failures are only printed. Thread: UI thread.
 */
NVRHAL_API int32_t ext_gui_init(void);

/* ======================================================================================= */
/* Output timing, display device and ports                                                  */
/* ======================================================================================= */

/**
 * Look an output timing code up.
 * @param code         1 to 13
 * @param hdmi_timing  out: HDMI timing value       @param disp_timing  out: display output value
 * @param width,height out: output size, pixels
 * All outputs stay as they are for any other code ("Unspport Ap timing" is printed). Null outputs
 * are skipped. @return 0. Thread: any.
 */
NVRHAL_API int32_t vo_timing_lookup(uint32_t code, uint32_t *hdmi_timing, uint32_t *disp_timing,
                                    uint16_t *width, uint16_t *height);

/**
 * Size and refresh rate of a display output value.
 * @param value         the platform's, 0 to 28
 * @param width,height  out: pixels   @param frame_rate  out: frames per second
 * Null outputs are skipped. @return 0, or -1 for a value not known: the outputs stay as they are.
 * Thread: any.
 */
NVRHAL_API int32_t vo_get_wh(uint32_t value, uint32_t *width, uint32_t *height, uint32_t *frame_rate);

/**
 * Bring display device 0 up with enNorm_vga's timing, layer 0, HDMI and ports 0..port_count-1 laid
 * out as an even grid. Start-up calls it.
 * @param port_count  0 or less = no ports; above 36 every pane is 0x0
 * @return 0; (uint32_t)-1 for a timing that cannot be shown; 1 when a platform call failed, what was
 *         enabled staying so. Thread: UI thread.
 */
NVRHAL_API uint32_t start_disp(int32_t port_count);

/**
 * Stop the ports of device 0, start display device dev unless it runs, and lay the ports of device 0
 * out. Device 0 gets enNorm_vga as its display output value, untranslated; any other gets value 0.
 * @param dev           display device; -1 to 15 are remembered as started
 * @param frame_rate    looked at only when the device is started: 0 is refused
 * @param pixel_format  layer format code, as the platform's
 * @param port_count    1 to 16
 * @return 0, or (uint32_t)-1: what was enabled stays so. Thread: UI thread.
 */
NVRHAL_API uint32_t vo_start(int32_t dev, uint32_t ignored, uint32_t frame_rate, uint32_t pixel_format,
                             int32_t port_count);

/**
 * Restart a display device with the given public attributes, and its layer: 3 for device 2, else 0.
 * @param attr        its timing is a display output value; null is refused
 * @param frame_rate  0 is refused; otherwise unused   @param pixel_format  layer format code
 * @return 0, or -1 at the first failure. Thread: UI thread.
 */
NVRHAL_API int32_t vo_enable(int32_t dev, const struct MI_DISP_PubAttr *attr, uint32_t frame_rate,
                             uint32_t pixel_format);

/** Disable a layer, then its device. @return 0, or -1 at the first failure. Thread: UI thread. */
NVRHAL_API int32_t vo_disable(int32_t dev, uint32_t layer);

/**
 * Lay out and enable ports 0..port_count-1 of a device. A device's first call that succeeds computes
 * an even grid into its bank of set_bind_para; later ones apply what the bank holds, whatever the
 * count, and report success for devices other than 0 and -1 despite failures.
 * @param attr        its timing, a display output value, gives the size; null is refused
 * @param port_count  1 to 16
 * @return 0, or -1 at the first failure. Thread: UI thread.
 */
NVRHAL_API int32_t vo_start_chn(int32_t dev, const struct MI_DISP_PubAttr *attr, int32_t port_count);

/** Disable ports 0..port_count-1. @return the last port's platform result, 0 without ports.
 * Thread: UI thread. */
NVRHAL_API int32_t vo_stop_chn(int32_t dev, int32_t port_count);

/** Does nothing. @return 1. Thread: any. */
NVRHAL_API int32_t vo_set_wh(void *rects, uint32_t width, uint32_t height, uint32_t mode);

/* ======================================================================================= */
/* HDMI                                                                                     */
/* ======================================================================================= */

/** Initialise and open the transmitter; failures are only printed. The argument is ignored. @return 0.
 * Thread: UI thread. */
NVRHAL_API uint32_t vo_hdmi_start(uint32_t timing_code);

/** Stop, close and release the transmitter. @return 0. Nothing in the library calls it. Thread: UI thread. */
NVRHAL_API uint32_t vo_hdmi_stop(void);

/**
 * Configure and start a transmitter; device 0 is muted meanwhile.
 * @param hdmi_timing  HDMI timing value, as vo_timing_lookup gives it
 * @return 0, or 1 when the platform refused: the output stays muted. Thread: UI thread.
 */
NVRHAL_API int32_t ST_Hdmi_Start(uint32_t hdmi_dev, uint32_t hdmi_timing);

/**
 * What the library does on monitor events: 0 plugged re-applies the transmitter's attributes and
 * starts it, 1 unplugged stops it; others are only printed.
 * @param event_param  points at the 32-bit HDMI device number; null = the event is only printed
 * @param user_param   printed, up to 4 bytes of it; may be null
 * @return 0. Thread: the platform's event thread.
 */
NVRHAL_API int32_t Hdmi_callback(uint32_t hdmi_dev, uint32_t event, void *event_param, void *user_param);

/* ======================================================================================= */
/* Decoder channels                                                                         */
/* ======================================================================================= */

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

/* ======================================================================================= */
/* Live view: layouts                                                                       */
/* ======================================================================================= */

/** One pane of a layout. 16 bytes. */
typedef struct DispAttrib {
    uint16_t bind_status; /*  0  1, 2 = show; anything else = recorded, hidden       */
    uint16_t channel;     /*  2  live channel, from 0                                */
    uint16_t x, y;        /*  4  top-left corner, output pixels, rounded to even     */
    uint16_t w, h;        /*  8  size, output pixels, rounded to even                */
    uint16_t unread[2];   /* 12  carried, never read                                 */
} DispAttrib;

/** One applied layout. 136 bytes. */
typedef struct BindArgs {
    uint32_t chn[16];         /*   0  chn[i] = i for a channel with a pane, else 0   */
    uint32_t vo_dev;          /*  64  display device it was applied to               */
    uint32_t chn_num;         /*  68  N at the time                                  */
    uint32_t bind_status[16]; /*  72  bind_status of each channel's pane, 0 = none   */
} BindArgs;

/** A pane's rectangle as stored, output pixels. 16 bytes. */
typedef struct PaneRect {
    uint32_t x, y, w, h;
} PaneRect;

/** Further record of the interface; no operation reads or writes it. */
extern NVRHAL_API BindArgs global_bindarg;

/**
 * Last layout of display devices 0, 1 and 2; device -1's copy stands directly before it, for code
 * that reaches the library's own object (built with -fPIC, or through dlsym).
 */
extern NVRHAL_API BindArgs old_global_bindarg[3];

/** Pane rectangles: bank 0 further devices, bank 1 device 0, bank 2 device -1, bank 3 unused. */
extern NVRHAL_API PaneRect set_bind_para[4][16];

/**
 * Guards the showing of display ports and the saved layouts. Never nested. A layout that fails
 * while it shows ports returns with it held.
 */
extern NVRHAL_API pthread_mutex_t global_bindargLock;

/**
 * Apply a layout to the main display. All N live channels are taken off the screen; then each
 * pane's decoder is flushed and set to deliver the smaller of the size it was created with and the
 * pane's, width and height each for itself, and shown. A single pane shows its channel at the
 * decoder's full size. Takes about 100 ms a pane. On display devices 1 and 2 everything goes dark
 * and the result is 0.
 * A single pane first flushes the channel of the single pane before it: after a single pane of a
 * channel that does not exist (which itself gives 0 and a dark screen) every single pane fails with
 * the decoder's code, until a layout of several panes. A single pane belongs at 0,0: elsewhere its
 * full size leaves the output, which counts as a display failure.
 * Even a refused call leaves no channel marked as shown: live frames are dropped until a layout
 * succeeds. When the display fails while panes are shown, global_bindargLock stays held and the
 * next layout waits for ever.
 * @param panes  count panes; several of one channel: the last wins
 * @param count  1 to N
 * @return 0 (also when device -1 is current: no port or decoder is touched); -1 for a bad count, null
 *         panes or a display failure; or the decoder's code when the flush of a single pane failed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_change_display_format(const DispAttrib *panes, int32_t count);

/**
 * Apply a layout to the secondary output; only when device -1 is current, else nothing is done and
 * the result is 0. All N ports are hidden, then each pane's port is placed, its source size left as
 * it was, and shown; no decoder is touched. A single pane also sets zoom_channel and zoom_arg_pre.
 * A display failure leaves global_bindargLock held.
 * @param panes  count panes; several of one channel: the last wins   @param count  1 to N
 * @return 0; -1 for a bad count, null panes or a display failure. Thread: UI thread.
 */
NVRHAL_API int32_t ext_change_display_slave(const DispAttrib *panes, int32_t count);

/** Flush one decoder: destroy and create it with the same attributes and output size, bound to the port of
 * its number of device 0. @return 0, or the platform's code: the channel is then stopped, or absent. Thread:
 * UI thread. */
NVRHAL_API int32_t re_create_vdec(uint32_t channel);

/* ======================================================================================= */
/* Zoom and picture-in-picture                                                              */
/* ======================================================================================= */

/**
 * Show a part of zoom_channel's picture enlarged to its whole pane, on device 0. The application
 * first applies a single-pane layout and sets vo_for_ezoom.
 * @param cropDivp   only printed
 * @param x,y,w,h    the part, pixels of the decoded picture (of decoder channel 0's largest size);
 *                   mapped to the port's source and rounded down to even. w or h of 0 = the whole.
 * @return 0, or 1. A platform that refuses the window is asked once more and the result is 1
 *         whatever it says then. Thread: UI thread.
 */
NVRHAL_API int32_t ext_vidoe_image_zoom(int32_t cropDivp, int32_t x, int32_t y, int32_t w, int32_t h);

/**
 * Place panes of the current device without touching decoders: all ports are hidden, then pane i
 * places and shows port i, whatever its channel field says. Rectangles are not rounded.
 * @param count  panes; below 1 hides everything
 * @return 0 or -1. Nothing is undone after a failure. Thread: UI thread.
 */
NVRHAL_API int32_t ext_change_zoom_format(const DispAttrib *panes, int32_t count);

/**
 * The same for the secondary output, as it is: the panes are only stored, rounded to even, the last
 * pane's port is hidden, and the port whose number is `count` is shown at the rectangle that an
 * earlier layout left behind the last one stored.
 * @param count  at most 31; below 1 stores nothing and uses channel and rectangle 0
 * @return 0 or -1. Thread: UI thread.
 */
NVRHAL_API int32_t ext_change_zoom_slave(const DispAttrib *panes, int32_t count);

/**
 * Put video layer 1 over the main picture of device 0. The layer carries the ports of display device
 * 1: enable one with vo_start_chn(1, ..., 1) and feed it with vo_bind_vpss(1, 0, channel, 0).
 * @param dev  0 or 1, otherwise unused   @param x,y,w,h  output pixels
 * @return 0 or -1. Thread: UI thread.
 */
NVRHAL_API int32_t local_bind_pip(uint32_t dev, int32_t x, int32_t y, int32_t w, int32_t h);

/** Take video layer 1 off device dev, 0 or 1. @return 0 or -1. Thread: UI thread. */
NVRHAL_API int32_t local_unbind_pip(uint32_t dev);

/* ======================================================================================= */
/* Playback                                                                                 */
/* ======================================================================================= */

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

/** Does nothing: pausing is not delivering. Ignore the result. */
NVRHAL_NOOP(ext_playback_set_pause_flag);

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

/* ======================================================================================= */
/* Snapshots                                                                                */
/* ======================================================================================= */

/** Size of a snapshot, pixels. */
typedef struct SnapSize {
    uint32_t width, height;
} SnapSize;

/** Allow snapshots, for good. @return 0. Thread: any. */
NVRHAL_API int32_t ext_set_snap_channel_enable(void);

/**
 * Take one 352 x 288 JPEG of a channel. Waits up to 2.5 s for a picture; the channel's frames must
 * keep coming in through ext_send_stream meanwhile, also when it is not shown. During playback the
 * picture is decoded from the next key frame on.
 * @param frame  in: channel. Out: frame_type 1, media FRAME_MEDIA_JPEG, width, height, length, data,
 *               local_time. data is the caller's until ext_release_jpeg_buf.
 * @return 0 = taken, or snapshots are not enabled (nothing is filled); -1 or a platform code. After
 *         a failure data is not to be released. During playback the result is that of stopping the
 *         spare decoder: check that data has been filled.
 *         The spare decoder keeps its codec: for H.264 cameras call vdec_recreate(N, 0) once before.
 * Thread: any, one snapshot at a time.
 */
NVRHAL_API int32_t ext_get_jpeg_stream(FrameInfo *frame);

/** Free a snapshot's data and set it to null; null data is accepted. @return 0. Thread: any. */
NVRHAL_API int32_t ext_release_jpeg_buf(FrameInfo *frame);

/**
 * The snapshot's steps, in the order ext_get_jpeg_stream takes them: build the pipeline from a
 * decoder channel (@return 0, -1, or 31 for pictures smaller than the snapshot), fetch one picture
 * (@return 0 or -1), take the pipeline down (@return 0).
 */
NVRHAL_API int32_t venc_snap_start(uint32_t decoder_channel, uint32_t encoder_channel, SnapSize *size);
NVRHAL_API int32_t venc_snap_process(uint32_t encoder_channel, FrameInfo *frame);
NVRHAL_API int32_t venc_snap_stop(uint32_t decoder_channel, uint32_t encoder_channel);

/**
 * Write an encoder stream to "./YEAR_MM_DD-hh_mm_ss.jpg" (local time, MM from 00) and print the head
 * of each pack. @return 0.
 */
NVRHAL_API int32_t test_save_jpeg_to_file(const struct MI_VENC_Stream *stream);

/**
 * Start a real-time thread that does nothing, and wait 2 s. @return 0, or -1 when it could not be
 * created, for want of the privilege for one.
 */
NVRHAL_API int32_t venc_start_getstream(uint32_t value);

/* ======================================================================================= */
/* Frame pools                                                                              */
/* ======================================================================================= */

/*
 * A pool keeps, per channel, the newest encoded frames in a ring of bytes and describes them in a
 * ring of index entries. The writer overwrites the oldest and never waits; a reader carries its
 * own position, copies nothing, and goes on at a key frame when the writer comes too close. One
 * writer thread per channel and pool, any number of readers, no lock.
 *
 * What a reader was given stays whole while, since its call looked, the writer has moved on by no
 * more than max_frame_len bytes of ring (bytes left unused at the ring's end count) and has begun
 * fewer than 12 frames.
 */
enum StreamPoolNumber {
    STREAM_POOL_MAIN = 0,  /* filled by ext_set_primary_video_stream */
    STREAM_POOL_SUB = 1,   /* filled by ext_set_network_video_stream */
    STREAM_POOL_AUDIO = 2, /* filled by ext_set_audio_stream         */
};

#define STREAM_POOL_MAX_CHANNELS 43
#define STREAM_FRAME_MAX_PIECES  100

/** Byte target of kx_stream_getBlock that asks for all there is of the lap. */
#define STREAM_BLOCK_WHOLE_LAP 0x20000000u

/** Sizes of one channel's rings. 12 bytes. */
typedef struct StreamRingSizes {
    int32_t max_frame_len; /* 0  largest frame, bytes, and the readers' safe distance; at least 80 */
    int32_t data_size;     /* 4  data ring, bytes; below 1 = 0x370000                              */
    int32_t index_num;     /* 8  entries; below 1 = 45056. Below 13, readers get only key frames   */
} StreamRingSizes;

/** Sizes of one pool. 520 bytes. */
typedef struct StreamPoolConfig {
    int32_t channel_count;                              /* 0  1 to 43                              */
    StreamRingSizes channels[STREAM_POOL_MAX_CHANNELS]; /* 4  the first channel_count are read     */
} StreamPoolConfig;

/** One stored frame. 28 bytes. The library rewrites entries while readers hold pointers to them. */
typedef struct StreamIndexEntry {
    uint8_t frame_type;    /*  0  the producer's, 1 = key frame             */
    uint8_t zero[3];       /*  1  always 0                                  */
    uint32_t timestamp;    /*  4  the producer's, as given                  */
    uint32_t reserved;     /*  8  always 0                                  */
    uint32_t data_start;   /* 12  offset of the first byte in the data ring */
    uint32_t data_end;     /* 16  offset one past the last byte             */
    uint32_t data_circle;  /* 20  data ring lap; -3 = never written         */
    uint32_t index_circle; /* 24  index ring lap                            */
} StreamIndexEntry;

/**
 * A reader's position; the caller's, and used by one thread at a time. kx_stream_getStartPos or
 * kx_stream_getLastPos ties it to one channel of one pool. After a successful read the bytes lie
 * at p_buf_data + data_start, data_end - data_start of them, and p_stream_index[last_index] is the
 * (last) entry. 44 bytes on the 32-bit target.
 */
typedef struct StreamReader {
    uint32_t index;                         /*  0  entry the reader is at                          */
    uint32_t last_index;                    /*  4  entry delivered last, or end of the last block  */
    uint32_t index_circle;                  /*  8  its index ring lap                              */
    uint32_t index_num;                     /* 12  entries in the index ring                       */
    uint32_t block_index;                   /* 16  where an unfinished block stopped scanning      */
    uint32_t block_count;                   /* 20  frames that it has gathered                     */
    const StreamIndexEntry *p_stream_index; /* 24  the index ring                                  */
    uint32_t data_start;                    /* 28  start of what was delivered last, and its end:  */
    uint32_t data_end;                      /* 32  equal = positioned and nothing taken yet        */
    uint32_t data_circle;                   /* 36  its data ring lap                               */
    const uint8_t *p_buf_data;              /* 40  the data ring                                   */
} StreamReader;

/** One frame to store, in pieces that are stored one behind the other. 820 bytes on the target. */
typedef struct StreamProducerFrame {
    int32_t channel;                                 /*   0  0 to 7                                 */
    uint32_t frame_type;                             /*   4  1 = key frame; the low 8 bits are kept */
    int32_t piece_count;                             /*   8  0 to 100                               */
    uint32_t reserved;                               /*  12  not read                               */
    uint32_t piece_lengths[STREAM_FRAME_MAX_PIECES]; /*  16  bytes; pieces of length 0 are skipped  */
    const void *pieces[STREAM_FRAME_MAX_PIECES];     /* 416                                         */
    uint32_t timestamp;                              /* 816  stored as given                        */
} StreamProducerFrame;

/**
 * Allocate a pool's rings; start-up does it for all three. What an earlier call allocated for the
 * same pool stays allocated, for the threads that still use it.
 * @param pool  0 to 2; for any other number the rings are allocated and belong to no pool
 * @return 0, or -1: null, a channel count outside 1 to 43, or no memory. Thread: one.
 */
NVRHAL_API int32_t kx_stream_init_avstream(const StreamPoolConfig *config, int32_t pool);

/** Free what was allocated last; no thread may use it any more. @return 0. Thread: one. */
NVRHAL_API int32_t kx_stream_destroy_avstream(void);

/**
 * Store a frame: one copy, no waiting. @return 0; -1 = refused and nothing changed: null, a bad
 * channel, pool, piece count or piece, no bytes, more bytes than max_frame_len or than the ring.
 * Thread: one per channel and pool.
 */
NVRHAL_API int32_t kx_stream_sendFrameToPool(const StreamProducerFrame *frame, int32_t pool);

/** Position a reader at the newest frame; the next read delivers it. @return 0, -1 = bad argument. Thread:
 * any. */
NVRHAL_API int32_t kx_stream_getLastPos(int32_t channel, StreamReader *reader, int32_t pool);

/**
 * Position a reader at the oldest frame that is still safe, key frame or not; the next read
 * delivers it. @return 0; -1 = bad argument, or no frame at a safe distance. Thread: any.
 */
NVRHAL_API int32_t kx_stream_getStartPos(int32_t channel, StreamReader *reader, int32_t pool);

/**
 * Deliver the next frame, in order and never twice. A reader that the writer has overrun, or is
 * about to, goes on at the oldest safe key frame instead.
 * @param skip_limit  0 = every frame; otherwise a backlog of more frames skips to the next key frame
 * @return bytes; 0 = nothing to be had, or a bad argument (the reader stays as it is). Thread: the reader's.
 */
NVRHAL_API int32_t kx_stream_getOneFrame(int32_t channel, int32_t skip_limit, StreamReader *reader,
                                         int32_t pool);

/**
 * Gather consecutive frames of one lap into one range of bytes, at most index_num / 3 + 1 frames.
 * A jump of the time stamps by more than 59 ends the block before the jump; the call then waits,
 * without limit, for the key frame at which the next block starts. A reader serves either this
 * function or kx_stream_getOneFrame.
 * @param byte_target  bytes after which the block ends, or STREAM_BLOCK_WHOLE_LAP
 * @return 2 = a block; 3 = whole-lap request: up to the newest frame; 4 = a block that ends at a
 *         jump; 0 = not yet, or a bad argument. Pool 2 judges the position by the audio ring and
 *         gathers from the sub ring. Thread: one for all channels and pools together.
 */
NVRHAL_API int32_t kx_stream_getBlock(int32_t channel, uint32_t byte_target, StreamReader *reader,
                                      int32_t pool);

/* ======================================================================================= */
/* Stream exchange                                                                          */
/* ======================================================================================= */

/**
 * Store a frame of a channel's main stream, network stream or sound. Reads of *frame: frame_type
 * (video), length, width and height (video; they become the channel's stream attributes, stored or
 * not), data, and the low 32 bits of pts.
 * @return ext_set_primary_video_stream: 0, also when the frame was refused; the others: 0, or -1 =
 *         refused (see kx_stream_sendFrameToPool). A null frame: -1.
 * Thread: one producer per channel and stream.
 */
NVRHAL_API int32_t ext_set_primary_video_stream(uint32_t channel, const FrameInfo *frame);
NVRHAL_API int32_t ext_set_network_video_stream(uint32_t channel, const FrameInfo *frame);
NVRHAL_API int32_t ext_set_audio_stream(uint32_t channel, const FrameInfo *frame);

/**
 * Fetch the next stored frame of a channel; the first call starts at the oldest safe one. The
 * library keeps one position per channel and stream.
 *
 * Fills frame_type, media, length, width, height, data, channel, local_time (now) and pts. Video:
 * pts is the stored 32-bit stamp, sign-extended; width and height are those stored last; stream_id
 * and display_rate stay as they are. Audio: frame_type, width, height and display_rate are 0,
 * stream_id is channel + 2 N, pts is always 1. data points into the pool and must not be written
 * to; be done with it before the producer has come round again.
 * @param channel  below N
 * @return 0; -1 = nothing new, or a bad argument. Thread: one consumer per channel and stream.
 */
NVRHAL_API int32_t ext_get_primary_video_stream(uint32_t channel, FrameInfo *frame);
NVRHAL_API int32_t ext_get_network_video_stream(uint32_t channel, FrameInfo *frame);
NVRHAL_API int32_t ext_get_audio_stream(uint32_t channel, FrameInfo *frame);

/** Talkback capture: there is none. @return -1. Thread: any. */
NVRHAL_API int32_t ext_get_audio_speek_stream(void);

/** The wall clock, microseconds since 1970-01-01 00:00 UTC. Thread: any. */
NVRHAL_API int64_t local_get_curtime(void);

/* ======================================================================================= */
/* Text: GB2312, Unicode and UTF-8; simplified and traditional characters                   */
/* ======================================================================================= */

/*
 * "Unicode" text here: units of two bytes, high byte first, ended by a zero unit at an even offset.
 * GB2312 text: bytes below 161 stand for themselves, a byte of 161 or more and the next one are one
 * character. All calls: any thread; the buffers are the caller's. A null pointer gives -1. A failure
 * prints its message, in GB2312, and returns -1; what has been written by then stays.
 */

/** A character of GB2312. */
typedef struct UnicodeGb2312 {
    uint16_t unicode; /* 0  code point                              */
    uint16_t gb2312;  /* 2  first byte in the high half, then second */
} UnicodeGb2312;

/**
 * All characters of GB2312, sorted by code point. Look-ups read it from the first row on and take
 * the first match; the application may change rows while no conversion runs.
 */
extern NVRHAL_API UnicodeGb2312 Unicode_GB2312[7445];

/** Rows of Unicode_GB2312 that are searched: 0 until InitTransformationTable sets it to 7445. */
extern NVRHAL_API long TableLen;

/**
 * Hanzi of everyday use, simplified (JTFontlib) and traditional (FTFontlib) at the same index: 3754
 * UTF-8 texts of one character, then "END". Searched from the first entry to "END", first match
 * wins; the application may set entries while no conversion runs, and keeps what they point to.
 */
extern NVRHAL_API const char *JTFontlib[3755];
extern NVRHAL_API const char *FTFontlib[3755];

/** Set TableLen on the first call; later calls do nothing. The conversions call it. @return 0. */
NVRHAL_API int InitTransformationTable(void);

/**
 * Bytes that the Unicode form of a zero-terminated GB2312 text takes, with its end.
 * @return 2 or more; -1 = null, or a byte above 160 without one of 161 or more behind it.
 */
NVRHAL_API int GetGB2312ToUnicodeLength(const uint8_t *gb2312);

/**
 * GB2312 to Unicode.
 * @param length    bytes at gb2312; below 1 writes the zero unit only, whatever out_size says
 * @param out       the units and a zero unit. The zero unit is not checked against out_size: leave
 *                  two spare bytes behind it.
 * @param out_size  bytes at out for the units; an odd one counts as one less
 * @return 0; -1 = no room, a character cut off by length, or a character that is not in the table.
 */
NVRHAL_API int FromGb2312ToUnicode(const uint8_t *gb2312, int length, uint8_t *out, uint32_t out_size);

/** Bytes of a Unicode text before its zero unit. @return 0 or more, even; -1 = null. */
NVRHAL_API int GetUnicodeLength(const uint8_t *unicode);

/** A loose upper bound of the bytes that FromUnicodeToGb2312 writes. @return 1 or more; -1 = null. */
NVRHAL_API int GetUnicodeToGB2312Length(const uint8_t *unicode);

/**
 * Unicode to GB2312.
 * @param length    bytes at unicode, even; zero units inside are converted too
 * @param out       the text and a zero byte. The zero byte is not checked against out_size: leave
 *                  two spare bytes behind it.
 * @param out_size  bytes at out for the text
 * @return 0; -1 = no room, an odd length, or a character that is not in the table.
 */
NVRHAL_API int FromUnicodeToGb2312(const uint8_t *unicode, uint32_t length, uint8_t *out, int out_size);

/**
 * Bytes of the UTF-8 form and one more. Units from 0x8000 on count one byte although
 * UnicodeToUTF8 writes three for them: for text with such units take 3 bytes a unit instead.
 * @return 1 or more; -1 = null.
 */
NVRHAL_API int GetUnicodeToUTF8Length(const uint8_t *unicode);

/**
 * Unicode to UTF-8, unit by unit; surrogates are not joined. Writes no terminator.
 * @param out_size  bytes at out  @return 0; -1 = no room, or null.
 */
NVRHAL_API int UnicodeToUTF8(const uint8_t *unicode, uint8_t *out, int out_size);

/**
 * The length of a UTF-8 character, told by its first byte.
 * @param payload_mask  out: the bits of lead that are not its leading ones; null is skipped
 * @return the number of leading one bits: 0 for ASCII, 1 for a continuation byte, 2 to 8.
 */
NVRHAL_API int GetUtf8ByteNumber(uint8_t lead, uint8_t *payload_mask);

/** 2 bytes for each UTF-8 character, and 1. @return 1 or more; -1 = null. */
NVRHAL_API int GetUTF8ToUnicodeLength(const char *utf8);

/**
 * UTF-8 to Unicode; of code points above 0xFFFF the low 16 bits. Continuation bytes are not
 * checked; bytes that the end of the text cuts off count as zero bits. Writes no terminator.
 * @param out_size  bytes at out. One unit past it may be written: leave two spare bytes behind it.
 * @return 0; -1 = no room, or null.
 */
NVRHAL_API int UTF8ToUnicode(const char *utf8, uint8_t *out, int out_size);

/**
 * Replace traditional by simplified characters in UTF-8 text, or the other way round; everything
 * else is copied. Writes no terminator.
 * @param in   zero-terminated
 * @param out  zeroed by the caller and at least as large as in; may be in itself. Entries set by the
 *             application may be longer than what they replace.
 * @return 0; -1 = null.
 */
NVRHAL_API int TraditionalToSimplifiedUTF8(const char *in, char *out);
NVRHAL_API int SimplifiedToTraditionalUTF8(const char *in, char *out);

/* ======================================================================================= */
/* Audio output                                                                             */
/* ======================================================================================= */

/** What the audio output serves: AudioCtrl::mode. */
enum AudioUse {
    AUDIO_USE_OFF = 0,      /* muted or volume 0 */
    AUDIO_USE_LIVE = 1,     /* live audio        */
    AUDIO_USE_PLAYBACK = 2, /* recorded audio    */
    AUDIO_USE_TALKBACK = 3,
};

/** State of the audio output. 52 bytes. */
typedef struct AudioCtrl {
    uint32_t mode;      /*  0  enum AudioUse                               */
    uint32_t reset_1;   /*  4  0 at start-up and at each change of use but */
                        /*     those by volume and by the end of talkback  */
    uint32_t reset_2;   /*  8  likewise                                    */
    uint32_t enabled;   /* 12  likewise 1                                  */
    uint32_t reset_4;   /* 16  likewise 0                                  */
    uint32_t zero_5[3]; /* 20  0                                           */
    uint32_t chn_num;   /* 32  N, set at start-up                          */
    uint32_t zero_9[4]; /* 36  0                                           */
} AudioCtrl;

/** What the output serves now. Playback sends audio only while mode is not 0. Whole words, no lock. */
extern NVRHAL_API AudioCtrl audio_ctrl;

/** 1 while talkback is on. */
extern NVRHAL_API uint32_t speak_flag;

/** Set audio device 3 up for 8 kHz A-law, played at 48 kHz; start-up calls it. @return 0, or -1 at the
 * first failure. Thread: UI thread. */
NVRHAL_API int32_t audio_init(void);

/** Configure and enable an audio output device. @param attr  null is the platform's to refuse.
 * @return 0, or -1 at the first failure. Thread: UI thread. */
NVRHAL_API int32_t audio_start_ao(uint32_t device, uint32_t unused, const struct MI_AO_PubAttr *attr);

/**
 * Configure and enable a device channel's decoder, at 48 kHz.
 * @param payload_type  the platform's codec code, 0 to 2; 0 = A-law
 * @param mode          sound mode code, 0 = mono; payload type 2 makes it 3
 * @return 0, -1 for another payload type, or the platform's code. Thread: UI thread.
 */
NVRHAL_API int32_t audio_create_adec_chn(uint32_t device, uint32_t channel, uint32_t payload_type,
                                         uint32_t mode);

/**
 * Switch live audio on or off: the output is unmuted or muted. Which channel is heard is decided by
 * what is sent; the number is only printed. @param open  0 = off, any other = on
 * @return 0, also when the platform did not mute. Thread: UI thread.
 */
NVRHAL_API int32_t ext_set_audio_live_channel(int32_t open, int32_t channel);

/**
 * Set the volume. @param volume  0 to 100: -60 dB to +30 dB in steps of 0.9 dB, cut to whole dB;
 * larger values are not limited. 0 also closes the output for playback, any other opens it.
 * @return 0, or -1 when the platform refused. Thread: UI thread.
 */
NVRHAL_API int32_t ext_set_audio_output_volume(uint32_t volume);

/** Switch the output to talkback, and back off; the latter takes one second. @return 0. Thread: UI thread. */
NVRHAL_API int32_t ext_audio_speek_start(void);
NVRHAL_API int32_t ext_audio_speek_stop(void);

/** Store the boot audio format; the library does not read it. @return 0. Thread: any. */
NVRHAL_API int32_t ext_change_boot_audio_format(uint32_t format);

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

/** Place of the HDMI audio path, which needs nothing here. audio_stop_hdmi returns its argument. */
NVRHAL_API void audio_start_hdmi(void);
NVRHAL_API int32_t audio_stop_hdmi(int32_t argument);

/* ======================================================================================= */
/* GUI surface                                                                              */
/* ======================================================================================= */

/** State of the framebuffer. Zero at load. The application may read all of it and set the buffers. */
typedef struct OsdInfo {
    uint32_t reserved_0[2];            /*   0  never used                                          */
    uint32_t app_buffer_second;        /*   8  reported by ext_app_buf_addr, never filled          */
    uint32_t reserved_3[2];            /*  12  never used                                          */
    uint32_t app_buffer_third;         /*  20  likewise                                            */
    void *mapped_address;              /*  24  the framebuffer's memory; null = not mapped         */
    uint32_t reserved_7;               /*  28  never used                                          */
    uint32_t app_buffer_first;         /*  32  likewise                                            */
    uint32_t mapped_length;            /*  36  bytes mapped                                        */
    int32_t descriptor;                /*  40  -1 after a failure, 0 before fb_init has ever run   */
    char path[24];                     /*  44  "/dev/fb0", NUL-terminated                          */
    struct fb_fix_screeninfo fixed;    /*  68  stride (line_length), memory (smem_start, smem_len) */
    struct fb_var_screeninfo variable; /* 136  size, panning offsets, depth, alpha width           */
} OsdInfo;

extern NVRHAL_API OsdInfo g_osd_info;

/** Bits of each component of a colour format. 16 bytes. */
typedef struct OsdCompInfo {
    uint32_t alpha_bits;  /*  0                                 */
    uint32_t low_bits;    /*  4  blue                           */
    uint32_t middle_bits; /*  8  green                          */
    uint32_t high_bits;   /* 12  red                            */
} OsdCompInfo;

/**
 * The GUI's colour formats 0 to 7: RGB444, ARGB4444, RGB555, RGB565, ARGB1555, none, RGB888,
 * ARGB8888. These codes are not those of getFBColorFmt or of the framebuffer driver.
 */
extern NVRHAL_API const OsdCompInfo s_OSDCompInfo[8];

/**
 * The mouse cursor: 32 x 32 pixels of 1-5-5-5, rows from top to bottom, the arrow's tip in the
 * top-left corner. 0x001F is background, to be left out. The alpha bits are clear: on a layer that
 * blends by pixel, set bit 15 of what is copied into the framebuffer.
 */
extern NVRHAL_API const uint16_t CurseValue[1024];
extern NVRHAL_API const int32_t MOUSE_IMAGE_WIDTH;
extern NVRHAL_API const int32_t MOUSE_IMAGE_HEIGHT;

/**
 * Set the framebuffer up for a GUI of width x height pixels: open and map it, clear it, place the
 * layer over the video in ARGB1555, show it, make pure black transparent, blend by pixel. Start-up
 * calls it. A second call opens and maps once more, over the old state. Above 1920 wide and 1080
 * high the memory is read at half the width.
 *
 * @param output_device  ignored
 * @return 0, also when there is no framebuffer device; otherwise -1, or the positive character
 *         count of the printed message when the driver refused the layer's place. A device that
 *         cannot be read again after that ends the process with status 0.
 * Thread: UI thread.
 */
NVRHAL_API int32_t fb_init(uint32_t output_device, int32_t width, int32_t height);

/** Does nothing: the framebuffer stays open and mapped. @return 0. */
NVRHAL_API int32_t fb_uninit(void);

/**
 * The geometry of the surface.
 * @param layer  ignored
 * @param info   out: width and height in pixels, bytes a row, bytes a pixel (always 2), address of
 *               the mapped memory, physical address; null is skipped. On a 64-bit machine the
 *               addresses are cut to 32 bits.
 * @return 0. Thread: UI thread.
 */
NVRHAL_API int32_t ext_get_fb_info(uint32_t layer, uint32_t info[6]);

/** The application's own three buffer words of g_osd_info. Null outputs are skipped. @return 0. */
NVRHAL_API int32_t ext_app_buf_addr(uint32_t *first, uint32_t *second, uint32_t *third);

/** Copies nothing. @return 0, or -1 when the framebuffer could not be opened. */
NVRHAL_API int32_t ext_fb_copy(void);

/** Fills nothing. @return 0. */
NVRHAL_API int32_t ext_fb_quick_fill(void);

/**
 * Bracket a drawing job: begin, write pixels into the mapped memory (row y starts y * stride bytes
 * from its start), end. The end shows what was drawn.
 * @return 0, or -1 when there is no framebuffer or the driver refused. Thread: UI thread.
 */
NVRHAL_API int32_t ext_tde_begin_job(void);
NVRHAL_API int32_t ext_tde_end_job(void);

/**
 * Pack three 8-bit components into 16 bits: low (blue) at bit 0, middle above it, high above that,
 * the top alpha_bits set. Widths above 8 count as 8, above 16 alpha bits as 16.
 */
NVRHAL_API uint16_t OSD_MAKECOLOR_U16(int32_t low, int32_t middle, int32_t high, uint32_t alpha_bits,
                                      uint32_t low_bits, uint32_t middle_bits, uint32_t high_bits);

/** Open "/dev/mem" once. @return its descriptor, or -1. Nothing in the library calls it. Thread: one. */
NVRHAL_API int32_t memopen(void);

/**
 * The painters' code for a framebuffer's format: 1 RGB565, 2 ARGB4444, 5 ARGB8888, 6 ARGB1555,
 * 12 any other. Null is 12. Thread: any.
 */
NVRHAL_API int32_t getFBColorFmt(const struct fb_var_screeninfo *screen);

/**
 * Paint a solid rectangle into the framebuffer, in the format that its driver reported.
 *
 * The rectangle follows the panned view. It is not clipped to the screen: a row that is too long
 * goes on in the next one; what lies outside the mapped memory is left out.
 * @param colour  0xAARRGGBB. ARGB1555 takes any alpha above 0 as set, ARGB4444 is always opaque.
 * Nothing is painted, and a line printed, when nothing is mapped or no painter fits the format.
 * Thread: UI thread.
 */
NVRHAL_API void drawRect(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour);

/** The same in one format, whatever the framebuffer's: RGB565, ARGB4444, ARGB1555, ARGB8888. */
NVRHAL_API void drawRect_rgb16(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour);
NVRHAL_API void drawRect_rgb12(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour);
NVRHAL_API void drawRect_rgb15(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour);
NVRHAL_API void drawRect_rgb32(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour);

/** drawRect of {x, y, width, height}; null paints nothing. @return 0. Thread: UI thread. */
NVRHAL_API int32_t ST_Fb_FillRect(const uint16_t rect[4], uint32_t colour);

/** A test pattern: four squares of 200 x 200. @return 0. Thread: UI thread. */
NVRHAL_API int32_t ST_FBDrawRect(void);

/** A picture in the caller's memory. 16 bytes on the 32-bit target. */
typedef struct OsdSurface {
    uint32_t width;  /*  0  pixels                          */
    uint32_t height; /*  4                                  */
    uint32_t pitch;  /*  8  bytes from one row to the next  */
    void *pixels;    /* 12  at least pitch * height bytes   */
} OsdSurface;

/**
 * The headers of a BMP file.
 * @param file_header_rest  out: the 12 bytes behind "BM"; the pixels' offset is in the last four
 * @param info              out: the 40-byte info header and the 4 bytes behind it
 * @return 0, or -1 (cannot be opened, no BMP file, cut short). Thread: any.
 */
NVRHAL_API int32_t GetBmpInfo(const char *path, uint8_t file_header_rest[12], uint8_t info[44]);

/**
 * Load an uncompressed BMP file of at least 16 bits a pixel whose rows stand from bottom to top.
 * Files that end early fill the rows that they have.
 * @param surface  its pixels are the caller's and large enough; width and height are set, and the
 *                 pitch. At most a pitch of bytes a row is written.
 *
 * LoadBMP copies: 2 bytes a pixel for 16-bit files, otherwise 4 of which the last is set to 128.
 * Rows must be multiples of 4 bytes. A pitch that is not 0 is kept.
 * LoadBMPEx converts 24-bit files to color_format, a row of s_OSDCompInfo other than 1 and 5, and
 * copies 16- and 32-bit ones. The pitch is width * 2 below format 6, else width * 4.
 * @return 0 or -1. Thread: any.
 */
NVRHAL_API int32_t LoadBMP(const char *path, OsdSurface *surface);
NVRHAL_API int32_t LoadBMPEx(const char *path, OsdSurface *surface, uint32_t color_format);

/** What follows the last '.' of a name, its end when there is none, null for null. Thread: any. */
NVRHAL_API const char *GetExtName(const char *name);

/** The loaders behind a check of the extension, which must be "bmp" in lower case. @return 0 or -1. */
NVRHAL_API int32_t LoadImage(const char *path, OsdSurface *surface);
NVRHAL_API int32_t LoadImageEx(const char *path, OsdSurface *surface, uint32_t color_format);

/** LoadImage into plain memory, the rows without gaps; the second argument is not used. @return 0 or -1. */
NVRHAL_API int32_t LoadBitMap2Surface(const char *path, const OsdSurface *unused, void *buffer);

/** LoadImageEx. @return 0 or -1. */
NVRHAL_API int32_t CreateSurfaceByBitMap(const char *path, OsdSurface *surface, uint32_t color_format);

/**
 * Write a text as a QR code into an 8-bit grey BMP file, 6 x 6 pixels a module.
 * @param text       1 to 2953 bytes, printed first
 * @param file_name  "-" = standard output, which is closed behind the image
 * Every failure ends the process: status 1 (no or too long a text, no file), -1 (no memory).
 * Thread: any.
 */
NVRHAL_API void qrencode(const char *text, const char *file_name);

/* ======================================================================================= */
/* Live view: output device and buffers                                                     */
/* ======================================================================================= */

/**
 * Switch the output device and resolution, and set the GUI's framebuffer up anew. The display
 * itself changes when it is started next.
 * @param type           3 = the secondary output, any other = the main output
 * @param width, height  output pixels; they choose enNorm_vga
 * @return 0; -1 = null, or no framebuffer. Thread: UI thread; not while a layout changes.
 */
NVRHAL_API int32_t ext_change_output_device(const int32_t *type, const int32_t *width, const int32_t *height);

/** Flush decoders 0 to 7, whatever N is, and clear their display ports. @return 0. Thread: UI thread. */
NVRHAL_API int32_t ext_clear_disp(void);

/** Does nothing. */
NVRHAL_NOOP(ext_vo_buffer_clear1);

/** Clear the pictures of port channel - 1: the channel counts from 1. @return 0. Thread: UI thread. */
NVRHAL_API int32_t ext_vo_buffer_clear2(uint32_t channel);

/**
 * Clear the pictures of port `channel` (mode 1 only), and flush the decoder channel whose number is
 * that of the display device. Nothing outside live view without zoom. @return 0. Thread: UI thread.
 */
NVRHAL_API int32_t ext_vo_buffer_clear3(uint32_t channel, uint32_t mode);

/** Connect decoder `channel`, or decoder N + 1, to port `channel` of device 0. @return 0. Thread: UI thread.
 */
NVRHAL_API int32_t ext_vo_buffer_create1(uint32_t channel);
NVRHAL_API int32_t ext_vo_buffer_create2(uint32_t channel);

/** Connect a channel to display device 2, or disconnect it. @return 0. Thread: UI thread. */
NVRHAL_API int32_t ext_record_enable(uint32_t channel, uint32_t enable);

/**
 * Which channels have lost their analog signal.
 * @param mask  out: bit n = channel n, low word first; channel 31 sets the whole second word too
 * @return 0; -1 = null, or the analog front end failed: the bits found so far stand. Thread: any.
 */
NVRHAL_API int32_t ext_get_video_loss_status(uint32_t mask[2]);

/** Store three quality values of a channel's main or network stream. @return 0. Thread: any. */
NVRHAL_API int32_t ext_change_local_img_quality(uint32_t channel, uint32_t first, uint32_t second,
                                                uint32_t third);
NVRHAL_API int32_t ext_change_net_img_quality(uint32_t channel, uint32_t first, uint32_t second,
                                              uint32_t third);

/** Store a channel's network size code; its network stream becomes 640 x 360 for any. @return 0. Thread: any.
 */
NVRHAL_API int32_t ext_change_net_video_size(uint32_t channel, uint32_t size);

/** Only reported; the picture stays as it is. @return 0. Thread: any. */
NVRHAL_API int32_t ext_set_voutdev_hue(uint32_t channel, uint32_t value);
NVRHAL_API int32_t ext_set_voutdev_contrast(uint32_t channel, uint32_t value);
NVRHAL_API int32_t ext_set_voutdev_saturation(uint32_t channel, uint32_t value);

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

/* ======================================================================================= */
/* Keys and mouse                                                                           */
/* ======================================================================================= */

/** One key press. 20 bytes. */
typedef struct KeyEvent {
    uint32_t source;    /*  0  2 = IR remote                          */
    uint32_t unread_1;  /*  4  left as it is                          */
    uint32_t code;      /*  8  key code, 84 'T' to 122 'z'            */
    uint32_t unread[2]; /* 12  left as they are; 0 in what is handed out */
} KeyEvent;

/**
 * Key presses that wait for ext_keyboard_value, guarded by g_key_lock. The writer goes round the
 * first 128 slots and does not look whether they are free: when it laps the reader, the queue reads
 * as empty and the waiting keys are lost. The reader goes round all 256, and finds slots 128 to 255
 * unwritten. Empty when both indexes are equal.
 */
typedef struct KeyQueue {
    KeyEvent slots[256];
    uint32_t read_index;  /* 0 to 255 */
    uint32_t write_index; /* 0 to 127 */
} KeyQueue;

extern NVRHAL_API KeyQueue key_que;
extern NVRHAL_API pthread_mutex_t g_key_lock;

/** What the local IR reader saw last. 8 bytes. */
typedef struct LocalKey {
    uint32_t valid; /* 0  1 = the code was known                            */
    uint32_t code;  /* 4  key code, 122 'z' for a code that is not known    */
} LocalKey;

/** The last known key of the local IR reader; unlocked, its two words may be of two frames. */
extern NVRHAL_API LocalKey key;

/**
 * Which keys of the remote reach the queue: 1 (at load) = all; 0 = all, but the first zoom key (96)
 * after other keys only arms the following ones; any other value = none.
 */
extern NVRHAL_API int32_t keyboard_zoom_flag_m;

/** Descriptor that the local IR reader reads; the application opens it and stores it here. 0 at load. */
extern NVRHAL_API int32_t g_S32Irfd;

/** For the application's mouse reader: its descriptor (-1 at load), an event, and 1 = it is new. */
extern NVRHAL_API int32_t g_mouse_fd;
extern NVRHAL_API uint32_t g_s32KeyValue[5];
extern NVRHAL_API uint32_t g_bMouseEvent;

/** Guards g_s32KeyValue and g_bMouseEvent; the application's mouse reader takes it too. */
extern NVRHAL_API pthread_mutex_t g_mouse_lock;

/**
 * Open the front panel and empty the key queue. A panel that cannot be opened is only reported.
 * @return 0, or -1 when a thread attribute could not be had. Thread: UI thread.
 */
NVRHAL_API int32_t ext_keyboard_initial(void);

/**
 * Close the front panel and the remote's receiver. The panel's descriptor is not forgotten: a later
 * ext_keyboard_value goes on using its number.
 * @return the result of closing the receiver; -1 when it was not open. Thread: UI thread.
 */
NVRHAL_API int32_t ext_keyboard_close(void);

/**
 * Take one key. Tells the panel whether there was one.
 * @param event  out: source, unchanged, key code, 0, 0
 * @return 0; -1 = no key, null, or no panel (it is opened when it is not open). Thread: any.
 */
NVRHAL_API int32_t ext_keyboard_value(uint32_t event[5]);

/** Store keyboard_zoom_flag_m. @return the characters printed. Thread: any. */
NVRHAL_API int32_t ext_keyboard_zoom_flag(int32_t mode);

/** Take the mouse event. @return 0; -1 = none is waiting, or null. Thread: any. */
NVRHAL_API int32_t ext_mouse_get_status(uint32_t event[5]);

/**
 * The remote-key reader: put what the receiver "/dev/Hi_IR" decodes into the key queue, for ever.
 * The last key repeats while reads give nothing. The application runs it on a thread of its own and
 * ends it, if ever, by cancelling that thread.
 * @return -1 when the receiver cannot be opened; otherwise never.
 */
NVRHAL_API int32_t hi_remotekey_proc(void);

/**
 * Start the local IR reader on a thread of its own, which runs until the process ends.
 * @return 1 = started, -1 = no thread to be had.
 */
NVRHAL_API int32_t localKey_init(void);

/** The local IR reader: every millisecond, keep the last known key in `key`. Never returns. */
NVRHAL_API void local_ir_key_thread_body(void);

/**
 * Read one frame from g_S32Irfd. A short or undecoded frame leaves *status as it is.
 * @return 0; -1 = null.
 */
NVRHAL_API int32_t local_irkey_status_get(LocalKey *status);

/** Parts of ext_keyboard_initial and ext_keyboard_close. @return 0 or -1. Thread: any. */
NVRHAL_API int32_t hi_start_key_proc(void);
NVRHAL_API void hi_stop_key_proc(void);

/** Do nothing. */
NVRHAL_API void translateKey(void);
NVRHAL_API void hi_localkey_proc(void);

/* ======================================================================================= */
/* Board                                                                                    */
/* ======================================================================================= */

/** Load the GPIO driver and configure the output lines; start-up calls it. @return 0 or -1. Thread: UI
 * thread. */
NVRHAL_API int32_t local_gpio_init(void);

/** The buzzer line: 1 = high, 0 = low. It is high after start-up. @return 0 or -1. Thread: any. */
NVRHAL_API int32_t ext_buzzer_set(uint32_t on);

/** Alarm inputs: none. @param status  out: 0. @return 0; -1 = null. Thread: any. */
NVRHAL_API int32_t ext_alarm_status_get(nvrhal_u64 *status);

/**
 * Read or set the battery-backed clock.
 * @param tm   second, minute, hour, day of month, month 1 to 12, year with its century, day of
 *             week, day of year, daylight-saving flag; checked by the clock only
 * @param set  0 = read into tm, other = set
 * @return 0, or -1: no clock, null, refused. A read that fails leaves month + 1 and year + 1900 of
 *         what tm held. Thread: any.
 */
NVRHAL_API int32_t ext_rtc_time_system(int32_t tm[9], uint32_t set);

/**
 * Describe a channel's video: a 40-byte record, little-endian: u32 40, width, height; u16 planes 1,
 * bits 16; "H265"; 20 bytes of 0. The size is the main stream's for a channel below N, otherwise
 * the network stream's of channel - N; 0 x 0 where there is no such stream.
 * @return 0; -1 = null. Thread: any.
 */
NVRHAL_API int32_t ext_get_video_format(uint32_t channel, uint8_t out[40]);

/**
 * Describe the audio: an 18-byte record, little-endian: u16 format 6 (A-law), channels 1; u32 8000
 * samples, 16000 bytes a second; u16 block 2, bits 16, extra 0. @return 0; -1 = null. Thread: any.
 */
NVRHAL_API int32_t ext_get_audio_format(uint8_t out[18]);

/**
 * Blink the record indicator, half a second dark and half a second lit, on a thread of the library.
 * Starting what runs is reported and accepted. @return 0, or -1 when there is no thread to be had.
 * Thread: any.
 */
NVRHAL_API int32_t hi_start_record_proc(void);

/** Stop blinking and leave the indicator lit. @return 0, also when nothing blinks; -1 = the panel refused. */
NVRHAL_API int32_t hi_stop_record_proc(void);

/** What the blinker runs: never returns, unless the panel cannot be opened. @return null. */
NVRHAL_API void *hi_record_proc(void *ignored);

/** 1 = the feeding thread goes on; it looks every 3 seconds. 0 at load. */
extern NVRHAL_API uint8_t Wdt_Fing;

/** Open, enable and feed the watchdog; start-up calls it. @return 0, or (uint32_t)-1. */
NVRHAL_API uint32_t local_wdg_init(void);

/** Open the watchdog, if it is not open, and disable it. @return 0 or -1. Thread: UI thread. */
NVRHAL_API int32_t local_wdg_open(void);

/**
 * Enable (other than 0) or disable the watchdog. One that counts as enabled is fed instead.
 * @return 0, also when the device refused; -1 = not open. Thread: any.
 */
NVRHAL_API int32_t local_wdg_set(int32_t on);

/** Seconds after which a watchdog that is not fed resets the board. @return the device's result, or -1. */
NVRHAL_API int32_t local_wdg_set_timeout(int32_t seconds);

/** Feed the watchdog. @return 0; -1 = disabled, not open, or refused. Thread: any. */
NVRHAL_API int32_t local_wdg_feed(void);

/**
 * Start a thread that feeds the watchdog at once and then every 3 seconds while Wdt_Fing is set.
 * Set it first: the thread ends by itself once it finds it 0, or when a feed fails.
 * @return 0, or -1 when there is no thread to be had. Thread: any.
 */
NVRHAL_API int32_t wdt_feed_pt(void);

/** Store the low byte of value in Wdt_Fing. Thread: any. */
NVRHAL_API void Set_Wdt_Fing(uint32_t value);

/**
 * Switch the watchdog. The feeding thread is told to end in either case, so after switching on the
 * application feeds, or starts feeding again. @return 1. Thread: any.
 */
NVRHAL_API uint32_t ext_wdg_set(int32_t on);

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

/* ======================================================================================= */
/* Analog front end                                                                         */
/* ======================================================================================= */

/*
 * The analog camera inputs' decoder chips. Four inputs belong to a chip. Every call opens the
 * driver's node, issues its request and closes the node; the driver serialises. Unless said
 * otherwise: 0, or -1 = no driver, refused, or a null record. Thread: any.
 */

struct AdVideoLoss;
struct AdColorAdjust;
struct AdMotionArea;
struct AdMotionSensitivity;
struct AdMotionQuery;

/** Set every chip up: 3 for a channel with a 960 x 576 main stream, 1 otherwise, and the norm. */
NVRHAL_API int32_t Init_AD(uint32_t norm_flag);

NVRHAL_API int32_t ad_set_norm(uint32_t norm);
NVRHAL_API int32_t ad_get_norm(uint8_t *norm);
NVRHAL_API int32_t ad_work_mode(uint32_t mode);
NVRHAL_API int32_t ad_get_loss(struct AdVideoLoss *loss);
NVRHAL_API int32_t ad_set_adjust(uint32_t first, uint32_t second, uint32_t third);
NVRHAL_API int32_t ad_get_adjust(struct AdColorAdjust *adjust);
/** @param rate  8000, 16000, 32000, 44100 or 48000 samples a second; any other is refused */
NVRHAL_API int32_t ad_set_sample_rate(uint32_t rate);
NVRHAL_API int32_t ad_set_audio_playback(uint32_t selection);
NVRHAL_API int32_t ad_set_audio_volume(uint32_t volume);
NVRHAL_API int32_t ad_set_audio_format(uint32_t format);
/** @param mode  2 sends format 1, any other 0 */
NVRHAL_API int32_t ad_audio_work_mode(uint32_t mode);
/** @param code  only 0 is accepted */
NVRHAL_API int32_t ad_set_audio_bitwidth(uint32_t code);
NVRHAL_API int32_t ad_set_mute(uint32_t mute);

/** The chips' own motion detection: clear the areas, set the sensitivity to 6, start. */
NVRHAL_API int32_t InitMotion(void);
NVRHAL_API int32_t SetMotionArea(const struct AdMotionArea *area);
NVRHAL_API int32_t GetMotionArea(struct AdMotionQuery *query);
NVRHAL_API int32_t SetMotionSensivity(const struct AdMotionSensitivity *sensitivity);

/**
 * Watched blocks of one channel's main-stream picture. 9020 bytes. Filled by ext_set_motion_area,
 * read by whoever evaluates motion.
 */
typedef struct VdaChannel {
    uint32_t unread[4]; /*  0  carried                                                           */
    uint32_t threshold; /* 16  blocks that must move to count as motion                          */
    uint8_t map[9000];  /* 20  1 = watched; a byte a block of 8 x 8 pixels, a row width / 8 bytes */
} VdaChannel;

extern NVRHAL_API VdaChannel vda_chn[128];

/** 1 once an area has been set. */
extern NVRHAL_API uint32_t vda_flag;

/** Sensitivity level of all channels, 0 to 10. */
extern NVRHAL_API uint32_t g_sensitive;

/** Store the sensitivity level; the channel is ignored. Takes effect on areas set later. @return 0. */
NVRHAL_API int32_t ext_set_motion_sensitive(uint32_t channel, uint32_t level);

/**
 * Set a channel's watched area.
 * @param area  58 bytes: 4 that are not read, then 18 rows of 3 bytes; bit c of a row (0 to 21, the
 *              first byte's lowest bit first) = column c is watched
 * @return 0, also for a channel above 127, which is ignored; -1 = null. Thread: UI thread.
 */
NVRHAL_API int32_t ext_set_motion_area(uint32_t channel, const uint8_t area[58]);

/* ======================================================================================= */
/* Stop                                                                                     */
/* ======================================================================================= */

/** Detach the display ports from their decoders. Everything else runs until the process ends. @return 0. */
NVRHAL_API uint32_t ext_device_quit(void);

#undef NVRHAL_NOOP

#ifdef __cplusplus
}
#endif

#endif
