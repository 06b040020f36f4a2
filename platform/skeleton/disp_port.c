/*
 * disp_port.c - input ports of the display. The contracts are those of mi_disp.h.
 */
#include "mi_disp.h"

#include "unsupported.h"

/**
 * Set an input port's window and source size, enabled or not; it takes effect with the next refresh, for
 * the picture on screen too.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @param attr    a window within the layer; an odd corner or size may be rounded down to even
 * @return 0, or a code
 * Order: none; before or after the port is enabled. A zoom-in window that was set stays.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port; BAD_VALUE: the window leaves the layer.
 * Failure: printed. Start-up ends with -1. A layout ends with -1 and keeps its lock, so that the
 *   application's next layout waits for ever: refuse a window for its place alone.
 */
int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    (void)device;
    (void)port;
    (void)attr;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Read an input port's attributes, as they were set.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @param attr    filled; zeros when nothing was set yet
 * @return 0, or a code
 * Order: none; enabled or not.
 * Thread: any.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: as that of MI_DISP_SetInputPortAttr; a zoom fails.
 */
int32_t MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr)
{
    (void)device;
    (void)port;
    (void)attr;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Let a port take pictures and be shown. One that was hidden stays hidden.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @return 0, or a code
 * Order: before or after the port is bound. Enabling an enabled one is accepted.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: printed. Start-up ends with -1. A layout ends with -1 and keeps its lock.
 */
int32_t MI_DISP_EnableInputPort(int32_t device, uint32_t port)
{
    (void)device;
    (void)port;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Take a port off the screen and drop every picture that it holds; pictures that come are dropped. Its
 * attributes and its binding stay. Enabled again it shows nothing before a new picture has come.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @return 0, or a code
 * Order: none. Disabling a disabled one is accepted.
 * Thread: any.
 * Time: 100 ms at most, two refreshes.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: printed, and ignored.
 */
int32_t MI_DISP_DisableInputPort(int32_t device, uint32_t port)
{
    (void)device;
    (void)port;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Choose when a port's pictures are taken.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @param mode    enum MI_DISP_SyncMode; the library gives E_MI_DISP_SYNC_MODE_FREE_RUN
 * @return 0, or a code
 * Order: none; enabled or not.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port; UNSUPPORTED: another mode.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_DISP_SetInputPortSyncMode(int32_t device, uint32_t port, uint32_t mode)
{
    (void)device;
    (void)port;
    (void)mode;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Drop the pictures that a port holds.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @param all     0 = those that wait, else also the one on screen: the background is seen until the next
 *                picture comes
 * @return 0, or a code
 * Order: none; enabled or not, bound or not.
 * Thread: any.
 * Time: 100 ms at most, two refreshes.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: at start-up printed, and start-up ends with -1; later printed at most, and ignored.
 */
int32_t MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all)
{
    (void)device;
    (void)port;
    (void)all;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Show the window of a port that was hidden; its newest picture is seen at once.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @return 0, or a code
 * Order: none. A port begins shown; showing a shown one is accepted.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: printed. A layout of the secondary output ends with -1 and keeps its lock; else it is ignored.
 */
int32_t MI_DISP_ShowInputPort(int32_t device, uint32_t port)
{
    (void)device;
    (void)port;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Hide the window of a port. An enabled one goes on taking pictures.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @return 0, or a code
 * Order: none. Hiding a hidden one is accepted.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: printed. A layout of the secondary output ends with -1 and keeps its lock; else it is ignored.
 */
int32_t MI_DISP_HideInputPort(int32_t device, uint32_t port)
{
    (void)device;
    (void)port;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Show only a part of the port's source, on its whole window.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @param window  in the coordinates of the port's source size, mapped in proportion onto the pictures as
 *                they come; 0 x 0 = the whole
 * @return 0, or a code
 * Order: after MI_DISP_SetInputPortAttr, which gives the source size; may be repeated while pictures come.
 * Thread: any.
 * Memory: `window` is the caller's, and copied.
 * Time: at once: a zoom is moved with the mouse.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port; BAD_VALUE: the window leaves the source.
 * Failure: printed. It is tried a second time, and the zoom returns 1 whatever that gives.
 */
int32_t MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window)
{
    (void)device;
    (void)port;
    (void)window;
    return unsupported(MI_MODULE_DISP, __func__);
}
