/*
 * vboard_devices.h - the control face of the board's peripherals: watchdog, battery-backed clock,
 * output lines, front panel, IR receiver, analog decoder chips, mouse.
 *
 * Beside vboard.h, and under the same rules: 0 or a count on success, -1 when refused with one line
 * on standard error; any thread; microseconds on the board clock, time-outs in milliseconds of real
 * time (-1 = for ever). vboard_reset puts every peripheral back to its power-on state. Nothing here
 * ever touches a device of the PC.
 */
#ifndef VBOARD_DEVICES_H
#define VBOARD_DEVICES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------------- the watchdog --- */

/** Why the board started. */
enum vboard_boot_reason {
    VBOARD_BOOT_POWER = 0,    /* the power came on                              */
    VBOARD_BOOT_WATCHDOG = 1, /* the watchdog had expired before the last reset */
};

/** The watchdog "/dev/watchdog". It expires on the board clock; the PC's own is never opened. */
typedef struct vboard_watchdog_stat {
    uint32_t enabled;      /* 1 = it runs                                                  */
    uint32_t timeout_s;    /* 60 at power-on                                               */
    int64_t remaining_us;  /* until it expires; 0 when it does not run                     */
    uint64_t feeds;        /* accepted since power-on                                      */
    uint32_t expired;      /* 1 = real hardware would have reset; it does not run then     */
    int64_t expired_at_us; /* board clock when it expired                                  */
    uint32_t boot_reason;  /* enum vboard_boot_reason of the last vboard_reset             */
} vboard_watchdog_stat;

/** Read the watchdog's state. 0, or -1 (null). */
int vboard_watchdog_get_stat(vboard_watchdog_stat *stat);

/** Wait until the watchdog has expired. 0, or -1 (time-out). */
int vboard_watchdog_wait_expired(int32_t timeout_ms);

/**
 * Why this board started, for a program that is started again in a process of its own. 0, or -1 (not of
 * enum vboard_boot_reason). The next vboard_reset finds the reason anew.
 */
int vboard_watchdog_set_boot_reason(uint32_t reason);

/* -------------------------------------------------------------------- the battery-backed clock --- */

/**
 * Set the clock "/dev/rtc0" from outside; it goes on with the board's wall clock. It holds that
 * clock's time, UTC, at power-on. @param seconds  since 1970-01-01 00:00 UTC, 0 to the end of the
 * year 9999; others count as the nearer end
 */
void vboard_rtc_set(int64_t seconds);

/** What it holds, seconds since 1970-01-01 00:00 UTC. */
int64_t vboard_rtc_get(void);

/** 1 while it holds a time; 0 since its battery failed. */
int vboard_rtc_is_set(void);

/** The battery fails: the time is lost, and reading it fails until it is set again. */
void vboard_rtc_fail_battery(void);

/* --------------------------------------------------------------------------- the output lines --- */

#define VBOARD_GPIO_LINES 128 /* numbered from 0 */

/** One change of an output line of "/dev/ms_gpio". */
typedef struct vboard_gpio_change {
    int64_t time_us;     /* board clock                                        */
    uint32_t line;       /* 0 to 127                                           */
    uint32_t value;      /* 1 = high                                           */
    uint32_t configured; /* 1 = the line was made an output, 0 = only driven   */
} vboard_gpio_change;

/** Level of a line: 1 or 0; -1 = no such line, or it is not an output yet. */
int vboard_gpio_level(uint32_t line);

/** How many requests were taken so far; the first 4096 are kept. */
uint32_t vboard_gpio_change_count(void);

/** Read the index-th of them, from 0. 0, or -1. */
int vboard_gpio_get_change(uint32_t index, vboard_gpio_change *change);

/* ---------------------------------------------------------------------------- the front panel --- */

/** The panel "/dev/KeyBoard". */
typedef struct vboard_panel_stat {
    uint32_t record_lamp;  /* 1 = lit                                      */
    uint64_t lamp_changes; /* from dark to lit or back                     */
    uint64_t keys_taken;   /* polls that found a key, as the panel is told */
    uint64_t empty_polls;  /* polls that found none                        */
} vboard_panel_stat;

