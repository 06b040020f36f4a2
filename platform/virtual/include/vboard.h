/*
 * vboard.h - the control face of the board in software: what a test bench, a monitor on the desk
 * and a hand on the plug would do to a real board.
 *
 * The library under test never sees this header; it drives the board through mi_*.h and board_io.h.
 * Tests and host applications include it to look at the output, pull the plug, make calls fail,
 * trace them, and step the clock.
 *
 * Results: 0 or a count on success; -1 when refused, with one line on standard error that says why.
 * Every function may be called from any thread unless it says otherwise. Times are microseconds,
 * time-outs milliseconds of real time (-1 = for ever, 0 = not at all). Display devices are -1, 0, 1
 * and 2.
 */
#ifndef VBOARD_H
#define VBOARD_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------ pictures of the output --- */

/** Layout of the bytes of a captured image. */
enum vboard_format {
    VBOARD_FORMAT_I420 = 0,  /* Y, then U, then V plane, no padding: width * height * 3 / 2 bytes */
    VBOARD_FORMAT_RGB24 = 1, /* R, G, B bytes, no padding                                         */
};

/** A captured image. `bytes` belongs to the caller until vboard_image_free. */
typedef struct vboard_image {
    uint32_t width, height; /* pixels; both even                               */
    uint32_t format;        /* enum vboard_format                              */
    uint32_t blank;         /* monitor captures: 1 = no signal, bytes are black */
    size_t size;            /* bytes                                           */
    uint8_t *bytes;         /* laid out as the format says                     */
} vboard_image;

/** A composed picture as it lies in the board's memory: I420, limited range. Not to be written to. */
typedef struct vboard_picture {
    int32_t device;          /* display device                                            */
    uint32_t width, height;  /* pixels; both even                                         */
    const uint8_t *plane[3]; /* Y, U, V                                                   */
    uint32_t stride[3];      /* bytes from one row to the next                            */
    uint64_t sequence;       /* compositions of this device so far, this one included     */
    int64_t time_us;         /* board clock when it was composed                          */
    uint32_t changed_ports;  /* bit p = port p shows something new since the last one; bit 16 + p
                                = port p of the picture in picture                        */
} vboard_picture;

/**
 * Compose what a display device shows now and copy it out. A device that is not enabled shows
 * black, at the size of its timing (1920 x 1080 when none was ever set).
 *
 * @param device  display device
 * @param format  enum vboard_format
 * @param image   receives the image; free it with vboard_image_free
 * @return 0, or -1 (no such device, unknown format, out of memory)
 */
int vboard_display_capture(int32_t device, uint32_t format, vboard_image *image);

/** As vboard_display_capture, written to a PNG file. 0, or -1. */
int vboard_display_save_png(int32_t device, const char *path);

/** Free what a capture allocated. A null or already freed image is accepted. */
void vboard_image_free(vboard_image *image);

/** Write any captured image to a PNG file. 0, or -1. */
int vboard_image_save_png(const vboard_image *image, const char *path);

/**
 * Compose and lend the picture without a copy. The device's composition stands still until
 * vboard_display_give_back: lend shortly. One borrower at a time; a second one waits.
 *
 * @return 0, or -1
 */
int vboard_display_borrow(int32_t device, vboard_picture *picture);

/** End a loan; from the thread that borrowed. 0, or -1 when nothing is lent. */
int vboard_display_give_back(int32_t device);

/**
 * Called once per refresh of a followed device. `picture` is valid during the call, which may use
 * it but must not call vboard_display_* of the same device.
 */
typedef void (*vboard_follower)(const vboard_picture *picture, void *user);

/**
 * Follow a device: with real-time pacing the board composes and calls at the display's refresh rate
 * on the board clock, on a thread of its own, also when nothing changed (changed_ports is 0 then);
 * with step pacing vboard_display_step calls, on the stepping thread. One follower a device; a null
 * follower ends it, and returns when no call is running any more.
 *
 * @return 0, or -1 (followed already, no such device)
 */
int vboard_display_follow(int32_t device, vboard_follower follower, void *user);

/* ------------------------------------------------------------------------- pacing of pictures --- */

/** When a port takes the next picture. */
enum vboard_pacing {
    VBOARD_PACING_REALTIME = 0, /* default: a port shows the newest picture it was given          */
    VBOARD_PACING_STEP = 1,     /* a port takes one picture ahead; until a step puts it on screen
                                   the decoder, and so the sender, is held back                   */
};

