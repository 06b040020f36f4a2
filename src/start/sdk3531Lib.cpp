/*
 * Device lifecycle: the library's front door.
 *
 *   unstarted -> ext_device_init -> running -> ext_device_quit -> running, display detached
 *
 * Start-up is one fixed order, because each stage needs what came before it: the pools need only
 * memory; decoders and display need the media system; the display reads the decoders' output
 * sizes; the framebuffer lies over the display; GPIO and watchdog come last so that a recorder that
 * cannot show pictures is not kept alive. The first failing stage ends start-up and nothing is
 * rolled back; only the watchdog may fail. UI thread.
 */
#include "board_io.h"
#include "core/checked_call.h"
#include "core/device_state.h"
#include "core/log.h"
#include "mi_disp.h"
#include "mi_sys.h"
#include "start/lifecycle.h"
#include "view/layout_state.h"

#include <cstring>
#include <fcntl.h>

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "sdk3531Lib.c";

constexpr int32_t kNoLocalOutput = 3; // DeviceParams::vo_dev_type
constexpr uint32_t kVideoFormat = 11;
constexpr uint32_t kFrameRate = 30;
constexpr uint32_t kStartCodec = NVRHAL_CODEC_H265; // of every decoder
constexpr uint64_t kPtsBase = 0xF1237890F1237890;
constexpr uint64_t kPtsSync = 0xE1237890E1237890;
constexpr int kFramebufferNodes = 4;
constexpr StreamAttr kMainStreamDefaults = {
    .unread_0 = {},
    .size_class = 5,
    .width = 960,
    .height = 576,
    .frame_rate = kFrameRate,
    .quality_1 = 0,
    .encode_mode = 1,
    .quality_2 = 0,
    .quality_3 = 0,
    .format = kVideoFormat,
};

constexpr StreamRingSizes kSubPool = {.max_frame_len = NVRHAL_SUB_FRAME_BYTES,
                                      .data_size = NVRHAL_SUB_RING_BYTES,
                                      .index_num = NVRHAL_SUB_RING_FRAMES};
constexpr StreamRingSizes kMainPool = {.max_frame_len = NVRHAL_MAIN_FRAME_BYTES,
                                       .data_size = NVRHAL_MAIN_RING_BYTES,
                                       .index_num = NVRHAL_MAIN_RING_FRAMES};
constexpr StreamRingSizes kAudioPool = {.max_frame_len = NVRHAL_AUDIO_FRAME_BYTES,
                                        .data_size = NVRHAL_AUDIO_RING_BYTES,
                                        .index_num = NVRHAL_AUDIO_RING_FRAMES};

// Sizes of the three pools, written at start-up.
StreamPoolConfig stream_param_sub;
StreamPoolConfig stream_param_mian;
StreamPoolConfig stream_param_audio;

struct GuiTimingRow {
    int32_t gui_width; // pixels
    uint32_t timing_code;
};

// A GUI of 800 pixels gets the 1024 x 768 output; whatever is not listed gets 1920 x 1080.
constexpr GuiTimingRow kGuiTimings[] = {{800, 8}, {1024, 8}, {1280, 7}, {1440, 6}};
constexpr int32_t kSmallestGui = 800;
constexpr uint32_t kFullHdTiming = 4;

uint32_t timing_for_gui(int32_t gui_width)
{
    if (gui_width == kSmallestGui) log_text("voput out at %d,%s!\n", __LINE__, kSource);
    for (const GuiTimingRow &row : kGuiTimings)
        if (row.gui_width == gui_width) return row.timing_code;
    return kFullHdTiming;
}

/** How many of a table's channels a loop over N cameras may touch. */
template <typename Row, int32_t rows> int32_t within(const Row (&)[rows], int32_t count)
{
    return count < rows ? count : rows;
}

void set_stream_defaults(int32_t count)
{
    for (int32_t channel = 0; channel < within(major_stream, count); ++channel) {
        StreamAttr &attr = major_stream[channel];
        store_word(attr.size_class, kMainStreamDefaults.size_class);
        store_word(attr.width, kMainStreamDefaults.width);
        store_word(attr.height, kMainStreamDefaults.height);
        store_word(attr.frame_rate, kMainStreamDefaults.frame_rate);
        store_word(attr.encode_mode, kMainStreamDefaults.encode_mode);
        store_word(attr.format, kMainStreamDefaults.format);
    }
}

void set_pool_sizes(StreamPoolConfig &config, const StreamRingSizes &sizes, int32_t count)
{
    for (int32_t channel = 0; channel < within(config.channels, count); ++channel)
        config.channels[channel] = sizes;
    config.channel_count = count;
}

/** Initialise the pools in the order sub, main, audio. The first negative result, else 0. */
int32_t init_pools()
{
    const struct {
        const StreamPoolConfig &config;
        int32_t kind;
    } pools[] = {
        {stream_param_sub, STREAM_POOL_SUB},
        {stream_param_mian, STREAM_POOL_MAIN},
        {stream_param_audio, STREAM_POOL_AUDIO},
    };
    for (const auto &pool : pools) {
        const int32_t result = kx_stream_init_avstream(&pool.config, pool.kind);
        if (result < 0) return result;
    }
    return 0;
}

} // namespace

