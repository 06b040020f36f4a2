/*
 * fb_surface.cpp - what the application asks of the framebuffer once it is set up: its geometry,
 * and the brackets around a drawing job. Pixels are written by the application itself.
 * Thread: the application's GUI thread.
 */
#include "gui/framebuffer_state.h"

#include <fcntl.h>

#include "board_io.h"
#include "core/log.h"

namespace nvrhal
{
namespace
{

// Descriptor of "/dev/mem"; 0 = not open. Written and read by memopen only.
int32_t memory_descriptor;

// A word of a record that the application gave; a missing one is skipped.
void fill_word(uint32_t *word, uint32_t value)
{
    if (word) *word = value;
}

} // namespace
} // namespace nvrhal

using namespace nvrhal;

int32_t ext_get_fb_info(uint32_t, uint32_t info[6])
{
    log_entry(kFbSource);
    if (!info) return 0;
    info[0] = g_osd_info.variable.xres;
    info[1] = g_osd_info.variable.yres;
    info[2] = g_osd_info.fixed.line_length;
    info[3] = 2; // on purpose a constant: the GUI is drawn in 16 bits whatever the device's depth
    info[4] = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(g_osd_info.mapped_address));
    info[5] = static_cast<uint32_t>(g_osd_info.fixed.smem_start);
    return 0;
}

int32_t ext_app_buf_addr(uint32_t *first, uint32_t *second, uint32_t *third)
{
    log_entry(kFbSource);
    fill_word(first, g_osd_info.app_buffer_first);
    fill_word(second, g_osd_info.app_buffer_second);
    fill_word(third, g_osd_info.app_buffer_third);
    return 0;
}

int32_t ext_fb_copy(void)
{
    log_entry(kFbSource);
    return g_osd_info.descriptor != kNoDescriptor ? 0 : -1;
}

int32_t ext_fb_quick_fill(void)
{
    log_entry(kFbSource);
    return 0;
}

int32_t ext_tde_begin_job(void)
{
    log_entry(kFbSource);
    if (g_osd_info.descriptor != kNoDescriptor) return 0;
    log_error_line(kFbSource, "++++>>>>>>g_osd_info FrameBufferFd is NULL");
    return -1;
}

// There is one buffer: panning to its start is how the driver learns that the picture is complete.
int32_t ext_tde_end_job(void)
{
    log_entry(kFbSource);
    if (g_osd_info.descriptor == kNoDescriptor) return -1;
    g_osd_info.variable.yoffset = 0;
    if (board_ioctl(g_osd_info.descriptor, FBIOPAN_DISPLAY, &g_osd_info.variable) >= 0) return 0;
    log_error_line(kFbSource, "FBIOPAN_DISPLAY failed!");
    return -1;
}

int32_t memopen(void)
{
    if (memory_descriptor > 0) return memory_descriptor;
    const int32_t opened = board_open("/dev/mem", O_RDWR | O_SYNC | O_CREAT);
    if (opened <= 0) return -1; // on purpose 0 counts as a failure
    memory_descriptor = opened;
    return opened;
}
