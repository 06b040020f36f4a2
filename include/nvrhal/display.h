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
/* Output timing, display device and ports                                                  */
/* ======================================================================================= */

/**
 * Look an output timing code up.
 * @param code         1 to 13
 * @param hdmi_timing  out: HDMI timing value       @param disp_timing  out: display output value
 * @param width,height out: output size, pixels
 * All outputs stay as they are for any other code ("Unspport Ap timing" is printed). Null outputs
 * are skipped. @return 0. Thread: any.
 */
NVRHAL_API int32_t vo_timing_lookup(uint32_t code, uint32_t *hdmi_timing, uint32_t *disp_timing,
                                    uint16_t *width, uint16_t *height);

/**
 * Size and refresh rate of a display output value.
 * @param value         the platform's, 0 to 28
 * @param width,height  out: pixels   @param frame_rate  out: frames per second
 * Null outputs are skipped. @return 0, or -1 for a value not known: the outputs stay as they are.
 * Thread: any.
 */
NVRHAL_API int32_t vo_get_wh(uint32_t value, uint32_t *width, uint32_t *height, uint32_t *frame_rate);

/**
 * Bring display device 0 up with enNorm_vga's timing, layer 0, HDMI and ports 0..port_count-1 laid
 * out as an even grid. Start-up calls it.
 * @param port_count  0 or less = no ports; above 36 every pane is 0x0
 * @return 0; (uint32_t)-1 for a timing that cannot be shown; 1 when a platform call failed, what was
 *         enabled staying so. Thread: UI thread.
 */
NVRHAL_API uint32_t start_disp(int32_t port_count);

/**
 * Stop the ports of device 0, start display device dev unless it runs, and lay the ports of device 0
 * out. Device 0 gets enNorm_vga as its display output value, untranslated; any other gets value 0.
 * @param dev           display device; -1 to 15 are remembered as started
 * @param frame_rate    looked at only when the device is started: 0 is refused
 * @param pixel_format  layer format code, as the platform's
 * @param port_count    1 to 16
 * @return 0, or (uint32_t)-1: what was enabled stays so. Thread: UI thread.
 */
NVRHAL_API uint32_t vo_start(int32_t dev, uint32_t ignored, uint32_t frame_rate, uint32_t pixel_format,
                             int32_t port_count);

/**
 * Restart a display device with the given public attributes, and its layer: 3 for device 2, else 0.
 * @param attr        its timing is a display output value; null is refused
 * @param frame_rate  0 is refused; otherwise unused   @param pixel_format  layer format code
 * @return 0, or -1 at the first failure. Thread: UI thread.
 */
NVRHAL_API int32_t vo_enable(int32_t dev, const struct MI_DISP_PubAttr *attr, uint32_t frame_rate,
                             uint32_t pixel_format);

/** Disable a layer, then its device. @return 0, or -1 at the first failure. Thread: UI thread. */
NVRHAL_API int32_t vo_disable(int32_t dev, uint32_t layer);

/**
 * Lay out and enable ports 0..port_count-1 of a device. A device's first call that succeeds computes
 * an even grid into its bank of set_bind_para; later ones apply what the bank holds, whatever the
 * count, and report success for devices other than 0 and -1 despite failures.
 * @param attr        its timing, a display output value, gives the size; null is refused
 * @param port_count  1 to 16
 * @return 0, or -1 at the first failure. Thread: UI thread.
 */
NVRHAL_API int32_t vo_start_chn(int32_t dev, const struct MI_DISP_PubAttr *attr, int32_t port_count);

/** Disable ports 0..port_count-1. @return the last port's platform result, 0 without ports.
 * Thread: UI thread. */
NVRHAL_API int32_t vo_stop_chn(int32_t dev, int32_t port_count);

/** Does nothing. @return 1. Thread: any. */
NVRHAL_API int32_t vo_set_wh(void *rects, uint32_t width, uint32_t height, uint32_t mode);

/* ======================================================================================= */
/* HDMI                                                                                     */
/* ======================================================================================= */

/** Initialise and open the transmitter; failures are only printed. The argument is ignored. @return 0.
 * Thread: UI thread. */
NVRHAL_API uint32_t vo_hdmi_start(uint32_t timing_code);

/** Stop, close and release the transmitter. @return 0. Nothing in the library calls it. Thread: UI thread. */
NVRHAL_API uint32_t vo_hdmi_stop(void);

/**
 * Configure and start a transmitter; device 0 is muted meanwhile.
 * @param hdmi_timing  HDMI timing value, as vo_timing_lookup gives it
 * @return 0, or 1 when the platform refused: the output stays muted. Thread: UI thread.
 */
NVRHAL_API int32_t ST_Hdmi_Start(uint32_t hdmi_dev, uint32_t hdmi_timing);

/**
 * What the library does on monitor events: 0 plugged re-applies the transmitter's attributes and
 * starts it, 1 unplugged stops it; others are only printed.
 * @param event_param  points at the 32-bit HDMI device number; null = the event is only printed
 * @param user_param   printed, up to 4 bytes of it; may be null
 * @return 0. Thread: the platform's event thread.
 */
NVRHAL_API int32_t Hdmi_callback(uint32_t hdmi_dev, uint32_t event, void *event_param, void *user_param);

/* ======================================================================================= */
/* Output device and buffers                                                                */
/* ======================================================================================= */

/**
 * Switch the output device and resolution, and set the GUI's framebuffer up anew. The display
 * itself changes when it is started next.
 * @param type           3 = the secondary output, any other = the main output
 * @param width, height  output pixels; they choose enNorm_vga
 * @return 0; -1 = null, or no framebuffer. Thread: UI thread; not while a layout changes.
 */
NVRHAL_API int32_t ext_change_output_device(const int32_t *type, const int32_t *width, const int32_t *height);

/** Flush decoders 0 to 7, whatever N is, and clear their display ports. @return 0. Thread: UI thread. */
NVRHAL_API int32_t ext_clear_disp(void);

/** Clear the pictures of port channel - 1: the channel counts from 1. @return 0. Thread: UI thread. */
NVRHAL_API int32_t ext_vo_buffer_clear2(uint32_t channel);

/**
 * Clear the pictures of port `channel` (mode 1 only), and flush the decoder channel whose number is
 * that of the display device. Nothing outside live view without zoom. @return 0. Thread: UI thread.
 */
NVRHAL_API int32_t ext_vo_buffer_clear3(uint32_t channel, uint32_t mode);

/** Connect decoder `channel`, or decoder N + 1, to port `channel` of device 0. @return 0. Thread: UI thread.
 */
NVRHAL_API int32_t ext_vo_buffer_create1(uint32_t channel);
NVRHAL_API int32_t ext_vo_buffer_create2(uint32_t channel);

/** Connect a channel to display device 2, or disconnect it. @return 0. Thread: UI thread. */
NVRHAL_API int32_t ext_record_enable(uint32_t channel, uint32_t enable);

#ifdef __cplusplus
}
#endif

#endif
