/*
 * Split-screen layouts.
 *
 * Main device: every live channel leaves the screen, then each pane's decoder is flushed and set to
 * deliver a picture of the pane's size, and only when all decoders are ready are the ports shown,
 * under global_bindargLock. Secondary output: display ports only, decoders untouched.
 *
 *   any layout -> ext_change_display_format -> all channels hidden -> panes prepared -> panes shown
 *                                          (refused: hidden until the next layout that succeeds)
 *
 * A display failure while panes are shown returns with the lock held. The next layout then waits for
 * ever instead of working on a half-shown screen.
 * UI thread.
 */
#include "board_io.h"
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
constexpr int32_t kSecondaryOutput = -1;
constexpr int32_t kSavedDevices = 3;
constexpr uint32_t kPaneSettleUs = 100000; // a flushed decoder needs its first picture
constexpr uint32_t kNoChannel = static_cast<uint32_t>(-1);

constexpr PortTexts kPaneTexts = {
    .get = PORT_TEXT("Get channel %d attr failed with errno %#x!\n"),
    .set = PORT_TEXT("Set channel %d attr failed with errno %#x!\n"),
    .show = nullptr, // enabled instead
};
constexpr PortTexts kSecondaryPaneTexts = {
    .get = PORT_TEXT("Get channel %d attr failed with errno %#x!\n"),
    .set = PORT_TEXT("Set channel %d attr failed with errno 0x%x!\n"),
    .show = PORT_TEXT("vo show channel %d failed with errno 0x%x!\n"),
};

uint32_t single_view_chn = kNoChannel; // channel of the last single-pane layout, main device
uint32_t last_pane_count;              // of the last layout request; kept for debuggers

bool shows(uint32_t bind_status)
{
    return bind_status == 1 || bind_status == 2;
}

bool count_is_bad(int32_t count)
{
    if (count >= 1 && count <= camera_count()) return false;
    log_error(kSource, "vo chn num %d is err!\n", count);
    return true;
}

BindArgs new_record(int32_t dev)
{
    BindArgs record = {};
    record.vo_dev = static_cast<uint32_t>(dev);
    record.chn_num = static_cast<uint32_t>(camera_count());
    return record;
}

/** Save an applied layout in its device's slot. global_bindargLock is held. */
void save_record(int32_t dev, const BindArgs &record)
{
    if (dev == kSecondaryOutput)
        nvrhal_saved_layouts.before_first = record;
    else if (dev >= 0 && dev < kSavedDevices)
        old_global_bindarg[dev] = record;
}

/** How many channels have a pane rectangle and a layout entry. */
uint32_t pane_channels()
{
    const uint32_t count = static_cast<uint32_t>(camera_count());
    return count < kPaneChannels ? count : kPaneChannels;
}

void take_live_channels_off(int32_t dev)
{
    const int32_t count = camera_count();
    for (int32_t channel = 0; channel < count; ++channel) {
        const uint32_t port = static_cast<uint32_t>(channel);
        vo_unbind_vpss(kMainDevice, port, port, 0); // first: no picture may follow the clearing
        MI_DISP_ClearInputPortBuffer(dev, port, 1);
        log_failure(MI_DISP_DisableInputPort(dev, port),
                    log_error(kSource, "vo hide channel %d failed with errno %d!\n", channel, failed_code));
    }
}

uint32_t smaller(uint32_t a, uint32_t b)
{
    return a < b ? a : b;
}

/** Flush a pane's decoder and set the size it delivers; a single pane takes the decoder's full size. */
void prepare_decoder(uint32_t channel, PaneRect &rect, bool single)
{
    re_create_vdec(channel);
    vo_unbind_vpss(kMainDevice, channel, channel, 0); // it was bound again, too early to be shown

    MI_VDEC_OutputPortAttr output = {};
    MI_VDEC_ChnAttr attr = {};
    log_failure(MI_VDEC_GetOutputPortAttr(channel, &output),
                log_text("MI_VDEC_GetOutputPortAttr,%s,%d\n", kSource, __LINE__));
    if (failed_call(MI_VDEC_GetChnAttr(channel, &attr),
                    log_text("MI_VDEC_GetChnAttr,%s,%d\n", kSource, __LINE__)))
        attr = {};
    if (single) {
        rect.w = attr.max_width;
        rect.h = attr.max_height;
    }
    output.width = static_cast<uint16_t>(smaller(attr.max_width, rect.w));
    output.height = static_cast<uint16_t>(smaller(attr.max_height, rect.h));
    log_failure(MI_VDEC_SetOutputPortAttr(channel, &output),
                log_text("MI_VDEC_SetOutputPortAttr,%s,%d\n", kSource, __LINE__));
}