/** Choose a device's pacing. Pictures queued under step pacing are dropped when it ends. 0, or -1. */
int vboard_display_set_pacing(int32_t device, uint32_t pacing);

/**
 * Step pacing: put the oldest queued picture of every port that has one on screen, compose, and
 * call the follower.
 *
 * @return how many ports got a new picture, or -1 (not in step pacing)
 */
int vboard_display_step(int32_t device);

/**
 * Step pacing: wait until every port of the mask has at least `pictures` (0 or 1) queued.
 * @return 0, or -1 (time-out, not in step pacing)
 */
int vboard_display_wait_queued(int32_t device, uint32_t port_mask, uint32_t pictures, int32_t timeout_ms);

/**
 * Wait until every port of the mask has taken at least `pictures` pictures since vboard_display_mark
 * (or since the start of the board). Works in both pacings.
 * @return 0, or -1 (time-out)
 */
int vboard_display_wait_taken(int32_t device, uint32_t port_mask, uint64_t pictures, int32_t timeout_ms);

/** Begin to count anew for vboard_display_wait_taken, on all ports of the device. 0, or -1. */
int vboard_display_mark(int32_t device);

/* --------------------------------------------------------------------------------- state read --- */

/** An input port of a display device. Counters run since the start of the board. */
typedef struct vboard_port_stat {
    uint32_t enabled, hidden, bound; /* 1 = yes                                                  */
    uint32_t source_channel;         /* decoder channel bound to it, when bound                  */
    uint32_t has_picture;            /* 1 = a picture is on screen (or would be, when hidden)    */
    uint32_t queued;                 /* step pacing: pictures waiting                            */
    uint32_t picture_width;          /* size of the picture on screen, as delivered, pixels      */
    uint32_t picture_height;         /* likewise                                                 */
    uint64_t picture_pts;            /* its time stamp                                           */
    uint64_t taken;                  /* pictures the port accepted                               */
    uint64_t shown;                  /* of these, on screen at a refresh (or a step)             */
    uint64_t dropped;                /* of these, replaced before a refresh, or cleared unseen   */
} vboard_port_stat;

/** Size of what a device shows, pixels, without composing it. 0, or -1 (no such device, null). */
int vboard_display_get_size(int32_t device, uint32_t *width, uint32_t *height);

/** Read a port's state. 0, or -1. */
int vboard_port_get_stat(int32_t device, uint32_t port, vboard_port_stat *stat);

/** Where a port is seen: on which device's output, and in which rectangle of it. */
typedef struct vboard_port_place {
    uint32_t seen;          /* 1 = a picture in it would be on the screen; 0: all else is 0         */
    int32_t device;         /* whose output shows it: another one for the picture in picture       */
    uint32_t x, y;          /* top left corner of its window, output pixels                        */
    uint32_t width, height; /* of its window, output pixels                                        */
} vboard_port_place;

/** Read where a port is seen. 0, or -1. */
int vboard_port_get_place(int32_t device, uint32_t port, vboard_port_place *place);

#define VBOARD_DECODER_CHANNELS 64 /* numbered from 0 */

/** A decoder channel number. Counters run since the start of the board, over re-creations. */
typedef struct vboard_decoder_stat {
    uint32_t created, started; /* 1 = yes                                                        */
    uint32_t codec;            /* enum MI_VDEC_Codec, as created last                            */
    uint32_t width, height;    /* size of the last picture decoded, pixels; 0 = none yet         */
    uint64_t bytes_sent;       /* accepted by MI_VDEC_SendStream                                 */
    uint64_t frames_sent;      /* sends accepted (frame mode: frames)                            */
    uint64_t sends_refused;    /* sends refused, for whatever reason                             */
    uint64_t decoded;          /* good pictures that came out of the decoder                     */
    uint64_t shown;            /* of these, on screen at a refresh (or a step) of any display     */
    uint64_t dropped;          /* of these, never shown: unbound, port off, or replaced too soon */
    uint64_t damaged;          /* pictures withheld: damaged, or waiting for a key frame         */
    uint64_t decode_errors;    /* errors that the decoder reported                               */
    uint64_t resets;           /* stops of a started channel                                     */
    uint64_t recreations;      /* creations after the first                                      */
    uint64_t late;             /* pictures lost: decoded after one that is shown later            */
} vboard_decoder_stat;

