/* points_venc.c - the JPEG encoder: life, refusals, settings. */
#include <string.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, NO_CHANNEL = 0x7FFF, W = STREAM_WIDTH, H = STREAM_HEIGHT };

POINT(venc_life, "venc.create.life",
      "MI_VENC_CreateChn MI_VENC_StartRecvPic MI_VENC_StopRecvPic MI_VENC_ResetChn MI_VENC_DestroyChn",
      "an encoder is created, receives, is reset, stopped and destroyed, again and again")
{
    const MI_VENC_ChnAttr attr = {MI_VENC_CODEC_JPEG, W, H, 101376, W, H, 1, 0};
    NEED(MI_SYS_Init());
    for (int i = 0; i < 80; ++i) {
        OK(MI_VENC_CreateChn(ENCODER, &attr));
        OK(MI_VENC_StartRecvPic(ENCODER));
        OK(MI_VENC_ResetChn(ENCODER));
        OK(MI_VENC_StopRecvPic(ENCODER));
        OK(MI_VENC_DestroyChn(ENCODER));
    }
}

POINT(venc_all, "venc.create.sixteen", "MI_VENC_CreateChn", "there is an encoder for each of sixteen cameras")
{
    const MI_VENC_ChnAttr attr = encoder_attr(W, H);
    NEED(MI_SYS_Init());
    for (uint32_t channel = 0; channel < 16; ++channel)
        OK(MI_VENC_CreateChn(channel, &attr));
}

POINT(venc_twice, "venc.create.twice-exists", "MI_VENC_CreateChn", "creating a created channel gives EXISTS")
{
    const MI_VENC_ChnAttr attr = encoder_attr(W, H);
    need_encoder();
    REFUSED(MI_VENC_CreateChn(ENCODER, &attr), MI_MODULE_VENC, MI_REASON_EXISTS);
}

POINT(venc_bad_codec, "venc.create.bad-codec", "MI_VENC_CreateChn",
      "a codec other than JPEG, or streams of less than a picture, give UNSUPPORTED")
{
    MI_VENC_ChnAttr attr = encoder_attr(W, H);
    NEED(MI_SYS_Init());
    attr.codec = 99;
    REFUSED(MI_VENC_CreateChn(ENCODER, &attr), MI_MODULE_VENC, MI_REASON_UNSUPPORTED);
    attr = encoder_attr(W, H);
    attr.by_frame = 0;
    REFUSED(MI_VENC_CreateChn(ENCODER, &attr), MI_MODULE_VENC, MI_REASON_UNSUPPORTED);
}

