/*
 * display.h - output timing, display devices and ports, HDMI, and the switch of the output.
 */
#ifndef NVRHAL_DISPLAY_H
#define NVRHAL_DISPLAY_H

#include <stdint.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Opaque here: platform/include has it. */
struct MI_DISP_PubAttr;

/* ======================================================================================= */
/* Output timing                                                                            */
/* ======================================================================================= */

/**
 * Look an output timing code up.
 * @param code         1 to 13; any other leaves all outputs as they are
 * @param hdmi_timing  out: HDMI timing value; null is skipped
 * @param disp_timing  out: display output value; null is skipped
 * @param width        out: output width, pixels; null is skipped
 * @param height       out: output height, pixels; null is skipped
 * @return 0
 * Errors: "Unspport Ap timing" is printed for a code that is not known.
 * Thread: any.
 * Ownership: the outputs are the caller's.
 */
NVRHAL_API int32_t vo_timing_lookup(uint32_t code, uint32_t *hdmi_timing, uint32_t *disp_timing,
                                    uint16_t *width, uint16_t *height);

/**
 * Size and refresh rate of a display output value.
 * @param value       the platform's, 0 to 28
 * @param width       out: pixels; null is skipped
 * @param height      out: pixels; null is skipped
 * @param frame_rate  out: frames per second; null is skipped
 * @return 0, or -1
 * Errors: -1 for a value that is not known: the outputs stay as they are.
 * Thread: any.
 * Ownership: the outputs are the caller's.
 */
NVRHAL_API int32_t vo_get_wh(uint32_t value, uint32_t *width, uint32_t *height, uint32_t *frame_rate);

/* ======================================================================================= */
/* Display devices and ports. Start-up and layouts call what they need of these.            */
/* ======================================================================================= */

/**
 * Bring display device 0 up with enNorm_vga's timing, layer 0, HDMI and ports 0 to port_count - 1 laid
 * out as an even grid. Start-up calls it.
 * @param port_count  up to NVRHAL_DISPLAY_PORTS; 0 or less = no ports
 * @return 0; (uint32_t)-1 for a timing that cannot be shown; 1 when a platform call failed
 * Errors: it stops at the first failure, and what was enabled stays so.
 * Thread: UI thread.
 */
NVRHAL_API uint32_t start_disp(int32_t port_count);

/**
 * Stop the ports of device 0, start display device dev unless it runs, and lay the ports of device 0
 * out. Device 0 gets enNorm_vga as its display output value, untranslated; any other gets value 0.
 * @param dev           display device; -1 to 15 are remembered as started
 * @param ignored       any value
 * @param frame_rate    frames per second, looked at only when the device is started: 0 is refused,
 *                      any other does the same
 * @param pixel_format  layer format code, any that the platform takes
 * @param port_count    1 to NVRHAL_DISPLAY_PORTS
 * @return 0, or (uint32_t)-1
 * Errors: what was enabled stays so.
 * Thread: UI thread.
 */
NVRHAL_API uint32_t vo_start(int32_t dev, uint32_t ignored, uint32_t frame_rate, uint32_t pixel_format,
                             int32_t port_count);

/**
 * Restart a display device with the given public attributes, and its layer: 3 for device 2, else 0.
 * @param dev           display device, -1 to 2
 * @param attr          its timing is a display output value
 * @param frame_rate    frames per second: 0 is refused, any other does the same
 * @param pixel_format  layer format code, any that the platform takes
 * @return 0, or -1
 * Errors: null, a rate of 0, a timing that is not known, a platform call that failed: it stops there.
 * Thread: UI thread.
 * Ownership: attr is used during the call only.
 */
NVRHAL_API int32_t vo_enable(int32_t dev, const struct MI_DISP_PubAttr *attr, uint32_t frame_rate,
                             uint32_t pixel_format);

/**
 * Disable a layer, then its device.
 * @param dev    display device, -1 to 2
 * @param layer  video layer, 0 to 3
 * @return 0, or -1
 * Errors: it stops at the first failure: a layer that cannot be disabled keeps its device.
 * Thread: UI thread.
 */
NVRHAL_API int32_t vo_disable(int32_t dev, uint32_t layer);

/**
 * Lay out and enable ports 0 to port_count - 1 of a device. A device's first call that succeeds
 * computes an even grid into its bank of set_bind_para; later ones apply what the bank holds, whatever
 * the count.
 * @param dev         display device, -1 to 2
 * @param attr        its timing, a display output value, gives the size
 * @param port_count  1 to NVRHAL_DISPLAY_PORTS
 * @return 0, or -1
 * Errors: null, a bad count, a timing that is not known, a platform call that failed: it stops there.
 *         Later calls for devices other than 0 and -1 go on and report success despite failures.
 * Thread: UI thread.
 * Ownership: attr is used during the call only.
 */
NVRHAL_API int32_t vo_start_chn(int32_t dev, const struct MI_DISP_PubAttr *attr, int32_t port_count);