/** Record and prepare every pane of the main device, channels ascending, panes in array order. */
void prepare_panes(const DispAttrib *panes, int32_t count, BindArgs &record)
{
    for (uint32_t channel = 0; channel < pane_channels(); ++channel) {
        for (int32_t i = 0; i < count; ++i) {
            const DispAttrib &pane = panes[i];
            if (pane.channel != channel) continue;
            record.chn[channel] = channel;
            if (channel < kMaskChannels)
                store_word(cur_display_chnn, load_word(cur_display_chnn) | 1u << channel);
            PaneRect &rect = set_bind_para[kMainDeviceBank][channel];
            rect = even_rect(pane);
            record.bind_status[channel] = pane.bind_status;
            log_text("DevBind.bind_status[i]=%d\n", static_cast<int>(pane.bind_status));
            prepare_decoder(channel, rect, count == 1);
            board_sleep_us(kPaneSettleUs);
        }
    }
}

/** Give a port its window, enable it and feed it. 0, or -1 after a message. */
int32_t show_pane(int32_t dev, uint32_t channel, uint32_t bind_status, const PaneRect &rect)
{
    const int chn = static_cast<int>(channel);
    const MI_Rect window = window_of(rect);
    log_text("SHOW TYPE%d\n", static_cast<int>(bind_status));

    if (move_port(dev, channel, window, PortSource::kAsWindow, kPaneTexts) != 0) return -1;
    log_text("DISENABLE %d\n", chn);
    log_text(" VoChnAttr.u16Width=%d, VoChnAttr.u16Hidth=%d\n", window.width, window.height);
    if (failed_call(MI_DISP_EnableInputPort(dev, channel),
                    log_error(kSource, "MI_DISP_EnableInputPort channel %d failed with errno %#x!\n", chn,
                              failed_code)))
        return -1;
    vo_bind_vpss(kMainDevice, channel, channel, 0);
    return 0;
}

/** The secondary output's part: the window only; the source size stays. 0, or -1 after a message. */
int32_t show_secondary_pane(uint32_t channel, const PaneRect &rect)
{
    if (move_port(kSecondaryOutput, channel, window_of(rect), PortSource::kKept, kSecondaryPaneTexts) != 0)
        return -1;
    return show_port(kSecondaryOutput, channel, kSecondaryPaneTexts);
}

/** Record every pane of the secondary output; the rectangles are printed as they were given. */
void record_secondary_panes(const DispAttrib *panes, int32_t count, BindArgs &record)
{
    for (uint32_t channel = 0; channel < pane_channels(); ++channel) {
        for (int32_t i = 0; i < count; ++i) {
            const DispAttrib &pane = panes[i];
            if (pane.channel != channel) continue;
            record.chn[channel] = channel;
            record.bind_status[channel] = pane.bind_status;
            set_bind_para[kSecondaryOutputBank][channel] = even_rect(pane);
            log_text("Chn[%d]:x:%d y:%d w:%d h:%d!\n", static_cast<int>(channel), pane.x, pane.y, pane.w,
                     pane.h);
        }
    }
}

void mark_spare_panes(int32_t count)
{
    for (int32_t i = 0; i < kSparePaneMarks; ++i)
        spare_pane_marks[i] = i < camera_count() - count ? 1 : 0;
}

} // namespace

