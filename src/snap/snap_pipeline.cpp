/*
 * The snapshot's pipeline: decoder channel -> scaler channel 0 -> JPEG encoder channel.
 *
 * It is built from the end towards the source: the decoder is bound last, so that the first picture
 * it delivers finds everything running. A step that fails leaves the earlier ones standing;
 * venc_snap_stop takes down whatever there is. Caller's thread.
 */
#include "snap/snap_pipeline.h"

#include "core/checked_call.h"
#include "core/log.h"
#include "core/selection_state.h"
#include "mi_divp.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mi_venc.h"

using namespace nvrhal;

namespace
{

constexpr uint32_t kScalerChannel = 0;
constexpr uint32_t kScalerPort = 0;
constexpr uint32_t kBindFrameRate = 10; // equal on both sides: every picture passes
constexpr uint32_t kQuality = 50;
constexpr uint32_t kRestartRows = 6;
constexpr uint32_t kUserDepth = 0;
constexpr uint32_t kQueueDepth = 3;
constexpr int32_t kPictureTooSmall = 31;

constexpr MI_SYS_ChnPort kScaler = {MI_MODULE_DIVP, 0, kScalerChannel, kScalerPort};

MI_SYS_ChnPort decoder_port(uint32_t channel)
{
    return {MI_MODULE_VDEC, 0, channel, 0};
}

MI_SYS_ChnPort encoder_port(uint32_t device, uint32_t channel)
{
    return {MI_MODULE_VENC, device, channel, 0};
}

/** Scaler channel 0 for pictures up to the decoder's size, down to the snapshot's. True = failed. */
bool scaler_failed(const MI_VDEC_ChnAttr &source, uint32_t width, uint32_t height)
{
    MI_DIVP_ChnAttr attr = {}; // no crop: the whole picture
    attr.max_width = source.max_width;
    attr.max_height = source.max_height;
    if (failed_call(MI_DIVP_CreateChn(kScalerChannel, &attr),
                    log_code(kSnapSource, "MI_DIVP_CreateChn fail=0x%x\n")))
        return true;

    MI_DIVP_OutputPortAttr output = {};
    if (failed_call(MI_DIVP_GetOutputPortAttr(kScalerChannel, kScalerPort, &output),
                    log_code(kSnapSource, "MI_DIVP_GetOutputPortAttr fail=0x%x\n")))
        return true;
    output.width = width;
    output.height = height;
    output.pixel_format = MI_PIXEL_YUV420_SEMIPLANAR;
    output.compression = 0;
    return failed_call(MI_DIVP_SetOutputPortAttr(kScalerChannel, kScalerPort, &output),
                       log_code(kSnapSource, "MI_DIVP_SetOutputPortAttr fail=0x%x\n"));
}

/** The JPEG encoder. True = failed. */
bool encoder_failed(uint32_t channel, uint32_t width, uint32_t height)
{
    MI_VENC_ChnAttr attr = {};
    attr.codec = MI_VENC_CODEC_JPEG;
    attr.max_width = attr.width = width;
    attr.max_height = attr.height = height;
    attr.stream_buffer_bytes = whole_macroblocks(width) * whole_macroblocks(height);
    attr.by_frame = 1;
    attr.restart_rows = kRestartRows;
    if (failed_call(MI_VENC_CreateChn(channel, &attr),
                    log_code(kSnapSource, "MI_VENC_CreateChn fail=0x%x\n")))
        return true;

    MI_VENC_JpegParam param = {};
    if (failed_call(MI_VENC_GetJpegParam(channel, &param),
                    log_code(kSnapSource, "MI_VENC_GetJpegParam fail=0x%x\n")))
        return true;
    param.quality = kQuality;
    return failed_call(MI_VENC_SetJpegParam(channel, &param),
                       log_code(kSnapSource, "MI_VENC_SetJpegParam fail=0x%x\n"));
}

/** Queue pictures behind the scaler and send them to the encoder. True = failed. */
bool encoder_binding_failed(uint32_t channel)
{
    if (failed_call(MI_SYS_SetChnOutputPortDepth(&kScaler, kUserDepth, kQueueDepth),
                    log_code(kSnapSource, "MI_SYS_SetChnOutputPortDepth fail=0x%x\n")))
        return true;
    uint32_t device = 0;
    if (failed_call(MI_VENC_GetChnDevid(channel, &device),
                    log_code(kSnapSource, "MI_VENC_GetChnDevid fail=0x%x\n")))
        return true;
    const MI_SYS_ChnPort encoder = encoder_port(device, channel);
    return failed_call(MI_SYS_BindChnPort(&kScaler, &encoder, kBindFrameRate, kBindFrameRate),
                       log_code(kSnapSource, "MI_SYS_BindChnPort fail=0x%x\n"));
}

} // namespace