/** Read the panel's state. 0, or -1 (null). */
int vboard_panel_get_stat(vboard_panel_stat *stat);

/**
 * Press a panel key: every opening of the panel reads its code, 4 bytes. A code that no key has
 * (enum KeyCode of nvrhal/key_codes.h) is told on standard error, and delivered all the same.
 */
void vboard_panel_press(uint32_t code);

/**
 * Press a panel key by its name: "menu", "up", "0", "volume-down" (platform/include/panel_keys.h).
 * @return 0, or -1 (no such name: the line tells the nearest one, or all)
 */
int vboard_panel_press_named(const char *name);

/* ---------------------------------------------------------------------------- the IR receiver --- */

/*
 * A remote control in front of "/dev/Hi_IR". Every opening is given every frame, and keeps the newest
 * 64. A read waits up to 108 ms of board time, the repeat period, for a frame and then gives 0 bytes; so
 * a held button is one frame and then reads that give nothing. Letting go is a frame with state 1. A code
 * that no button sends is told on standard error, and delivered all the same.
 */

/** Press a button by its code, and let go. */
void vboard_ir_press(uint32_t code);

/**
 * Press a button by its name, and let go: "menu", "up", "0", "small-back" (platform/include/ir_buttons.h).
 * @return 0, or -1 (no such name: the line tells the nearest one, or all)
 */
int vboard_ir_press_named(const char *name);

/** Press a button, and keep holding it. */
void vboard_ir_hold(uint32_t code);

/** Let go of the button that is held; without one nothing happens. */
void vboard_ir_release(void);

/** A frame as it stands, damaged ones and other states included. */
void vboard_ir_send(uint32_t code, uint32_t state);

/* ------------------------------------------------------------------------------------ the mouse --- */

/*
 * The mouse "/dev/mouse". Every opening reads every event as a MouseEvent; a read waits up to 100 ms of
 * board time and then gives 0 bytes.
 */

/** Move the mouse to a position, output pixels. */
void vboard_mouse_move(int32_t x, int32_t y);

/** Press and let go of buttons: those that are down from now on, enum MouseButton or-ed, 0 = none. */
void vboard_mouse_buttons(uint32_t buttons);

/** Turn the wheel; away from the user is positive. */
void vboard_mouse_wheel(int32_t notches);

/* ----------------------------------------------------------------- the analog decoder chips --- */

#define VBOARD_AD_CHANNELS 16 /* four chips of four inputs behind "/dev/vc0725dev" */

/** What the driver was told about all chips. Zero at power-on. */
typedef struct vboard_ad_stat {
    uint32_t norm;                                     /* video norm, as AD_SET_NORM takes it      */
    uint32_t rate_code;                                /* sampling, as AD_SET_SAMPLE_RATE takes it */
    uint32_t playback, volume, format, bitwidth, mute; /* value of the request of that name        */
    uint32_t adjust[3];                                /* of AD_SET_ADJUST                         */
    uint32_t motion_started;                           /* 1 = motion detection runs */
} vboard_ad_stat;

/** One input. */
typedef struct vboard_ad_input {
    uint32_t mode;        /* work mode                          */
    uint32_t lost;        /* 1 = there is no signal             */
    uint32_t sensitivity; /* of motion                          */
    uint32_t area_bits;   /* watched blocks                     */
    uint32_t moving;      /* blocks that move, as set from here */
} vboard_ad_input;

/** Read the chips' state. 0, or -1 (null). */
int vboard_ad_get_stat(vboard_ad_stat *stat);

/** Read one input's state. 0, or -1 (null, channel above 15). */
int vboard_ad_get_input(uint32_t channel, vboard_ad_input *input);

/** Pull an input's cable (1) or put it back (0). 0, or -1. */
int vboard_ad_set_loss(uint32_t channel, uint32_t lost);

/** Move something in front of a camera: the driver then answers so many blocks. 0, or -1. */
int vboard_ad_set_motion(uint32_t channel, uint32_t blocks);

#ifdef __cplusplus
}
#endif

#endif
