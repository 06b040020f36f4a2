/* snap.c - the way of a snapshot: decoder 0, scaler 0, JPEG encoder 0. */
#include <string.h>

#include "effect.h"
#include "mi_divp.h"
#include "mi_sys.h"
#include "mi_venc.h"

enum { kImages = 12 };

static const MI_DIVP_OutputPortAttr kOutput = {kSide, kSide, MI_PIXEL_YUV420_SEMIPLANAR, 0};

static void start_scaler(void)
{
    const MI_DIVP_ChnAttr scaler = {.max_width = 1920, .max_height = 1080};
    NEED(MI_SYS_Init() == MI_SUCCESS);
    NEED(MI_DIVP_CreateChn(0, &scaler) == MI_SUCCESS);
    NEED(MI_DIVP_SetOutputPortAttr(0, 0, &kOutput) == MI_SUCCESS);
}

static void start_snapshots(void)
{
    const MI_VENC_ChnAttr encoder = {.codec = MI_VENC_CODEC_JPEG,
                                     .max_width = kSide,
                                     .max_height = kSide,
                                     .stream_buffer_bytes = kSide * kSide,
                                     .width = kSide,
                                     .height = kSide,
                                     .by_frame = 1};
    start_scaler();
    start_decoder(0);
    NEED(MI_VENC_CreateChn(0, &encoder) == MI_SUCCESS);
    uint32_t device = 0;
    NEED(MI_VENC_GetChnDevid(0, &device) == MI_SUCCESS);
    const MI_SYS_ChnPort from_decoder = {MI_MODULE_VDEC, 0, 0, 0};
    const MI_SYS_ChnPort scaler = {MI_MODULE_DIVP, 0, 0, 0};
    const MI_SYS_ChnPort to_encoder = {MI_MODULE_VENC, device, 0, 0};
    NEED(MI_SYS_BindChnPort(&scaler, &to_encoder, 15, 15) == MI_SUCCESS);
    NEED(MI_DIVP_StartChn(0) == MI_SUCCESS);
    NEED(MI_SYS_BindChnPort(&from_decoder, &scaler, 15, 15) == MI_SUCCESS);
    NEED(MI_VENC_StartRecvPic(0) == MI_SUCCESS);
}

static int32_t get(MI_VENC_Pack *pack, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    *stream = (MI_VENC_Stream){.packs = pack, .pack_count = 1};
    return MI_VENC_GetStream(0, stream, timeout_ms);
}

static int output_size_reads_back(void)
{
    MI_DIVP_OutputPortAttr got;
    start_scaler();
    NEED(MI_DIVP_GetOutputPortAttr(0, 0, &got) == MI_SUCCESS);
    return memcmp(&got, &kOutput, sizeof got) == 0;
}

static int released_room_is_used_again(void)
{
    start_snapshots();
    for (int i = 0; i < kImages; ++i) {
        MI_VENC_Pack pack;
        MI_VENC_Stream stream;
        send_and_settle(0, picture(kWhite, kGrey));
        if (get(&pack, &stream, 1000) != MI_SUCCESS || stream.pack_count == 0) return 0;
        NEED(MI_VENC_ReleaseStream(0, &stream) == MI_SUCCESS);
    }
    return 1;
}

static int getting_waits(void)
{
    MI_VENC_Pack pack;
    MI_VENC_Stream stream;
    start_snapshots();
    const int64_t begin = now_ms();
    get(&pack, &stream, 200);
    return now_ms() - begin >= 195;
}

static int timeout_is_a_failure(void)
{
    MI_VENC_Pack pack;
    MI_VENC_Stream stream;
    start_snapshots();
    return get(&pack, &stream, 50) == MI_ERROR(MI_MODULE_VENC, MI_REASON_TIMEOUT);
}

static int image_is_whole(void)
{
    MI_VENC_Pack pack;
    MI_VENC_Stream stream;
    start_snapshots();
    send_and_settle(0, picture(kWhite, kGrey));
    wait_ms(100); /* scaled and encoded meanwhile */
    NEED(get(&pack, &stream, 1000) == MI_SUCCESS && stream.pack_count == 1);
    const uint8_t *end = pack.address + pack.length_bytes;
    return end[-2] == 0xFF && end[-1] == 0xD9; /* the marker that ends a JPEG image */
}

const Effect snap_effects[] = {
    {"divp_output_size_forgotten", output_size_reads_back},
    {"venc_release_frees_nothing", released_room_is_used_again},
    {"venc_get_returns_at_once", getting_waits},
    {"venc_timeout_is_success", timeout_is_a_failure},
    {"venc_length_one_short", image_is_whole},
    {NULL, NULL},
};
