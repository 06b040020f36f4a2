/* disp_clear_keeps_screen - breaks: clearing a port with all = 1 also takes the picture off the screen. */
#include "mi_disp.h"
#include "mutant.h"

int32_t MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all)
{
    (void)all;
    return PLATFORM(MI_DISP_ClearInputPortBuffer)(device, port, 0);
}
