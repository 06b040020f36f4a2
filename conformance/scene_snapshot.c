/* scene_snapshot.c - the snapshot pipeline: set-ups and looks. See scene.h. */
#include "scene.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "record.h"

MI_DIVP_ChnAttr scaler_attr(uint32_t max_width, uint32_t max_height)
{
    return (MI_DIVP_ChnAttr){max_width, max_height, 0, 0, 0, {0, 0, 0, 0}, 0, 0, {0, 0}};
}

MI_DIVP_OutputPortAttr scaler_output(uint32_t width, uint32_t height)
{
    return (MI_DIVP_OutputPortAttr){width, height, MI_PIXEL_YUV420_SEMIPLANAR, 0};
}

MI_VENC_ChnAttr encoder_attr(uint32_t width, uint32_t height)
{
    return (MI_VENC_ChnAttr){MI_VENC_CODEC_JPEG, width, height, SNAP_BUFFER, width, height, 1, 0};
}

MI_SYS_ChnPort scaler_end(void)
{
    return (MI_SYS_ChnPort){MI_MODULE_DIVP, 0, SCALER, 0};
}

MI_SYS_ChnPort encoder_end(void)
{
    uint32_t device = 0;
    NEED(MI_VENC_GetChnDevid(ENCODER, &device));
    return (MI_SYS_ChnPort){MI_MODULE_VENC, device, ENCODER, 0};
}

static void need_created(const MI_DIVP_ChnAttr *scaler, const MI_VENC_ChnAttr *encoder, uint32_t width,
                         uint32_t height)
{
    const MI_DIVP_OutputPortAttr output = scaler_output(width, height);
    NEED(MI_DIVP_CreateChn(SCALER, scaler));
    NEED(MI_DIVP_SetOutputPortAttr(SCALER, 0, &output));
    NEED(MI_VENC_CreateChn(ENCODER, encoder));
}

void need_scaler(void)
{
    const MI_DIVP_ChnAttr attr = scaler_attr(1920, 1080);
    NEED(MI_SYS_Init());
    NEED(MI_DIVP_CreateChn(SCALER, &attr));
}

void need_encoder(void)
{
    const MI_VENC_ChnAttr attr = encoder_attr(STREAM_WIDTH, STREAM_HEIGHT);
    NEED(MI_SYS_Init());
    NEED(MI_VENC_CreateChn(ENCODER, &attr));
}

static void need_connected(void)
{
    const MI_SYS_ChnPort from = scaler_end(), to = encoder_end();
    need_bound(&from, &to);
    NEED(MI_DIVP_StartChn(SCALER));
    NEED(MI_VENC_StartRecvPic(ENCODER));
}

void need_scaler_and_encoder(uint32_t width, uint32_t height)
{
    const MI_DIVP_ChnAttr scaler = scaler_attr(1920, 1080);
    const MI_VENC_ChnAttr encoder = encoder_attr(width, height);
    const MI_SYS_ChnPort from = scaler_end();
    MI_VENC_JpegParam param = {0, 0};
    NEED(MI_SYS_Init());
    need_created(&scaler, &encoder, width, height);
    NEED(MI_VENC_GetJpegParam(ENCODER, &param));
    param.quality = SNAP_QUALITY;
    NEED(MI_VENC_SetJpegParam(ENCODER, &param));
    NEED(MI_SYS_SetChnOutputPortDepth(&from, 3, 5));
    need_connected();
}

void need_snapshots(uint32_t decoder, uint32_t width, uint32_t height)
{
    const MI_SYS_ChnPort source = decoder_end(decoder), scaler = scaler_end();
    need_scaler_and_encoder(width, height);
    need_bound(&source, &scaler);
}

void need_snapshots_with(uint32_t decoder, const MI_DIVP_ChnAttr *scaler, const MI_VENC_ChnAttr *encoder,
                         uint32_t width, uint32_t height)
{
    const MI_SYS_ChnPort source = decoder_end(decoder), to = scaler_end();
    need_created(scaler, encoder, width, height);
    need_connected();
    need_bound(&source, &to);
}