/**
 * Disable ports 0 to port_count - 1.
 * @param dev         display device, -1 to 2
 * @param port_count  up to NVRHAL_DISPLAY_PORTS; 0 or less does nothing
 * @return the platform's result for the last port, 0 without ports
 * Errors: failures are printed, and the next port is tried.
 * Thread: UI thread.
 */
NVRHAL_API int32_t vo_stop_chn(int32_t dev, int32_t port_count);

/**
 * Does nothing.
 * @param rects   any pointer
 * @param width   pixels, any value
 * @param height  pixels, any value
 * @param mode    any value
 * @return 1
 * Errors: none.
 * Thread: any.
 * Ownership: rects is not looked at.
 */
NVRHAL_API int32_t vo_set_wh(void *rects, uint32_t width, uint32_t height, uint32_t mode);

/* ======================================================================================= */
/* HDMI                                                                                     */
/* ======================================================================================= */

/**
 * Initialise and open the transmitter. Start-up calls it.
 * @param timing_code  any value; ignored
 * @return 0
 * Errors: only printed.
 * Thread: UI thread.
 */
NVRHAL_API uint32_t vo_hdmi_start(uint32_t timing_code);

/**
 * Stop, close and release the transmitter. Nothing in the library calls it.
 * @return 0
 * Errors: not looked at.
 * Thread: UI thread.
 */
NVRHAL_API uint32_t vo_hdmi_stop(void);

/**
 * Configure and start a transmitter; device 0 is muted meanwhile.
 * @param hdmi_dev     HDMI device, 0 on this board
 * @param hdmi_timing  HDMI timing value, one that vo_timing_lookup gives, 4 to 42
 * @return 0, or 1
 * Errors: 1 when the platform refused: the output stays muted.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ST_Hdmi_Start(uint32_t hdmi_dev, uint32_t hdmi_timing);

/**
 * What the library does on monitor events: 0 plugged re-applies the transmitter's attributes and
 * starts it, 1 unplugged stops it. The library registers it with the platform.
 * @param hdmi_dev     any value; ignored
 * @param event        0 or 1; any other is only printed
 * @param event_param  points at the 32-bit HDMI device number; null = the event is only printed
 * @param user_param   printed, up to 4 bytes of it; may be null
 * @return 0
 * Errors: failures of the platform are only printed.
 * Thread: the platform's event thread.
 * Ownership: both are the platform's, used during the call only.
 */
NVRHAL_API int32_t Hdmi_callback(uint32_t hdmi_dev, uint32_t event, void *event_param, void *user_param);

/* ======================================================================================= */
/* Output device and buffers                                                                */
/* ======================================================================================= */

/**
 * Switch the output device and resolution, and set the GUI's framebuffer up anew. The display itself
 * changes when it is started next.
 * @param type    3 = the secondary output, any other = the main output
 * @param width   output pixels, 1 or more; with height it chooses enNorm_vga, unless type is 3
 * @param height  output pixels, 1 or more
 * @return 0, or -1
 * Errors: -1 for null, which changes nothing, and for a framebuffer that cannot be set up: the output
 *         has been switched then.
 * Thread: UI thread; not while a layout changes.
 * Ownership: used during the call only.
 */
NVRHAL_API int32_t ext_change_output_device(const int32_t *type, const int32_t *width, const int32_t *height);

/**
 * Flush decoders 0 to NVRHAL_PLAYBACK_CHANNELS - 1, whatever N is, and clear their display ports.
 * @return 0
 * Errors: of decoders that do not start again are printed; those of ports are not looked at.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_clear_disp(void);

/**
 * Clear the pictures of display port channel - 1.
 * @param channel  counted from 1, 1 to NVRHAL_DISPLAY_PORTS
 * @return 0
 * Errors: only printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_vo_buffer_clear2(uint32_t channel);

/**
 * Clear the pictures of port `channel`, and flush the decoder channel whose number is that of the
 * display device. Does nothing during playback and while vo_for_ezoom is not 0.
 * @param channel  0 to N - 1; any other does nothing
 * @param mode     1 = clear the port and flush, any other = only flush
 * @return 0
 * Errors: only printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_vo_buffer_clear3(uint32_t channel, uint32_t mode);

/**
 * Connect decoder `channel` to port `channel` of device 0.
 * @param channel  0 to N - 1; any other does nothing
 * @return 0
 * Errors: only printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_vo_buffer_create1(uint32_t channel);

/**
 * Connect decoder N + 1 to port `channel` of device 0. Start-up creates no such decoder.
 * @param channel  0 to N - 1; any other does nothing
 * @return 0
 * Errors: only printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_vo_buffer_create2(uint32_t channel);

/**
 * Connect a channel to display device 2, or disconnect it and clear its port there.
 * @param channel  0 to NVRHAL_DISPLAY_PORTS - 1
 * @param enable   0 = disconnect, any other = connect
 * @return 0
 * Errors: only printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_record_enable(uint32_t channel, uint32_t enable);

#ifdef __cplusplus
}
#endif

#endif
