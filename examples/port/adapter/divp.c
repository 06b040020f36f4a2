/*
 * divp.c - scaler channels. The chip has no scaler of its own: grabbing a picture scales it (venc.c). A
 * channel is therefore what the library has said of it.
 */
#include "mi_divp.h"

#include <stddef.h>

#include "adapter.h"

enum { kScalers = 8, kMostSide = 4096 };

typedef struct Scaler {
    int exists, started;
    MI_DIVP_ChnAttr attr;
    MI_DIVP_OutputPortAttr output;
} Scaler;

static Scaler scalers[kScalers]; /* guarded by topology_lock */

static int32_t refuse(enum MI_Reason reason)
{
    return MI_ERROR(MI_MODULE_DIVP, reason);
}

int scaler_exists(uint32_t channel)
{
    return channel < kScalers && scalers[channel].exists;
}

/* A part, in pixels, as 65536ths of the whole. */
static unsigned fraction(unsigned part, unsigned whole)
{
    return whole > 0 ? (unsigned)((uint64_t)part * TERN_CROP_WHOLE / whole) : 0;
}

int scaler_describe(uint32_t channel, unsigned width, unsigned height, TernGrab *grab)
{
    if (!scaler_exists(channel) || !scalers[channel].started) return 0;
    const MI_Rect *crop = &scalers[channel].attr.crop;
    const int is_whole = crop->width == 0 || crop->height == 0;
    if (!is_whole && (crop->x + crop->width > (int)width || crop->y + crop->height > (int)height)) return 0;
    grab->crop_x = is_whole ? 0 : fraction(crop->x, width);
    grab->crop_y = is_whole ? 0 : fraction(crop->y, height);
    grab->crop_width = is_whole ? TERN_CROP_WHOLE : fraction(crop->width, width);
    grab->crop_height = is_whole ? TERN_CROP_WHOLE : fraction(crop->height, height);
    grab->width = scalers[channel].output.width;
    grab->height = scalers[channel].output.height;
    return 1;
}

/* The scaler with topology_lock held, or null and why not. */
static Scaler *lock_existing(uint32_t channel, int32_t *why)
{
    *why = refuse(MI_REASON_BAD_CHANNEL);
    if (channel >= kScalers) return NULL;
    pthread_mutex_lock(&topology_lock);
    if (scalers[channel].exists) return &scalers[channel];
    pthread_mutex_unlock(&topology_lock);
    *why = refuse(MI_REASON_ABSENT);
    return NULL;
}

static int32_t check_attr(const MI_DIVP_ChnAttr *attr)
{
    if (attr->max_width == 0 || attr->max_height == 0 || attr->max_width > kMostSide ||
        attr->max_height > kMostSide || (uint32_t)attr->crop.x + attr->crop.width > attr->max_width ||
        (uint32_t)attr->crop.y + attr->crop.height > attr->max_height)
        return refuse(MI_REASON_BAD_VALUE);
    const uint32_t else_wanted =
        attr->noise_reduction | attr->deinterlace | attr->rotation | attr->mirror | attr->flip;
    if (else_wanted != 0) return refuse(MI_REASON_UNSUPPORTED);
    return MI_SUCCESS;
}

int32_t MI_DIVP_CreateChn(uint32_t channel, const MI_DIVP_ChnAttr *attr)
{
    if (channel >= kScalers) return refuse(MI_REASON_BAD_CHANNEL);
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    if (!system_is_up()) return refuse(MI_REASON_NOT_READY);
    int32_t result = check_attr(attr);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&topology_lock);
    if (scalers[channel].exists)
        result = refuse(MI_REASON_EXISTS);
    else
        scalers[channel] = (Scaler){.exists = 1, .attr = *attr};
    pthread_mutex_unlock(&topology_lock);
    return result;
}

int32_t MI_DIVP_DestroyChn(uint32_t channel)
{
    int32_t result;
    Scaler *scaler = lock_existing(channel, &result);
    if (scaler == NULL) return result;
    result = scaler->started ? refuse(MI_REASON_NOT_PERMITTED) : MI_SUCCESS;
    if (result == MI_SUCCESS) scaler->exists = 0;
    pthread_mutex_unlock(&topology_lock);
    return result;
}

int32_t MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr)
{
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    if (port != 0) return refuse(MI_REASON_BAD_CHANNEL);
    int32_t result;
    const Scaler *scaler = lock_existing(channel, &result);
    if (scaler == NULL) return result;
    *attr = scaler->output;
    pthread_mutex_unlock(&topology_lock);
    return MI_SUCCESS;
}

static int32_t check_output(const MI_DIVP_OutputPortAttr *attr)
{
    if (attr->width < 2 || attr->height < 2 || attr->width > kMostSide || attr->height > kMostSide ||
        (attr->width | attr->height) % 2 != 0)
        return refuse(MI_REASON_BAD_VALUE);
    if (attr->pixel_format != MI_PIXEL_YUV420_SEMIPLANAR || attr->compression != 0)
        return refuse(MI_REASON_UNSUPPORTED);
    return MI_SUCCESS;
}

int32_t MI_DIVP_SetOutputPortAttr(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr)
{
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    if (port != 0) return refuse(MI_REASON_BAD_CHANNEL);
    int32_t result;
    Scaler *scaler = lock_existing(channel, &result);
    if (scaler == NULL) return result;
    result = check_output(attr);
    if (result == MI_SUCCESS) scaler->output = *attr;
    pthread_mutex_unlock(&topology_lock);
    return result;
}

static int32_t switch_scaler(uint32_t channel, int on)
{
    int32_t result;
    Scaler *scaler = lock_existing(channel, &result);
    if (scaler == NULL) return result;
    result = on && scaler->output.width == 0 ? refuse(MI_REASON_NOT_READY) : MI_SUCCESS;
    if (result == MI_SUCCESS) {
        scaler->started = on;
        encoders_apply();
    }
    pthread_mutex_unlock(&topology_lock);
    return result;
}

int32_t MI_DIVP_StartChn(uint32_t channel)
{
    return switch_scaler(channel, 1);
}

int32_t MI_DIVP_StopChn(uint32_t channel)
{
    return switch_scaler(channel, 0);
}
