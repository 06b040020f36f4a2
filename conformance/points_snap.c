/* points_snap.c - scaler and JPEG encoder: life, refusals, and the pictures that come out. */
#include <stdlib.h>
#include <string.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, NO_CHANNEL = 0x7FFF, W = STREAM_WIDTH, H = STREAM_HEIGHT };

/* -------------------------------------------------------------------------------------- scaler --- */

static void need_scaler(void)
{
    const MI_DIVP_ChnAttr attr = scaler_attr(1920, 1080);
    NEED(MI_SYS_Init());
    NEED(MI_DIVP_CreateChn(SCALER, &attr));
}

POINT(divp_life, "divp.create.life",
      "MI_DIVP_CreateChn MI_DIVP_SetOutputPortAttr MI_DIVP_StartChn MI_DIVP_StopChn "
      "MI_DIVP_DestroyChn",
      "a scaler is created, set, started, stopped and destroyed, again and again")
{
    const MI_DIVP_ChnAttr attr = scaler_attr(1920, 1080);
    const MI_DIVP_OutputPortAttr output = scaler_output(W, H);
    NEED(MI_SYS_Init());
    for (int i = 0; i < 80; ++i) {
        OK(MI_DIVP_CreateChn(SCALER, &attr));
        OK(MI_DIVP_SetOutputPortAttr(SCALER, 0, &output));
        OK(MI_DIVP_StartChn(SCALER));
        OK(MI_DIVP_StopChn(SCALER));
        OK(MI_DIVP_DestroyChn(SCALER));
    }
}

POINT(divp_twice, "divp.create.twice-exists", "MI_DIVP_CreateChn", "creating a created channel gives EXISTS")
{
    const MI_DIVP_ChnAttr attr = scaler_attr(1920, 1080);
    need_scaler();
    REFUSED(MI_DIVP_CreateChn(SCALER, &attr), MI_MODULE_DIVP, MI_REASON_EXISTS);
}

POINT(divp_bad_value, "divp.create.bad-size", "MI_DIVP_CreateChn",
      "a largest size of 0, or beyond 4096, and a part beyond it give BAD_VALUE")
{
    MI_DIVP_ChnAttr attr = scaler_attr(0, 1080);
    NEED(MI_SYS_Init());
    REFUSED(MI_DIVP_CreateChn(SCALER, &attr), MI_MODULE_DIVP, MI_REASON_BAD_VALUE);
    attr = scaler_attr(1920, 4097);
    REFUSED(MI_DIVP_CreateChn(SCALER, &attr), MI_MODULE_DIVP, MI_REASON_BAD_VALUE);
}

POINT(divp_unsupported, "divp.create.other-work", "MI_DIVP_CreateChn",
      "what the scaler cannot do besides scaling and cutting out gives UNSUPPORTED")
{
    MI_DIVP_ChnAttr attr = scaler_attr(1920, 1080);
    NEED(MI_SYS_Init());
    attr.rotation = 77;
    REFUSED(MI_DIVP_CreateChn(SCALER, &attr), MI_MODULE_DIVP, MI_REASON_UNSUPPORTED);
}

POINT(
    divp_refused, "divp.refusals.absent",
    "MI_DIVP_DestroyChn MI_DIVP_StartChn MI_DIVP_StopChn MI_DIVP_GetOutputPortAttr MI_DIVP_SetOutputPortAttr",
    "each call to a channel that was not created gives ABSENT")
{
    MI_DIVP_OutputPortAttr output = scaler_output(W, H);
    NEED(MI_SYS_Init());
    REFUSED(MI_DIVP_DestroyChn(SCALER), MI_MODULE_DIVP, MI_REASON_ABSENT);
    REFUSED(MI_DIVP_StartChn(SCALER), MI_MODULE_DIVP, MI_REASON_ABSENT);
    REFUSED(MI_DIVP_StopChn(SCALER), MI_MODULE_DIVP, MI_REASON_ABSENT);
    REFUSED(MI_DIVP_GetOutputPortAttr(SCALER, 0, &output), MI_MODULE_DIVP, MI_REASON_ABSENT);
    REFUSED(MI_DIVP_SetOutputPortAttr(SCALER, 0, &output), MI_MODULE_DIVP, MI_REASON_ABSENT);
}

