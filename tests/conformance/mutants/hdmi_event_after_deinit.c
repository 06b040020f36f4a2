/* hdmi_event_after_deinit - breaks: after MI_HDMI_DeInit no event is raised any more. */
#include "mi_hdmi.h"
#include "mutant.h"

#include <pthread.h>

/* The function that was registered last is never forgotten. */
static MI_HDMI_InitParam receiver;
static int finished;                                     /* the caller has undone its initialisation */
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards both */

int32_t MI_HDMI_Init(const MI_HDMI_InitParam *param)
{
    if (param == NULL) return PLATFORM(MI_HDMI_Init)(param);
    pthread_mutex_lock(&lock);
    if (finished) PLATFORM(MI_HDMI_DeInit)();
    finished = 0;
    const int32_t result = PLATFORM(MI_HDMI_Init)(param);
    if (result == MI_SUCCESS) receiver = *param;
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_DeInit(void)
{
    pthread_mutex_lock(&lock);
    int32_t result = MI_ERROR(MI_MODULE_HDMI, MI_REASON_NOT_READY);
    if (!finished) {
        result = PLATFORM(MI_HDMI_DeInit)();
        if (result == MI_SUCCESS) finished = PLATFORM(MI_HDMI_Init)(&receiver) == MI_SUCCESS;
    }
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_Open(uint32_t device)
{
    pthread_mutex_lock(&lock);
    const int initialised = !finished;
    pthread_mutex_unlock(&lock);
    return initialised ? PLATFORM(MI_HDMI_Open)(device) : MI_ERROR(MI_MODULE_HDMI, MI_REASON_NOT_READY);
}
