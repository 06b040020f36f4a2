/*
 * Playback: the display changes hands between live view and recorded video.
 *
 *   live (0) -> ext_playback_start -> playback (1), also when the start fails half way
 *   playback (1) -> ext_playback_exit -> live (0); the application then applies a layout
 *
 * The decoders stay as they are: only what is queued in them and what their display ports show is
 * dropped, so that no picture of one mode is seen in the other. Playback thread of the application;
 * playback_status and cur_display_chnn are read by live intake without a lock.
 */
#include "audio/audio.h"
#include "board_io.h"
#include "core/checked_call.h"
#include "core/decoder.h"
#include "core/device_state.h"
#include "core/log.h"
#include "core/selection_state.h"
#include "mi_disp.h"
#include "mi_vdec.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "vdec_venc.c";

constexpr int32_t kMainDevice = 0;
constexpr int32_t kDropAll = 1; // clear a port's queued pictures and the one on screen
constexpr int kDrainAttempts = 10;
constexpr uint32_t kDrainPollUs = 10000;

// The display port of each decoder channel during playback. Playback thread only.
uint32_t playback_chn[kPaneChannels];

/** Live channels that have a playback_chn entry. */
uint32_t live_channels()
{
    const int32_t count = camera_count();
    if (count < 0) return 0;
    const uint32_t channels = static_cast<uint32_t>(count);
    return channels < kPaneChannels ? channels : kPaneChannels;
}

/** Bind every decoder channel that plays on a display port. Failures are printed. */
void bind_players(uint32_t port)
{
    const int32_t decoders = load_word(vdec_chnn); // counts the spare one, which has no entry
    for (uint32_t i = 0; i < live_channels() && static_cast<int32_t>(i) < decoders; ++i) {
        if (playback_chn[i] != port) continue;
        log_failure(vo_bind_vpss(kMainDevice, port, i, 0),
                    log_text("[%s-%d] Vo:%d fault to bind vpss:%d errno is 0x%x\n", kSource, __LINE__,
                             static_cast<int>(port), static_cast<int>(i), failed_code));
    }
}

/** Give one display port to its playback decoder, showing nothing. False: it could not be bound. */
bool take_over_port(uint32_t channel)
{
    const int chn = static_cast<int>(channel);
    log_failure(vo_unbind_vpss(kMainDevice, channel, channel, 0),
                log_text("[%s-%d] Vo fault to unbind vpss errno is 0x%x\n", kSource, __LINE__, failed_code));
    if (failed_call(
            vo_bind_vpss(kMainDevice, channel, channel, 0),
            log_text("[%s-%d] Vo fault to bind vpss errno is 0x%x\n", kSource, __LINE__, failed_code)))
        return false;
    log_text("[%s-%d] Vo :%d sucess to bind vpss:%d \n", kSource, __LINE__, chn, chn);
    MI_DISP_ClearInputPortBuffer(load_word(globalVoDev), channel, kDropAll);
    vo_unbind_vpss(kMainDevice, channel, channel, 0);
    bind_players(channel);
    return true;
}

/**
 * Wait, about 100 ms at most, until a channel's decoder has consumed what was sent, its port dark
 * meanwhile; then flush it.
 */
void drain_channel(uint32_t channel)
{
    for (int attempt = 0; attempt < kDrainAttempts; ++attempt) {
        MI_DISP_ClearInputPortBuffer(load_word(globalVoDev), channel, kDropAll);
        MI_VDEC_ChnStat stat = {};
        if (failed_call(
                MI_VDEC_GetChnStat(channel, &stat),
                log_text("[%s-%d] MI_VDEC_GetChnStat errno is 0x%x\n", kSource, __LINE__, failed_code)))
            continue;
        if (stat.left_stream_bytes == 0) break;
        board_sleep_us(kDrainPollUs);
    }
    MI_DISP_ClearInputPortBuffer(load_word(globalVoDev), channel, kDropAll);
    re_create_vdec(channel);
}

} // namespace

int32_t ext_playback_start(uint32_t chnn_bits, int32_t signal_split_mode)
{
    store_word(playback_status, 1);
    set_audio_use(AUDIO_USE_PLAYBACK);
    log_text(
        "------------ext_playback_start------------ChnnBits %lu %x playback_start---SignalSpitMode:%d \n",
        static_cast<unsigned long>(chnn_bits), static_cast<unsigned>(chnn_bits), signal_split_mode);

    for (uint32_t channel = 0; channel < live_channels(); ++channel)
        playback_chn[channel] = channel;
    for (uint32_t channel = 0; channel < live_channels(); ++channel)
        if (!take_over_port(channel)) return -1; // playback_status stays: live frames stay out
    vdec_resetallchn();                          // last: no live picture may be left queued
    return 0;
}

int32_t ext_playback_stop(void)
{
    set_audio_use(AUDIO_USE_LIVE);
    return 0;
}

int32_t ext_playback_exit(void)
{
    store_word(playback_status, 0);
    vdec_resetallchn();
    store_word(cur_display_chnn, kAllChannelsShown);
    for (uint32_t channel = 0; channel < live_channels(); ++channel) {
        MI_DISP_ClearInputPortBuffer(load_word(globalVoDev), channel, kDropAll);
        log_text("MI_DISP_ClearInputPortBuffer###chn=%d\n", static_cast<int>(channel));
        playback_chn[channel] = 0;
    }
    return 0;
}

int32_t ext_playback_disable_channel(uint32_t channel)
{
    log_line("DISENABLE");
    const int32_t disabled = MI_DISP_DisableInputPort(kMainDevice, channel);
    if (disabled == 0) return 0;
    // The result is the length of the text, on purpose: callers only test for 0.
    return log_text("[%s-%d] Vo fault to unbind vpss errno is 0x%x\n", kSource, __LINE__,
                    static_cast<unsigned>(disabled));
}

int32_t ext_signal_spilt_start(uint32_t channel)
{
    drain_channel(channel);
    return 0;
}

int32_t ext_signal_spilt_exit(uint32_t channel)
{
    drain_channel(channel);
    return 0;
}

int32_t ext_resetplaychn(void)
{
    return vdec_resetallchn();
}

int32_t ext_stopplaychn(void)
{
    vdec_stopalldecchn();
    return 0;
}

int ext_playback_set_pause_flag(...)
{
    return 0; // pausing is the application's: it stops delivering
}