POINT(divp_no_channel, "divp.refusals.bad-channel",
      "MI_DIVP_CreateChn MI_DIVP_DestroyChn MI_DIVP_StartChn MI_DIVP_StopChn MI_DIVP_GetOutputPortAttr "
      "MI_DIVP_SetOutputPortAttr",
      "each call to no channel, or to no port, gives BAD_CHANNEL")
{
    const MI_DIVP_ChnAttr attr = scaler_attr(1920, 1080);
    MI_DIVP_OutputPortAttr output = scaler_output(W, H);
    need_scaler();
    REFUSED(MI_DIVP_CreateChn(NO_CHANNEL, &attr), MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DIVP_DestroyChn(NO_CHANNEL), MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DIVP_StartChn(NO_CHANNEL), MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DIVP_StopChn(NO_CHANNEL), MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DIVP_GetOutputPortAttr(NO_CHANNEL, 0, &output), MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DIVP_SetOutputPortAttr(NO_CHANNEL, 0, &output), MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DIVP_GetOutputPortAttr(SCALER, 9, &output), MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DIVP_SetOutputPortAttr(SCALER, 9, &output), MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL);
}

POINT(divp_null, "divp.refusals.null",
      "MI_DIVP_CreateChn MI_DIVP_GetOutputPortAttr MI_DIVP_SetOutputPortAttr",
      "a missing record gives NULL_POINTER")
{
    need_scaler();
    REFUSED(MI_DIVP_CreateChn(SCALER + 1, NULL), MI_MODULE_DIVP, MI_REASON_NULL_POINTER);
    REFUSED(MI_DIVP_GetOutputPortAttr(SCALER, 0, NULL), MI_MODULE_DIVP, MI_REASON_NULL_POINTER);
    REFUSED(MI_DIVP_SetOutputPortAttr(SCALER, 0, NULL), MI_MODULE_DIVP, MI_REASON_NULL_POINTER);
}

POINT(divp_started, "divp.destroy.started-not-permitted", "MI_DIVP_DestroyChn",
      "destroying a started channel gives NOT_PERMITTED; stopped it can go")
{
    const MI_DIVP_OutputPortAttr output = scaler_output(W, H);
    need_scaler();
    NEED(MI_DIVP_SetOutputPortAttr(SCALER, 0, &output));
    NEED(MI_DIVP_StartChn(SCALER));
    REFUSED(MI_DIVP_DestroyChn(SCALER), MI_MODULE_DIVP, MI_REASON_NOT_PERMITTED);
    OK(MI_DIVP_StopChn(SCALER));
    OK(MI_DIVP_DestroyChn(SCALER));
}

POINT(divp_start_unset, "divp.start.no-output-size", "MI_DIVP_StartChn",
      "starting a channel that has no output size gives NOT_READY")
{
    need_scaler();
    REFUSED(MI_DIVP_StartChn(SCALER), MI_MODULE_DIVP, MI_REASON_NOT_READY);
}

POINT(divp_repeated, "divp.start.repeated", "MI_DIVP_StartChn MI_DIVP_StopChn",
      "starting twice and stopping twice are accepted")
{
    const MI_DIVP_OutputPortAttr output = scaler_output(W, H);
    need_scaler();
    OK(MI_DIVP_StopChn(SCALER));
    NEED(MI_DIVP_SetOutputPortAttr(SCALER, 0, &output));
    OK(MI_DIVP_StartChn(SCALER));
    OK(MI_DIVP_StartChn(SCALER));
    OK(MI_DIVP_StopChn(SCALER));
    OK(MI_DIVP_StopChn(SCALER));
}

