/* hdmi_callback_on_caller - breaks: plug events are raised on a thread of the platform, never inside a call
 * of the caller. */
#include "board_io.h"
#include "mi_hdmi.h"
#include "mutant.h"

#include <pthread.h>
#include <string.h>

/* Events are kept, and raised by whatever call looks next. */
enum { kKept = 64 };

static MI_HDMI_InitParam receiver;                       /* the caller's */
static uint32_t events[kKept];                           /* oldest first */
static int count;                                        /* of events */
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards all above */
static __thread int is_raising;                          /* the callback may call the media interface */

static int32_t keep(uint32_t device, uint32_t event, void *event_param, void *user_param)
{
    (void)device, (void)event_param, (void)user_param;
    pthread_mutex_lock(&lock);
    if (count < kKept) events[count++] = event;
    pthread_mutex_unlock(&lock);
    return 0;
}

static void raise_events(void)
{
    if (is_raising) return;
    is_raising = 1;
    for (;;) {
        pthread_mutex_lock(&lock);
        const int any = count > 0;
        const uint32_t event = events[0];
        const MI_HDMI_InitParam to = receiver;
        if (any) memmove(events, events + 1, sizeof events[0] * (size_t)--count);
        pthread_mutex_unlock(&lock);
        if (!any) break;
        uint32_t device = 0;
        if (to.callback != NULL) to.callback(0, event, &device, to.user_param);
    }
    is_raising = 0;
}

int32_t MI_HDMI_Init(const MI_HDMI_InitParam *param)
{
    if (param == NULL) return PLATFORM(MI_HDMI_Init)(param);
    const MI_HDMI_InitParam own = {keep, NULL};
    const int32_t result = PLATFORM(MI_HDMI_Init)(&own);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&lock);
    receiver = *param;
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_DeInit(void)
{
    const int32_t result = PLATFORM(MI_HDMI_DeInit)();
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&lock);
    count = 0;
    receiver = (MI_HDMI_InitParam){NULL, NULL};
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_GetSinkInfo(uint32_t device, MI_HDMI_SinkInfo *info)
{
    raise_events();
    return PLATFORM(MI_HDMI_GetSinkInfo)(device, info);
}

int32_t MI_HDMI_SetAvMute(uint32_t device, int32_t mute)
{
    raise_events();
    return PLATFORM(MI_HDMI_SetAvMute)(device, mute);
}

int32_t MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr)
{
    raise_events();
    return PLATFORM(MI_HDMI_GetAttr)(device, attr);
}

int32_t MI_HDMI_Start(uint32_t device)
{
    raise_events();
    return PLATFORM(MI_HDMI_Start)(device);
}

int32_t MI_HDMI_Stop(uint32_t device)
{
    raise_events();
    return PLATFORM(MI_HDMI_Stop)(device);
}

void board_sleep_us(uint32_t microseconds)
{
    raise_events();
    PLATFORM(board_sleep_us)(microseconds);
    raise_events();
}

int64_t board_time_us(void)
{
    raise_events();
    return PLATFORM(board_time_us)();
}
