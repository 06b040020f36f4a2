/*
 * Operations that the application may call and this board does not need: capture, overlays, water
 * marks, LCD, flash. They take anything, leave their entry trace and answer the constant that
 * applications were written against.
 */
#include "core/log.h"
#include "nvrhal.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "misc.c";

} // namespace

#define ANSWER(name, value)                                                                                  \
    int name(...)                                                                                            \
    {                                                                                                        \
        log_entry(kSource);                                                                                  \
        return value;                                                                                        \
    }

ANSWER(ext_capture_start, 1)
ANSWER(ext_capture_stop, 1)
ANSWER(ext_chagne_system_time_flag, 1)
ANSWER(ext_set_voutdev_brightness, 1)
ANSWER(ext_led_set, 1)
ANSWER(ext_release_buf, 1)
ANSWER(ext_rec_water_mark_set, 1)
ANSWER(ext_rec_water_mask_clean, 1)
ANSWER(ext_set_output_nomenu_image, 1)
ANSWER(ext_err_get_last_value, 1)
ANSWER(ext_lcd_screen_onoff, 1)
ANSWER(ext_get_flash_param, 1)
ANSWER(ext_get_board_used_chip_type, 1)
ANSWER(ext_rec_osd_print, 1)
ANSWER(ext_rec_osd_clean, 1)
ANSWER(ext_set_cover_area, 1)
ANSWER(ext_clean_cover_area, 1)

ANSWER(ext_alarm_output_set, 0)
ANSWER(ext_change_display_zorder, 0)
