/*
 * The playback buffer: handed out empty, delivered full, one at a time.
 *
 * ext_playback_get_buf -> the application fills it -> ext_playback_set_buf, which judges it by
 *
 *   length 0 or above the buffer   flush: the channel's port is cleared
 *   kind 1, 8 bytes, 01 01 ..      control buffer: the same, behind the frames that came before
 *   kind 1                         one encoded video frame for decoder channels 0 to 7
 *   kind 2                         4-byte header and 320-byte A-law frames
 *
 * and always takes the payload address back, so that a null address says "free again".
 * Playback thread of the application.
 */
#include "audio/audio.h"
#include "core/checked_call.h"
#include "core/device_state.h"
#include "core/log.h"
#include "core/selection_state.h"
#include "mi_disp.h"
#include "mi_vdec.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "vdec_venc.c";

constexpr int32_t kDropAll = 1;
constexpr uint32_t kPlaybackChannels = NVRHAL_PLAYBACK_CHANNELS;
constexpr uint32_t kControlBytes = 8;
constexpr uint8_t kControlMark = 1; // both of the first two bytes
constexpr uint32_t kDoubleRate = 2;
constexpr int32_t kStandard25 = 1; // of the video standard code; any other means 30
constexpr uint32_t kAudioDivisor = kAudioHeaderBytes + kAudioFrameBytes;

constexpr char kGetRateFailure[] = "File:%s,Line:%d    MI_DISP_GetPubAttr exe error [%d]\n";
constexpr char kSetRateFailure[] = "File:%s,Line:%d    MI_DISP_SetPubAttr exe error [%d]\n";

int32_t flush_port(uint32_t channel)
{
    if (failed_call(
            MI_DISP_ClearInputPortBuffer(load_word(globalVoDev), channel, kDropAll),
            log_text("[%s-%d] Vo fault to clear buffer errno is 0x%x\n", kSource, __LINE__, failed_code)))
        return -1;
    return 1;
}

/**
 * Show double rate at twice the standard's frame rate. Every other mode only reads the attributes
 * and leaves the display as it is: on purpose, a display that has been sped up stays so.
 */
void apply_display_rate(uint32_t mode)
{
    const int32_t dev = load_word(globalVoDev);
    const uint32_t base_rate = local_get_videoformat() == kStandard25 ? 25 : 30;
    MI_DISP_PubAttr attr = {};
    const int32_t got = MI_DISP_GetPubAttr(dev, &attr);
    if (got < 0) log_text(kGetRateFailure, kSource, __LINE__, got);
    if (mode != kDoubleRate) {
        if (got < 0) log_text(kSetRateFailure, kSource, __LINE__, got); // the read's code
        return;
    }
    if (got < 0) attr = {};
    attr.frame_rate = 2 * base_rate;
    log_negative(MI_DISP_SetPubAttr(dev, &attr), log_text(kSetRateFailure, kSource, __LINE__, failed_code));
}

bool is_control_buffer(const FrameInfo &rec)
{
    const uint8_t *bytes = static_cast<const uint8_t *>(rec.data);
    return bytes != nullptr && rec.length == kControlBytes && bytes[0] == kControlMark &&
           bytes[1] == kControlMark;
}

int32_t play_video(const FrameInfo &rec)
{
    apply_display_rate(rec.display_rate); // before any test, also for a frame that is dropped
    if (rec.channel >= kPlaybackChannels) return 0;
    if (is_control_buffer(rec)) {
        // The text names another call; logs are searched for it.
        log_negative(MI_DISP_ClearInputPortBuffer(load_word(globalVoDev), rec.channel, kDropAll),
                     log_text("File:%s,Line:%d    MI_VDEC_ReleaseUserData exe error [%d]\n", kSource,
                              __LINE__, failed_code));
        return 0;
    }

    MI_VDEC_Stream stream = {};
    stream.address = static_cast<const uint8_t *>(rec.data);
    stream.length_bytes = rec.length;
    stream.pts = rec.pts;
    if (vdec_send_stream(rec.channel, &stream) != 0) return -1;
    MI_VDEC_ChnStat stat = {};
    MI_VDEC_GetChnStat(rec.channel, &stat); // result unused
    return 0;
}

int32_t play_audio(const FrameInfo &rec)
{
    if (load_word(audio_ctrl.mode) == AUDIO_USE_OFF) return -1;
    if (rec.data == nullptr) return 0;
    // Divided by header and frame together on purpose, unlike live blocks: 644 bytes give one frame.
    send_audio_frames(static_cast<const uint8_t *>(rec.data), rec.length / kAudioDivisor, kSource);
    return 0;
}

int32_t deliver(const FrameInfo &rec)
{
    if (rec.length - 1 >= kPlaybackBufferBytes) return flush_port(rec.channel); // 0 wraps
    switch (rec.media) {
    case FRAME_MEDIA_NONE: return 0;
    case FRAME_MEDIA_VIDEO: return play_video(rec);
    case FRAME_MEDIA_AUDIO: return play_audio(rec);
    default: return -1;
    }
}

} // namespace

int32_t ext_playback_get_buf(FrameInfo *rec)
{
    if (rec == nullptr) return -1;
    rec->length = kPlaybackBufferBytes;
    rec->data = pu8Buf;
    u32BufLen = kPlaybackBufferBytes;
    return 0;
}

int32_t ext_playback_set_buf(FrameInfo *rec)
{
    if (rec == nullptr) return -1;
    const int32_t result = deliver(*rec);
    rec->data = nullptr; // whatever became of it, the buffer is free again
    return result;
}

int32_t local_get_videoformat(void)
{
    return static_cast<int32_t>(load_word(global_videofomat));
}
