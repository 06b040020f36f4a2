/* disp_last_port_missing - breaks: a device has sixteen input ports, 0 to 15. */
#include "mi_disp.h"
#include "mutant.h"

/* "<" where "<=" was meant. */
static int is_missing(uint32_t port)
{
    return port >= MI_DISP_INPUT_PORTS - 1;
}

static const int32_t kNoPort = MI_ERROR(MI_MODULE_DISP, MI_REASON_BAD_CHANNEL);

int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    return is_missing(port) ? kNoPort : PLATFORM(MI_DISP_SetInputPortAttr)(device, port, attr);
}

int32_t MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr)
{
    return is_missing(port) ? kNoPort : PLATFORM(MI_DISP_GetInputPortAttr)(device, port, attr);
}

int32_t MI_DISP_EnableInputPort(int32_t device, uint32_t port)
{
    return is_missing(port) ? kNoPort : PLATFORM(MI_DISP_EnableInputPort)(device, port);
}

int32_t MI_DISP_DisableInputPort(int32_t device, uint32_t port)
{
    return is_missing(port) ? kNoPort : PLATFORM(MI_DISP_DisableInputPort)(device, port);
}

int32_t MI_DISP_SetInputPortSyncMode(int32_t device, uint32_t port, uint32_t mode)
{
    return is_missing(port) ? kNoPort : PLATFORM(MI_DISP_SetInputPortSyncMode)(device, port, mode);
}

int32_t MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all)
{
    return is_missing(port) ? kNoPort : PLATFORM(MI_DISP_ClearInputPortBuffer)(device, port, all);
}

int32_t MI_DISP_ShowInputPort(int32_t device, uint32_t port)
{
    return is_missing(port) ? kNoPort : PLATFORM(MI_DISP_ShowInputPort)(device, port);
}

int32_t MI_DISP_HideInputPort(int32_t device, uint32_t port)
{
    return is_missing(port) ? kNoPort : PLATFORM(MI_DISP_HideInputPort)(device, port);
}

int32_t MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window)
{
    return is_missing(port) ? kNoPort : PLATFORM(MI_DISP_SetZoomInWindow)(device, port, window);
}