POINT(divp_output_kept, "divp.output-attr.as-set", "MI_DIVP_SetOutputPortAttr MI_DIVP_GetOutputPortAttr",
      "the output size is read as it was set; 0 x 0 before that, also in a channel created again")
{
    const MI_DIVP_OutputPortAttr set = scaler_output(640, 360);
    MI_DIVP_OutputPortAttr read;
    for (int i = 0; i < 2; ++i) {
        need_scaler();
        memset(&read, 0xEE, sizeof read);
        OK(MI_DIVP_GetOutputPortAttr(SCALER, 0, &read));
        HOLDS(read.width == 0 && read.height == 0, "after creation: %s", last_call_text());
        OK(MI_DIVP_SetOutputPortAttr(SCALER, 0, &set));
        OK(MI_DIVP_GetOutputPortAttr(SCALER, 0, &read));
        HOLDS(memcmp(&read, &set, sizeof read) == 0, "%s is not what was set", last_call_text());
        NEED(MI_DIVP_DestroyChn(SCALER));
    }
}

POINT(divp_output_bad, "divp.output-attr.bad-values", "MI_DIVP_SetOutputPortAttr",
      "an odd size, or one of 0, gives BAD_VALUE; an unknown format UNSUPPORTED")
{
    MI_DIVP_OutputPortAttr output = scaler_output(351, H);
    need_scaler();
    REFUSED(MI_DIVP_SetOutputPortAttr(SCALER, 0, &output), MI_MODULE_DIVP, MI_REASON_BAD_VALUE);
    output = scaler_output(W, 0);
    REFUSED(MI_DIVP_SetOutputPortAttr(SCALER, 0, &output), MI_MODULE_DIVP, MI_REASON_BAD_VALUE);
    output = scaler_output(4098, H);
    REFUSED(MI_DIVP_SetOutputPortAttr(SCALER, 0, &output), MI_MODULE_DIVP, MI_REASON_BAD_VALUE);
    output = scaler_output(W, H);
    output.pixel_format = 77;
    REFUSED(MI_DIVP_SetOutputPortAttr(SCALER, 0, &output), MI_MODULE_DIVP, MI_REASON_UNSUPPORTED);
}

static void scaled_to(uint32_t width, uint32_t height)
{
    Spot spots[4];
    quad_spots(spots, 0, 0, (int)width, (int)height);
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, width, height);
    need_played(CH, &quad_h264, 0, 10);
    snapshot_shows(spots, 4, width, height);
}

POINT(divp_down, "divp.scale.down", "MI_DIVP_SetOutputPortAttr MI_DIVP_StartChn",
      "the whole picture is scaled down to the output size")
{
    scaled_to(176, 144);
}

POINT(divp_up, "divp.scale.up", "MI_DIVP_SetOutputPortAttr MI_DIVP_StartChn",
      "the whole picture is scaled up to the output size, in another shape too")
{
    scaled_to(1280, 400);
}

POINT(divp_crop, "divp.create.part", "MI_DIVP_CreateChn", "a scaler made for a part of its input cuts it out")
{
    MI_DIVP_ChnAttr attr = scaler_attr(1920, 1080);
    const MI_VENC_ChnAttr encoder = encoder_attr(W, H);
    const Spot spots[] = {{20, 20, BLUE}, {W - 20, 20, BLUE}, {20, H - 20, BLUE}, {W - 20, H - 20, BLUE}};
    need_decoder(CH, &quad_h264);
    attr.crop = (MI_Rect){0, H / 2, W / 2, H / 2};
    need_snapshots_with(CH, &attr, &encoder, W, H);
    need_played(CH, &quad_h264, 0, 10);
    snapshot_shows(spots, 4, W, H);
}

