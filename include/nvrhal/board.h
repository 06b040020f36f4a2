/*
 * board.h - buzzer, alarm inputs, clock, record indicator and watchdog.
 */
#ifndef NVRHAL_BOARD_H
#define NVRHAL_BOARD_H

#include <stdint.h>

#include "nvrhal/api.h"

/** The board's output lines, by number of the GPIO driver. All are set up by start-up. */
enum BoardLine {
    BOARD_LINE_WIFI_POWER = 25, /* low after start-up: the module has power */
    BOARD_LINE_WIFI_RESET = 26, /* low after start-up                       */
    BOARD_LINE_BUZZER = 28,     /* high after start-up; ext_buzzer_set      */
    BOARD_LINE_RECORD = 34,     /* high after start-up                      */
    BOARD_LINE_DISK_LED = 90,   /* high after start-up                      */
};

#ifdef __cplusplus
extern "C" {
#endif

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

#ifdef __cplusplus
}
#endif

#endif