int32_t venc_snap_start(uint32_t decoder_channel, uint32_t encoder_channel, SnapSize *size)
{
    log_entry(kSnapSource);
    if (size == nullptr) return -1;

    MI_VDEC_ChnAttr source = {};
    if (failed_call(MI_VDEC_GetChnAttr(decoder_channel, &source),
                    log_code(kSnapSource, "MI_VDEC_GetChnAttr fail=0x%x\n")))
        return -1;
    *size = {kSnapWidth, kSnapHeight};
    if (size->width > source.max_width || size->height > source.max_height) {
        log_text("%s %d: not support wh[%d, %d]\n", __func__, __LINE__, static_cast<int>(size->width),
                 static_cast<int>(size->height));
        return kPictureTooSmall;
    }

    const uint32_t width = whole_macroblocks(size->width);
    const uint32_t height = whole_macroblocks(size->height);
    if (scaler_failed(source, width, height)) return -1;
    if (encoder_failed(encoder_channel, width, height)) return -1;
    if (encoder_binding_failed(encoder_channel)) return -1;
    if (failed_call(MI_DIVP_StartChn(kScalerChannel),
                    log_code(kSnapSource, "MI_DIVP_StartChn faild with%#x!\n")))
        return -1;
    const MI_SYS_ChnPort decoder = decoder_port(decoder_channel);
    if (failed_call(MI_SYS_BindChnPort(&decoder, &kScaler, kBindFrameRate, kBindFrameRate),
                    log_code(kSnapSource, "MI_SYS_BindChnPort faild with%#x!\n")))
        return -1;
    return 0;
}

int32_t venc_snap_stop(uint32_t decoder_channel, uint32_t encoder_channel)
{
    log_entry(kSnapSource);
    const int vechn = static_cast<int>(encoder_channel);

    uint32_t device = 0;
    log_failure(MI_VENC_GetChnDevid(encoder_channel, &device),
                log_code(kSnapSource, "MI_VENC_GetChnDevid fail=0x%x\n"));
    const MI_SYS_ChnPort encoder = encoder_port(device, encoder_channel);
    log_failure(MI_SYS_UnBindChnPort(&kScaler, &encoder),
                log_code(kSnapSource, "MI_SYS_UnBindChnPort fail=0x%x\n"));
    const MI_SYS_ChnPort decoder = decoder_port(decoder_channel);
    log_failure(MI_SYS_UnBindChnPort(&decoder, &kScaler),
                log_code(kSnapSource, "MI_SYS_UnBindChnPort fail=0x%x\n"));

    log_failure(
        MI_VENC_DestroyChn(encoder_channel),
        log_error(kSnapSource, "MI_VENC_DestroyChn vechn[%d] failed with %#x!\n", vechn, failed_code));
    log_failure(MI_DIVP_StopChn(kScalerChannel),
                log_error(kSnapSource, "MI_DIVP_StopChn vechn[%d] failed with %#x!\n", vechn, failed_code));
    log_failure(
        MI_DIVP_DestroyChn(kScalerChannel),
        log_error(kSnapSource, "MI_DIVP_DestroyChn vechn[%d] failed with %#x!\n", vechn, failed_code));

    store_word(cur_snap_chnn, kNoSnapChannel);
    return 0;
}
