/* points_vdec_use.c - decoder channels: start and stop, attributes, the size of the output. */
#include "points.h"
#include "scene.h"

enum { CH = 1, NO_CHANNEL = 0x7FFF };

/* ------------------------------------------------------------------------------ start and stop --- */

POINT(start_succeeds, "vdec.start.succeeds", "MI_VDEC_StartChn",
      "a created channel is started, and takes a send")
{
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_created_decoder(CH);
    OK(MI_VDEC_StartChn(CH));
    OK(MI_VDEC_SendStream(CH, &frame, SEND_MS));
}

POINT(start_twice, "vdec.start.twice-accepted", "MI_VDEC_StartChn", "starting a started channel is accepted")
{
    need_decoder(CH, &quad_h264);
    OK(MI_VDEC_StartChn(CH));
}

POINT(start_absent, "vdec.start.absent", "MI_VDEC_StartChn", "starting what was not created gives ABSENT")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_VDEC_StartChn(CH), MI_MODULE_VDEC, MI_REASON_ABSENT);
}

POINT(start_bad_channel, "vdec.start.bad-channel", "MI_VDEC_StartChn", "no such channel gives BAD_CHANNEL")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_VDEC_StartChn(NO_CHANNEL), MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL);
}

POINT(stop_succeeds, "vdec.stop.succeeds", "MI_VDEC_StopChn",
      "a started channel is stopped, and takes no more sends")
{
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_decoder(CH, &quad_h264);
    OK(MI_VDEC_StopChn(CH));
    REFUSED(MI_VDEC_SendStream(CH, &frame, 0), MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED);
}

POINT(stop_twice, "vdec.stop.twice-accepted", "MI_VDEC_StopChn",
      "stopping a stopped channel, or one never started, is accepted")
{
    need_created_decoder(CH);
    OK(MI_VDEC_StopChn(CH));
    NEED(MI_VDEC_StartChn(CH));
    OK(MI_VDEC_StopChn(CH));
    OK(MI_VDEC_StopChn(CH));
}

POINT(stop_absent, "vdec.stop.absent", "MI_VDEC_StopChn", "stopping what was not created gives ABSENT")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_VDEC_StopChn(CH), MI_MODULE_VDEC, MI_REASON_ABSENT);
}

POINT(stop_bad_channel, "vdec.stop.bad-channel", "MI_VDEC_StopChn", "no such channel gives BAD_CHANNEL")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_VDEC_StopChn(NO_CHANNEL), MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL);
}

POINT(stop_restart, "vdec.stop.then-start", "MI_VDEC_StopChn MI_VDEC_StartChn",
      "a stopped channel is started again, and takes sends")
{
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_decoder(CH, &quad_h264);
    for (int i = 0; i < 20; ++i) {
        OK(MI_VDEC_SendStream(CH, &frame, SEND_MS));
        OK(MI_VDEC_StopChn(CH));
        OK(MI_VDEC_StartChn(CH));
    }
}

POINT(stop_other, "vdec.stop.only-this-channel", "MI_VDEC_StopChn",
      "stopping a channel leaves the others running")
{
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_decoder(CH, &quad_h264);
    need_decoder(CH + 1, &quad_h264);
    NEED(MI_VDEC_StopChn(CH));
    OK(MI_VDEC_SendStream(CH + 1, &frame, SEND_MS));
}

/* --------------------------------------------------------------------------------- attributes --- */

POINT(attr_null, "vdec.get-attr.null", "MI_VDEC_GetChnAttr", "no record to fill gives NULL_POINTER")
{
    need_created_decoder(CH);
    REFUSED(MI_VDEC_GetChnAttr(CH, NULL), MI_MODULE_VDEC, MI_REASON_NULL_POINTER);
}

POINT(attr_absent, "vdec.get-attr.absent", "MI_VDEC_GetChnAttr",
      "of a channel that was not created gives ABSENT, of none that exists BAD_CHANNEL")
{
    MI_VDEC_ChnAttr attr;
    NEED(MI_SYS_Init());
    REFUSED(MI_VDEC_GetChnAttr(CH, &attr), MI_MODULE_VDEC, MI_REASON_ABSENT);
    REFUSED(MI_VDEC_GetChnAttr(NO_CHANNEL, &attr), MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL);
}

POINT(output_kept, "vdec.output-size.kept", "MI_VDEC_SetOutputPortAttr MI_VDEC_GetOutputPortAttr",
      "the output size read is the one set last, of each channel for itself")
{
    const MI_VDEC_OutputPortAttr sizes[] = {{176, 144}, {320, 200}, {0, 0}, {1920, 1080}};
    need_created_decoder(CH);
    need_created_decoder(CH + 1);
    for (int i = 0; i < 4; ++i) {
        const MI_VDEC_OutputPortAttr other = {(uint16_t)(64 + 2 * i), 48};
        MI_VDEC_OutputPortAttr read = {7, 7};
        OK(MI_VDEC_SetOutputPortAttr(CH, &sizes[i]));
        OK(MI_VDEC_SetOutputPortAttr(CH + 1, &other));
        OK(MI_VDEC_GetOutputPortAttr(CH, &read));
        HOLDS(read.width == sizes[i].width && read.height == sizes[i].height,
              "set to %u x %u, read as %u x %u", sizes[i].width, sizes[i].height, read.width, read.height);
    }
}

POINT(output_refused, "vdec.output-size.refusals", "MI_VDEC_SetOutputPortAttr MI_VDEC_GetOutputPortAttr",
      "no record gives NULL_POINTER, no such channel BAD_CHANNEL, one that was not created ABSENT")
{
    MI_VDEC_OutputPortAttr size = {0, 0};
    need_created_decoder(CH);
    REFUSED(MI_VDEC_SetOutputPortAttr(CH, NULL), MI_MODULE_VDEC, MI_REASON_NULL_POINTER);
    REFUSED(MI_VDEC_GetOutputPortAttr(CH, NULL), MI_MODULE_VDEC, MI_REASON_NULL_POINTER);
    REFUSED(MI_VDEC_SetOutputPortAttr(NO_CHANNEL, &size), MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_VDEC_GetOutputPortAttr(NO_CHANNEL, &size), MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_VDEC_SetOutputPortAttr(CH + 1, &size), MI_MODULE_VDEC, MI_REASON_ABSENT);
    REFUSED(MI_VDEC_GetOutputPortAttr(CH + 1, &size), MI_MODULE_VDEC, MI_REASON_ABSENT);
}

const Point *const vdec_use_points[] = {
    &point_start_succeeds,    &point_start_twice,      &point_start_absent,
    &point_start_bad_channel, &point_stop_succeeds,    &point_stop_twice,
    &point_stop_absent,       &point_stop_bad_channel, &point_stop_restart,
    &point_stop_other,        &point_attr_null,        &point_attr_absent,
    &point_output_kept,       &point_output_refused,   NULL,
};
