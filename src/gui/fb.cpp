/*
 * fb.cpp - set the framebuffer up: open, map, place, show, colour key, alpha.
 *
 * The driver is asked for its screen information before anything is set, and again after the layer
 * has got its size, since a driver may answer the size with another stride. Failure policies differ
 * from step to step and are part of the interface: a missing device is a success (a recorder
 * without a GUI goes on), a refused layer is a failure that releases nothing, and a device that
 * cannot be read again ends the process.
 * Thread: the start-up thread, or the one that switches outputs.
 */
#include "gui/framebuffer_state.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/ioctl.h>

#include "board_io.h"
#include "core/log.h"
#include "fb_driver.h"

// Written by fb_init (start-up thread) and ext_tde_end_job (GUI thread); read by the painters.
OsdInfo g_osd_info;

namespace nvrhal
{
namespace
{

ABI_SIZE(FbDisplayLayer, 52);
ABI_AT(FbDisplayLayer, screen_width, 24);
ABI_AT(FbDisplayLayer, color_format, 36);
ABI_AT(FbDisplayLayer, mask, 48);
ABI_SIZE(FbColorKey, 4);
ABI_SIZE(FbGlobalAlpha, 7);
ABI_AT(FbGlobalAlpha, further_enabled, 6);
static_assert(FBIOSET_DISPLAYLAYER_ATTRIBUTES == _IOW('F', 0x69, FbDisplayLayer));
static_assert(FBIOGET_DISPLAYLAYER_ATTRIBUTES == _IOR('F', 0x68, FbDisplayLayer));
static_assert(FBIOSET_COLORKEY == _IOW('F', 0x67, FbColorKey));
static_assert(FBIOGET_COLORKEY == _IOR('F', 0x66, FbColorKey));
static_assert(FBIOSET_GLOBAL_ALPHA == _IOW('F', 0x65, FbGlobalAlpha));
static_assert(FBIOGET_GLOBAL_ALPHA == _IOR('F', 0x64, FbGlobalAlpha));
static_assert(FBIOSET_SHOW == _IOW('F', 0x63, uint8_t));

constexpr char kDevicePath[] = FB_NODE;
static_assert(sizeof kDevicePath <= sizeof g_osd_info.path);

// The widest GUI that is shown pixel by pixel; one that exceeds both is read at half its width.
constexpr int32_t kFullWidthLimit_px = 1920;
constexpr int32_t kFullHeightLimit_px = 1080;

constexpr uint8_t kShow = 1;
constexpr uint8_t kOpaque = 255;

int32_t driver(unsigned long request, void *record)
{
    return board_ioctl(g_osd_info.descriptor, request, record);
}

// Descriptor 0 stands for "never opened" and is left alone.
void release_device()
{
    if (g_osd_info.descriptor != 0) board_close(g_osd_info.descriptor);
    g_osd_info.descriptor = kNoDescriptor;
}

int32_t give_up(const char *text, int32_t result)
{
    log_line(text);
    release_device();
    return result;
}

// The address goes with the mapping, so that no painter writes where nothing is mapped any more.
void unmap_device()
{
    board_unmap(g_osd_info.mapped_address, g_osd_info.mapped_length);
    g_osd_info.mapped_address = nullptr;
    g_osd_info.mapped_length = 0;
}

int32_t give_up_mapped(const char *text)
{
    unmap_device();
    return give_up(text, -1);
}

void read_again_or_exit(unsigned long request, void *record, const char *text)
{
    if (driver(request, record) != -1) return;
    log_line(text);
    std::exit(EXIT_SUCCESS); // on purpose a success: the supervisor shall not count a crash
}

bool open_device()
{
    g_osd_info.descriptor = board_open(kDevicePath, O_RDWR);
    if (g_osd_info.descriptor >= 0) return true;
    log_text("dev_fb _Open %s fail\n", kDevicePath);
    g_osd_info.descriptor = kNoDescriptor;
    return false;
}

void print_screen_size()
{
    log_text("%s, %d, xres=%d, bits=%d\n", kFbSource, __LINE__, static_cast<int>(g_osd_info.variable.xres),
             static_cast<int>(g_osd_info.variable.bits_per_pixel));
}

void print_geometry(int32_t width, int32_t height)
{
    log_text("%s, %d, width=%d, height=%d\n", kFbSource, __LINE__, width, height);
    print_screen_size();
    log_text("%s, %d, line_length=%d, smem_len=%d\n", kFbSource, __LINE__,
             static_cast<int>(g_osd_info.fixed.line_length), static_cast<int>(g_osd_info.fixed.smem_len));
}

bool map_device()
{
    g_osd_info.mapped_address = board_map(g_osd_info.descriptor, g_osd_info.fixed.smem_len);
    g_osd_info.mapped_length = g_osd_info.fixed.smem_len;
    return g_osd_info.mapped_address != nullptr;
}

int32_t shown_width(int32_t width, int32_t height)
{
    const bool too_large = width > kFullWidthLimit_px && height > kFullHeightLimit_px;
    return too_large ? width >> 1 : width;
}

FbDisplayLayer whole_screen_layer(int32_t width, int32_t height)
{
    FbDisplayLayer layer = {};
    layer.dst_width = static_cast<uint32_t>(width);
    layer.dst_height = static_cast<uint32_t>(height);
    layer.display_width = static_cast<uint32_t>(shown_width(width, height));
    layer.display_height = static_cast<uint32_t>(height);
    layer.mask = FB_LAYER_POSITION | FB_LAYER_DST_SIZE | FB_LAYER_DISPLAY_SIZE | FB_LAYER_SCREEN_SIZE;
    return layer;
}

void print_layer(const FbDisplayLayer &layer)
{
    log_text("%s %d, u32Xpos:%d,u32YPos:%d,u32dstWidth:%d,u32dstHeight:%d,u32DisplayWidth:%d,"
             "u32DisplayHeight:%d,u32ScreenWidth:%d,u32ScreenHeight:%d\n",
             "fb_init", __LINE__, static_cast<int>(layer.x), static_cast<int>(layer.y),
             static_cast<int>(layer.dst_width), static_cast<int>(layer.dst_height),
             static_cast<int>(layer.display_width), static_cast<int>(layer.display_height),
             static_cast<int>(layer.screen_width), static_cast<int>(layer.screen_height));
}

// Place the layer, and read everything again that the placing may have changed. 0, or what
// fb_init returns; nothing is released.
int32_t place_layer(int32_t width, int32_t height)
{
    FbDisplayLayer layer = whole_screen_layer(width, height);
    // The character count of the message is the result, on purpose.
    if (driver(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer) != 0)
        return log_text("AAAAAAAAAAAAError: failed to FBIOSET_DISPLAYLAYER_ATTRIBUTES\n");

    read_again_or_exit(FBIOGET_FSCREENINFO, &g_osd_info.fixed, "Error reading fixed information");
    read_again_or_exit(FBIOGET_VSCREENINFO, &g_osd_info.variable, "Error reading variable information");
    print_screen_size();
    read_again_or_exit(FBIOPAN_DISPLAY, &g_osd_info.variable, "Error reading variable information");
    return 0;
}

// The whole record is read back and written with one attribute changed: the mask applies only that.
int32_t choose_color_format()
{
    FbDisplayLayer layer = {};
    if (driver(FBIOGET_DISPLAYLAYER_ATTRIBUTES, &layer) != 0) {
        log_errno("BBBBBBBBBBBBBBBBBBBBBBBBBBBBBBError: failed to FBIOGET_DISPLAYLAYER_ATTRIBUTES");
        return -1;
    }
    print_layer(layer);

    layer.color_format = FB_COLOR_ARGB1555;
    layer.mask = FB_LAYER_COLOR_FORMAT;
    if (driver(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer) != 0) {
        log_errno("Error: failed to FBIOSET_DISPLAYLAYER_ATTRIBUTES");
        return -1;
    }

    if (driver(FBIOGET_VSCREENINFO, &g_osd_info.variable) == -1) {
        log_errno("Error reading variable information");
        std::exit(EXIT_SUCCESS);
    }
    return 0;
}

// Pure black becomes transparent: the cleared surface lets the video through.
int32_t set_color_key()
{
    FbColorKey key = {};
    if (driver(FBIOGET_COLORKEY, &key) < 0) return give_up_mapped("Error: failed to FBIOGET_COLORKEY");

    key = {1, 0, 0, 0};
    if (driver(FBIOSET_COLORKEY, &key) >= 0) return 0;
    unmap_device();
    log_text("Error: failed to FBIOGET_COLORKEY"); // the read's name and no line end, on purpose
    release_device();
    return -1;
}

int32_t set_alpha()
{
    FbGlobalAlpha alpha = {};
    if (driver(FBIOGET_GLOBAL_ALPHA, &alpha) < 0) return give_up_mapped("FBIOGET_GLOBAL_ALPHA failed");

    alpha.enabled = 1;
    alpha.per_pixel = 1;
    alpha.global_alpha = kOpaque;
    alpha.zero_bit_alpha = 0;
    alpha.further_enabled = 1;
    if (driver(FBIOSET_GLOBAL_ALPHA, &alpha) < 0) return give_up_mapped("InitOsd FBIOPUT_ALPHA_HIFB failed");
    return 0;
}

} // namespace
} // namespace nvrhal

