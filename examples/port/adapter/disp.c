/*
 * disp.c - display devices and layers over the chip's screens and planes.
 *
 * The seam's settings hold at once and in any order, the chip's when all of them are right and committed. So
 * this adapter keeps what it was told, and after each change works the whole display out anew: sixty-four
 * tiles at most, some microseconds.
 */
#include "disp_state.h"

#include <stddef.h>

enum { kPipLayer = 1, kPipPortsDevice = 1, kMostRate = 240, kMostSide = 4096 };

Device disp_devices[kDevices];
Layer disp_layers[MI_DISP_LAYERS];
Port disp_ports[kDevices][MI_DISP_INPUT_PORTS];

/* The chip's screens, by the place of the device in the tables: -1, 0, 1, 2. */
static const int screens[kDevices] = {2, 0, 3, 1};

static int32_t refuse(enum MI_Reason reason)
{
    return MI_ERROR(MI_MODULE_DISP, reason);
}

int disp_index(int32_t device)
{
    const int64_t index = (int64_t)device - kFirstDevice;
    return index >= 0 && index < kDevices ? (int)index : -1;
}

int disp_layer_of(int32_t device)
{
    if (device == kPipPortsDevice && disp_layers[kPipLayer].is_bound) return kPipLayer;
    for (int layer = 0; layer < MI_DISP_LAYERS; ++layer)
        if (layer != kPipLayer && disp_layers[layer].is_bound && disp_layers[layer].device == device)
            return layer;
    return -1;
}

/* ------------------------------------------------------------------------------ to the chip --- */

/* A part of the source, in its pixels, as 65536ths of the picture. */
static unsigned crop(unsigned part, unsigned whole)
{
    const uint64_t fraction = whole > 0 ? (uint64_t)part * TERN_CROP_WHOLE / whole : 0;
    return fraction < TERN_CROP_WHOLE ? (unsigned)fraction : TERN_CROP_WHOLE;
}

static TernTile tile_of(const Port *port, int32_t source)
{
    const MI_Rect *window = &port->attr.window;
    TernTile tile = {
        .visible = port->enabled && !port->hidden,
        .x = window->x & ~1u,
        .y = window->y & ~1u,
        .width = window->width & ~1u,
        .height = window->height & ~1u,
        .crop_width = TERN_CROP_WHOLE,
        .crop_height = TERN_CROP_WHOLE,
        .feed = port->enabled ? decoder_of(source) : NULL,
    };
    if (port->zoom.width == 0 || port->zoom.height == 0) return tile;
    unsigned width = port->attr.source_width, height = port->attr.source_height;
    if ((width == 0 || height == 0) && tile.feed != NULL) decoder_picture_size(source, &width, &height);
    tile.crop_x = crop(port->zoom.x, width);
    tile.crop_y = crop(port->zoom.y, height);
    tile.crop_width = crop(port->zoom.width, width);
    tile.crop_height = crop(port->zoom.height, height);
    if (tile.crop_x + tile.crop_width > TERN_CROP_WHOLE) tile.crop_width = TERN_CROP_WHOLE - tile.crop_x;
    if (tile.crop_y + tile.crop_height > TERN_CROP_WHOLE) tile.crop_height = TERN_CROP_WHOLE - tile.crop_y;
    return tile;
}

static TernPlane plane_of(const Layer *layer)
{
    const TernPlane plane = {
        .screen = layer->is_bound ? screens[disp_index(layer->device)] : -1,
        .visible = layer->enabled,
        .width = layer->attr.width,
        .height = layer->attr.height,
        .x = layer->attr.window.x,
        .y = layer->attr.window.y,
        .on_width = layer->attr.window.width,
        .on_height = layer->attr.window.height,
    };
    return plane;
}

void display_apply(void)
{
    static const TernTile empty;
    for (int layer = 0; layer < MI_DISP_LAYERS; ++layer) {
        const TernPlane plane = plane_of(&disp_layers[layer]);
        tern_plane_set(layer, &plane);
        int32_t device = kFirstDevice;
        while (device < kFirstDevice + kDevices && disp_layer_of(device) != layer)
            ++device;
        const int has_ports = device < kFirstDevice + kDevices;
        for (uint32_t port = 0; port < MI_DISP_INPUT_PORTS; ++port) {
            const TernTile tile =
                has_ports ? tile_of(&disp_ports[disp_index(device)][port], source_of_port(device, port))
                          : empty;
            tern_tile_set(layer, (int)port, &tile);
        }
    }
    tern_commit();
}

