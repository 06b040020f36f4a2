/*
 * hdmi.c - the HDMI transmitter. The contracts are those of mi_hdmi.h.
 */
#include "mi_hdmi.h"

#include "unsupported.h"

/**
 * Register the callback; events may come from now on. A monitor that is plugged in already raises none.
 *
 * @param param  callback and its parameter
 * @return 0, or a code
 * Order: first of all HDMI calls.
 * Thread: any.
 * Memory: `param` is the caller's, and copied.
 * Time: at once.
 * Errors: EXISTS: initialised already.
 * Failure: printed, and ignored: the library initialises again for its GUI, and expects EXISTS then.
 */
int32_t MI_HDMI_Init(const MI_HDMI_InitParam *param)
{
    (void)param;
    return unsupported(MI_MODULE_HDMI, __func__);
}

/**
 * Undo MI_HDMI_Init; no event is raised any more. One that is in the callback just now may end later.
 *
 * @return 0, or a code
 * Order: after MI_HDMI_Close.
 * Thread: any, the callback's too.
 * Time: at once; it does not wait for the callback.
 * Errors: NOT_READY: not initialised; NOT_PERMITTED: the transmitter is open.
 * Failure: ignored.
 */
int32_t MI_HDMI_DeInit(void)
{
    return unsupported(MI_MODULE_HDMI, __func__);
}

/**
 * Open the transmitter.
 *
 * @param device  0
 * @return 0, or a code
 * Order: after MI_HDMI_Init.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: not initialised; EXISTS: open already.
 * Failure: printed, and ignored: the library opens again for its GUI, and expects EXISTS then.
 */
int32_t MI_HDMI_Open(uint32_t device)
{
    (void)device;
    return unsupported(MI_MODULE_HDMI, __func__);
}

/**
 * Close a stopped transmitter.
 *
 * @param device  0
 * @return 0, or a code
 * Order: after MI_HDMI_Stop.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: not open; NOT_PERMITTED: it is started.
 * Failure: ignored.
 */
int32_t MI_HDMI_Close(uint32_t device)
{
    (void)device;
    return unsupported(MI_MODULE_HDMI, __func__);
}

/**
 * Blank picture and sound, or let them through. Attributes and start stay as they are.
 *
 * @param device  0
 * @param mute    0 = let through, else blank
 * @return 0, or a code
 * Order: after MI_HDMI_Open; started or not, and it holds over a start.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_DEVICE; NOT_READY: not open.
 * Failure: ignored.
 */
int32_t MI_HDMI_SetAvMute(uint32_t device, int32_t mute)
{
    (void)device;
    (void)mute;
    return unsupported(MI_MODULE_HDMI, __func__);
}

/**
 * Set the attributes, running or not.
 *
 * @param device  0
 * @param attr    all of them
 * @return 0, or a code
 * Order: after MI_HDMI_Open; before MI_HDMI_Start.
 * Thread: any, the callback's too.
 * Memory: `attr` is the caller's, and copied.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: not open; UNSUPPORTED: a timing that cannot be had, with video enabled.
 * Failure: printed. Start-up ends with -1 and the output stays muted; after a plug the transmitter stays
 *   stopped.
 */
int32_t MI_HDMI_SetAttr(uint32_t device, const MI_HDMI_Attr *attr)
{
    (void)device;
    (void)attr;
    return unsupported(MI_MODULE_HDMI, __func__);
}

/**
 * Read the attributes in force: after a monitor was changed those that were set before it.
 *
 * @param device  0
 * @param attr    filled as it was set
 * @return 0, or a code
 * Order: after MI_HDMI_SetAttr; started or not, monitor or not.
 * Thread: any, the callback's too.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_DEVICE; NOT_READY: not open, or nothing was set.
 * Failure: printed; after a plug the transmitter stays stopped.
 */
int32_t MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr)
{
    (void)device;
    (void)attr;
    return unsupported(MI_MODULE_HDMI, __func__);
}

/**
 * Read the monitor's description.
 *
 * @param device  0
 * @param info    filled
 * @return 0, or a code
 * Order: after MI_HDMI_Open; started or not.
 * Thread: any, the callback's too.
 * Memory: `info` is the caller's.
 * Time: 500 ms at most: the monitor is asked.
 * Errors: BAD_DEVICE; NOT_READY: not open; ABSENT: no monitor.
 * Failure: printed, and ignored.
 */
int32_t MI_HDMI_GetSinkInfo(uint32_t device, MI_HDMI_SinkInfo *info)
{
    (void)device;
    (void)info;
    return unsupported(MI_MODULE_HDMI, __func__);
}

/**
 * Send picture and sound as the attributes say.
 *
 * @param device  0
 * @return 0, or a code
 * Order: after MI_HDMI_SetAttr. Starting a started transmitter is accepted; without a monitor too.
 * Thread: any, the callback's too.
 * Time: 500 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: not open, or no attributes.
 * Failure: printed at start-up, which ends with -1 and leaves the output muted; ignored after a plug.
 */
int32_t MI_HDMI_Start(uint32_t device)
{
    (void)device;
    return unsupported(MI_MODULE_HDMI, __func__);
}

/**
 * Send nothing any more. The attributes stay.
 *
 * @param device  0
 * @return 0, or a code
 * Order: after MI_HDMI_Open. Stopping a stopped transmitter is accepted.
 * Thread: any, the callback's too.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: not open.
 * Failure: ignored.
 */
int32_t MI_HDMI_Stop(uint32_t device)
{
    (void)device;
    return unsupported(MI_MODULE_HDMI, __func__);
}
