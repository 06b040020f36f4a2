/* points_divp.c - the scaler: life, refusals, and the pictures that it makes. */
#include <string.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, NO_CHANNEL = 0x7FFF, W = STREAM_WIDTH, H = STREAM_HEIGHT };

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

const Point *const divp_points[] = {
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
    NULL,
};

const Point *const divp_picture_points[] = {
    &point_divp_down, &point_divp_up, &point_divp_crop, &point_divp_stop, &point_divp_never_waits, NULL,
};
