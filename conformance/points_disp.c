/* points_disp.c - display devices: settings, order and refusals. */
#include <string.h>

#include "disp_settings.h"
#include "points.h"
#include "record.h"

static bool same_pub(const MI_DISP_PubAttr *a, const MI_DISP_PubAttr *b)
{
    return memcmp(a, b, sizeof *a) == 0;
}

POINT(pub_succeeds, "disp.set-pub-attr.succeeds", "MI_DISP_SetPubAttr",
      "each device, -1 to 2, takes the library's attributes")
{
    NEED(MI_SYS_Init());
    for (int i = 0; i < 4; ++i)
        OK(MI_DISP_SetPubAttr(devices[i], &usual_pub));
}

POINT(pub_kept, "disp.get-pub-attr.as-set", "MI_DISP_SetPubAttr MI_DISP_GetPubAttr",
      "a device's attributes are read as they were set, of each device for itself")
{
    NEED(MI_SYS_Init());
    for (int i = 0; i < 4; ++i) {
        const MI_DISP_PubAttr set = {0x801080u + (uint32_t)i, MI_DISP_INTERFACE_HDMI, 8 + ((uint32_t)i & 1),
                                     25};
        OK(MI_DISP_SetPubAttr(devices[i], &set));
    }
    for (int i = 0; i < 4; ++i) {
        const MI_DISP_PubAttr set = {0x801080u + (uint32_t)i, MI_DISP_INTERFACE_HDMI, 8 + ((uint32_t)i & 1),
                                     25};
        MI_DISP_PubAttr read;
        memset(&read, 0xEE, sizeof read);
        OK(MI_DISP_GetPubAttr(devices[i], &read));
        HOLDS(same_pub(&read, &set), "%s, set was {0x%06x, %u, %u, %u}", last_call_text(), set.background,
              set.interface_type, set.timing, set.frame_rate);
    }
}

POINT(pub_timings, "disp.set-pub-attr.timings", "MI_DISP_SetPubAttr",
      "every output timing that the library starts with can be had")
{
    static const uint32_t timings[] = {8, 9, 15, 16, 19, 20, 21, 22, 23, 24, 26, 30};
    NEED(MI_SYS_Init());
    for (size_t i = 0; i < sizeof timings / sizeof *timings; ++i) {
        MI_DISP_PubAttr attr = usual_pub;
        attr.timing = timings[i];
        OK(MI_DISP_SetPubAttr(DEV, &attr));
        OK(MI_DISP_Enable(DEV));
        OK(MI_DISP_Disable(DEV));
    }
}

POINT(pub_bad_timing, "disp.set-pub-attr.bad-timing", "MI_DISP_SetPubAttr",
      "a timing that cannot be had gives UNSUPPORTED, and the attributes stay")
{
    MI_DISP_PubAttr attr = usual_pub, read = {0};
    NEED(MI_SYS_Init());
    NEED(MI_DISP_SetPubAttr(DEV, &usual_pub));
    attr.timing = 4; /* the library's own code for 1080p, no value of the display's */
    REFUSED(MI_DISP_SetPubAttr(DEV, &attr), MI_MODULE_DISP, MI_REASON_UNSUPPORTED);
    attr.timing = 0xFFFF;
    REFUSED(MI_DISP_SetPubAttr(DEV, &attr), MI_MODULE_DISP, MI_REASON_UNSUPPORTED);
    NEED(MI_DISP_GetPubAttr(DEV, &read));
    HOLDS(same_pub(&read, &usual_pub), "the refused attributes are in force");
}

POINT(pub_running, "disp.set-pub-attr.running", "MI_DISP_SetPubAttr MI_DISP_GetPubAttr",
      "a running device takes a new frame rate, and refuses another timing with NOT_PERMITTED")
{
    MI_DISP_PubAttr attr = usual_pub, read = {0};
    need_display(DEV);
    attr.frame_rate = 30;
    OK(MI_DISP_SetPubAttr(DEV, &attr));
    OK(MI_DISP_GetPubAttr(DEV, &read));
    HOLDS(read.frame_rate == 30, "set to 30 frames per second, read as %u", read.frame_rate);
    attr.timing = 9;
    REFUSED(MI_DISP_SetPubAttr(DEV, &attr), MI_MODULE_DISP, MI_REASON_NOT_PERMITTED);
}

POINT(pub_fast, "disp.set-pub-attr.too-fast", "MI_DISP_SetPubAttr",
      "more than 240 frames per second give BAD_VALUE")
{
    MI_DISP_PubAttr attr = usual_pub;
    NEED(MI_SYS_Init());
    attr.frame_rate = 241;
    REFUSED(MI_DISP_SetPubAttr(DEV, &attr), MI_MODULE_DISP, MI_REASON_BAD_VALUE);
}

