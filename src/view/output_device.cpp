/*
 * Output device and display buffers.
 *
 *   ext_change_output_device: the choice is recorded and the GUI's framebuffer set up anew. The
 *   display follows when it is started next; enNorm_vga then holds a display output value, not the
 *   timing code that start-up puts there.
 *
 * No lock: UI thread, not while a layout changes. Live intake reads globalVoDev word by word.
 */
#include "ad_driver.h"
#include "core/checked_call.h"
#include "core/decoder.h"
#include "core/device_state.h"
#include "core/log.h"
#include "core/selection_state.h"
#include "mi_disp.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "vdec_venc.c";

constexpr int32_t kMainDevice = 0;
constexpr int32_t kRecordDevice = 2; // the further output
constexpr int32_t kSecondaryOutput = -1;
constexpr int32_t kSecondaryType = 3;
constexpr uint32_t kClearAtOnce = 1;
constexpr int32_t kClearedChannels = NVRHAL_PLAYBACK_CHANNELS; // whatever N is
constexpr int32_t kMaskBits = 32;

struct OutputSizeRow {
    int32_t width, height; // output pixels; a height of 0 = any
    uint32_t output_value; // for enNorm_vga
};

// The first row that fits counts.
constexpr OutputSizeRow kOutputSizes[] = {
    {720, 576, 7}, {720, 0, 6}, {800, 0, 18}, {1024, 0, 19}, {1280, 1024, 20}, {1280, 0, 9}, {1440, 0, 22},
};
constexpr uint32_t kOtherOutputValue = 20; // 1920 x 1080 too

uint32_t output_value_of(int32_t width, int32_t height)
{
    for (const OutputSizeRow &row : kOutputSizes)
        if (row.width == width && (row.height == 0 || row.height == height)) return row.output_value;
    return kOtherOutputValue;
}

/** Drop a port's waiting pictures. The text names another call; log searches rely on it as it is. */
void clear_port(int32_t dev, uint32_t port)
{
    log_negative(MI_DISP_ClearInputPortBuffer(dev, port, kClearAtOnce),
                 log_text("File:%s,Line:%d    MI_VDEC_ReleaseUserData exe error [%d]\n", kSource, __LINE__,
                          failed_code));
}

bool is_live(uint32_t channel)
{
    const int32_t count = camera_count();
    return count > 0 && channel < static_cast<uint32_t>(count);
}

/** Take the further output down and give its decoders back to the main output. */
void leave_further_output()
{
    const int32_t count = camera_count();
    for (int32_t channel = 0; channel < count; ++channel)
        vo_unbind_vi(kRecordDevice, static_cast<uint32_t>(channel));
    log_failure(vo_stop_chn(kRecordDevice, count), log_error_line(kSource, "vo_stop_chn failed!"));
    for (int32_t channel = 0; channel < count; ++channel) {
        log_failure(bind_decoder(static_cast<uint32_t>(channel)),
                    log_error(kSource, "vdec(vdch=%d) bind vpss(vpssg=%d) failed!\n", channel, channel));
    }
}

/** Quality values are stored for whoever configures the encoders; nothing here reads them. */
template <uint32_t rows>
void store_quality(StreamAttr (&streams)[rows], uint32_t channel, uint32_t first, uint32_t second,
                   uint32_t third)
{
    if (channel >= rows) return;
    store_word(streams[channel].quality_1, first);
    store_word(streams[channel].quality_2, second);
    store_word(streams[channel].quality_3, third);
}

/** Hue, contrast and saturation share one text, on purpose: it only shows that the call arrived. */
int32_t report_picture_setting(uint32_t channel, uint32_t value)
{
    log_text("SetHuePlus channel %d is %d!!!\n", static_cast<int>(channel), static_cast<int>(value));
    return 0;
}

} // namespace

int32_t ext_change_output_device(const int32_t *type, const int32_t *width, const int32_t *height)
{
    if (type == nullptr || width == nullptr || height == nullptr) return -1;
    store_word(DdvrInputParam.vo_dev_type, *type);
    store_word(DdvrInputParam.gui_width, *width);
    store_word(DdvrInputParam.gui_height, *height);

    int32_t dev = kSecondaryOutput;
    if (*type != kSecondaryType) {
        if (load_word(globalVoDev) == kRecordDevice) leave_further_output();
        dev = kMainDevice;
        store_word(enNorm_vga, output_value_of(*width, *height));
    }
    store_word(globalVoDev, dev);

    fb_uninit();
    if (failed_call(fb_init(static_cast<uint32_t>(dev), *width, *height),
                    log_code(kSource, "fb_init err %d!\n")))
        return -1;
    return 0;
}

