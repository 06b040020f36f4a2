/* disp_window_outside_accepted - breaks: a window that leaves the layer is refused. */
#include "mi_disp.h"
#include "mutant.h"

/* The chip leaves out what it cannot place, and says nothing. */
int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    const int32_t result = PLATFORM(MI_DISP_SetInputPortAttr)(device, port, attr);
    return result == MI_ERROR(MI_MODULE_DISP, MI_REASON_BAD_VALUE) ? MI_SUCCESS : result;
}