int32_t re_create_vdec(uint32_t channel)
{
    const int chn = static_cast<int>(channel);
    MI_VDEC_OutputPortAttr output = {};
    if (failed_call(MI_VDEC_GetOutputPortAttr(channel, &output),
                    log_text("MI_VDEC_GetOutputPortAttr,%s,%d\n", kSource, __LINE__)))
        output = {};
    MI_VDEC_StopChn(channel);
    vo_unbind_vpss(kMainDevice, channel, channel, 0);

    MI_VDEC_ChnAttr attr = {};
    if (const int32_t code = failed_call(
            MI_VDEC_GetChnAttr(channel, &attr),
            log_error(kSource, "MI_VDEC_GetChnAttr failed errno 0x%x,chnid:%d \n", failed_code, chn)))
        return code;
    if (const int32_t code = failed_call(
            MI_VDEC_DestroyChn(channel),
            log_error(kSource, "MI_VDEC_DestroyChn failed errno 0x%x,chnid:%d \n", failed_code, chn)))
        return code;
    if (const int32_t code = failed_call(
            MI_VDEC_CreateChn(channel, &attr),
            log_error(kSource, "MI_VDEC_CreateChn failed errno 0x%x,chnid:%d \n", failed_code, chn)))
        return code;
    log_failure(MI_VDEC_SetOutputPortAttr(channel, &output),
                log_text("MI_VDEC_SetOutputPortAttr,%s,%d\n", kSource, __LINE__));
    vo_bind_vpss(kMainDevice, channel, channel, 0);
    return failed_call(MI_VDEC_StartChn(channel), log_code(kSource, "MI_VDEC_StartChn failed errno 0x%x \n"));
}

int32_t ext_change_display_format(const DispAttrib *panes, int32_t count)
{
    store_word(cur_display_chnn, 0); // before any test: after a refusal nothing counts as shown
    const int32_t dev = load_word(globalVoDev);
    if (dev == kSecondaryOutput) return 0;
    if (count_is_bad(count)) return -1;
    if (panes == nullptr) return -1;
    store_word(last_pane_count, count);
    log_text("ChnnNum=%d\n", count);

    if (count == 1) {
        store_word(zoom_channel, panes[0].channel);
        log_text("File:%s, zoom_channel:%d\n", kSource, static_cast<int>(panes[0].channel));
        if (single_view_chn != kNoChannel) {
            if (const int32_t code = failed_call(re_create_vdec(single_view_chn),
                                                 log_code(kSource, "MI_VDEC_StartChn failed errno 0x%x \n")))
                return code;
        }
        single_view_chn = panes[0].channel; // not checked: while it does not exist, single-pane layouts fail
    } else {
        single_view_chn = kNoChannel;
    }

    BindArgs record = new_record(dev);
    take_live_channels_off(dev);
    if (dev == kMainDevice) prepare_panes(panes, count, record); // further devices stay dark
    log_text("cur_display_chnn=0x%x\n", static_cast<unsigned>(load_word(cur_display_chnn)));

    pthread_mutex_lock(&global_bindargLock);
    for (uint32_t channel = 0; channel < pane_channels(); ++channel) {
        if (!shows(record.bind_status[channel])) continue;
        if (show_pane(dev, channel, record.bind_status[channel], set_bind_para[kMainDeviceBank][channel]) !=
            0)
            return -1; // the lock stays held, on purpose
    }
    save_record(dev, record);
    pthread_mutex_unlock(&global_bindargLock);
    return 0;
}

int32_t ext_change_display_slave(const DispAttrib *panes, int32_t count)
{
    if (load_word(globalVoDev) != kSecondaryOutput) return 0;
    if (count_is_bad(count)) return -1;
    if (panes == nullptr) return -1;
    store_word(last_pane_count, count);
    log_text("ChnnNum=%d,zoom_channel=%d,pDispAttrib[0]=%d\n", count,
             static_cast<int>(load_word(zoom_channel)), static_cast<int>(panes[0].channel));
    if (count == 1) {
        store_word(zoom_channel, panes[0].channel);
        store_word(zoom_arg_pre[0], panes[0].channel);
        store_word(zoom_arg_pre[1], panes[0].channel);
        store_word(zoom_arg_pre[2], 0);
    }

    BindArgs record = new_record(kSecondaryOutput);
    record_secondary_panes(panes, count, record);
    mark_spare_panes(count);

    pthread_mutex_lock(&global_bindargLock);
    const int32_t cameras = camera_count();
    for (int32_t channel = 0; channel < cameras; ++channel) {
        if (failed_call(
                MI_DISP_HideInputPort(kSecondaryOutput, static_cast<uint32_t>(channel)),
                log_error(kSource, "vo hide channel %d failed with errno 0x%x!\n", channel, failed_code)))
            return -1; // the lock stays held, on purpose
    }
    for (uint32_t channel = 0; channel < pane_channels(); ++channel) {
        if (!shows(record.bind_status[channel])) continue;
        if (show_secondary_pane(channel, set_bind_para[kSecondaryOutputBank][channel]) != 0)
            return -1; // the lock stays held, on purpose
    }
    save_record(kSecondaryOutput, record);
    pthread_mutex_unlock(&global_bindargLock);
    return 0;
}