POINT(divp_stop, "divp.stop.passes-nothing", "MI_DIVP_StopChn MI_DIVP_StartChn",
      "a stopped scaler passes nothing on; started again it passes what comes then")
{
    const Spot green[] = {{W / 2, H / 2, GREEN}};
    MI_VENC_Pack packs[8];
    MI_VENC_Stream stream = {packs, 8, 0, 0};
    need_decoder(CH, &red_h264);
    need_snapshots(CH, W, H);
    OK(MI_DIVP_StopChn(SCALER));
    need_played(CH, &red_h264, 0, 10);
    const int32_t got = MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(150));
    HOLDS(got != 0, "%s: a picture came through a stopped scaler", last_call_text());
    OK(MI_DIVP_StartChn(SCALER));
    need_played(CH, &green_h264, 0, 10);
    snapshot_shows(green, 1, W, H);
}

POINT(divp_never_waits, "divp.start.holds-nobody", "MI_DIVP_StartChn",
      "a scaler whose sink takes nothing drops pictures: the decoder is not held back")
{
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    NEED(MI_VENC_StopRecvPic(ENCODER));
    need_played(CH, &quad_h264, 0, 40);
    HOLDS(wait_consumed(CH, 2000), "the decoder is held back: %s", last_call_text());
}

/* ------------------------------------------------------------------------------------- encoder --- */

static void need_encoder(void)
{
    const MI_VENC_ChnAttr attr = encoder_attr(W, H);
    NEED(MI_SYS_Init());
    NEED(MI_VENC_CreateChn(ENCODER, &attr));
}

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

/* ------------------------------------------------------------------------------------- pictures --- */

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

POINT(snap_one_pack, "venc.get-stream.one-pack", "MI_VENC_GetStream",
      "with room for one pack the whole picture lies in it: frame end, no offset, from the address on")
{
    MI_VENC_Pack pack;
    MI_VENC_Stream stream = {&pack, 1, 0, 0};
    JpegLook look;
    memset(&pack, 0xEE, sizeof pack);
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &quad_h264, 0, 1);
    OK(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(SNAP_MS)));
    HOLDS(stream.pack_count == 1, "%u packs in room for one", stream.pack_count);
    for (int i = 0; i < 28; ++i)
        HOLDS(pack.reserved[i] == 0, "reserved word %d of the pack is 0x%08x", i, pack.reserved[i]);
    HOLDS(pack.frame_end == 1, "frame_end is %u in the only pack", pack.frame_end);
    HOLDS(pack.offset_bytes == 0, "the payload begins at %u, and the library applies no offset",
          pack.offset_bytes);
    const bool good = jpeg_look(pack.address, pack.length_bytes, &look);
    jpeg_free(&look);
    HOLDS(good, "the %u bytes at the address are no JPEG: %s", pack.length_bytes, look.fault);
    HOLDS(pack.address[pack.length_bytes - 2] == 0xFF && pack.address[pack.length_bytes - 1] == 0xD9,
          "the %u bytes do not end with the end of the image", pack.length_bytes);
}

POINT(snap_sequence, "venc.get-stream.sequence", "MI_VENC_GetStream",
      "pictures are numbered from 0 and come oldest first, with handles of their own")
{
    uintptr_t handles[4];
    need_decoder(CH, &steps_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < 4; ++i) {
        MI_VENC_Pack packs[2];
        MI_VENC_Stream stream = {packs, 2, 77, 0};
        need_played(CH, &steps_h264, i, 1);
        OK(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(SNAP_MS)));
        HOLDS(stream.sequence == i, "picture %u has the number %u", i, stream.sequence);
        for (uint32_t before = 0; before < i; ++before)
            HOLDS(handles[before] != stream.handle, "two streams that are lent have the handle %zu",
                  (size_t)stream.handle);
        handles[i] = stream.handle;
    }
}

