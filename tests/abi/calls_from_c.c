/* Operations that take anything, called from C11 into the library. */
#include "calls_from_c.h"

#include "nvrhal.h"

int results_of_calls_from_c(void)
{
    int number = 7;
    translateKey();
    translateKey("text", 1.5, &number);
    hi_localkey_proc(number);
    audio_start_hdmi(number, "text");
    /* These give 1 and 0, whatever they are handed. */
    return ext_led_set() + ext_led_set(number, 2.5, "text") + vo_mem_config() + vo_mem_config(&number, 1.5f);
}
