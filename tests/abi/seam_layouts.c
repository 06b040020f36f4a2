/* seam_layouts.c - the seams' headers, and the layout of their records, as strict C11 sees them. */
#include "seam_layouts.h"

#include "board_io.h"
#include "ir_buttons.h"
#include "keyboard_driver.h"
#include "panel_keys.h"
#include "rtc_driver.h"
#include "watchdog_driver.h"