int32_t ext_clear_disp(void)
{
    for (int32_t channel = 0; channel < kClearedChannels; ++channel) {
        const uint32_t index = static_cast<uint32_t>(channel);
        vdec_resetchn(index); // first: no picture may follow the clearing
        MI_DISP_ClearInputPortBuffer(load_word(globalVoDev), index, kClearAtOnce);
    }
    return 0;
}

int32_t ext_vo_buffer_clear2(uint32_t channel)
{
    clear_port(load_word(globalVoDev), channel - 1); // channel 0 asks for port -1: the display refuses it
    return 0;
}

int32_t ext_vo_buffer_clear3(uint32_t channel, uint32_t mode)
{
    if (!is_live(channel) || load_word(vo_for_ezoom) != 0 || load_word(playback_status) == 1) return 0;
    const int32_t dev = load_word(globalVoDev);
    if (mode == 1) clear_port(dev, channel);
    vdec_resetchn(static_cast<uint32_t>(dev)); // the device's number, on purpose, not the channel's
    return 0;
}

int32_t ext_vo_buffer_create1(uint32_t channel)
{
    if (is_live(channel)) vo_bind_vpss(kMainDevice, channel, channel, 0);
    return 0;
}

int32_t ext_vo_buffer_create2(uint32_t channel)
{
    if (!is_live(channel)) return 0;
    vo_bind_vpss(kMainDevice, channel, static_cast<uint32_t>(camera_count()) + 1, 0);
    log_text("[%s:%d]-debug-vo_bind_vpss chnn:%d \n", kSource, __LINE__, static_cast<int>(channel));
    return 0;
}

int32_t ext_record_enable(uint32_t channel, uint32_t enable)
{
    if (enable != 0) {
        vo_bind_vpss(kRecordDevice, channel, channel, 0);
        return 0;
    }
    log_failure(vo_unbind_vpss(kRecordDevice, channel, channel, 0),
                log_error_line(kSource, "vo_unbind_vpss failed!"));
    clear_port(kRecordDevice, channel);
    return 0;
}

int32_t ext_get_video_loss_status(uint32_t mask[2])
{
    if (mask == nullptr) return -1;
    mask[0] = 0;
    mask[1] = 0;
    const int32_t count = camera_count();
    for (int32_t channel = 0; channel < count; ++channel) {
        AdVideoLoss loss = {static_cast<uint32_t>(channel) / AD_INPUTS_PER_CHIP,
                            static_cast<uint32_t>(channel) % AD_INPUTS_PER_CHIP, 0};
        if (failed_call(ad_get_loss(&loss), log_error_line(kSource, "ad_get_loss Failed!!"))) return -1;
        if (loss.lost == 0 || channel >= kMaskBits) continue;
        mask[0] |= 1u << channel;
        // The bit is a signed 32-bit value that is widened to 64: channel 31's sign fills the word.
        if (channel == kMaskBits - 1) mask[1] = UINT32_MAX;
    }
    return 0;
}

int32_t ext_change_local_img_quality(uint32_t channel, uint32_t first, uint32_t second, uint32_t third)
{
    store_quality(major_stream, channel, first, second, third);
    return 0;
}

int32_t ext_change_net_img_quality(uint32_t channel, uint32_t first, uint32_t second, uint32_t third)
{
    store_quality(minor_stream, channel, first, second, third);
    return 0;
}

int32_t ext_change_net_video_size(uint32_t channel, uint32_t size)
{
    constexpr uint32_t kSizeCodes = sizeof DdvrInputParam.net_video_size / sizeof(uint32_t);
    constexpr uint32_t kNetStreams = sizeof minor_stream / sizeof minor_stream[0];
    if (channel < kSizeCodes) store_word(DdvrInputParam.net_video_size[channel], size);
    if (channel >= kNetStreams) return 0;
    StreamAttr &stream = minor_stream[channel];
    store_word(stream.size_class, 1); // 640 x 360, whatever the size code says, on purpose
    store_word(stream.width, 640);
    store_word(stream.height, 360);
    return 0;
}

int32_t ext_set_voutdev_hue(uint32_t channel, uint32_t value)
{
    return report_picture_setting(channel, value);
}

int32_t ext_set_voutdev_contrast(uint32_t channel, uint32_t value)
{
    return report_picture_setting(channel, value);
}

int32_t ext_set_voutdev_saturation(uint32_t channel, uint32_t value)
{
    return report_picture_setting(channel, value);
}
