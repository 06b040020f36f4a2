/*
 * Audio output and talkback switches: device 3, channel 0, with the platform's A-law decoder and
 * 8 to 48 kHz resampler in front.
 *
 *   off (0) <-> live (1): ext_set_audio_live_channel, ext_set_audio_output_volume
 *   any -> playback (2): playback start; -> live (1): playback stop
 *   any -> talkback (3): ext_audio_speek_start; -> off (0): ext_audio_speek_stop
 *
 * audio_ctrl and speak_flag are whole words, written from the caller's thread and read by the
 * playback thread without a lock.
 */
#include "audio/audio.h"

#include "board_io.h"
#include "core/abi.h"
#include "core/checked_call.h"
#include "core/device_state.h"
#include "core/log.h"
#include "mi_ao.h"

using namespace nvrhal;

ABI_SIZE(AudioCtrl, 52);
ABI_AT(AudioCtrl, enabled, 12);
ABI_AT(AudioCtrl, chn_num, 32);
ABI32_SIZE(MI_AO_Frame, 168);
ABI32_AT(MI_AO_Frame, data, 8);
ABI32_AT(MI_AO_Frame, length_bytes, 84);

// Written by the mode changes of this file and by playback, read by playback.
AudioCtrl audio_ctrl;

// Written by the talkback switches, read by the application.
uint32_t speak_flag;

// Lent to the application by playback.
uint8_t nvrhal::pu8Buf[kPlaybackBufferBytes];
uint32_t nvrhal::u32BufLen;

namespace
{

constexpr char kSource[] = "audio.c";

constexpr uint32_t kOutputRateHz = 48000;
constexpr uint32_t kInputRateHz = NVRHAL_SOUND_RATE_HZ;
constexpr uint32_t kSamplesPerFrame = 2048;
constexpr uint32_t kHdmiAudioDevice = 5;
constexpr uint32_t kVolumeSpanDb = 90;
constexpr uint32_t kFullVolume = 100;
constexpr int32_t kSilenceDb = -60;
constexpr uint32_t kTalkbackDrainUs = 1000000;
constexpr int32_t kWaitForEver = -1;

constexpr uint32_t kHighestPayload = 2;
constexpr uint32_t kForcedModePayload = 2;
constexpr uint32_t kForcedMode = 3;

// Reserved words of the talkback capture that this board does not have.
[[gnu::used]] uint8_t *pu8AudioStream;
[[gnu::used]] void *pstAi;
[[gnu::used]] uint32_t u32ReadLen;

uint32_t boot_audio_format; // stored for the application, read by nobody here

const MI_AO_PubAttr kOutput = {
    .sample_rate = kOutputRateHz,
    .bit_width = 0,
    .work_mode = 0,
    .sound_mode = 0,
    .frame_count = 0,
    .samples_per_frame = kSamplesPerFrame,
    .channels = 1,
    .codec_channels = 0,
};

const MI_AO_AdecAttr kDecoder = {.codec = MI_AO_CODEC_G711A, .sample_rate = kOutputRateHz, .sound_mode = 0};

void reset_mode_words()
{
    store_word(audio_ctrl.reset_1, 0);
    store_word(audio_ctrl.reset_2, 0);
    store_word(audio_ctrl.enabled, 1);
    store_word(audio_ctrl.reset_4, 0);
}

} // namespace

void nvrhal::set_audio_use(AudioUse use)
{
    reset_mode_words();
    store_word(audio_ctrl.mode, use);
}

void nvrhal::send_audio_frames(const uint8_t *block, uint32_t frames, const char *source, int line)
{
    for (uint32_t i = 0; i < frames; ++i) {
        MI_AO_Frame frame = {};
        frame.data[0] = block + kAudioHeaderBytes + i * kAudioFrameBytes;
        frame.length_bytes = kAudioFrameBytes;
        log_failure(MI_AO_SendFrame(kAudioDevice, kAudioChannel, &frame, kWaitForEver),
                    log_text("[%s]-%d: MI_AO_SendFrame fail=0x%x\n", source, line, failed_code));
    }
}

