/*
 * Snapshots: one JPEG of one channel, 352 x 288.
 *
 *   disabled -> ext_set_snap_channel_enable -> enabled, for good
 *
 * Each snapshot builds decoder -> scaler -> encoder, fetches one picture and takes the pipeline down
 * again; nothing lasts but the caller's buffer. In live view the channel's own decoder is tapped.
 * During playback that decoder shows a recording, so live intake feeds the snapped channel to the
 * spare decoder N, which is rebuilt first and stopped afterwards.
 *
 * Synchronous, on the caller's thread; one at a time, for all use scaler channel 0. cur_snap_chnn is
 * read by live intake on other threads.
 */
#include <cstdlib>

#include "core/checked_call.h"
#include "core/device_state.h"
#include "core/log.h"
#include "core/selection_state.h"
#include "mi_vdec.h"
#include "snap/snap_pipeline.h"

using namespace nvrhal;

namespace
{

constexpr uint32_t kKeyFrame = 1;

int snap_en; // 1 once snapshots are allowed; the application's thread sets it, snapshots read it

/** Give the spare decoder a fresh start, whatever it decoded before. 0 or the platform's code. */
int32_t rebuild_decoder(uint32_t channel)
{
    const int chn = static_cast<int>(channel);
    log_failure(MI_VDEC_StopChn(channel),
                log_error(kSnapSource, "MI_VDEC_StopChn failed errno 0x%x,chnid:%d \n", failed_code, chn));
    MI_VDEC_ChnAttr attr = {};
    log_failure(MI_VDEC_GetChnAttr(channel, &attr),
                log_error(kSnapSource, "MI_VDEC_GetChnAttr failed errno 0x%x,chnid:%d \n", failed_code, chn));
    log_failure(MI_VDEC_DestroyChn(channel),
                log_error(kSnapSource, "MI_VDEC_DestroyChn failed errno 0x%x,chnid:%d \n", failed_code, chn));
    if (const int32_t code = failed_call(
            MI_VDEC_CreateChn(channel, &attr),
            log_error(kSnapSource, "MI_VDEC_CreateChn failed errno 0x%x,chnid:%d \n", failed_code, chn)))
        return code;
    return failed_call( // the text names the creation, on purpose
        MI_VDEC_StartChn(channel),
        log_error(kSnapSource, "MI_VDEC_CreateChn failed errno 0x%x,chnid:%d \n", failed_code, chn));
}

} // namespace

int32_t ext_set_snap_channel_enable(void)
{
    log_entry(kSnapSource);
    store_word(snap_en, 1);
    return 0;
}

int32_t ext_get_jpeg_stream(FrameInfo *frame)
{
    log_entry(kSnapSource);
    if (load_word(snap_en) == 0) return 0;
    if (frame == nullptr) return -1;

    const uint32_t channel = frame->channel; // the encoder channel too
    store_word(cur_snap_chnn, channel);
    const bool in_playback = load_word(playback_status) == 1;
    const uint32_t decoder = in_playback ? static_cast<uint32_t>(camera_count()) : channel;
    if (in_playback) {
        const int32_t rebuilt = rebuild_decoder(decoder);
        if (rebuilt != 0) return rebuilt; // cur_snap_chnn stays: intake goes on feeding that channel
    }

    SnapSize size = {};
    if (failed_call(venc_snap_start(decoder, channel, &size),
                    log_code(kSnapSource, "venc_snap_start fail=%d\n"))) {
        venc_snap_stop(decoder, channel);
        return -1;
    }
    frame->frame_type = kKeyFrame;
    frame->width = size.width;
    frame->height = size.height;
    log_text("pFrameInfo->width=%ld,%ld\n", static_cast<long>(size.width), static_cast<long>(size.height));

    const int32_t fetched = venc_snap_process(channel, frame);
    venc_snap_stop(decoder, channel);
    store_word(cur_snap_chnn, kNoSnapChannel);

    if (in_playback) // the stop's result stands for the fetch's, too
        return failed_call(MI_VDEC_StopChn(decoder),
                           log_code(kSnapSource, "MI_VDEC_StartChn failed errno 0x%x \n"));
    if (failed_call(fetched, log_error(kSnapSource, "venc_snap_process[%d] err 0x%x\n",
                                       static_cast<int>(channel), failed_code)))
        return -1;
    return 0;
}

int32_t ext_release_jpeg_buf(FrameInfo *frame)
{
    log_entry(kSnapSource);
    if (frame == nullptr) return 0;
    if (frame->data != nullptr) {
        std::free(frame->data);
        frame->data = nullptr;
    }
    return 0;
}