/* The background's 0x00VVYYUU as red, green and blue. */
static void set_backdrop(int screen, uint32_t background)
{
    const int y = background == 0 ? 16 : (int)(background >> 8 & 0xFF);
    const int u = background == 0 ? 0 : (int)(background & 0xFF) - 128;
    const int v = background == 0 ? 0 : (int)(background >> 16 & 0xFF) - 128;
    const int luma = 298 * (y - 16);
    const int rgb[3] = {(luma + 409 * v) / 256, (luma - 100 * u - 208 * v) / 256, (luma + 516 * u) / 256};
    uint8_t out[3];
    for (int i = 0; i < 3; ++i)
        out[i] = (uint8_t)(rgb[i] < 0 ? 0 : rgb[i] > 255 ? 255 : rgb[i]);
    tern_screen_backdrop(screen, out[0], out[1], out[2]);
}

/* ------------------------------------------------------------------------------- devices --- */

static int32_t set_device(int index, const MI_DISP_PubAttr *attr, const TernMode *mode)
{
    Device *device = &disp_devices[index];
    if (device->enabled && attr->timing != device->attr.timing) return refuse(MI_REASON_NOT_PERMITTED);
    if (!device->enabled) {
        const unsigned connectors = attr->interface_type == MI_DISP_INTERFACE_HDMI
                                        ? TERN_CONNECTOR_HDMI
                                        : TERN_CONNECTOR_HDMI | TERN_CONNECTOR_VGA;
        const TernStatus status = tern_screen_mode(screens[index], mode, connectors);
        if (status != TERN_OK) return code_of(MI_MODULE_DISP, status);
    }
    set_backdrop(screens[index], attr->background);
    device->attr = *attr;
    device->has_attr = 1;
    return MI_SUCCESS;
}

int32_t MI_DISP_SetPubAttr(int32_t device, const MI_DISP_PubAttr *attr)
{
    const int index = disp_index(device);
    if (index < 0) return refuse(MI_REASON_BAD_DEVICE);
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    const TernMode *mode = mode_of_output(attr->timing);
    if (mode == NULL) return refuse(MI_REASON_UNSUPPORTED);
    if (attr->frame_rate > kMostRate) return refuse(MI_REASON_BAD_VALUE);
    pthread_mutex_lock(&topology_lock);
    const int32_t result = set_device(index, attr, mode);
    pthread_mutex_unlock(&topology_lock);
    return result;
}

int32_t MI_DISP_GetPubAttr(int32_t device, MI_DISP_PubAttr *attr)
{
    const int index = disp_index(device);
    if (index < 0) return refuse(MI_REASON_BAD_DEVICE);
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    pthread_mutex_lock(&topology_lock);
    const int has_attr = disp_devices[index].has_attr;
    if (has_attr) *attr = disp_devices[index].attr;
    pthread_mutex_unlock(&topology_lock);
    return has_attr ? MI_SUCCESS : refuse(MI_REASON_NOT_READY);
}

static int32_t switch_device(int32_t number, int on)
{
    const int index = disp_index(number);
    if (index < 0) return refuse(MI_REASON_BAD_DEVICE);
    pthread_mutex_lock(&topology_lock);
    Device *device = &disp_devices[index];
    int32_t result = on && !device->has_attr ? refuse(MI_REASON_NOT_READY) : MI_SUCCESS;
    if (result == MI_SUCCESS) result = code_of(MI_MODULE_DISP, tern_screen_on(screens[index], on));
    if (result == MI_SUCCESS) device->enabled = on;
    pthread_mutex_unlock(&topology_lock);
    return result;
}

int32_t MI_DISP_Enable(int32_t device)
{
    return switch_device(device, 1);
}

int32_t MI_DISP_Disable(int32_t device)
{
    return switch_device(device, 0);
}

/* -------------------------------------------------------------------------------- layers --- */

