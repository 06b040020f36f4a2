/* points_vdec.c - decoder channels: creation and destruction. */
#include <string.h>

#include "points.h"
#include "scene.h"

enum { CH = 1, NO_CHANNEL = 0x7FFF, CAMERAS = 16 };

/* ----------------------------------------------------------------------------------- creation --- */

POINT(create_succeeds, "vdec.create.succeeds", "MI_VDEC_CreateChn",
      "a channel is created with the attributes that the library uses, for each codec")
{
    const TestStream *streams[] = {&quad_h264, &quad_h265, &quad_jpeg};
    NEED(MI_SYS_Init());
    for (uint32_t i = 0; i < 3; ++i) {
        const MI_VDEC_ChnAttr attr = decoder_attr(streams[i]);
        OK(MI_VDEC_CreateChn(i, &attr));
    }
}

POINT(create_stream_mode, "vdec.create.stream-mode", "MI_VDEC_CreateChn",
      "a channel is created in stream mode")
{
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    NEED(MI_SYS_Init());
    attr.video_mode = MI_VDEC_MODE_STREAM;
    OK(MI_VDEC_CreateChn(CH, &attr));
}

POINT(create_keeps, "vdec.create.keeps-attributes", "MI_VDEC_CreateChn MI_VDEC_GetChnAttr",
      "the attributes read are those of creation, word for word")
{
    const MI_VDEC_ChnAttr attr = {MI_VDEC_CODEC_H265, 777216, 0, 1280, 720, MI_VDEC_MODE_FRAME, 3, 4};
    MI_VDEC_ChnAttr read;
    NEED(MI_SYS_Init());
    NEED(MI_VDEC_CreateChn(CH, &attr));
    memset(&read, 0xEE, sizeof read);
    OK(MI_VDEC_GetChnAttr(CH, &read));
    HOLDS(memcmp(&read, &attr, sizeof attr) == 0,
          "%s differs from {codec 1, 777216 bytes, up to 1280 x 720, mode 1, 3 + 4}",
          "what MI_VDEC_GetChnAttr gave");
}

POINT(create_twice, "vdec.create.twice-exists", "MI_VDEC_CreateChn",
      "creating a created channel gives EXISTS")
{
    const MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    need_created_decoder(CH);
    REFUSED(MI_VDEC_CreateChn(CH, &attr), MI_MODULE_VDEC, MI_REASON_EXISTS);
}

POINT(create_twice_keeps, "vdec.create.twice-keeps-first", "MI_VDEC_CreateChn MI_VDEC_GetChnAttr",
      "a refused second creation leaves the channel as it was")
{
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264), read = {0};
    need_created_decoder(CH);
    attr.codec = MI_VDEC_CODEC_H265;
    attr.max_width = 640;
    MI_VDEC_CreateChn(CH, &attr);
    NEED(MI_VDEC_GetChnAttr(CH, &read));
    HOLDS(read.codec == MI_VDEC_CODEC_H264 && read.max_width == 1920, "%s shows the refused attributes",
          "MI_VDEC_GetChnAttr");
}

POINT(create_bad_channel, "vdec.create.bad-channel", "MI_VDEC_CreateChn",
      "a channel number that the chip does not have gives BAD_CHANNEL")
{
    const MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    NEED(MI_SYS_Init());
    REFUSED(MI_VDEC_CreateChn(NO_CHANNEL, &attr), MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_VDEC_CreateChn(0xFFFFFFFFu, &attr), MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL);
}

POINT(create_bad_codec, "vdec.create.bad-codec", "MI_VDEC_CreateChn", "an unknown codec gives BAD_VALUE")
{
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    NEED(MI_SYS_Init());
    attr.codec = 99;
    REFUSED(MI_VDEC_CreateChn(CH, &attr), MI_MODULE_VDEC, MI_REASON_BAD_VALUE);
}

POINT(create_bad_mode, "vdec.create.bad-mode", "MI_VDEC_CreateChn", "an unknown video mode gives BAD_VALUE")
{
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    NEED(MI_SYS_Init());
    attr.video_mode = 7;
    REFUSED(MI_VDEC_CreateChn(CH, &attr), MI_MODULE_VDEC, MI_REASON_BAD_VALUE);
}

POINT(create_no_buffer, "vdec.create.no-buffer", "MI_VDEC_CreateChn",
      "a bit-stream buffer of 0 bytes gives BAD_VALUE")
{
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    NEED(MI_SYS_Init());
    attr.stream_buffer_bytes = 0;
    REFUSED(MI_VDEC_CreateChn(CH, &attr), MI_MODULE_VDEC, MI_REASON_BAD_VALUE);
}

POINT(create_null, "vdec.create.null", "MI_VDEC_CreateChn", "creating without attributes gives NULL_POINTER")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_VDEC_CreateChn(CH, NULL), MI_MODULE_VDEC, MI_REASON_NULL_POINTER);
}

POINT(create_refused_is_absent, "vdec.create.refused-creates-nothing", "MI_VDEC_CreateChn",
      "a refused creation leaves no channel behind")
{
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    NEED(MI_SYS_Init());
    attr.codec = 99;
    MI_VDEC_CreateChn(CH, &attr);
    REFUSED(MI_VDEC_StartChn(CH), MI_MODULE_VDEC, MI_REASON_ABSENT);
    attr.codec = MI_VDEC_CODEC_H264;
    OK(MI_VDEC_CreateChn(CH, &attr));
}