POINT(pub_refused, "disp.set-pub-attr.refusals", "MI_DISP_SetPubAttr",
      "no record gives NULL_POINTER, no such device BAD_DEVICE")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_SetPubAttr(DEV, NULL), MI_MODULE_DISP, MI_REASON_NULL_POINTER);
    REFUSED(MI_DISP_SetPubAttr(NO_DEVICE, &usual_pub), MI_MODULE_DISP, MI_REASON_BAD_DEVICE);
    REFUSED(MI_DISP_SetPubAttr(-2, &usual_pub), MI_MODULE_DISP, MI_REASON_BAD_DEVICE);
}

POINT(get_pub_refused, "disp.get-pub-attr.refusals", "MI_DISP_GetPubAttr",
      "no record gives NULL_POINTER, no such device BAD_DEVICE; a refused call writes nothing")
{
    MI_DISP_PubAttr read = {77, 77, 77, 77};
    NEED(MI_SYS_Init());
    NEED(MI_DISP_SetPubAttr(DEV, &usual_pub));
    REFUSED(MI_DISP_GetPubAttr(DEV, NULL), MI_MODULE_DISP, MI_REASON_NULL_POINTER);
    REFUSED(MI_DISP_GetPubAttr(NO_DEVICE, &read), MI_MODULE_DISP, MI_REASON_BAD_DEVICE);
    HOLDS(read.background == 77 && read.timing == 77,
          "a refused MI_DISP_GetPubAttr has written into the record");
}

POINT_WITH(FRESH, get_pub_unset, "disp.get-pub-attr.unset", "MI_DISP_GetPubAttr",
           "attributes that were never set give NOT_READY")
{
    MI_DISP_PubAttr read;
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_GetPubAttr(DEV, &read), MI_MODULE_DISP, MI_REASON_NOT_READY);
}

POINT(enable_succeeds, "disp.enable.succeeds", "MI_DISP_Enable",
      "a device with attributes is enabled; enabling it twice is accepted")
{
    NEED(MI_SYS_Init());
    NEED(MI_DISP_SetPubAttr(DEV, &usual_pub));
    OK(MI_DISP_Enable(DEV));
    OK(MI_DISP_Enable(DEV));
}

POINT_WITH(FRESH, enable_unset, "disp.enable.unset", "MI_DISP_Enable",
           "enabling a device without attributes gives NOT_READY")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_Enable(DEV), MI_MODULE_DISP, MI_REASON_NOT_READY);
}

POINT(enable_bad_device, "disp.enable.bad-device", "MI_DISP_Enable", "no such device gives BAD_DEVICE")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_Enable(NO_DEVICE), MI_MODULE_DISP, MI_REASON_BAD_DEVICE);
    REFUSED(MI_DISP_Enable(-2), MI_MODULE_DISP, MI_REASON_BAD_DEVICE);
}

POINT(disable_succeeds, "disp.disable.succeeds", "MI_DISP_Disable MI_DISP_SetPubAttr",
      "a disabled device takes another timing; disabling it twice is accepted")
{
    MI_DISP_PubAttr attr = usual_pub;
    NEED(MI_SYS_Init());
    NEED(MI_DISP_SetPubAttr(DEV, &usual_pub));
    NEED(MI_DISP_Enable(DEV));
    OK(MI_DISP_Disable(DEV));
    OK(MI_DISP_Disable(DEV));
    attr.timing = 9;
    OK(MI_DISP_SetPubAttr(DEV, &attr));
    OK(MI_DISP_Enable(DEV));
}

POINT(disable_bad_device, "disp.disable.bad-device", "MI_DISP_Disable", "no such device gives BAD_DEVICE")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_Disable(NO_DEVICE), MI_MODULE_DISP, MI_REASON_BAD_DEVICE);
}

POINT(disable_keeps, "disp.disable.keeps-settings", "MI_DISP_Disable",
      "layers and ports keep their settings while their device is disabled")
{
    MI_DISP_InputPortAttr port = {{0, 0, 0, 0}, 0, 0};
    MI_DISP_VideoLayerAttr layer = {{0, 0, 0, 0}, 0, 0, 0, 0};
    MI_DISP_PubAttr pub = {9, 9, 9, 9};
    need_display(DEV);
    NEED(MI_DISP_SetInputPortAttr(DEV, PORT, &usual_port));
    OK(MI_DISP_Disable(DEV));
    OK(MI_DISP_GetInputPortAttr(DEV, PORT, &port));
    OK(MI_DISP_GetVideoLayerAttr(LAYER, &layer));
    OK(MI_DISP_GetPubAttr(DEV, &pub));
    HOLDS(memcmp(&port, &usual_port, sizeof port) == 0, "the port's attributes are gone");
    HOLDS(memcmp(&layer, &usual_layer, sizeof layer) == 0, "the layer's attributes are gone");
    HOLDS(same_pub(&pub, &usual_pub), "the device's attributes are gone");
}

const Point *const disp_points[] = {
    &point_pub_succeeds,     &point_pub_kept,           &point_pub_timings,   &point_pub_bad_timing,
    &point_pub_running,      &point_pub_fast,           &point_pub_refused,   &point_get_pub_refused,
    &point_get_pub_unset,    &point_enable_succeeds,    &point_enable_unset,  &point_enable_bad_device,
    &point_disable_succeeds, &point_disable_bad_device, &point_disable_keeps, NULL,
};