POINT(snap_pts, "venc.get-stream.time-stamp", "MI_VENC_GetStream",
      "a stream carries the time stamp of its picture")
{
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < 3; ++i) {
        MI_VENC_Pack packs[2];
        MI_VENC_Stream stream = {packs, 2, 0, 0};
        const MI_VDEC_Stream frame = frame_of(&quad_h264, i);
        need_played(CH, &quad_h264, i, 1);
        OK(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(SNAP_MS)));
        HOLDS(packs[0].pts == frame.pts, "the frame has %llu, its stream %llu", (unsigned long long)frame.pts,
              (unsigned long long)packs[0].pts);
        NEED(MI_VENC_ReleaseStream(ENCODER, &stream));
    }
}

POINT(snap_oldest, "venc.get-stream.oldest-first", "MI_VENC_GetStream",
      "of several encoded pictures the oldest is given first")
{
    int before = -1;
    need_decoder(CH, &steps_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < 4; ++i) {
        need_played(CH, &steps_h264, i, 1);
        wait_consumed(CH, 500);
        pause_ms(patient_ms(30));
    }
    for (uint32_t i = 0; i < 4; ++i) {
        JpegLook look;
        uint8_t rgb[3];
        take_snapshot(&look, W, H);
        jpeg_colour(&look, W / 2, H / 2, rgb);
        jpeg_free(&look);
        HOLDS(rgb[1] > before + 3, "picture %u of 4 is not lighter than the one before: %d after %d", i,
              rgb[1], before);
        before = rgb[1];
    }
}

POINT(snap_times_out, "venc.get-stream.times-out", "MI_VENC_GetStream",
      "without a picture TIMEOUT comes when the time-out is over, neither before nor much later")
{
    enum { TRIES = 3 };
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_encoder();
    NEED(MI_VENC_StartRecvPic(ENCODER));
    static const int32_t waits[] = {200, 40};
    for (int w = 0; w < 2; ++w) {
        for (int i = 1;; ++i) {
            REFUSED(MI_VENC_GetStream(ENCODER, &stream, waits[w]), MI_MODULE_VENC, MI_REASON_TIMEOUT);
            if (i == TRIES || took_within(waits[w], 60) || last_call_ms() < waits[w] - 2) break;
        }
        expect_took(waits[w], 60);
    }
}

POINT(snap_at_once, "venc.get-stream.zero-time-out", "MI_VENC_GetStream",
      "with a time-out of 0 TIMEOUT comes at once, and a picture that is there too")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    for (int i = 1;; ++i) {
        REFUSED(MI_VENC_GetStream(ENCODER, &stream, 0), MI_MODULE_VENC, MI_REASON_TIMEOUT);
        if (i == 3 || took_within(0, 15)) break;
    }
    expect_took(0, 15);
    need_played(CH, &quad_h264, 0, 1);
    wait_consumed(CH, 1000);
    pause_ms(patient_ms(300));
    OK(MI_VENC_GetStream(ENCODER, &stream, 0));
}

POINT(snap_waits, "venc.get-stream.waits-for-ever", "MI_VENC_GetStream",
      "with a time-out of -1 the call waits until a picture comes; and comes back as soon as it does")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_decoder(CH, &large_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &large_h264, 0, 1);
    const int64_t began_us = now_us();
    OK(MI_VENC_GetStream(ENCODER, &stream, -1));
    HOLDS(now_us() - began_us < (int64_t)patient_ms(2000) * 1000, "%s", last_call_text());
}

POINT(snap_not_receiving, "venc.get-stream.not-receiving", "MI_VENC_GetStream",
      "a channel that receives nothing and has nothing left gives NOT_READY at once")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_encoder();
    REFUSED(MI_VENC_GetStream(ENCODER, &stream, 1000), MI_MODULE_VENC, MI_REASON_NOT_READY);
    expect_took(0, 150);
}

