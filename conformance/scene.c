/* scene.c - set-ups and looks. See scene.h. */
#include "scene.h"

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "hooks.h"
#include "record.h"

static const struct {
    const char *name;
    uint8_t rgb[3];
} colours[COLOURS] = {
    [BLACK] = {"black", {0, 0, 0}},         [RED] = {"red", {254, 0, 0}},
    [GREEN] = {"green", {0, 255, 1}},       [BLUE] = {"blue", {0, 0, 255}},
    [YELLOW] = {"yellow", {255, 255, 0}},   [CYAN] = {"cyan", {0, 255, 255}},
    [MAGENTA] = {"magenta", {255, 0, 255}}, [WHITE] = {"white", {255, 255, 255}},
    [GREY] = {"grey", {128, 128, 128}},
};

const char *colour_name(Colour colour)
{
    return colours[colour].name;
}

Colour nearest_colour(const uint8_t rgb[3])
{
    Colour nearest = BLACK;
    int least = 1 << 30;
    for (int i = 0; i < COLOURS; ++i) {
        int distance = 0;
        for (int c = 0; c < 3; ++c)
            distance += (rgb[c] - colours[i].rgb[c]) * (rgb[c] - colours[i].rgb[c]);
        if (distance >= least) continue;
        least = distance;
        nearest = (Colour)i;
    }
    return nearest;
}

/* ------------------------------------------------------------------------------------ display --- */

void need_display(int32_t device)
{
    const MI_DISP_PubAttr pub = {0, MI_DISP_INTERFACE_VGA_HDMI, SCREEN_TIMING, 0};
    const MI_DISP_VideoLayerAttr layer = {
        {0, 0, SCREEN_WIDTH, SCREEN_HEIGHT}, SCREEN_WIDTH, SCREEN_HEIGHT, MI_PIXEL_YUV420_LAYER, 0};
    NEED(MI_SYS_Init());
    NEED(MI_DISP_SetPubAttr(device, &pub));
    NEED(MI_DISP_Enable(device));
    NEED(MI_DISP_BindVideoLayer(0, device));
    NEED(MI_DISP_SetVideoLayerAttr(0, &layer));
    NEED(MI_DISP_EnableVideoLayer(0));
}

void need_port(int32_t device, uint32_t port, int x, int y, int width, int height)
{
    const MI_DISP_InputPortAttr attr = {{(uint16_t)x, (uint16_t)y, (uint16_t)width, (uint16_t)height}, 0, 0};
    NEED(MI_DISP_SetInputPortAttr(device, port, &attr));
    NEED(MI_DISP_EnableInputPort(device, port));
    NEED(MI_DISP_SetInputPortSyncMode(device, port, E_MI_DISP_SYNC_MODE_FREE_RUN));
}

/* The first spot that is not as expected; count = all are. The colour seen there. */
static int first_wrong(const HookImage *image, const Spot *spots, int count, uint8_t seen[3])
{
    for (int i = 0; i < count; ++i) {
        if (spots[i].x < 0 || spots[i].y < 0 || (uint32_t)spots[i].x >= image->width ||
            (uint32_t)spots[i].y >= image->height) {
            memset(seen, 0, 3);
            return i;
        }
        memcpy(seen, image->rgb + 3 * ((size_t)spots[i].y * image->width + (size_t)spots[i].x), 3);
        if (nearest_colour(seen) != spots[i].colour) return i;
    }
    return count;
}

/* One look. True: all as expected; else `text` says what is not. */
static bool look_at(int32_t device, const Spot *spots, int count, char *text, size_t size)
{
    HookImage image = {0, 0, NULL};
    uint8_t seen[3];
    if (conformance_hooks.capture(device, &image) != 0) not_tried("the capture hook failed");
    const int wrong = first_wrong(&image, spots, count, seen);
    if (wrong < count)
        snprintf(text, size, "at %d,%d of the %u x %u screen of device %d is %s (%u,%u,%u), expected %s",
                 spots[wrong].x, spots[wrong].y, image.width, image.height, (int)device,
                 colour_name(nearest_colour(seen)), seen[0], seen[1], seen[2],
                 colour_name(spots[wrong].colour));
    free(image.rgb);
    return wrong == count;
}

void screen_shows(int32_t device, const Spot *spots, int count, const char *question)
{
    char text[LINE_BYTES] = "";
    if (conformance_hooks.capture == NULL) {
        ask_person("device %d: %s?", (int)device, question);
        return;
    }
    const int64_t until_us = now_us() + (int64_t)patient_ms(PICTURE_MS) * 1000;
    while (!look_at(device, spots, count, text, sizeof text)) {
        if (now_us() > until_us) broken("%s (%s)", text, question);
        pause_ms(10);
    }
    note("seen: %s", question);
}