/** Read a channel's counters; channel 0 to 63, created or not. 0, or -1. */
int vboard_decoder_get_stat(uint32_t channel, vboard_decoder_stat *stat);

/** What a channel was sent and has not consumed, that in work included: bytes, and sends. 0, or -1. */
int vboard_decoder_get_backlog(uint32_t channel, uint32_t *bytes, uint32_t *sends);

/**
 * Wait until the channel has consumed all that was sent and handed on its pictures. In stream mode
 * the last frame stays in the decoder until the next one begins, or a send says end_of_frame.
 * @return 0, or -1 (time-out, or not created)
 */
int vboard_decoder_wait_idle(uint32_t channel, int32_t timeout_ms);

/* ------------------------------------------------------------------------ the HDMI monitor --- */

/** Plug the monitor in, or pull it; it is plugged in at the start. Raises the callback. 0 or -1. */
int vboard_monitor_plug(void);
int vboard_monitor_unplug(void);

/** 1 while it is plugged in. */
int vboard_monitor_is_plugged(void);

/** 1 while it sees a picture: plugged in, transmitter started, not muted, device 0 enabled. */
int vboard_monitor_has_signal(void);

/** Wait until every plug event raised so far has been through the callback. 0, or -1 (time-out). */
int vboard_monitor_wait_events(int32_t timeout_ms);

/** What the monitor shows: device 0's picture, or black with `blank` set. As vboard_display_capture. */
int vboard_monitor_capture(uint32_t format, vboard_image *image);

/** As vboard_monitor_capture, written to a PNG file. */
int vboard_monitor_save_png(const char *path);

/**
 * Wait until every decoder has consumed what it was sent (vboard_decoder_wait_idle), then write what
 * the monitor shows to a PNG file.
 * @return 0, or -1 (time-out: nothing is written; file cannot be written)
 */
int vboard_monitor_save_settled(const char *path, int32_t timeout_ms);

/* ------------------------------------------------------------------- a window on the desktop --- */

/** What vboard_window_poll has to report. */
enum vboard_window_event {
    VBOARD_WINDOW_OPEN = 0,   /* nothing to report                    */
    VBOARD_WINDOW_CLOSED = 1, /* the user closed it, or pressed Esc   */
};

/** A key of the PC that presses a button of the remote control. */
typedef struct vboard_window_key {
    const char *pc_key; /* SDL's name of it: "Up", "Return", "M", "Keypad +" */
    uint32_t ir_code;   /* what the remote control sends                     */
} vboard_window_key;

/**
 * Which keys of the PC press which buttons while the window has them, now and in windows opened
 * later; they take the place of those before. A key that is held presses again as the PC repeats it.
 * Esc closes the window and F11 switches it to full screen and back, unless they are among them. Moving,
 * clicking and wheeling in the window moves the board's mouse, in output pixels. From any thread while no
 * vboard_window_poll runs.
 * @return 0, or -1 (a name that SDL does not know, null: nothing changes)
 */
int vboard_window_set_keys(const vboard_window_key *keys, size_t count);

/**
 * Open a window that shows what the monitor shows. All vboard_window_* calls come from one thread.
 * @return 0, or -1 (no screen, no SDL video driver, open already)
 */
int vboard_window_open(const char *title);

/** Draw the newest picture and handle the window's events. enum vboard_window_event, or -1. */
int vboard_window_poll(void);

/** Close the window. Closing none is accepted. */
void vboard_window_close(void);

/* -------------------------------------------------------------------------- faults and traces --- */

/**
 * Make a platform call fail: its n-th call from now on, and the following ones up to `count`, are
 * not carried out and return `code` (calls that return an address: null). One fault a call name;
 * setting it again replaces it and counts anew.
 *
 * @param call   name of the call, e.g. "MI_VDEC_StartChn", "board_open"
 * @param nth    1 = the next call
 * @param count  how many calls fail; 0 = all from the n-th on
 * @param code   result of the failing calls
 * @return 0, or -1 (unknown name, nth 0)
 */
int vboard_fault_set(const char *call, uint32_t nth, uint32_t count, int32_t code);