POINT(snap_no_room, "venc.get-stream.no-room", "MI_VENC_GetStream",
      "room for no pack gives BAD_VALUE, no array NULL_POINTER")
{
    MI_VENC_Pack packs[1];
    MI_VENC_Stream none = {packs, 0, 0, 0}, no_array = {NULL, 1, 0, 0};
    need_encoder();
    NEED(MI_VENC_StartRecvPic(ENCODER));
    REFUSED(MI_VENC_GetStream(ENCODER, &none, 0), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
    REFUSED(MI_VENC_GetStream(ENCODER, &no_array, 0), MI_MODULE_VENC, MI_REASON_NULL_POINTER);
}

POINT(snap_bytes_stay, "venc.get-stream.bytes-stay", "MI_VENC_GetStream MI_VENC_ReleaseStream",
      "the bytes of a stream stay as they are until it is released, whatever comes meanwhile")
{
    MI_VENC_Pack packs[3][2];
    MI_VENC_Stream streams[3];
    uint8_t *copy = NULL;
    need_decoder(CH, &steps_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < 3; ++i) {
        streams[i] = (MI_VENC_Stream){packs[i], 2, 0, 0};
        need_played(CH, &steps_h264, i, 1);
        NEED(MI_VENC_GetStream(ENCODER, &streams[i], (int32_t)patient_ms(SNAP_MS)));
        if (i == 0) {
            copy = malloc(packs[0][0].length_bytes);
            if (copy == NULL) blocked("no memory");
            memcpy(copy, packs[0][0].address, packs[0][0].length_bytes);
        }
    }
    NEED(MI_VENC_ReleaseStream(ENCODER, &streams[1]));
    need_played(CH, &steps_h264, 3, 5);
    wait_consumed(CH, 1000);
    pause_ms(patient_ms(60));
    const bool same = memcmp(copy, packs[0][0].address, packs[0][0].length_bytes) == 0;
    free(copy);
    HOLDS(same, "the bytes of the first picture have changed while it was lent");
    OK(MI_VENC_ReleaseStream(ENCODER, &streams[0]));
    OK(MI_VENC_ReleaseStream(ENCODER, &streams[2]));
}

POINT(snap_release_twice, "venc.release.twice", "MI_VENC_ReleaseStream",
      "a stream that is not lent, or was released before, gives BAD_VALUE")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &quad_h264, 0, 1);
    NEED(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(SNAP_MS)));
    OK(MI_VENC_ReleaseStream(ENCODER, &stream));
    REFUSED(MI_VENC_ReleaseStream(ENCODER, &stream), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
    stream.handle += 12345;
    REFUSED(MI_VENC_ReleaseStream(ENCODER, &stream), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
}

POINT(snap_release_frees, "venc.release.frees", "MI_VENC_ReleaseStream MI_VENC_GetStream",
      "released streams make room: many times the buffer's size goes through")
{
    enum { PICTURES = 60 };
    MI_VENC_ChnAttr attr = encoder_attr(W, H);
    const MI_DIVP_ChnAttr scaler = scaler_attr(1920, 1080);
    JpegLook look;
    attr.stream_buffer_bytes = 24000; /* a few of these pictures, not sixty */
    need_decoder(CH, &quad_h264);
    need_snapshots_with(CH, &scaler, &attr, W, H);
    for (uint32_t i = 0; i < PICTURES; ++i) {
        need_played(CH, &quad_h264, i % 10, 1);
        take_snapshot(&look, W, H);
        jpeg_free(&look);
    }
}

POINT(snap_quality, "venc.jpeg-param.takes-effect", "MI_VENC_SetJpegParam",
      "a finer quality gives finer quantization, from the next picture on")
{
    uint32_t quantizer[2];
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    for (int i = 0; i < 2; ++i) {
        const MI_VENC_JpegParam param = {i == 0 ? 20 : 90, 0};
        JpegLook look;
        OK(MI_VENC_SetJpegParam(ENCODER, &param));
        need_played(CH, &quad_h264, (uint32_t)i, 1);
        take_snapshot(&look, W, H);
        quantizer[i] = look.quantizer;
        jpeg_free(&look);
    }
    HOLDS(quantizer[1] * 2 < quantizer[0], "the quantizers sum up to %u at quality 20 and %u at 90",
          quantizer[0], quantizer[1]);
}

POINT(snap_restart, "venc.create.restart-rows", "MI_VENC_CreateChn",
      "restart markers stand in the picture as often as the channel was told, none for 0")
{
    const MI_DIVP_ChnAttr scaler = scaler_attr(1920, 1080);
    for (uint32_t rows = 0; rows <= 2; rows += 2) {
        MI_VENC_ChnAttr attr = encoder_attr(W, H);
        JpegLook look;
        attr.restart_rows = rows;
        need_decoder(CH, &quad_h264);
        need_snapshots_with(CH, &scaler, &attr, W, H);
        need_played(CH, &quad_h264, 0, 1);
        take_snapshot(&look, W, H);
        const uint32_t restarts = look.restarts,
                       mcu_rows = (H + 8 * look.vertical[0] - 1) / (8 * look.vertical[0]);
        jpeg_free(&look);
        HOLDS(restarts == (rows == 0 ? 0 : (mcu_rows - 1) / rows),
              "told %u rows, there are %u restart markers in %u rows", rows, restarts, mcu_rows);
        seam_undo_media();
    }
}

POINT(snap_reset, "venc.reset.discards", "MI_VENC_ResetChn MI_VENC_GetStream",
      "a reset discards what is encoded, and the channel goes on receiving")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    const Spot green[] = {{W / 2, H / 2, GREEN}};
    need_decoder(CH, &red_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &red_h264, 0, 3);
    wait_consumed(CH, 1000);
    pause_ms(patient_ms(100));
    OK(MI_VENC_ResetChn(ENCODER));
    const int32_t got = MI_VENC_GetStream(ENCODER, &stream, 100);
    HOLDS(got == MI_ERROR(MI_MODULE_VENC, MI_REASON_TIMEOUT), "after a reset: %s, expected TIMEOUT",
          last_call_text());
    need_played(CH, &green_h264, 0, 3);
    snapshot_shows(green, 1, W, H);
}

