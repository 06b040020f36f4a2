/* disp_zoom_in_picture_pixels - breaks: the zoom-in window is given in the port's source coordinates,
 * whatever the size of the pictures. */
#include "mi_disp.h"
#include "mutant.h"

#include <pthread.h>

/* The source size is kept for the query and never used: the chip's window is in pixels of the picture. */
static struct Size {
    uint16_t width, height;
} sources[kDevices][MI_DISP_INPUT_PORTS];
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards sources */

static struct Size *find(int32_t device, uint32_t port)
{
    const int known = device >= -1 && device < kDevices - 1 && port < MI_DISP_INPUT_PORTS;
    return known ? &sources[device + 1][port] : NULL;
}

int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    struct Size *source = find(device, port);
    if (source == NULL || attr == NULL) return PLATFORM(MI_DISP_SetInputPortAttr)(device, port, attr);
    MI_DISP_InputPortAttr plain = *attr;
    plain.source_width = plain.source_height = 0;
    const int32_t result = PLATFORM(MI_DISP_SetInputPortAttr)(device, port, &plain);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&lock);
    *source = (struct Size){attr->source_width, attr->source_height};
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr)
{
    const int32_t result = PLATFORM(MI_DISP_GetInputPortAttr)(device, port, attr);
    const struct Size *source = find(device, port);
    if (result != MI_SUCCESS || source == NULL) return result;
    pthread_mutex_lock(&lock);
    attr->source_width = source->width;
    attr->source_height = source->height;
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window)
{
    const struct Size *source = find(device, port);
    if (source != NULL && window != NULL) {
        pthread_mutex_lock(&lock);
        const struct Size size = *source;
        pthread_mutex_unlock(&lock);
        const int leaves = window->x + window->width > size.width || window->y + window->height > size.height;
        if (size.width != 0 && size.height != 0 && leaves)
            return MI_ERROR(MI_MODULE_DISP, MI_REASON_BAD_VALUE);
    }
    return PLATFORM(MI_DISP_SetZoomInWindow)(device, port, window);
}