/* A picture as one stretch of bytes, released when it was copied. False: none came in time. */
static bool fetch_jpeg(uint8_t **bytes, size_t *size, int32_t timeout_ms)
{
    MI_VENC_Pack packs[8];
    MI_VENC_Stream stream = {packs, 8, 0, 0};
    memset(packs, 0, sizeof packs);
    const int32_t got = MI_VENC_GetStream(ENCODER, &stream, timeout_ms);
    if (got == MI_ERROR(MI_MODULE_VENC, MI_REASON_TIMEOUT)) return false;
    expect_success(got);
    HOLDS(stream.pack_count >= 1 && stream.pack_count <= 8, "MI_VENC_GetStream gave %u packs in room for 8",
          stream.pack_count);
    *size = 0;
    *bytes = NULL;
    for (uint32_t i = 0; i < stream.pack_count; ++i) {
        const MI_VENC_Pack *pack = &packs[i];
        HOLDS(pack->address != NULL && pack->length_bytes > pack->offset_bytes,
              "pack %u of MI_VENC_GetStream holds nothing: %u bytes, payload at %u", i, pack->length_bytes,
              pack->offset_bytes);
        const size_t length = pack->length_bytes - pack->offset_bytes;
        uint8_t *grown = realloc(*bytes, *size + length);
        if (grown == NULL) blocked("no memory");
        memcpy(grown + *size, pack->address + pack->offset_bytes, length);
        *bytes = grown;
        *size += length;
    }
    NEED(MI_VENC_ReleaseStream(ENCODER, &stream));
    return true;
}

static bool look_at_snapshot(JpegLook *look, uint32_t width, uint32_t height, int32_t timeout_ms)
{
    uint8_t *bytes = NULL;
    size_t size = 0;
    if (!fetch_jpeg(&bytes, &size, timeout_ms)) return false;
    const bool good = jpeg_look(bytes, size, look);
    free(bytes);
    HOLDS(good, "the %zu bytes of MI_VENC_GetStream are no JPEG: %s", size, look->fault);
    HOLDS(look->width == width && look->height == height, "the JPEG is %u x %u, expected %u x %u",
          look->width, look->height, width, height);
    return true;
}

void take_snapshot(JpegLook *look, uint32_t width, uint32_t height)
{
    if (!look_at_snapshot(look, width, height, (int32_t)patient_ms(SNAP_MS)))
        broken("%s: no picture came out of the encoder", last_call_text());
}

void snapshot_shows(const Spot *spots, int count, uint32_t width, uint32_t height)
{
    char text[LINE_BYTES] = "no picture came out of the encoder";
    const int64_t until_us = now_us() + (int64_t)patient_ms(SNAP_MS) * 1000;
    for (;;) {
        JpegLook look;
        const int64_t left_us = until_us - now_us();
        if (left_us <= 0) broken("%s", text);
        if (!look_at_snapshot(&look, width, height, (int32_t)(left_us / 1000))) continue;
        int i = 0;
        for (; i < count; ++i) {
            uint8_t seen[3];
            jpeg_colour(&look, (uint32_t)spots[i].x, (uint32_t)spots[i].y, seen);
            if (nearest_colour(seen) == spots[i].colour) continue;
            snprintf(text, sizeof text, "at %d,%d of the %u x %u snapshot is %s (%u,%u,%u), expected %s",
                     spots[i].x, spots[i].y, look.width, look.height, colour_name(nearest_colour(seen)),
                     seen[0], seen[1], seen[2], colour_name(spots[i].colour));
            break;
        }
        jpeg_free(&look);
        if (i == count) return;
    }
}

void quad_spots(Spot spots[4], int x, int y, int width, int height)
{
    static const Colour quarter[4] = {RED, GREEN, BLUE, YELLOW};
    for (int i = 0; i < 4; ++i)
        spots[i] = (Spot){x + width * (1 + 2 * (i % 2)) / 4, y + height * (1 + 2 * (i / 2)) / 4, quarter[i]};
}