POINT(snap_reset_lent, "venc.reset.lent", "MI_VENC_ResetChn MI_VENC_ReleaseStream",
      "a reset takes lent streams back: releasing one afterwards gives BAD_VALUE")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &quad_h264, 0, 1);
    NEED(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(SNAP_MS)));
    NEED(MI_VENC_ResetChn(ENCODER));
    REFUSED(MI_VENC_ReleaseStream(ENCODER, &stream), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
}

POINT(snap_stop, "venc.recv.stopped", "MI_VENC_StopRecvPic MI_VENC_GetStream",
      "after the end of receiving the encoded pictures can be got, and then no more come")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &quad_h264, 0, 1);
    wait_consumed(CH, 1000);
    pause_ms(patient_ms(200));
    OK(MI_VENC_StopRecvPic(ENCODER));
    OK(MI_VENC_GetStream(ENCODER, &stream, 0));
    OK(MI_VENC_ReleaseStream(ENCODER, &stream));
    need_played(CH, &quad_h264, 1, 3);
    pause_ms(patient_ms(60));
    REFUSED(MI_VENC_GetStream(ENCODER, &stream, 0), MI_MODULE_VENC, MI_REASON_NOT_READY);
}

POINT(snap_wrong_size, "venc.recv.other-size", "MI_VENC_StartRecvPic",
      "pictures of another size than the channel's are dropped, not encoded")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    const MI_DIVP_ChnAttr scaler = scaler_attr(1920, 1080);
    const MI_VENC_ChnAttr encoder = encoder_attr(W, H);
    need_decoder(CH, &quad_h264);
    need_snapshots_with(CH, &scaler, &encoder, W / 2, H / 2);
    need_played(CH, &quad_h264, 0, 3);
    REFUSED(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(150)), MI_MODULE_VENC, MI_REASON_TIMEOUT);
}

