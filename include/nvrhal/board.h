/*
 * board.h - buzzer, alarm inputs, clock, formats, record indicator and watchdog.
 */
#ifndef NVRHAL_BOARD_H
#define NVRHAL_BOARD_H

#include <stdint.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * After ext_device_init the buzzer sounds until ext_buzzer_set(0), and the watchdog is enabled with a
 * time-out of 100 s and has been fed once. An application feeds it, itself (local_wdg_feed) or by the
 * library's thread (Set_Wdt_Fing(1), then wdt_feed_pt()), or switches it off (ext_wdg_set(0)). The
 * record indicator is as the panel has it until hi_start_record_proc.
 */

/** The board's output lines, by number of the GPIO driver. All are set up by start-up. */
enum BoardLine {
    BOARD_LINE_WIFI_POWER = 25, /* low after start-up: the module has power */
    BOARD_LINE_WIFI_RESET = 26, /* low after start-up                       */
    BOARD_LINE_BUZZER = 28,     /* high after start-up; ext_buzzer_set      */
    BOARD_LINE_RECORD = 34,     /* high after start-up                      */
    BOARD_LINE_DISK_LED = 90,   /* high after start-up                      */
};

/**
 * Load the GPIO driver and configure the output lines (enum BoardLine); start-up calls it.
 * @return 0, or -1
 * Errors: it stops at the first line that the driver refuses; a driver that cannot be loaded counts only
 *         when its node is missing.
 * Thread: UI thread.
 */
NVRHAL_API int32_t local_gpio_init(void);

/**
 * The buzzer's line.
 * @param on  1 = high, it sounds; 0 = low, it is silent
 * @return 0, or -1
 * Errors: -1 when the driver refused, or before start-up.
 * Thread: any.
 */
NVRHAL_API int32_t ext_buzzer_set(uint32_t on);

/**
 * Alarm inputs: none.
 * @param status  out: 0
 * @return 0, or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: status is the caller's.
 */
NVRHAL_API int32_t ext_alarm_status_get(nvrhal_u64 *status);

/**
 * Read or set the battery-backed clock.
 * @param tm   second, minute, hour, day of month, month 1 to 12, year with its century, day of week, day
 *             of year, daylight-saving flag; checked by the clock only
 * @param set  0 = read into tm, any other = set
 * @return 0, or -1
 * Errors: -1 for a clock that cannot be opened, null, a refusal of the clock. A read that fails leaves
 *         month + 1 and year + 1900 of what tm held.
 * Thread: any.
 * Ownership: tm is the caller's.
 */
NVRHAL_API int32_t ext_rtc_time_system(int32_t tm[9], uint32_t set);

/**
 * Describe a channel's video: a 40-byte record, little-endian: u32 40, width, height in pixels; u16
 * planes 1, bits 16; "H265"; 20 bytes of 0. The size is the one that the stream
 * had last.
 * @param channel  0 to N - 1 = main streams, N to N + 15 = network streams; any other is 0 x 0
 * @param out      out: the record
 * @return 0, or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: out is the caller's.
 */
NVRHAL_API int32_t ext_get_video_format(uint32_t channel, uint8_t out[40]);

/**
 * Describe the audio: an 18-byte record, little-endian: u16 format 6 (A-law), channels 1; u32 8000
 * samples, 16000 bytes a second; u16 block 2 bytes, bits 16, extra 0.
 * @param out  out: the record
 * @return 0, or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: out is the caller's.
 */
NVRHAL_API int32_t ext_get_audio_format(uint8_t out[18]);

/**
 * Blink the record indicator, half a second dark and half a second lit, on a thread of the library.
 * @return 0, also when it blinks already, which is printed; or -1
 * Errors: -1 when there is no thread to be had. A panel that cannot be opened is only printed.
 * Thread: any.
 */
NVRHAL_API int32_t hi_start_record_proc(void);

/**
 * Stop blinking and leave the indicator lit.
 * @return 0, also when nothing blinks; or -1
 * Errors: -1 when the panel refused.
 * Thread: any.
 */
NVRHAL_API int32_t hi_stop_record_proc(void);

/**
 * What the blinker's thread runs: never returns, unless the panel cannot be opened.
 * @param ignored  any
 * @return null
 * Errors: a panel that cannot be opened is printed.
 * Thread: one of its own.
 * Ownership: ignored is not looked at.
 */
NVRHAL_API void *hi_record_proc(void *ignored);

/** 1 = the feeding thread goes on; it looks every 3 seconds. 0 at load. */
extern NVRHAL_API uint8_t Wdt_Fing;

/**
 * Open the watchdog, enable it with a time-out of 100 s, and feed it; start-up calls it.
 * @return 0, or (uint32_t)-1
 * Errors: (uint32_t)-1 at the first step that failed.
 * Thread: UI thread.
 */
NVRHAL_API uint32_t local_wdg_init(void);

/**
 * Open the watchdog, if it is not open, and disable it.
 * @return 0, or -1
 * Errors: -1 when it cannot be opened; one that cannot be disabled is only printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t local_wdg_open(void);

/**
 * Enable or disable the watchdog. One that counts as enabled is fed instead of being enabled.
 * @param on  0 = disable, any other = enable
 * @return 0, also when the device refused, which is printed; or -1
 * Errors: -1 when it is not open.
 * Thread: any.
 */
NVRHAL_API int32_t local_wdg_set(int32_t on);

/**
 * Set the time after which a watchdog that is not fed resets the board.
 * @param seconds  the time, in seconds, 1 or more
 * @return the device's result, 0 or more; or -1
 * Errors: -1 when it is not open, disabled, or refused.
 * Thread: any.
 */
NVRHAL_API int32_t local_wdg_set_timeout(int32_t seconds);

/**
 * Feed the watchdog.
 * @return 0, or -1
 * Errors: -1 when it is disabled, which is printed, not open, or refused.
 * Thread: any.
 */
NVRHAL_API int32_t local_wdg_feed(void);

/**
 * Start a thread that feeds the watchdog at once and then every 3 seconds while Wdt_Fing is set. Set it
 * first: the thread ends by itself once it finds it 0, or when a feed fails.
 * @return 0, or -1
 * Errors: -1 when there is no thread to be had. A feed that fails is told by nobody.
 * Thread: any.
 */
NVRHAL_API int32_t wdt_feed_pt(void);

/**
 * Store Wdt_Fing.
 * @param value  any; its low byte counts
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API void Set_Wdt_Fing(uint32_t value);

/**
 * Switch the watchdog. The feeding thread is told to end in either case, so after switching on the
 * application feeds, or starts feeding again.
 * @param on  0 = off, any other = on
 * @return 1
 * Errors: none are told; a refusal is printed.
 * Thread: any.
 */
NVRHAL_API uint32_t ext_wdg_set(int32_t on);

#ifdef __cplusplus
}
#endif

#endif
