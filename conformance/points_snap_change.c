/* points_snap_change.c - pictures of the encoder while its settings, its state and its source change. */
#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, NO_CHANNEL = 0x7FFF, W = STREAM_WIDTH, H = STREAM_HEIGHT };

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

const Point *const snap_change_points[] = {
    &point_snap_quality,    &point_snap_restart, &point_snap_reset,
    &point_snap_reset_lent, &point_snap_stop,    &point_snap_wrong_size,
    &point_snap_own_source, &point_snap_library, NULL,
};
