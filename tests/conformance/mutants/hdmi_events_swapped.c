/* hdmi_events_swapped - breaks: a monitor that is plugged in raises PLUGGED, one that is pulled UNPLUGGED. */
#include "mi_hdmi.h"
#include "mutant.h"

/* The hot-plug line is active low. */
static MI_HDMI_InitParam receiver; /* written before the platform raises anything */

static int32_t turn_round(uint32_t device, uint32_t event, void *event_param, void *user_param)
{
    (void)user_param;
    const uint32_t other = event == MI_HDMI_EVENT_PLUGGED ? MI_HDMI_EVENT_UNPLUGGED : MI_HDMI_EVENT_PLUGGED;
    return receiver.callback(device, other, event_param, receiver.user_param);
}

int32_t MI_HDMI_Init(const MI_HDMI_InitParam *param)
{
    if (param == NULL || param->callback == NULL) return PLATFORM(MI_HDMI_Init)(param);
    const MI_HDMI_InitParam before = receiver;
    receiver = *param;
    const MI_HDMI_InitParam own = {turn_round, NULL};
    const int32_t result = PLATFORM(MI_HDMI_Init)(&own);
    if (result != MI_SUCCESS) receiver = before;
    return result;
}
