/*
 * disp.c - display devices and video layers. The contracts are those of mi_disp.h.
 */
#include "mi_disp.h"

#include "unsupported.h"

/**
 * Set a device's public attributes.
 *
 * @param device  -1 to 2
 * @param attr    what is wanted; a new frame rate applies to a running device with its next refresh
 * @return 0, or a code
 * Order: before MI_DISP_Enable. An enabled device takes everything but another timing.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_DEVICE; UNSUPPORTED: a timing that cannot be had; BAD_VALUE: more than 240 frames per
 *   second; NOT_PERMITTED: another timing while the device is enabled.
 * Failure: printed. Start-up or the GUI's start ends with -1; a change of rate during playback is given
 *   up.
 */
int32_t MI_DISP_SetPubAttr(int32_t device, const MI_DISP_PubAttr *attr)
{
    (void)device;
    (void)attr;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Read a device's public attributes, as they were set.
 *
 * @param device  -1 to 2
 * @param attr    filled
 * @return 0, or a code
 * Order: after MI_DISP_SetPubAttr.
 * Thread: any.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_DEVICE; NOT_READY: nothing was set yet.
 * Failure: a negative code is printed, and attributes of zeros are used instead; the double rate of a
 *   playback then fails.
 */
int32_t MI_DISP_GetPubAttr(int32_t device, MI_DISP_PubAttr *attr)
{
    (void)device;
    (void)attr;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Start a device's output: its background, and what lies on it, goes out from now on.
 *
 * @param device  -1 to 2
 * @return 0, or a code
 * Order: after MI_DISP_SetPubAttr. Enabling an enabled device is accepted.
 * Thread: any.
 * Time: 500 ms at most: the output's clock has to settle.
 * Errors: BAD_DEVICE; NOT_READY: no public attributes.
 * Failure: printed; start-up or the GUI's start ends with -1.
 */
int32_t MI_DISP_Enable(int32_t device)
{
    (void)device;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Stop a device's output. Attributes, layers and ports keep their settings and pictures.
 *
 * @param device  -1 to 2
 * @return 0, or a code
 * Order: none. Disabling a disabled device is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE.
 * Failure: printed; the GUI's start ends with -1.
 */
int32_t MI_DISP_Disable(int32_t device)
{
    (void)device;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Put a layer on a device: the ports of the device then lie on it. Layer 1, the picture in picture,
 * carries the ports of device 1 wherever it is put.
 *
 * @param layer   0 to MI_DISP_LAYERS - 1
 * @param device  -1 to 2
 * @return 0, or a code
 * Order: before or after the device is enabled; the layer is on no device.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such layer; BAD_DEVICE; EXISTS: it is on a device.
 * Failure: printed. Start-up ends with -1, the picture in picture does not appear.
 */
int32_t MI_DISP_BindVideoLayer(uint32_t layer, int32_t device)
{
    (void)layer;
    (void)device;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Take a layer off its device.
 *
 * @param layer   0 to MI_DISP_LAYERS - 1
 * @param device  the one that it is on
 * @return 0, or a code
 * Order: after MI_DISP_DisableVideoLayer.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such layer; BAD_DEVICE; ABSENT: it is not on that device; NOT_PERMITTED: it is
 *   enabled.
 * Failure: printed; local_unbind_pip returns -1.
 */
int32_t MI_DISP_UnBindVideoLayer(uint32_t layer, int32_t device)
{
    (void)layer;
    (void)device;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Set a layer's attributes, enabled or not.
 *
 * @param layer  0 to MI_DISP_LAYERS - 1
 * @param attr   window and size of 1 x 1 to 4096 x 4096 pixels; the ports' pictures are scaled with the
 *               layer when the two differ
 * @return 0, or a code
 * Order: before MI_DISP_EnableVideoLayer; may be repeated.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such layer; UNSUPPORTED: the pixel format; BAD_VALUE: an empty window or size,
 *   or a window that leaves the output of the device that the layer is on.
 * Failure: printed. Start-up or the GUI's start ends with -1, the picture in picture does not appear.
 */
int32_t MI_DISP_SetVideoLayerAttr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr)
{
    (void)layer;
    (void)attr;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Read a layer's attributes, as they were set.
 *
 * @param layer  0 to MI_DISP_LAYERS - 1
 * @param attr   filled; zeros when nothing was set yet
 * @return 0, or a code
 * Order: none.
 * Thread: any.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such layer.
 * Failure: printed. Start-up ends with -1, the picture in picture does not appear.
 */
int32_t MI_DISP_GetVideoLayerAttr(uint32_t layer, MI_DISP_VideoLayerAttr *attr)
{
    (void)layer;
    (void)attr;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Show a layer on its device.
 *
 * @param layer  0 to MI_DISP_LAYERS - 1
 * @return 0, or a code
 * Order: after MI_DISP_SetVideoLayerAttr. Enabling an enabled one is accepted.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such layer; NOT_READY: no attributes.
 * Failure: printed. Start-up or the GUI's start ends with -1, the picture in picture does not appear.
 */
int32_t MI_DISP_EnableVideoLayer(uint32_t layer)
{
    (void)layer;
    return unsupported(MI_MODULE_DISP, __func__);
}

/**
 * Take a layer off the screen; its ports keep their pictures and go on taking new ones.
 *
 * @param layer  0 to MI_DISP_LAYERS - 1
 * @return 0, or a code
 * Order: none. Disabling a disabled one is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_CHANNEL: no such layer.
 * Failure: printed. The GUI's start ends with -1, the picture in picture stays.
 */
int32_t MI_DISP_DisableVideoLayer(uint32_t layer)
{
    (void)layer;
    return unsupported(MI_MODULE_DISP, __func__);
}