int32_t MI_DISP_BindVideoLayer(uint32_t layer, int32_t device)
{
    if (layer >= MI_DISP_LAYERS) return refuse(MI_REASON_BAD_CHANNEL);
    if (disp_index(device) < 0) return refuse(MI_REASON_BAD_DEVICE);
    pthread_mutex_lock(&topology_lock);
    const int is_free = !disp_layers[layer].is_bound;
    if (is_free) {
        disp_layers[layer].is_bound = 1;
        disp_layers[layer].device = device;
        display_apply();
    }
    pthread_mutex_unlock(&topology_lock);
    return is_free ? MI_SUCCESS : refuse(MI_REASON_EXISTS);
}

int32_t MI_DISP_UnBindVideoLayer(uint32_t layer, int32_t device)
{
    if (layer >= MI_DISP_LAYERS) return refuse(MI_REASON_BAD_CHANNEL);
    if (disp_index(device) < 0) return refuse(MI_REASON_BAD_DEVICE);
    pthread_mutex_lock(&topology_lock);
    Layer *unit = &disp_layers[layer];
    int32_t result = unit->is_bound && unit->device == device ? MI_SUCCESS : refuse(MI_REASON_ABSENT);
    if (result == MI_SUCCESS && unit->enabled) result = refuse(MI_REASON_NOT_PERMITTED);
    if (result == MI_SUCCESS) {
        unit->is_bound = 0;
        display_apply();
    }
    pthread_mutex_unlock(&topology_lock);
    return result;
}

static int is_size(uint32_t width, uint32_t height)
{
    return width > 0 && height > 0 && width <= kMostSide && height <= kMostSide;
}

/* Whether a window lies on the output of the device that the layer is on. */
static int lies_on_output(const Layer *layer, const MI_Rect *window)
{
    if (!layer->is_bound || !disp_devices[disp_index(layer->device)].has_attr) return 1;
    const TernMode *mode = mode_of_output(disp_devices[disp_index(layer->device)].attr.timing);
    return (unsigned)window->x + window->width <= mode->width &&
           (unsigned)window->y + window->height <= mode->height;
}

int32_t MI_DISP_SetVideoLayerAttr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr)
{
    if (layer >= MI_DISP_LAYERS) return refuse(MI_REASON_BAD_CHANNEL);
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    if (attr->pixel_format != MI_PIXEL_YUV420_SEMIPLANAR && attr->pixel_format != MI_PIXEL_YUV420_LAYER)
        return refuse(MI_REASON_UNSUPPORTED);
    if (!is_size(attr->width, attr->height) || !is_size(attr->window.width, attr->window.height))
        return refuse(MI_REASON_BAD_VALUE);
    pthread_mutex_lock(&topology_lock);
    Layer *unit = &disp_layers[layer];
    const int fits = lies_on_output(unit, &attr->window);
    if (fits) {
        unit->attr = *attr;
        unit->has_attr = 1;
        display_apply();
    }
    pthread_mutex_unlock(&topology_lock);
    return fits ? MI_SUCCESS : refuse(MI_REASON_BAD_VALUE);
}

int32_t MI_DISP_GetVideoLayerAttr(uint32_t layer, MI_DISP_VideoLayerAttr *attr)
{
    if (layer >= MI_DISP_LAYERS) return refuse(MI_REASON_BAD_CHANNEL);
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    pthread_mutex_lock(&topology_lock);
    *attr = disp_layers[layer].attr;
    pthread_mutex_unlock(&topology_lock);
    return MI_SUCCESS;
}

static int32_t switch_layer(uint32_t layer, int on)
{
    if (layer >= MI_DISP_LAYERS) return refuse(MI_REASON_BAD_CHANNEL);
    pthread_mutex_lock(&topology_lock);
    const int can = !on || disp_layers[layer].has_attr;
    if (can) {
        disp_layers[layer].enabled = on;
        display_apply();
    }
    pthread_mutex_unlock(&topology_lock);
    return can ? MI_SUCCESS : refuse(MI_REASON_NOT_READY);
}

int32_t MI_DISP_EnableVideoLayer(uint32_t layer)
{
    return switch_layer(layer, 1);
}

int32_t MI_DISP_DisableVideoLayer(uint32_t layer)
{
    return switch_layer(layer, 0);
}
