/*
 * Decoder channels: 0..N-1 decode the cameras, N is a spare one.
 *
 *   absent -> vdec_create, vdec_create_chnn -> started -> vdec_stopdecrecv -> stopped
 *   started or stopped -> vdec_resetchn -> started, its queue lost
 *   started -> vdec_wait_destroy_chn, vdec_recreate -> absent
 *
 * A thin, ordered layer over the platform; who decides when is the live and playback code.
 * Thread: as the caller's; the platform serialises calls on one channel.
 */
#include "core/decoder.h"
#include "board_io.h"
#include "core/checked_call.h"
#include "core/device_state.h"
#include "core/log.h"
#include "core/output_timing.h"
#include "mi_vdec.h"

using namespace nvrhal;

// Decoder channels asked for at start-up. vdec_create writes it, playback reads it.
int32_t nvrhal::vdec_chnn;

namespace
{

constexpr char kSource[] = "vdec_venc.c";

constexpr uint32_t kSmallPicturePixels = 720 * 576;
constexpr uint32_t kLargePicturePixels = 0x1FE000; // a little above 1920 x 1080
constexpr uint32_t kSmallBufferBytes = 0x80000;
constexpr uint32_t kMiddleBufferBytes = 0x100000;
constexpr uint32_t kLargeBufferBytes = 0x200000;
constexpr int32_t kSendTimeoutMs = 20;
constexpr uint32_t kDrainPollUs = 40000;

/** What a decoder of each codec keeps at hand. */
struct CodecNeeds {
    uint32_t codec; // the platform's code
    uint32_t reference_frames, decode_buffers;
};

constexpr CodecNeeds kCodecNeeds[] = {
    {MI_VDEC_CODEC_H264, 2, 2},
    {MI_VDEC_CODEC_H265, 2, 2},
    {MI_VDEC_CODEC_JPEG, 0, 0}, // every picture stands alone
};

/** Null for a codec that decoders do not take. */
const CodecNeeds *needs_of(uint32_t codec)
{
    for (const CodecNeeds &row : kCodecNeeds)
        if (row.codec == codec) return &row;
    return nullptr;
}

uint32_t stream_buffer_bytes(uint32_t width, uint32_t height)
{
    const uint32_t pixels = width * height;
    if (pixels > kLargePicturePixels) return kLargeBufferBytes;
    return pixels <= kSmallPicturePixels ? kSmallBufferBytes : kMiddleBufferBytes;
}

/** Size of the output port of one pane of a grid, never beyond the screen. */
uint16_t pane_output(uint32_t pane, uint16_t screen)
{
    const uint32_t rounded = even(pane + 1);
    return static_cast<uint16_t>(rounded < screen ? rounded : screen);
}

} // namespace

int32_t vdec_open_chn(uint32_t channel, const uint16_t *width, const uint16_t *height, uint32_t codec_type,
                      uint32_t video_mode)
{
    if (width == nullptr || height == nullptr) return -1;
    const CodecNeeds *needs = needs_of(codec_type);
    if (needs == nullptr) {
        log_error_line(kSource, "err type ");
        return -1;
    }

    MI_VDEC_ChnAttr attr = {};
    attr.codec = codec_type;
    attr.stream_buffer_bytes = stream_buffer_bytes(*width, *height);
    attr.max_width = *width;
    attr.max_height = *height;
    attr.video_mode = video_mode;
    attr.reference_frames = needs->reference_frames;
    attr.decode_buffers = needs->decode_buffers;

    if (const int32_t code =
            failed_call(MI_VDEC_CreateChn(channel, &attr),
                        log_error(kSource, "HI_MPI_VDEC_CreateChn failed errno 0x%x,chnid:%d \n", failed_code,
                                  static_cast<int>(channel))))
        return code;
    log_text("MI_VDEC_CreateChn chnn=%d MI_SUCCESS\n", static_cast<int>(channel));

    if (const int32_t code = failed_call(MI_VDEC_StartChn(channel),
                                         log_code(kSource, "MI_VDEC_StartChn failed errno 0x%x \n")))
        return code;
    log_text("MI_VDEC_StartChn chnn=%d MI_SUCCESS\n", static_cast<int>(channel));
    return 0;
}

