/* output_timing.h - the output timings that the board's display devices can make. */
#ifndef VBOARD_OUTPUT_TIMING_H
#define VBOARD_OUTPUT_TIMING_H

#include <cstdint>

namespace vboard
{

struct OutputTiming {
    uint32_t value; // MI_DISP_PubAttr.timing
    uint16_t width, height;
    uint16_t rate_hz;
};

/*
 * The output's size before any timing is set, and what the monitor likes best. The framebuffer has it
 * after power-on.
 */
constexpr uint16_t kUsualWidth_px = 1920, kUsualHeight_px = 1080;

/* Null: no such timing. */
const OutputTiming *find_output_timing(uint32_t value);

/* Does the HDMI transmitter know this timing value? */
bool hdmi_timing_is_known(uint32_t value);

} // namespace vboard

#endif
