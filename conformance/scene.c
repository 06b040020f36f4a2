/* scene.c - set-ups and looks. See scene.h. */
#include "scene.h"

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

void need_created_decoder(uint32_t channel)
{
    const MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    NEED(MI_SYS_Init());
    NEED(MI_VDEC_CreateChn(channel, &attr));
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

uint32_t need_busy(uint32_t channel, unsigned busy_ms)
{
    need_decoder(channel, &large_h264);
    const uint32_t frames = frames_for_ms(channel, busy_ms);
    need_played(channel, &large_h264, 0, frames);
    return frames;
}
