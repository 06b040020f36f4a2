/* disp_hide_stops_taking - breaks: a hidden port goes on taking pictures, so that the newest one is seen as
 * soon as it is shown. */
#include "mi_disp.h"
#include "mutant.h"

#include <pthread.h>

/* Hiding turns the port off. */
static struct Port {
    int enabled, hidden; /* as the caller knows it */
} ports[kDevices][MI_DISP_INPUT_PORTS];
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards ports */

static struct Port *find(int32_t device, uint32_t port)
{
    const int known = device >= -1 && device < kDevices - 1 && port < MI_DISP_INPUT_PORTS;
    return known ? &ports[device + 1][port] : NULL;
}

/* Note what the caller wants and turn the port on or off accordingly. */
static void apply(int32_t device, uint32_t port, int enabled, int hidden)
{
    struct Port *at = find(device, port);
    if (at == NULL) return;
    pthread_mutex_lock(&lock);
    if (enabled >= 0) at->enabled = enabled;
    if (hidden >= 0) at->hidden = hidden;
    const int on = at->enabled && !at->hidden;
    if (on)
        PLATFORM(MI_DISP_EnableInputPort)(device, port);
    else
        PLATFORM(MI_DISP_DisableInputPort)(device, port);
    pthread_mutex_unlock(&lock);
}

int32_t MI_DISP_EnableInputPort(int32_t device, uint32_t port)
{
    if (find(device, port) == NULL) return PLATFORM(MI_DISP_EnableInputPort)(device, port);
    apply(device, port, 1, -1);
    return MI_SUCCESS;
}

int32_t MI_DISP_DisableInputPort(int32_t device, uint32_t port)
{
    if (find(device, port) == NULL) return PLATFORM(MI_DISP_DisableInputPort)(device, port);
    apply(device, port, 0, -1);
    return MI_SUCCESS;
}

int32_t MI_DISP_HideInputPort(int32_t device, uint32_t port)
{
    const int32_t result = PLATFORM(MI_DISP_HideInputPort)(device, port);
    if (result == MI_SUCCESS) apply(device, port, -1, 1);
    return result;
}

int32_t MI_DISP_ShowInputPort(int32_t device, uint32_t port)
{
    const int32_t result = PLATFORM(MI_DISP_ShowInputPort)(device, port);
    if (result == MI_SUCCESS) apply(device, port, -1, 0);
    return result;
}