int32_t audio_init(void)
{
    log_entry(kSource);
    if (failed_call(MI_AO_SetPubAttr(kAudioDevice, &kOutput),
                    log_code(kSource, "MI_AO_SetPubAttr faile =0x%x\n")))
        return -1;
    if (failed_call(MI_AO_Enable(kAudioDevice), log_code(kSource, "MI_AO_Enable faile =0x%x\n"))) return -1;
    if (failed_call(MI_AO_EnableChn(kAudioDevice, kAudioChannel),
                    log_code(kSource, "MI_AO_EnableChn faile =0x%x\n")))
        return -1;
    if (failed_call(MI_AO_SetAdecAttr(kAudioDevice, kAudioChannel, &kDecoder),
                    log_code(kSource, "MI_AO_SetAdecAttr faile =0x%x\n")))
        return -1;
    if (failed_call(MI_AO_EnableAdec(kAudioDevice, kAudioChannel),
                    log_code(kSource, "MI_AO_EnableAdec faile =0x%x\n")))
        return -1;
    if (failed_call(MI_AO_EnableReSmp(kAudioDevice, kAudioChannel, kInputRateHz),
                    log_code(kSource, "MI_AO_EnableReSmp faile =0x%x\n")))
        return -1;
    set_audio_use(AUDIO_USE_OFF);
    for (uint32_t &word : audio_ctrl.zero_5)
        store_word(word, 0);
    for (uint32_t &word : audio_ctrl.zero_9)
        store_word(word, 0);
    store_word(audio_ctrl.chn_num, camera_count());
    return 0;
}

int32_t audio_start_ao(uint32_t device, uint32_t, const MI_AO_PubAttr *attr)
{
    log_entry(kSource);
    if (device == kHdmiAudioDevice) audio_start_hdmi();
    if (MI_AO_SetPubAttr(device, attr) != 0) return -1;
    return MI_AO_Enable(device) == 0 ? 0 : -1;
}

int32_t audio_create_adec_chn(uint32_t device, uint32_t channel, uint32_t payload_type, uint32_t mode)
{
    log_entry(kSource);
    if (payload_type > kHighestPayload) {
        log_text("%s: invalid aenc payload type:%d\n", __func__, static_cast<int>(payload_type));
        return -1;
    }
    const MI_AO_AdecAttr attr = {
        .codec = payload_type,
        .sample_rate = kOutputRateHz,
        .sound_mode = payload_type == kForcedModePayload ? kForcedMode : mode,
    };
    const int32_t set = MI_AO_SetAdecAttr(device, channel, &attr);
    return set != 0 ? set : MI_AO_EnableAdec(device, channel);
}

int32_t ext_set_audio_live_channel(int32_t open, int32_t channel)
{
    log_entry(kSource);
    reset_mode_words();
    log_text("ipc_audio_debug:%s %d iChl=%d bOpen=%d\n", __func__, __LINE__, channel, open);
    MI_AO_SetMute(kAudioDevice, open == 0 ? 1 : 0);
    store_word(audio_ctrl.mode, open != 0 ? AUDIO_USE_LIVE : AUDIO_USE_OFF);
    return 0;
}

int32_t ext_set_audio_output_volume(uint32_t volume)
{
    log_entry(kSource);
    // Unsigned on purpose: a volume far beyond 100 wraps, nothing is limited.
    const int32_t level_db = static_cast<int32_t>(kVolumeSpanDb * volume / kFullVolume) + kSilenceDb;
    log_text("readvolume=%d\n", level_db);
    if (failed_call(MI_AO_SetVolume(kAudioDevice, level_db),
                    log_code(kSource, "MI_AO_SetVolume] err 0x%x\n")))
        return -1;
    store_word(audio_ctrl.mode, volume == 0 ? AUDIO_USE_OFF : AUDIO_USE_LIVE);
    return 0;
}

int32_t ext_audio_speek_start(void)
{
    log_entry(kSource);
    store_word(speak_flag, 1);
    set_audio_use(AUDIO_USE_TALKBACK);
    return 0;
}

int32_t ext_audio_speek_stop(void)
{
    log_entry(kSource);
    store_word(speak_flag, 0);
    board_sleep_us(kTalkbackDrainUs); // time to play what the far end has sent
    store_word(audio_ctrl.mode, AUDIO_USE_OFF);
    return 0;
}

int32_t ext_change_boot_audio_format(uint32_t format)
{
    log_entry(kSource);
    store_word(boot_audio_format, format);
    return 0;
}

// This board has no audio capture, and its output is never switched off.
#define AUDIO_STUB(name)                                                                                     \
    int name(...)                                                                                            \
    {                                                                                                        \
        log_entry(kSource);                                                                                  \
        return 0;                                                                                            \
    }

AUDIO_STUB(audio_aenc_proc)
AUDIO_STUB(audio_ai_proc)
AUDIO_STUB(audio_enable_ai)
AUDIO_STUB(audio_stop_ao)
AUDIO_STUB(audio_ao_bind_adec)
AUDIO_STUB(audio_ao_unbind_adec)
AUDIO_STUB(audio_deinit)
AUDIO_STUB(ext_audio_speek_get_buf)
AUDIO_STUB(ext_release_audio_speek_buf)
AUDIO_STUB(ext_set_audio_input_volume)

void audio_start_hdmi(...)
{
    log_entry(kSource);
}

int32_t audio_stop_hdmi(int32_t argument)
{
    log_entry(kSource);
    return argument;
}
