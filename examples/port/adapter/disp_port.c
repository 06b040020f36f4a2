/* disp_port.c - input ports of the display over the chip's tiles. See disp.c. */
#include "disp_state.h"

#include <stddef.h>

static int32_t refuse(enum MI_Reason reason)
{
    return MI_ERROR(MI_MODULE_DISP, reason);
}

/* The port with topology_lock held, or null and why not. */
static Port *lock_port(int32_t device, uint32_t port, int32_t *why)
{
    const int index = disp_index(device);
    *why = index < 0 ? refuse(MI_REASON_BAD_DEVICE) : refuse(MI_REASON_BAD_CHANNEL);
    if (index < 0 || port >= MI_DISP_INPUT_PORTS) return NULL;
    *why = MI_SUCCESS;
    pthread_mutex_lock(&topology_lock);
    return &disp_ports[index][port];
}

static int32_t apply_and_unlock(void)
{
    display_apply();
    pthread_mutex_unlock(&topology_lock);
    return MI_SUCCESS;
}

static int lies_within(const MI_Rect *part, uint32_t width, uint32_t height)
{
    return (uint32_t)part->x + part->width <= width && (uint32_t)part->y + part->height <= height;
}

int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    Port *input = lock_port(device, port, &why);
    if (input == NULL) return why;
    const int layer = disp_layer_of(device);
    if (layer >= 0 && disp_layers[layer].has_attr &&
        !lies_within(&attr->window, disp_layers[layer].attr.width, disp_layers[layer].attr.height)) {
        pthread_mutex_unlock(&topology_lock);
        return refuse(MI_REASON_BAD_VALUE);
    }
    input->attr = *attr;
    return apply_and_unlock();
}

int32_t MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr)
{
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    const Port *input = lock_port(device, port, &why);
    if (input == NULL) return why;
    *attr = input->attr;
    pthread_mutex_unlock(&topology_lock);
    return MI_SUCCESS;
}

int32_t MI_DISP_EnableInputPort(int32_t device, uint32_t port)
{
    int32_t why;
    Port *input = lock_port(device, port, &why);
    if (input == NULL) return why;
    input->enabled = 1;
    return apply_and_unlock();
}

/* The chip's tile forgets its pictures, when the port has one. topology_lock is held. */
static void forget(int32_t device, uint32_t port, int shown)
{
    const int layer = disp_layer_of(device);
    if (layer >= 0) tern_tile_forget(layer, (int)port, shown);
}

int32_t MI_DISP_DisableInputPort(int32_t device, uint32_t port)
{
    int32_t why;
    Port *input = lock_port(device, port, &why);
    if (input == NULL) return why;
    input->enabled = 0;
    display_apply(); /* first: no picture may follow the forgetting */
    forget(device, port, 1);
    pthread_mutex_unlock(&topology_lock);
    return MI_SUCCESS;
}

int32_t MI_DISP_SetInputPortSyncMode(int32_t device, uint32_t port, uint32_t mode)
{
    int32_t why;
    if (lock_port(device, port, &why) == NULL) return why;
    pthread_mutex_unlock(&topology_lock);
    return mode == E_MI_DISP_SYNC_MODE_FREE_RUN ? MI_SUCCESS : refuse(MI_REASON_UNSUPPORTED);
}

int32_t MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all)
{
    int32_t why;
    if (lock_port(device, port, &why) == NULL) return why;
    forget(device, port, all != 0);
    pthread_mutex_unlock(&topology_lock);
    return MI_SUCCESS;
}

static int32_t hide(int32_t device, uint32_t port, int hidden)
{
    int32_t why;
    Port *input = lock_port(device, port, &why);
    if (input == NULL) return why;
    input->hidden = hidden;
    return apply_and_unlock();
}

int32_t MI_DISP_ShowInputPort(int32_t device, uint32_t port)
{
    return hide(device, port, 0);
}

int32_t MI_DISP_HideInputPort(int32_t device, uint32_t port)
{
    return hide(device, port, 1);
}

int32_t MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window)
{
    if (window == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    Port *input = lock_port(device, port, &why);
    if (input == NULL) return why;
    const int knows_source = input->attr.source_width != 0 && input->attr.source_height != 0;
    if (knows_source && !lies_within(window, input->attr.source_width, input->attr.source_height)) {
        pthread_mutex_unlock(&topology_lock);
        return refuse(MI_REASON_BAD_VALUE);
    }
    input->zoom = *window;
    return apply_and_unlock();
}
