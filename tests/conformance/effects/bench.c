/* bench.c - what the observations share: time, pictures, bring-up, looks at the screen. */
#include "effect.h"

#include <jpeglib.h>
#include <string.h>
#include <time.h>

#include "mi_disp.h"
#include "mi_sys.h"
#include "vboard.h"

enum { kTiming1080p60 = 16, kPatience_ms = 5000, kTolerance = 12 };

int64_t now_ms(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000 + now.tv_nsec / 1000000;
}

void wait_ms(int milliseconds)
{
    const struct timespec rest = {milliseconds / 1000, (long)(milliseconds % 1000) * 1000000};
    nanosleep(&rest, NULL);
}

Bytes picture(int left_luma, int right_luma)
{
    struct jpeg_compress_struct jpeg;
    struct jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char *data = NULL;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &data, &size);
    jpeg.image_width = jpeg.image_height = kSide;
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_YCbCr;
    jpeg_set_defaults(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    unsigned char row[kSide * 3];
    for (int x = 0; x < kSide; ++x) {
        row[3 * x] = (unsigned char)(x < kSide / 2 ? left_luma : right_luma);
        row[3 * x + 1] = row[3 * x + 2] = 128;
    }
    JSAMPROW rows[] = {row};
    for (int y = 0; y < kSide; ++y)
        jpeg_write_scanlines(&jpeg, rows, 1);
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    return (Bytes){data, (uint32_t)size};
}

void start_display(void)
{
    const MI_DISP_PubAttr pub = {.interface_type = MI_DISP_INTERFACE_VGA_HDMI, .timing = kTiming1080p60};
    const MI_DISP_VideoLayerAttr layer = {{0, 0, 1920, 1080}, 1920, 1080, MI_PIXEL_YUV420_LAYER, 0};
    NEED(MI_SYS_Init() == MI_SUCCESS);
    NEED(MI_DISP_SetPubAttr(0, &pub) == MI_SUCCESS);
    NEED(MI_DISP_Enable(0) == MI_SUCCESS);
    NEED(MI_DISP_BindVideoLayer(0, 0) == MI_SUCCESS);
    NEED(MI_DISP_SetVideoLayerAttr(0, &layer) == MI_SUCCESS);
    NEED(MI_DISP_EnableVideoLayer(0) == MI_SUCCESS);
}

void open_window(int32_t device, uint32_t port, int x, int y, int width, int height)
{
    const MI_DISP_InputPortAttr attr = {
        .window = {(uint16_t)x, (uint16_t)y, (uint16_t)width, (uint16_t)height}};
    NEED(MI_DISP_SetInputPortAttr(device, port, &attr) == MI_SUCCESS);
    NEED(MI_DISP_EnableInputPort(device, port) == MI_SUCCESS);
}

void create_decoder(uint32_t channel, uint32_t mode, uint32_t buffer_bytes)
{
    const MI_VDEC_ChnAttr attr = {.codec = MI_VDEC_CODEC_JPEG,
                                  .stream_buffer_bytes = buffer_bytes,
                                  .max_width = 1920,
                                  .max_height = 1080,
                                  .video_mode = mode,
                                  .reference_frames = 1,
                                  .decode_buffers = 2};
    NEED(MI_VDEC_CreateChn(channel, &attr) == MI_SUCCESS);
}

void start_decoder(uint32_t channel)
{
    create_decoder(channel, MI_VDEC_MODE_FRAME, 1 << 20);
    NEED(MI_VDEC_StartChn(channel) == MI_SUCCESS);
}

int32_t bind(uint32_t channel, int32_t device, uint32_t port)
{
    const MI_SYS_ChnPort source = {MI_MODULE_VDEC, 0, channel, 0};
    const MI_SYS_ChnPort sink = {MI_MODULE_DISP, (uint32_t)device, port, 0};
    return MI_SYS_BindChnPort(&source, &sink, 15, 15);
}

int32_t send(uint32_t channel, Bytes bytes, int32_t timeout_ms)
{
    const MI_VDEC_Stream stream = {.address = bytes.data, .length_bytes = bytes.size, .end_of_frame = 1};
    return MI_VDEC_SendStream(channel, &stream, timeout_ms);
}

void send_and_settle(uint32_t channel, Bytes bytes)
{
    NEED(send(channel, bytes, 1000) == MI_SUCCESS);
    wait_ms(30); /* for a platform that takes the bytes later */
    NEED(vboard_decoder_wait_idle(channel, kPatience_ms) == 0);
}

void start_held_decoder(uint32_t channel, uint32_t buffer_bytes)
{
    start_display();
    open_window(0, 0, 0, 0, 640, 360);
    create_decoder(channel, MI_VDEC_MODE_FRAME, buffer_bytes);
    NEED(MI_VDEC_StartChn(channel) == MI_SUCCESS);
    NEED(bind(channel, 0, 0) == MI_SUCCESS);
    NEED(vboard_display_set_pacing(0, VBOARD_PACING_STEP) == 0);
    NEED(send(channel, picture(kGrey, kGrey), 1000) == MI_SUCCESS);
    NEED(vboard_display_wait_queued(0, 1, 1, kPatience_ms) == 0);
    NEED(vboard_decoder_wait_idle(channel, kPatience_ms) == 0); /* its bytes are not counted any more */
}

int shows(int x, int y, int luma)
{
    vboard_image image;
    NEED(vboard_display_capture(0, VBOARD_FORMAT_I420, &image) == 0);
    const int seen = image.bytes[(size_t)y * image.width + (size_t)x];
    vboard_image_free(&image);
    const int limited = 16 + luma * 219 / 255; /* a JPEG's full range on a screen of limited range */
    return abs(seen - limited) <= kTolerance;
}