using namespace nvrhal;

int32_t fb_init(uint32_t, int32_t width, int32_t height)
{
    if (!open_device()) return 0; // on purpose: the recorder goes on without a GUI
    std::memcpy(g_osd_info.path, kDevicePath, sizeof kDevicePath);

    if (driver(FBIOGET_VSCREENINFO, &g_osd_info.variable) < 0)
        return give_up("Get variable screen info failed!", 0); // likewise
    if (driver(FBIOGET_FSCREENINFO, &g_osd_info.fixed) < 0)
        return give_up("InitOsd FBIOGET_FSCREENINFO failed", -1);
    print_geometry(width, height);

    if (!map_device()) return give_up("InitOsd mmap failed", -1);
    std::memset(g_osd_info.mapped_address, 0, g_osd_info.mapped_length);

    if (const int32_t result = place_layer(width, height); result != 0) return result;
    if (const int32_t result = choose_color_format(); result != 0) return result;

    uint8_t show = kShow;
    if (driver(FBIOSET_SHOW, &show) < 0) return give_up_mapped("InitOsd FBIOPUT_SHOW_HIFB failed");
    if (set_color_key() != 0) return -1;
    if (set_alpha() != 0) return -1;

    log_line("fb init done!");
    return 0;
}

int32_t fb_uninit(void)
{
    return 0; // the next fb_init opens and maps once more, over the old state
}