void screen_keeps(int32_t device, const Spot *spots, int count, const char *question)
{
    char text[LINE_BYTES] = "";
    if (conformance_hooks.capture == NULL) {
        ask_person("device %d: %s?", (int)device, question);
        return;
    }
    for (int i = 0; i < 4; ++i) {
        pause_ms(patient_ms(40));
        if (!look_at(device, spots, count, text, sizeof text)) broken("%s (%s)", text, question);
    }
    note("seen: %s", question);
}

/* ------------------------------------------------------------------------------------ decoder --- */

MI_VDEC_ChnAttr decoder_attr(const TestStream *stream)
{
    return (MI_VDEC_ChnAttr){stream->codec, STREAM_BUFFER, 0, 1920, 1080, MI_VDEC_MODE_FRAME, 2, 2};
}

MI_SYS_ChnPort decoder_end(uint32_t channel)
{
    return (MI_SYS_ChnPort){MI_MODULE_VDEC, 0, channel, 0};
}

MI_SYS_ChnPort display_end(int32_t device, uint32_t port)
{
    return (MI_SYS_ChnPort){MI_MODULE_DISP, (uint32_t)device, port, 0};
}

void need_decoder(uint32_t channel, const TestStream *stream)
{
    const MI_VDEC_ChnAttr attr = decoder_attr(stream);
    NEED(MI_SYS_Init());
    NEED(MI_VDEC_CreateChn(channel, &attr));
    NEED(MI_VDEC_StartChn(channel));
}

void need_bound(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    NEED(MI_SYS_BindChnPort(source, sink, 30, 30));
}

MI_VDEC_Stream frame_of(const TestStream *stream, uint32_t index)
{
    uint32_t offset = 0;
    for (uint32_t i = 0; i < index; ++i)
        offset += stream->lengths[i];
    return (MI_VDEC_Stream){stream->bytes + offset, stream->lengths[index], (MI_U64)40000 * (index + 1), 1,
                            0};
}

void need_played(uint32_t channel, const TestStream *stream, uint32_t first, uint32_t count)
{
    const bool many = count > 4;
    if (many) note("%u frames of %s are sent to channel %u, one by one", count, stream->name, channel);
    for (uint32_t i = 0; i < count; ++i) {
        const MI_VDEC_Stream frame = frame_of(stream, (first + i) % stream->frames);
        record_successes(!many);
        const int32_t result = MI_VDEC_SendStream(channel, &frame, (int32_t)patient_ms(SEND_MS));
        record_successes(true);
        NEED(result);
    }
}

bool wait_consumed(uint32_t channel, unsigned most_ms)
{
    const int64_t until_us = now_us() + (int64_t)patient_ms(most_ms) * 1000;
    do {
        MI_VDEC_ChnStat stat = {1, 1, 1};
        if (MI_VDEC_GetChnStat(channel, &stat) != 0) return false;
        if (stat.left_stream_bytes == 0 && stat.left_stream_frames == 0) return true;
        pause_ms(2);
    } while (now_us() < until_us);
    return false;
}

void need_playing(int32_t device, uint32_t port, uint32_t channel, const TestStream *stream)
{
    const MI_SYS_ChnPort source = decoder_end(channel), sink = display_end(device, port);
    need_decoder(channel, stream);
    need_bound(&source, &sink);
    need_played(channel, stream, 0, stream->frames);
}

uint32_t frames_for_ms(uint32_t channel, unsigned milliseconds)
{
    const int64_t began_us = now_us();
    need_played(channel, &large_h264, 0, large_h264.frames);
    wait_consumed(channel, 4000);
    const double frame_ms = (double)(now_us() - began_us) / 1000 / large_h264.frames;
    const double frames = milliseconds * settings.patience / (frame_ms > 0.05 ? frame_ms : 0.05) + 1;
    /* The buffer of the usual attributes holds this many and to spare. */
    const uint32_t most = 3000;
    const uint32_t wanted = frames > most ? most : (uint32_t)frames;
    note("a frame of %u x %u takes %.2f ms here: %u of them keep the decoder busy for %u ms",
         large_h264.width, large_h264.height, frame_ms, wanted, milliseconds);
    return wanted;
}

/* ----------------------------------------------------------------------------------- snapshot --- */

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