POINT(venc_bad_size, "venc.create.bad-size", "MI_VENC_CreateChn",
      "a picture larger than the largest, of size 0, or no buffer give BAD_VALUE")
{
    MI_VENC_ChnAttr attr = encoder_attr(W, H);
    NEED(MI_SYS_Init());
    attr.max_width = W - 2;
    REFUSED(MI_VENC_CreateChn(ENCODER, &attr), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
    attr = encoder_attr(W, 0);
    REFUSED(MI_VENC_CreateChn(ENCODER, &attr), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
    attr = encoder_attr(W, H);
    attr.stream_buffer_bytes = 0;
    REFUSED(MI_VENC_CreateChn(ENCODER, &attr), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
}

#define VENC_CALLS                                                                                           \
    "MI_VENC_DestroyChn MI_VENC_ResetChn MI_VENC_GetJpegParam MI_VENC_SetJpegParam MI_VENC_GetChnDevid "     \
    "MI_VENC_StartRecvPic MI_VENC_StopRecvPic MI_VENC_GetStream MI_VENC_ReleaseStream"

static void each_venc_refused(uint32_t channel, uint32_t reason)
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    MI_VENC_JpegParam param = {50, 0};
    uint32_t device = 0;
    memset(packs, 0, sizeof packs);
    REFUSED(MI_VENC_DestroyChn(channel), MI_MODULE_VENC, reason);
    REFUSED(MI_VENC_ResetChn(channel), MI_MODULE_VENC, reason);
    REFUSED(MI_VENC_GetJpegParam(channel, &param), MI_MODULE_VENC, reason);
    REFUSED(MI_VENC_SetJpegParam(channel, &param), MI_MODULE_VENC, reason);
    REFUSED(MI_VENC_GetChnDevid(channel, &device), MI_MODULE_VENC, reason);
    REFUSED(MI_VENC_StartRecvPic(channel), MI_MODULE_VENC, reason);
    REFUSED(MI_VENC_StopRecvPic(channel), MI_MODULE_VENC, reason);
    REFUSED(MI_VENC_GetStream(channel, &stream, 0), MI_MODULE_VENC, reason);
    REFUSED(MI_VENC_ReleaseStream(channel, &stream), MI_MODULE_VENC, reason);
}

POINT(venc_absent, "venc.refusals.absent", VENC_CALLS,
      "each call to a channel that was not created gives ABSENT")
{
    NEED(MI_SYS_Init());
    each_venc_refused(ENCODER, MI_REASON_ABSENT);
    need_encoder();
    NEED(MI_VENC_DestroyChn(ENCODER));
    each_venc_refused(ENCODER, MI_REASON_ABSENT);
}

POINT(venc_no_channel, "venc.refusals.bad-channel", "MI_VENC_CreateChn " VENC_CALLS,
      "each call to no channel gives BAD_CHANNEL")
{
    const MI_VENC_ChnAttr attr = encoder_attr(W, H);
    NEED(MI_SYS_Init());
    REFUSED(MI_VENC_CreateChn(NO_CHANNEL, &attr), MI_MODULE_VENC, MI_REASON_BAD_CHANNEL);
    each_venc_refused(NO_CHANNEL, MI_REASON_BAD_CHANNEL);
}

POINT(venc_null, "venc.refusals.null",
      "MI_VENC_CreateChn MI_VENC_GetJpegParam MI_VENC_SetJpegParam MI_VENC_GetChnDevid MI_VENC_GetStream "
      "MI_VENC_ReleaseStream",
      "a missing record gives NULL_POINTER")
{
    need_encoder();
    REFUSED(MI_VENC_CreateChn(ENCODER + 1, NULL), MI_MODULE_VENC, MI_REASON_NULL_POINTER);
    REFUSED(MI_VENC_GetJpegParam(ENCODER, NULL), MI_MODULE_VENC, MI_REASON_NULL_POINTER);
    REFUSED(MI_VENC_SetJpegParam(ENCODER, NULL), MI_MODULE_VENC, MI_REASON_NULL_POINTER);
    REFUSED(MI_VENC_GetChnDevid(ENCODER, NULL), MI_MODULE_VENC, MI_REASON_NULL_POINTER);
    REFUSED(MI_VENC_GetStream(ENCODER, NULL, 0), MI_MODULE_VENC, MI_REASON_NULL_POINTER);
    REFUSED(MI_VENC_ReleaseStream(ENCODER, NULL), MI_MODULE_VENC, MI_REASON_NULL_POINTER);
}

POINT(venc_destroy_receiving, "venc.destroy.receiving", "MI_VENC_DestroyChn",
      "destroying a channel that receives gives NOT_PERMITTED; stopped it can go")
{
    need_encoder();
    NEED(MI_VENC_StartRecvPic(ENCODER));
    REFUSED(MI_VENC_DestroyChn(ENCODER), MI_MODULE_VENC, MI_REASON_NOT_PERMITTED);
    NEED(MI_VENC_StopRecvPic(ENCODER));
    OK(MI_VENC_DestroyChn(ENCODER));
}

POINT(venc_repeated, "venc.recv.repeated", "MI_VENC_StartRecvPic MI_VENC_StopRecvPic",
      "beginning and ending to receive are accepted twice")
{
    need_encoder();
    OK(MI_VENC_StopRecvPic(ENCODER));
    OK(MI_VENC_StartRecvPic(ENCODER));
    OK(MI_VENC_StartRecvPic(ENCODER));
    OK(MI_VENC_StopRecvPic(ENCODER));
    OK(MI_VENC_StopRecvPic(ENCODER));
}

POINT(venc_param_kept, "venc.jpeg-param.as-set", "MI_VENC_SetJpegParam MI_VENC_GetJpegParam",
      "the quality is read as it was set, of each channel for itself; after creation it is a valid one")
{
    static const uint32_t qualities[] = {1, 50, 99};
    MI_VENC_JpegParam read = {0, 0};
    const MI_VENC_ChnAttr attr = encoder_attr(W, H);
    const MI_VENC_JpegParam other = {33, 0};
    need_encoder();
    NEED(MI_VENC_CreateChn(ENCODER + 1, &attr));
    OK(MI_VENC_GetJpegParam(ENCODER, &read));
    HOLDS(read.quality >= 1 && read.quality <= 99, "after creation: %s", last_call_text());
    for (int i = 0; i < 3; ++i) {
        const MI_VENC_JpegParam set = {qualities[i], read.reserved};
        OK(MI_VENC_SetJpegParam(ENCODER, &set));
        OK(MI_VENC_SetJpegParam(ENCODER + 1, &other));
        OK(MI_VENC_GetJpegParam(ENCODER, &read));
        HOLDS(read.quality == set.quality, "set to %u: %s", set.quality, last_call_text());
    }
}

POINT(venc_param_bad, "venc.jpeg-param.bad-quality", "MI_VENC_SetJpegParam MI_VENC_GetJpegParam",
      "a quality of 0 or 100 gives BAD_VALUE, and the quality stays")
{
    MI_VENC_JpegParam param = {60, 0};
    need_encoder();
    NEED(MI_VENC_SetJpegParam(ENCODER, &param));
    param.quality = 0;
    REFUSED(MI_VENC_SetJpegParam(ENCODER, &param), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
    param.quality = 100;
    REFUSED(MI_VENC_SetJpegParam(ENCODER, &param), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
    OK(MI_VENC_GetJpegParam(ENCODER, &param));
    HOLDS(param.quality == 60, "after two refusals: %s", last_call_text());
}

POINT(venc_device, "venc.device.binds", "MI_VENC_GetChnDevid MI_SYS_BindChnPort",
      "the device number that is told is the one that a binding must name")
{
    const MI_SYS_ChnPort from = scaler_end();
    need_scaler();
    need_encoder();
    uint32_t device = 0xEEEEEEEE;
    OK(MI_VENC_GetChnDevid(ENCODER, &device));
    const MI_SYS_ChnPort to = {MI_MODULE_VENC, device, ENCODER, 0},
                         wrong = {MI_MODULE_VENC, device + 7, ENCODER, 0};
    REFUSED(MI_SYS_BindChnPort(&from, &wrong, 30, 30), MI_MODULE_SYS, MI_REASON_ABSENT);
    OK(MI_SYS_BindChnPort(&from, &to, 30, 30));
}

POINT(snap_real, "venc.get-stream.jpeg", "MI_VENC_GetStream MI_VENC_StartRecvPic",
      "a real JPEG of the channel's size comes out, and shows the picture that went in")
{
    Spot spots[4];
    quad_spots(spots, 0, 0, W, H);
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &quad_h264, 0, 10);
    snapshot_shows(spots, 4, W, H);
}

const Point *const venc_points[] = {
    &point_venc_life,       &point_venc_all,        &point_venc_twice,
    &point_venc_bad_codec,  &point_venc_bad_size,   &point_venc_absent,
    &point_venc_no_channel, &point_venc_null,       &point_venc_destroy_receiving,
    &point_venc_repeated,   &point_venc_param_kept, &point_venc_param_bad,
    &point_venc_device,     &point_snap_real,       NULL,
};
