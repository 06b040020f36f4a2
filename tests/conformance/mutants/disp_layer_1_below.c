/* disp_layer_1_below - breaks: layer 1 lies over layer 0. */
#include "mi_disp.h"
#include "mutant.h"

#include <pthread.h>

/* Layer 0 covers the whole output: while it is shown, nothing of what lies under it is seen. */
static int wanted[2];                                    /* layers that the caller has enabled */
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards wanted */

static int32_t apply(uint32_t layer, int enable)
{
    pthread_mutex_lock(&lock);
    const int32_t result =
        enable ? PLATFORM(MI_DISP_EnableVideoLayer)(layer) : PLATFORM(MI_DISP_DisableVideoLayer)(layer);
    if (result == MI_SUCCESS) wanted[layer] = enable;
    if (wanted[1] && !wanted[0])
        PLATFORM(MI_DISP_EnableVideoLayer)(1);
    else
        PLATFORM(MI_DISP_DisableVideoLayer)(1);
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_DISP_EnableVideoLayer(uint32_t layer)
{
    return layer < 2 ? apply(layer, 1) : PLATFORM(MI_DISP_EnableVideoLayer)(layer);
}

int32_t MI_DISP_DisableVideoLayer(uint32_t layer)
{
    return layer < 2 ? apply(layer, 0) : PLATFORM(MI_DISP_DisableVideoLayer)(layer);
}

int32_t MI_DISP_UnBindVideoLayer(uint32_t layer, int32_t device)
{
    pthread_mutex_lock(&lock);
    const int shown = layer < 2 && wanted[layer];
    pthread_mutex_unlock(&lock);
    if (shown) return MI_ERROR(MI_MODULE_DISP, MI_REASON_NOT_PERMITTED); /* as of an enabled one */
    return PLATFORM(MI_DISP_UnBindVideoLayer)(layer, device);
}