int32_t vdec_create(uint32_t codec_type, int32_t count)
{
    const ScreenSize screen = look_up_output_timing();
    store_word(vdec_chnn, count);
    if (count < 1) return 0;

    const uint32_t side = grid_side(count);
    log_text("u32Square=%d,s32Cnt=%d\n", static_cast<int>(side), count);
    const PaneRect pane = grid_pane(side, 0, screen.width, screen.height);
    const MI_VDEC_OutputPortAttr output = {pane_output(pane.w, screen.width),
                                           pane_output(pane.h, screen.height)};

    for (int32_t channel = 0; channel < count && channel <= camera_count(); ++channel) {
        const uint32_t index = static_cast<uint32_t>(channel);
        if (vdec_open_chn(index, &screen.width, &screen.height, codec_type, MI_VDEC_MODE_FRAME) != 0) {
            log_error_line(kSource, "create vdec chn failed!");
            return -1;
        }
        log_text("stVdecOutAttr.u16Width=%d,stVdecOutAttr.u16Height=%d,stVdispOutRect.u16PicW=%d,"
                 "stVdispOutRect.u16PicH=%d\n",
                 output.width, output.height, static_cast<int>(pane.w), static_cast<int>(pane.h));
        if (const int32_t code =
                failed_call(MI_VDEC_SetOutputPortAttr(index, &output),
                            log_error(kSource, "MI_VDEC_SetOutputPortAttr failed errno 0x%lx \n",
                                      static_cast<unsigned long>(static_cast<uint32_t>(failed_code)))))
            return code;
    }
    return 0;
}

int32_t vdec_create_chnn(uint32_t codec_type, uint32_t channel)
{
    const ScreenSize screen = look_up_output_timing();
    if (vdec_open_chn(channel, &screen.width, &screen.height, codec_type, MI_VDEC_MODE_STREAM) != 0) {
        log_error_line(kSource, "create vdec chn failed!");
        return -1;
    }
    return 0; // the output port is left at the platform's default on purpose
}

int32_t vdec_recreate(uint32_t channel, uint32_t codec_code)
{
    if (const int32_t code =
            failed_call(MI_VDEC_StopChn(channel), log_code(kSource, "stopRecvStream VDEC fail for %#x!\n")))
        return code;
    if (const int32_t code =
            failed_call(MI_VDEC_DestroyChn(channel), log_code(kSource, " VDEC DestroyChn fail for %#x!\n")))
        return code;
    // The application's code becomes the platform's; any but H.265's means H.264.
    return vdec_create_chnn(codec_code == NVRHAL_CODEC_H265 ? MI_VDEC_CODEC_H265 : MI_VDEC_CODEC_H264,
                            channel);
}

int32_t vdec_resetchn(uint32_t channel)
{
    vdec_stopdecrecv(channel); // discards what is queued; a failure does not keep it from starting
    return failed_call(MI_VDEC_StartChn(channel),
                       log_code(kSource, "HI_MPI_VDEC_StartRecvStream failed errno 0x%x\n"));
}

int32_t vdec_resetallchn(void)
{
    const int32_t count = camera_count();
    for (int32_t channel = 0; channel < count; ++channel) {
        vdec_stopdecrecv(static_cast<uint32_t>(channel));
        log_failure(
            MI_VDEC_StartChn(static_cast<uint32_t>(channel)),
            log_error(kSource, "HI_MPI_VDEC_StartRecvStream failed errno %#x, %d\n", failed_code, channel));
    }
    return 0;
}

int32_t vdec_stopdecrecv(uint32_t channel)
{
    return failed_call(MI_VDEC_StopChn(channel),
                       log_code(kSource, "HI_MPI_VDEC_StopRecvStream failed errno 0x%x\n"));
}

void vdec_stopalldecchn(void)
{
    const int32_t count = camera_count();
    for (int32_t channel = 0; channel < count; ++channel)
        vdec_stopdecrecv(static_cast<uint32_t>(channel));
}

int32_t vdec_wait_destroy_chn(uint32_t channel, int32_t wait, uint32_t)
{
    if (const int32_t code =
            failed_call(MI_VDEC_StopChn(channel), log_code(kSource, "MI_VDEC_StopChn failed errno 0x%x \n")))
        return code;

    bool drained = wait != 1;
    while (!drained) {
        board_sleep_us(kDrainPollUs);
        MI_VDEC_ChnStat stat = {};
        if (const int32_t code = failed_call(MI_VDEC_GetChnStat(channel, &stat),
                                             log_code(kSource, "MI_VDEC_GetChnStat failed errno 0x%x \n")))
            return code;
        drained = stat.left_pictures == 0 && stat.left_stream_frames == 0;
        if (drained) log_line("had no stream and pic left");
    }

    return failed_call(MI_VDEC_DestroyChn(channel),
                       log_code(kSource, "MI_VDEC_DestroyChn failed errno 0x%x \n"));
}

int32_t vdec_send_stream(uint32_t channel, const MI_VDEC_Stream *stream)
{
    if (failed_call(MI_VDEC_SendStream(channel, stream, kSendTimeoutMs),
                    log_text("Chnn = %d MI_VDEC_SendStream failed errno 0x%x  %s %d\n",
                             static_cast<int>(channel), failed_code, kSource, __LINE__))) {
        vdec_resetchn(channel);
        return -1;
    }
    return 0;
}
