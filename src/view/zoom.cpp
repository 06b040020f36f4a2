/*
 * Zoom: part of a live picture enlarged, and panes placed anew without touching decoders.
 *
 *   single-pane layout -> vo_for_ezoom = 1 (application) -> ext_vidoe_image_zoom per move
 *                      -> vo_for_ezoom = 0 -> layout
 *
 * A zoom rectangle comes in coordinates of the decoded picture and leaves in those of the display
 * port's source. UI thread; zoom_channel and vo_for_ezoom are read by live intake without a lock.
 */
#include "core/checked_call.h"
#include "core/device_state.h"
#include "core/log.h"
#include "core/output_timing.h"
#include "core/selection_state.h"
#include "mi_disp.h"
#include "mi_vdec.h"
#include "view/display_port.h"
#include "view/layout_state.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "vdec_venc.c";

constexpr int32_t kMainDevice = 0;
constexpr uint32_t kPictureSizeChannel = 0; // its picture size stands for all channels'
constexpr uint32_t kRectsPerBank = NVRHAL_DISPLAY_PORTS;
// Rectangles from the secondary output's bank on: its own and the spare bank behind it.
constexpr int32_t kSecondaryRects = 2 * kRectsPerBank;
static_assert(sizeof set_bind_para / sizeof(PaneRect) == (kSecondaryOutputBank + 2) * kRectsPerBank);

PaneRect &secondary_rect(uint32_t index)
{
    return set_bind_para[kSecondaryOutputBank + index / kRectsPerBank][index % kRectsPerBank];
}

/** A coordinate of the picture as one of the port's source; the product wraps at 32 bits. */
uint16_t map_to_source(int32_t value, uint32_t source_size, uint32_t picture_size)
{
    if (picture_size == 0) return 0;
    return static_cast<uint16_t>(even(static_cast<uint32_t>(value) * source_size / picture_size));
}

// Zoom prints the same steps as a layout does, with the code written in other ways.
constexpr PortTexts kZoomTexts = {
    .get = PORT_TEXT("Get channel %d attr failed with errno 0x%x!\n"),
    .set = PORT_TEXT("Set channel %d attr failed with errno %#x!\n"),
    .show = PORT_TEXT("vo show channel %d failed with errno 0x%x!\n"),
};
constexpr PortTexts kSecondaryZoomTexts = {
    .get = kZoomTexts.get,
    .set = kZoomTexts.set,
    .show = PORT_TEXT("vo show channel %d failed with errno %#x!\n"),
};

} // namespace

int32_t ext_vidoe_image_zoom(int32_t cropDivp, int32_t x, int32_t y, int32_t w, int32_t h)
{
    log_text("(int cropDivp=%d, int x=%d, int y=%d, int w=%d, int h=%d)", cropDivp, x, y, w, h);

    MI_VDEC_ChnAttr picture = {};
    if (failed_call(MI_VDEC_GetChnAttr(kPictureSizeChannel, &picture), log_exec_failure(failed_code)))
        return 1;

    const uint32_t port = load_word(zoom_channel);
    MI_DISP_InputPortAttr source = {};
    if (failed_call(MI_DISP_GetInputPortAttr(kMainDevice, port, &source), log_exec_failure(failed_code)))
        return 1;

    const MI_Rect window = {
        map_to_source(x, source.source_width, picture.max_width),
        map_to_source(y, source.source_height, picture.max_height),
        map_to_source(w, source.source_width, picture.max_width),
        map_to_source(h, source.source_height, picture.max_height),
    };
    log_text("( int u16X=%d, int u16Y=%d, int u16Width=%d, int u16Height=%d\n)", window.x, window.y,
             window.width, window.height);
    log_text("( zoom_channel=%d\n)", static_cast<int>(port));

    // Tried once more, and reported as failed whatever that gives, on purpose.
    return failed_exec(MI_DISP_SetZoomInWindow(kMainDevice, port, &window)) ? 1 : 0;
}

int32_t ext_change_zoom_format(const DispAttrib *panes, int32_t count)
{
    if (panes == nullptr && count >= 1) return -1;
    const int32_t dev = load_word(globalVoDev);
    const int32_t cameras = camera_count();
    for (int32_t channel = 0; channel < cameras; ++channel) {
        log_failure(MI_DISP_HideInputPort(dev, static_cast<uint32_t>(channel)),
                    log_error(kSource, "vo hide channel %d failed with errno 0x%x!\n", channel, failed_code));
    }

    // A pane's channel is not read, on purpose: pane i places port i.
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t port = static_cast<uint32_t>(i);
        // Not rounded, unlike a layout's window.
        const MI_Rect window = {panes[i].x, panes[i].y, panes[i].w, panes[i].h};
        if (move_port(dev, port, window, PortSource::kKept, kZoomTexts) != 0) return -1;
        show_port(dev, port, kZoomTexts); // a port that stays hidden does not keep the others from showing
    }
    return 0;
}

int32_t ext_change_zoom_slave(const DispAttrib *panes, int32_t count)
{
    if (count >= kSecondaryRects) return -1; // no rectangle behind the last pane's
    if (panes == nullptr && count >= 1) return -1;

    for (int32_t i = 0; i < count; ++i) {
        secondary_rect(static_cast<uint32_t>(i)) = even_rect(panes[i]);
        if (panes[i].channel < kSparePaneMarks) spare_pane_marks[panes[i].channel] = 1;
    }

    const int32_t dev = load_word(globalVoDev);
    const uint32_t last_channel = count < 1 ? 0 : panes[count - 1].channel;
    if (failed_call(MI_DISP_HideInputPort(dev, last_channel),
                    log_error(kSource, "vo hide channel %d failed with errno %#x!\n",
                              static_cast<int>(last_channel), failed_code)))
        return -1;

    // Port and rectangle number `count`, one behind the panes just stored, on purpose: an earlier
    // layout left that rectangle.
    const uint32_t port = count < 1 ? 0 : static_cast<uint32_t>(count);
    if (move_port(dev, port, window_of(secondary_rect(port)), PortSource::kKept, kSecondaryZoomTexts) != 0)
        return -1;
    return show_port(dev, port, kSecondaryZoomTexts);
}