int32_t ext_device_init(const DeviceParams *params)
{
    if (params == nullptr) return -1;
    clear_saved_layouts();
    std::memmove(&DdvrInputParam, params, sizeof DdvrInputParam); // it may be that very record
    if (DdvrInputParam.vo_dev_type == kNoLocalOutput) {
        store_word(globalVoDev, -1);
    } else {
        store_word(globalVoDev, 0);
        store_word(enNorm_vga, timing_for_gui(DdvrInputParam.gui_width));
    }
    if (failed_call(sdk_init(params), log_code(kSource, "system init failed with %d!\n"))) return -1;
    return 0;
}

int32_t nvrhal::sdk_init(const DeviceParams *params)
{
    log_line("sdk_init version:2020-07-21 13:00.");

    const int32_t count = params->vi_chn_num;
    store_word(g_vi_chn_num, count);
    log_text("videoPbChnnNum=%d\n",
             static_cast<int>(load_word(enNorm_vga))); // the text's number is the timing code
    store_word(global_format_e, kVideoFormat);
    store_word(globalFrmRate, kFrameRate);
    store_word(global_videofomat, 0);

    set_stream_defaults(count);
    set_pool_sizes(stream_param_sub, kSubPool, count);
    set_pool_sizes(stream_param_mian, kMainPool, count);
    set_pool_sizes(stream_param_audio, kAudioPool, count);
    log_text("channel count %d\n", count);
    if (failed_call(init_pools(), log_code(kSource, "stream init failed with %d!\n"))) return -1;

    if (failed_call(ST_Sys_Init(params), log_code(kSource, "system init failed with %d!\n"))) return -1;

    if (failed_call(vo_hdmi_start(load_word(enNorm_vga)),
                    log_code(kSource, "vo_hdmi_start failed with %d!\n")))
        return -1;

    log_line("vdec_create"); // the failure's text names the start instead, on purpose
    if (failed_call(vdec_create(kStartCodec, count + 1), log_code(kSource, "vdec_start failed with %d!\n")))
        return -1;

    log_line("start disp");
    if (failed_call(start_disp(count), log_code(kSource, "disp_create failed with %d!\n"))) return -1;

    log_line("vdec bind"); // binds nothing: the first layout does
    if (failed_call(
            fb_init(static_cast<uint32_t>(load_word(globalVoDev)), params->gui_width, params->gui_height),
            log_code(kSource, "fb_init err %d!\n")))
        return -1;

    if (failed_call(audio_init(), log_code(kSource, "audio init err %d!\n"))) return -1;

    if (failed_call(local_gpio_init(), log_code(kSource, "local_gpio_init err %d!\n"))) return -1;

    // A recorder without its watchdog still records.
    log_line(local_wdg_init() != 0 ? "wacthdog init error!!!" : "wacthdog init success!!!");
    log_line("init done!");
    return 0;
}

uint32_t nvrhal::ST_Sys_Init(const void *)
{
    MI_SYS_Version version = {};
    uint64_t pts = 0;

    if (failed_exec(MI_SYS_Init())) return 1;
    if (failed_exec(MI_SYS_GetVersion(&version))) return 1;
    log_text("(%d) u8Version:%.*s\n", __LINE__, static_cast<int>(sizeof version.text), version.text);
    if (failed_exec(MI_SYS_GetCurPts(&pts))) return 1;
    log_text("(%d) u64Pts:0x%llx\n", __LINE__, static_cast<unsigned long long>(pts));
    if (failed_exec(MI_SYS_InitPtsBase(kPtsBase))) return 1;
    if (failed_exec(MI_SYS_SyncPts(kPtsSync))) return 1;
    return 0;
}

int32_t ext_gui_init(void)
{
    if (failed_call(vo_start_init(), log_code(kSource, "gui init failed with %d!\n"))) return -1;
    return 0;
}

int32_t nvrhal::vo_start_init()
{
    if (failed_call(vo_start(0, 0, load_word(globalFrmRate), kVideoFormat, camera_count()),
                    log_code(kSource, "vo_start failed with %x!\n")))
        return -1;

    if (failed_call(vo_hdmi_start(load_word(enNorm_vga)),
                    log_code(kSource, "vo_hdmi_start failed with %d!\n")))
        return -1;

    if (failed_call(fb_init(static_cast<uint32_t>(load_word(globalVoDev)), DdvrInputParam.gui_width,
                            DdvrInputParam.gui_height),
                    log_code(kSource, "fb_init err %d!\n")))
        return -1;

    close_logo();
    return 0;
}

uint32_t nvrhal::close_logo()
{
    for (int index = 0; index < kFramebufferNodes; ++index) {
        char path[] = "/dev/fb0";
        path[sizeof path - 2] = static_cast<char>('0' + index);
        const int descriptor = board_open(path, O_RDWR);
        if (descriptor <= 0) continue;
        log_text("###dev_fb _Open %s suecess\n", path);
        board_close(descriptor);
    }
    return 0;
}

uint32_t ext_device_quit(void)
{
    const int32_t count = camera_count();
    for (int32_t channel = 0; channel < count; ++channel) {
        const uint32_t index = static_cast<uint32_t>(channel);
        vo_unbind_vpss(0, index, index, 0);
        // The text names another call; log searches rely on it as it is.
        log_negative(MI_DISP_ClearInputPortBuffer(0, index, 1),
                     log_text("File:%s,Line:%d    MI_VDEC_ReleaseUserData exe error [%d]\n", kSource,
                              __LINE__, failed_code));
    }
    return 0;
}
