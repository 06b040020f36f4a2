/*
 * points_time.c - how long calls take. The points before have measured: of all calls of a name that
 * succeeded the quickest counts, so that neither a wait that was asked for nor a busy machine is blamed on
 * the board. A call that no point made is not judged.
 */
#include "points.h"
#include "record.h"

static void judge(const char *name, unsigned bound_ms)
{
    const double quickest = quickest_call_ms(name);
    if (quickest < 0) not_tried("no call of it has succeeded in this run");
    note("the quickest %s() took %.2f ms", name, quickest);
    HOLDS(quickest <= bound_ms * settings.patience, "the quickest %s() took %.1f ms, and %u ms are granted",
          name, quickest, bound_ms);
}

#define TIME_POINT(call, bound_ms)                                                                           \
    POINT_WITH(NO_CALLS, time_##call, "time." #call, #call,                                                  \
               "comes back within " #bound_ms " ms when it has nothing to wait for")                         \
    {                                                                                                        \
        judge(#call, bound_ms);                                                                              \
    }

TIME_POINT(MI_SYS_GetVersion, 10)
TIME_POINT(MI_SYS_GetCurPts, 10)
TIME_POINT(MI_SYS_InitPtsBase, 10)
TIME_POINT(MI_SYS_SyncPts, 10)
TIME_POINT(MI_SYS_BindChnPort, 10)
TIME_POINT(MI_SYS_UnBindChnPort, 10)
TIME_POINT(MI_SYS_SetChnOutputPortDepth, 10)
TIME_POINT(MI_VDEC_StartChn, 10)
TIME_POINT(MI_VDEC_GetChnAttr, 10)
TIME_POINT(MI_VDEC_GetChnStat, 10)
TIME_POINT(MI_VDEC_SendStream, 10)
TIME_POINT(MI_VDEC_SetOutputPortAttr, 10)
TIME_POINT(MI_VDEC_GetOutputPortAttr, 10)
TIME_POINT(MI_DISP_SetPubAttr, 10)
TIME_POINT(MI_DISP_GetPubAttr, 10)
TIME_POINT(MI_DISP_BindVideoLayer, 10)
TIME_POINT(MI_DISP_UnBindVideoLayer, 10)
TIME_POINT(MI_DISP_SetVideoLayerAttr, 10)
TIME_POINT(MI_DISP_GetVideoLayerAttr, 10)
TIME_POINT(MI_DISP_EnableVideoLayer, 10)
TIME_POINT(MI_DISP_SetInputPortAttr, 10)
TIME_POINT(MI_DISP_GetInputPortAttr, 10)
TIME_POINT(MI_DISP_EnableInputPort, 10)
TIME_POINT(MI_DISP_SetInputPortSyncMode, 10)
TIME_POINT(MI_DISP_ShowInputPort, 10)
TIME_POINT(MI_DISP_HideInputPort, 10)
TIME_POINT(MI_DISP_SetZoomInWindow, 10)
TIME_POINT(MI_HDMI_Init, 10)
TIME_POINT(MI_HDMI_DeInit, 10)
TIME_POINT(MI_HDMI_SetAvMute, 10)
TIME_POINT(MI_HDMI_GetAttr, 10)
TIME_POINT(MI_AO_SetPubAttr, 10)
TIME_POINT(MI_AO_SetAdecAttr, 10)
TIME_POINT(MI_AO_SetMute, 10)
TIME_POINT(MI_AO_SetVolume, 10)
TIME_POINT(MI_AO_SendFrame, 10)
TIME_POINT(MI_DIVP_GetOutputPortAttr, 10)
TIME_POINT(MI_DIVP_SetOutputPortAttr, 10)
TIME_POINT(MI_VENC_GetJpegParam, 10)
TIME_POINT(MI_VENC_SetJpegParam, 10)
TIME_POINT(MI_VENC_GetChnDevid, 10)
TIME_POINT(MI_VENC_StartRecvPic, 10)
TIME_POINT(MI_VENC_GetStream, 10)
TIME_POINT(MI_VENC_ReleaseStream, 10)
TIME_POINT(board_time_us, 10)
TIME_POINT(MI_VDEC_CreateChn, 100)
TIME_POINT(MI_VDEC_DestroyChn, 100)
TIME_POINT(MI_VDEC_StopChn, 100)
TIME_POINT(MI_DISP_Disable, 100)
TIME_POINT(MI_DISP_DisableVideoLayer, 100)
TIME_POINT(MI_DISP_DisableInputPort, 100)
TIME_POINT(MI_DISP_ClearInputPortBuffer, 100)
TIME_POINT(MI_HDMI_Open, 100)
TIME_POINT(MI_HDMI_Close, 100)
TIME_POINT(MI_HDMI_SetAttr, 100)
TIME_POINT(MI_HDMI_Stop, 100)
TIME_POINT(MI_AO_EnableChn, 100)
TIME_POINT(MI_AO_EnableAdec, 100)
TIME_POINT(MI_AO_EnableReSmp, 100)
TIME_POINT(MI_DIVP_CreateChn, 100)
TIME_POINT(MI_DIVP_DestroyChn, 100)
TIME_POINT(MI_DIVP_StartChn, 100)
TIME_POINT(MI_DIVP_StopChn, 100)
TIME_POINT(MI_VENC_CreateChn, 100)
TIME_POINT(MI_VENC_DestroyChn, 100)
TIME_POINT(MI_VENC_ResetChn, 100)
TIME_POINT(MI_VENC_StopRecvPic, 100)
TIME_POINT(board_open, 100)
TIME_POINT(board_close, 100)
TIME_POINT(board_ioctl, 100)
TIME_POINT(board_map, 100)
TIME_POINT(board_unmap, 100)
TIME_POINT(MI_DISP_Enable, 500)
TIME_POINT(MI_HDMI_GetSinkInfo, 500)
TIME_POINT(MI_HDMI_Start, 500)
TIME_POINT(MI_AO_Enable, 500)

const Point *const time_points[] = {
    &point_time_MI_SYS_GetVersion,
    &point_time_MI_SYS_GetCurPts,
    &point_time_MI_SYS_InitPtsBase,
    &point_time_MI_SYS_SyncPts,
    &point_time_MI_SYS_BindChnPort,
    &point_time_MI_SYS_UnBindChnPort,
    &point_time_MI_SYS_SetChnOutputPortDepth,
    &point_time_MI_VDEC_StartChn,
    &point_time_MI_VDEC_GetChnAttr,
    &point_time_MI_VDEC_GetChnStat,
    &point_time_MI_VDEC_SendStream,
    &point_time_MI_VDEC_SetOutputPortAttr,
    &point_time_MI_VDEC_GetOutputPortAttr,
    &point_time_MI_DISP_SetPubAttr,
    &point_time_MI_DISP_GetPubAttr,
    &point_time_MI_DISP_BindVideoLayer,
    &point_time_MI_DISP_UnBindVideoLayer,
    &point_time_MI_DISP_SetVideoLayerAttr,
    &point_time_MI_DISP_GetVideoLayerAttr,
    &point_time_MI_DISP_EnableVideoLayer,
    &point_time_MI_DISP_SetInputPortAttr,
    &point_time_MI_DISP_GetInputPortAttr,
    &point_time_MI_DISP_EnableInputPort,
    &point_time_MI_DISP_SetInputPortSyncMode,
    &point_time_MI_DISP_ShowInputPort,
    &point_time_MI_DISP_HideInputPort,
    &point_time_MI_DISP_SetZoomInWindow,
    &point_time_MI_HDMI_Init,
    &point_time_MI_HDMI_DeInit,
    &point_time_MI_HDMI_SetAvMute,
    &point_time_MI_HDMI_GetAttr,
    &point_time_MI_AO_SetPubAttr,
    &point_time_MI_AO_SetAdecAttr,
    &point_time_MI_AO_SetMute,
    &point_time_MI_AO_SetVolume,
    &point_time_MI_AO_SendFrame,
    &point_time_MI_DIVP_GetOutputPortAttr,
    &point_time_MI_DIVP_SetOutputPortAttr,
    &point_time_MI_VENC_GetJpegParam,
    &point_time_MI_VENC_SetJpegParam,
    &point_time_MI_VENC_GetChnDevid,
    &point_time_MI_VENC_StartRecvPic,
    &point_time_MI_VENC_GetStream,
    &point_time_MI_VENC_ReleaseStream,
    &point_time_board_time_us,
    &point_time_MI_VDEC_CreateChn,
    &point_time_MI_VDEC_DestroyChn,
    &point_time_MI_VDEC_StopChn,
    &point_time_MI_DISP_Disable,
    &point_time_MI_DISP_DisableVideoLayer,
    &point_time_MI_DISP_DisableInputPort,
    &point_time_MI_DISP_ClearInputPortBuffer,
    &point_time_MI_HDMI_Open,
    &point_time_MI_HDMI_Close,
    &point_time_MI_HDMI_SetAttr,
    &point_time_MI_HDMI_Stop,
    &point_time_MI_AO_EnableChn,
    &point_time_MI_AO_EnableAdec,
    &point_time_MI_AO_EnableReSmp,
    &point_time_MI_DIVP_CreateChn,
    &point_time_MI_DIVP_DestroyChn,
    &point_time_MI_DIVP_StartChn,
    &point_time_MI_DIVP_StopChn,
    &point_time_MI_VENC_CreateChn,
    &point_time_MI_VENC_DestroyChn,
    &point_time_MI_VENC_ResetChn,
    &point_time_MI_VENC_StopRecvPic,
    &point_time_board_open,
    &point_time_board_close,
    &point_time_board_ioctl,
    &point_time_board_map,
    &point_time_board_unmap,
    &point_time_MI_DISP_Enable,
    &point_time_MI_HDMI_GetSinkInfo,
    &point_time_MI_HDMI_Start,
    &point_time_MI_AO_Enable,
    NULL,
};