POINT(snap_own_source, "venc.recv.own-source", "MI_SYS_BindChnPort MI_VENC_StartRecvPic",
      "a snapshot shows the channel that the scaler is bound to, not one that decodes beside it")
{
    const Spot red[] = {{W / 2, H / 2, RED}};
    JpegLook look;
    uint8_t rgb[3];
    need_decoder(CH, &red_h264);
    need_decoder(CH + 1, &blue_h264);
    need_snapshots(CH, W, H);
    need_played(CH + 1, &blue_h264, 0, 10);
    need_played(CH, &red_h264, 0, 2);
    take_snapshot(&look, W, H);
    jpeg_colour(&look, W / 2, H / 2, rgb);
    jpeg_free(&look);
    HOLDS(nearest_colour(rgb) == RED, "the first picture is %s", colour_name(nearest_colour(rgb)));
    snapshot_shows(red, 1, W, H);
}

POINT(snap_library, "venc.get-stream.as-the-library", "MI_VENC_GetStream MI_DIVP_StartChn MI_SYS_BindChnPort",
      "forty snapshots, built up and taken down as the library does it, give forty pictures")
{
    const Spot green[] = {{W / 2, H / 2, GREEN}};
    for (int i = 0; i < 40; ++i) {
        const MI_SYS_ChnPort source = decoder_end(CH), scaler = scaler_end();
        if (i == 0) need_decoder(CH, &green_h264);
        need_snapshots(CH, W, H);
        need_played(CH, &green_h264, 0, 2);
        snapshot_shows(green, 1, W, H);
        OK(MI_VENC_ResetChn(ENCODER));
        OK(MI_VENC_StopRecvPic(ENCODER));
        const MI_SYS_ChnPort encoder = encoder_end();
        OK(MI_SYS_UnBindChnPort(&scaler, &encoder));
        OK(MI_SYS_UnBindChnPort(&source, &scaler));
        OK(MI_VENC_DestroyChn(ENCODER));
        OK(MI_DIVP_StopChn(SCALER));
        OK(MI_DIVP_DestroyChn(SCALER));
    }
}

const Point *const snap_points[] = {
    &point_divp_life,
    &point_divp_twice,
    &point_divp_bad_value,
    &point_divp_unsupported,
    &point_divp_refused,
    &point_divp_no_channel,
    &point_divp_null,
    &point_divp_started,
    &point_divp_start_unset,
    &point_divp_repeated,
    &point_divp_output_kept,
    &point_divp_output_bad,
    &point_venc_life,
    &point_venc_all,
    &point_venc_twice,
    &point_venc_bad_codec,
    &point_venc_bad_size,
    &point_venc_absent,
    &point_venc_no_channel,
    &point_venc_null,
    &point_venc_destroy_receiving,
    &point_venc_repeated,
    &point_venc_param_kept,
    &point_venc_param_bad,
    &point_venc_device,
    &point_snap_real,
    &point_divp_down,
    &point_divp_up,
    &point_divp_crop,
    &point_divp_stop,
    &point_divp_never_waits,
    &point_snap_one_pack,
    &point_snap_sequence,
    &point_snap_pts,
    &point_snap_oldest,
    &point_snap_times_out,
    &point_snap_at_once,
    &point_snap_waits,
    &point_snap_not_receiving,
    &point_snap_no_room,
    &point_snap_bytes_stay,
    &point_snap_release_twice,
    &point_snap_release_frees,
    &point_snap_quality,
    &point_snap_restart,
    &point_snap_reset,
    &point_snap_reset_lent,
    &point_snap_stop,
    &point_snap_wrong_size,
    &point_snap_own_source,
    &point_snap_library,
    NULL,
};