POINT(create_many, "vdec.create.seventeen", "MI_VDEC_CreateChn MI_VDEC_StartChn",
      "sixteen cameras and the spare channel exist and run at the same time")
{
    const MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    NEED(MI_SYS_Init());
    for (uint32_t channel = 0; channel <= CAMERAS; ++channel) {
        OK(MI_VDEC_CreateChn(channel, &attr));
        OK(MI_VDEC_StartChn(channel));
    }
}

POINT(create_again, "vdec.create.again-after-destroy", "MI_VDEC_CreateChn MI_VDEC_DestroyChn",
      "a destroyed channel is created again, with other attributes, as often as one likes")
{
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264), read = {0};
    NEED(MI_SYS_Init());
    for (uint32_t i = 0; i < 100; ++i) {
        attr.codec = i % 2 == 0 ? MI_VDEC_CODEC_H264 : MI_VDEC_CODEC_H265;
        OK(MI_VDEC_CreateChn(CH, &attr));
        OK(MI_VDEC_GetChnAttr(CH, &read));
        HOLDS(read.codec == attr.codec, "created for codec %u, MI_VDEC_GetChnAttr says %u", attr.codec,
              read.codec);
        OK(MI_VDEC_StartChn(CH));
        OK(MI_VDEC_StopChn(CH));
        OK(MI_VDEC_DestroyChn(CH));
    }
}

POINT(create_stopped, "vdec.create.stopped", "MI_VDEC_CreateChn MI_VDEC_SendStream",
      "a new channel is stopped: a send to it gives NOT_PERMITTED")
{
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_created_decoder(CH);
    REFUSED(MI_VDEC_SendStream(CH, &frame, 0), MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED);
}

POINT(create_zero_output, "vdec.create.no-output-size", "MI_VDEC_CreateChn MI_VDEC_GetOutputPortAttr",
      "after creation the output size is 0 x 0, also after another one was set before")
{
    MI_VDEC_OutputPortAttr size = {123, 45};
    const MI_VDEC_OutputPortAttr small = {176, 144};
    need_created_decoder(CH);
    OK(MI_VDEC_GetOutputPortAttr(CH, &size));
    HOLDS(size.width == 0 && size.height == 0, "MI_VDEC_GetOutputPortAttr gave %u x %u", size.width,
          size.height);
    NEED(MI_VDEC_SetOutputPortAttr(CH, &small));
    NEED(MI_VDEC_DestroyChn(CH));
    need_created_decoder(CH);
    OK(MI_VDEC_GetOutputPortAttr(CH, &size));
    HOLDS(size.width == 0 && size.height == 0, "the size of the channel before is still there: %u x %u",
          size.width, size.height);
}

/* -------------------------------------------------------------------------------- destruction --- */

POINT(destroy_succeeds, "vdec.destroy.succeeds", "MI_VDEC_DestroyChn", "a stopped channel is destroyed")
{
    need_created_decoder(CH);
    OK(MI_VDEC_DestroyChn(CH));
}

POINT(destroy_started, "vdec.destroy.started-not-permitted", "MI_VDEC_DestroyChn",
      "destroying a started channel gives NOT_PERMITTED, and the channel works on")
{
    need_decoder(CH, &quad_h264);
    REFUSED(MI_VDEC_DestroyChn(CH), MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED);
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    OK(MI_VDEC_SendStream(CH, &frame, SEND_MS));
}

POINT(destroy_absent, "vdec.destroy.absent", "MI_VDEC_DestroyChn",
      "destroying what was never created, or twice, gives ABSENT")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_VDEC_DestroyChn(CH), MI_MODULE_VDEC, MI_REASON_ABSENT);
    need_created_decoder(CH);
    NEED(MI_VDEC_DestroyChn(CH));
    REFUSED(MI_VDEC_DestroyChn(CH), MI_MODULE_VDEC, MI_REASON_ABSENT);
}

POINT(destroy_bad_channel, "vdec.destroy.bad-channel", "MI_VDEC_DestroyChn",
      "no such channel gives BAD_CHANNEL")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_VDEC_DestroyChn(NO_CHANNEL), MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL);
}

POINT(destroy_is_gone, "vdec.destroy.channel-is-gone", "MI_VDEC_DestroyChn",
      "every call to a destroyed channel gives ABSENT")
{
    MI_VDEC_ChnAttr attr;
    MI_VDEC_ChnStat stat;
    MI_VDEC_OutputPortAttr size = {0, 0};
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_created_decoder(CH);
    NEED(MI_VDEC_DestroyChn(CH));
    REFUSED(MI_VDEC_StartChn(CH), MI_MODULE_VDEC, MI_REASON_ABSENT);
    REFUSED(MI_VDEC_GetChnAttr(CH, &attr), MI_MODULE_VDEC, MI_REASON_ABSENT);
    REFUSED(MI_VDEC_GetChnStat(CH, &stat), MI_MODULE_VDEC, MI_REASON_ABSENT);
    REFUSED(MI_VDEC_SendStream(CH, &frame, 0), MI_MODULE_VDEC, MI_REASON_ABSENT);
    REFUSED(MI_VDEC_SetOutputPortAttr(CH, &size), MI_MODULE_VDEC, MI_REASON_ABSENT);
}

const Point *const vdec_points[] = {
    &point_create_succeeds,     &point_create_stream_mode,       &point_create_keeps,
    &point_create_twice,        &point_create_twice_keeps,       &point_create_bad_channel,
    &point_create_bad_codec,    &point_create_bad_mode,          &point_create_no_buffer,
    &point_create_null,         &point_create_refused_is_absent, &point_create_many,
    &point_create_again,        &point_create_stopped,           &point_create_zero_output,
    &point_destroy_succeeds,    &point_destroy_started,          &point_destroy_absent,
    &point_destroy_bad_channel, &point_destroy_is_gone,          NULL,
};
