/* gui_screen.h - a framebuffer device for the trace tests: what its driver answers, what was sent. */
#pragma once

#include <linux/fb.h>

#include <cstring>
#include <string>

#include "fb_driver.h"
#include "nvrhal.h"
#include "recording_expect.h"

namespace gui_test
{

struct Screen {
    uint32_t width = 1280, height = 720;
    uint32_t bits = 16, alpha_bits = 1;
    uint32_t stride = 2560;
    uint32_t memory = 2560 * 720;
    uint32_t x_offset = 0, y_offset = 0;
};

inline std::string number_list(const uint32_t *words, size_t count)
{
    std::string text = "{";
    for (size_t i = 0; i < count; ++i)
        text += (i > 0 ? " " : "") + std::to_string(words[i]);
    return text + "}";
}

inline std::string byte_list(const uint8_t *bytes, size_t count)
{
    std::string text = "{";
    for (size_t i = 0; i < count; ++i)
        text += (i > 0 ? " " : "") + std::to_string(bytes[i]);
    return text + "}";
}

/** Records that the library sends show their words; those that it reads show nothing. */
inline void describe_requests()
{
    for (unsigned long request :
         {static_cast<unsigned long>(FBIOGET_VSCREENINFO), static_cast<unsigned long>(FBIOGET_FSCREENINFO),
          static_cast<unsigned long>(FBIOGET_DISPLAYLAYER_ATTRIBUTES),
          static_cast<unsigned long>(FBIOGET_COLORKEY), static_cast<unsigned long>(FBIOGET_GLOBAL_ALPHA)})
        recording::platform.describe_request(request, [](const void *) { return std::string(); });
    recording::platform.describe_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, [](const void *record) {
        return number_list(static_cast<const uint32_t *>(record), 13);
    });
    recording::platform.describe_request(FBIOPAN_DISPLAY, [](const void *record) {
        const auto *screen = static_cast<const fb_var_screeninfo *>(record);
        return "{" + std::to_string(screen->xoffset) + " " + std::to_string(screen->yoffset) + "}";
    });
    recording::platform.describe_request(
        FBIOSET_SHOW, [](const void *record) { return byte_list(static_cast<const uint8_t *>(record), 1); });
    recording::platform.describe_request(FBIOSET_COLORKEY, [](const void *record) {
        return byte_list(static_cast<const uint8_t *>(record), 4);
    });
    recording::platform.describe_request(FBIOSET_GLOBAL_ALPHA, [](const void *record) {
        return byte_list(static_cast<const uint8_t *>(record), 7);
    });
}

/** Plug a framebuffer in whose driver answers the standard requests. */
inline void plug_framebuffer(const Screen &screen = {})
{
    recording::Node node = recording::platform.node("/dev/fb0");
    node.ioctl(FBIOGET_VSCREENINFO).fills([screen](recording::Args &call) {
        auto &variable = call.record<fb_var_screeninfo>(2);
        std::memset(&variable, 0, sizeof variable);
        variable.xres = screen.width;
        variable.yres = screen.height;
        variable.xoffset = screen.x_offset;
        variable.yoffset = screen.y_offset;
        variable.bits_per_pixel = screen.bits;
        variable.transp.length = screen.alpha_bits;
    });
    node.ioctl(FBIOGET_FSCREENINFO).fills([screen](recording::Args &call) {
        auto &fixed = call.record<fb_fix_screeninfo>(2);
        std::memset(&fixed, 0, sizeof fixed);
        fixed.line_length = screen.stride;
        fixed.smem_len = screen.memory;
        fixed.smem_start = 0x2F000000;
    });
    describe_requests();
}

} // namespace gui_test
