/* disp_window_rounded_16 - breaks: a port's window lies where it was set, to the even pixel. */
#include "mi_disp.h"
#include "mutant.h"

/* Windows in whole macroblocks. */
static uint16_t down_to_16(uint16_t pixels)
{
    return (uint16_t)(pixels & ~15u);
}

int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    if (attr == NULL) return PLATFORM(MI_DISP_SetInputPortAttr)(device, port, attr);
    MI_DISP_InputPortAttr rounded = *attr;
    rounded.window = (MI_Rect){down_to_16(attr->window.x), down_to_16(attr->window.y),
                               down_to_16(attr->window.width), down_to_16(attr->window.height)};
    return PLATFORM(MI_DISP_SetInputPortAttr)(device, port, &rounded);
}
