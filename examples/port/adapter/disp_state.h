/* disp_state.h - what disp.c and disp_port.c share: the display as the library has set it. */
#ifndef DISP_STATE_H
#define DISP_STATE_H

#include "adapter.h"

typedef struct Device {
    int has_attr, enabled;
    MI_DISP_PubAttr attr;
} Device;

typedef struct Layer {
    int has_attr, enabled, is_bound;
    int32_t device; /* when bound */
    MI_DISP_VideoLayerAttr attr;
} Layer;

typedef struct Port {
    int enabled, hidden;
    MI_DISP_InputPortAttr attr;
    MI_Rect zoom; /* 0 x 0 = the whole */
} Port;

/* All guarded by topology_lock. Ports by device and number. */
extern Device disp_devices[kDevices];
extern Layer disp_layers[MI_DISP_LAYERS];
extern Port disp_ports[kDevices][MI_DISP_INPUT_PORTS];

/* The place of a device in the tables, or -1. */
int disp_index(int32_t device);

/* The layer on which a device's ports lie, or -1. */
int disp_layer_of(int32_t device);

#endif