/** What became of the faults, since the start of the board. */
typedef struct vboard_fault_stat {
    uint64_t set;     /* faults that vboard_fault_set accepted                                       */
    uint64_t refused; /* faults refused, to set or to take back: no such call, nth 0                 */
    uint64_t fired;   /* calls that a fault made fail                                                */
    uint64_t unused;  /* faults taken back or replaced before they made any call fail; each said so  */
    uint32_t waiting; /* faults in force that have not made any call fail yet                        */
} vboard_fault_stat;

/** Read the counters; they outlive vboard_reset. 0, or -1 (null). */
int vboard_fault_get_stat(vboard_fault_stat *stat);

/**
 * Take a fault back; null = all. One that has not made any call fail is told on standard error. A call
 * without a fault is accepted, a name that no call has is refused.
 */
void vboard_fault_clear(const char *call);

/**
 * Write every platform call to a file from now on, one line each: time in microseconds, name,
 * arguments (records in braces, filled ones after the call; encoded bytes and sound as their CRC-32),
 * "=" and the result. Between them what comes up from the devices: "event" and the plug, a key or the
 * mouse. 0, or -1.
 */
int vboard_trace_start(const char *path);

/** End the trace and close the file. */
void vboard_trace_stop(void);

/** How many calls the board has refused since its start. */
uint64_t vboard_refusal_count(void);

/** Copy the text of the latest refusal. Returns its length (0 = none); always NUL-terminated. */
size_t vboard_last_refusal(char *text, size_t size);

/** 0: refusals and warnings are not printed (they still count). Default 1. */
void vboard_set_loud(int loud);

/* ----------------------------------------------------------------------------------- the clock --- */

/** The board clock: monotonic, microseconds. Everything that waits on the board waits on it. */
int64_t vboard_clock_us(void);

/** Take the clock: from now on it stands still and moves only by vboard_clock_step_us. */
void vboard_clock_take(void);

/**
 * Take the clock and set where it stands: the board clock and the wall clock, microseconds, the
 * latter since 1970-01-01 00:00 UTC; both 0 to a thousand years. Two runs that begin so and step alike
 * read the same times. Meant for the start, before anything of the board is in use: a running
 * watchdog or audio device would see its time jump.
 * @return 0, or -1 (taken already, somebody waits on the clock, a time out of range)
 */
int vboard_clock_take_at(int64_t board_us, int64_t wall_us);

/** Let the clock run again, from where it stands. */
void vboard_clock_release(void);

/**
 * Move a taken clock forward, by a hundred years at most. Wakes whoever's time has come.
 * @return 0, or -1 (not taken, negative, too far)
 */
int vboard_clock_step_us(int64_t microseconds);

/**
 * Wait until at least `count` threads wait on the taken clock (board_sleep_us, a send with a
 * time-out, a refresh). Step after that, and none is missed.
 * @return 0, or -1 (time-out)
 */
int vboard_clock_wait_sleepers(uint32_t count, int32_t timeout_ms);

/** 1 while the clock is taken. */
int vboard_clock_is_taken(void);

/** Called after every take, step and release of the clock, on the thread that did it. */
typedef void (*vboard_clock_follower)(void *user);

/**
 * For an application that waits on the board's clock by means of its own: be told when the clock
 * has jumped. The follower wakes whoever waits, and calls nothing that moves the clock. One
 * follower; a null one ends it, and returns when no call is running any more.
 *
 * @return 0, or -1 (followed already)
 */
int vboard_clock_follow(vboard_clock_follower follower, void *user);

/**
 * Such an application's thread begins to wait until a time on the board clock: it counts as one of
 * the sleepers of vboard_clock_wait_sleepers until it is removed, by whoever wakes it, with the same
 * time. Removing what was not added is accepted.
 */
void vboard_clock_add_sleeper(int64_t deadline_us);
void vboard_clock_remove_sleeper(int64_t deadline_us);

/** The board's wall clock: microseconds since 1970-01-01 00:00 UTC. It stands and steps with the clock. */
int64_t vboard_clock_wall_us(void);

/* ------------------------------------------------------------------------------------ the board --- */

/**
 * Pull the board's power: stop every worker, drop every binding, picture, setting, fault and trace,
 * release the clock, plug the monitor in. For tests; nothing else may call the board meanwhile.
 */
void vboard_reset(void);

#ifdef __cplusplus
}
#endif

#endif
