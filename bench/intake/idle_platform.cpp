/*
 * A platform that does nothing: every call succeeds at once, so that what remains is the library.
 * Only what live intake and its decoder calls reach is more than a symbol.
 */
#include "board_io.h"
#include "mi_ao.h"
#include "mi_disp.h"
#include "mi_divp.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mi_venc.h"

#define IDLE(name, ...)                                                                                      \
    int32_t name(__VA_ARGS__)                                                                                \
    {                                                                                                        \
        return MI_SUCCESS;                                                                                   \
    }

using Rect = const MI_Rect *;
using Port = const MI_SYS_ChnPort *;

IDLE(MI_SYS_Init)
IDLE(MI_SYS_GetVersion, MI_SYS_Version *)
IDLE(MI_SYS_GetCurPts, uint64_t *)
IDLE(MI_SYS_InitPtsBase, uint64_t)
IDLE(MI_SYS_SyncPts, uint64_t)
IDLE(MI_SYS_BindChnPort, Port, Port, uint32_t, uint32_t)
IDLE(MI_SYS_UnBindChnPort, Port, Port)
IDLE(MI_SYS_SetChnOutputPortDepth, Port, uint32_t, uint32_t)
IDLE(MI_VDEC_CreateChn, uint32_t, const MI_VDEC_ChnAttr *)
IDLE(MI_VDEC_DestroyChn, uint32_t)
IDLE(MI_VDEC_StartChn, uint32_t)
IDLE(MI_VDEC_StopChn, uint32_t)
IDLE(MI_VDEC_GetChnAttr, uint32_t, MI_VDEC_ChnAttr *)
IDLE(MI_VDEC_SetOutputPortAttr, uint32_t, const MI_VDEC_OutputPortAttr *)
IDLE(MI_VDEC_GetOutputPortAttr, uint32_t, MI_VDEC_OutputPortAttr *)
IDLE(MI_VDEC_SendStream, uint32_t, const MI_VDEC_Stream *, int32_t)
IDLE(MI_DISP_SetPubAttr, int32_t, const MI_DISP_PubAttr *)
IDLE(MI_DISP_GetPubAttr, int32_t, MI_DISP_PubAttr *)
IDLE(MI_DISP_Enable, int32_t)
IDLE(MI_DISP_Disable, int32_t)
IDLE(MI_DISP_BindVideoLayer, uint32_t, int32_t)
IDLE(MI_DISP_UnBindVideoLayer, uint32_t, int32_t)
IDLE(MI_DISP_SetVideoLayerAttr, uint32_t, const MI_DISP_VideoLayerAttr *)
IDLE(MI_DISP_GetVideoLayerAttr, uint32_t, MI_DISP_VideoLayerAttr *)
IDLE(MI_DISP_EnableVideoLayer, uint32_t)
IDLE(MI_DISP_DisableVideoLayer, uint32_t)
IDLE(MI_DISP_SetInputPortAttr, int32_t, uint32_t, const MI_DISP_InputPortAttr *)
IDLE(MI_DISP_GetInputPortAttr, int32_t, uint32_t, MI_DISP_InputPortAttr *)
IDLE(MI_DISP_EnableInputPort, int32_t, uint32_t)
IDLE(MI_DISP_DisableInputPort, int32_t, uint32_t)
IDLE(MI_DISP_SetInputPortSyncMode, int32_t, uint32_t, uint32_t)
IDLE(MI_DISP_ClearInputPortBuffer, int32_t, uint32_t, int32_t)
IDLE(MI_DISP_ShowInputPort, int32_t, uint32_t)
IDLE(MI_DISP_HideInputPort, int32_t, uint32_t)
IDLE(MI_DISP_SetZoomInWindow, int32_t, uint32_t, Rect)
IDLE(MI_HDMI_Init, const MI_HDMI_InitParam *)
IDLE(MI_HDMI_DeInit)
IDLE(MI_HDMI_Open, uint32_t)
IDLE(MI_HDMI_Close, uint32_t)
IDLE(MI_HDMI_SetAvMute, uint32_t, int32_t)
IDLE(MI_HDMI_SetAttr, uint32_t, const MI_HDMI_Attr *)
IDLE(MI_HDMI_GetAttr, uint32_t, MI_HDMI_Attr *)
IDLE(MI_HDMI_GetSinkInfo, uint32_t, MI_HDMI_SinkInfo *)
IDLE(MI_HDMI_Start, uint32_t)
IDLE(MI_HDMI_Stop, uint32_t)
IDLE(MI_AO_SetPubAttr, uint32_t, const MI_AO_PubAttr *)
IDLE(MI_AO_Enable, uint32_t)
IDLE(MI_AO_EnableChn, uint32_t, uint32_t)
IDLE(MI_AO_SetAdecAttr, uint32_t, uint32_t, const MI_AO_AdecAttr *)
IDLE(MI_AO_EnableAdec, uint32_t, uint32_t)
IDLE(MI_AO_EnableReSmp, uint32_t, uint32_t, uint32_t)
IDLE(MI_AO_SetMute, uint32_t, int32_t)
IDLE(MI_AO_SetVolume, uint32_t, int32_t)
IDLE(MI_AO_SendFrame, uint32_t, uint32_t, const MI_AO_Frame *, int32_t)
IDLE(MI_DIVP_CreateChn, uint32_t, const MI_DIVP_ChnAttr *)
IDLE(MI_DIVP_DestroyChn, uint32_t)
IDLE(MI_DIVP_GetOutputPortAttr, uint32_t, uint32_t, MI_DIVP_OutputPortAttr *)
IDLE(MI_DIVP_SetOutputPortAttr, uint32_t, uint32_t, const MI_DIVP_OutputPortAttr *)
IDLE(MI_DIVP_StartChn, uint32_t)
IDLE(MI_DIVP_StopChn, uint32_t)
IDLE(MI_VENC_CreateChn, uint32_t, const MI_VENC_ChnAttr *)
IDLE(MI_VENC_DestroyChn, uint32_t)
IDLE(MI_VENC_ResetChn, uint32_t)
IDLE(MI_VENC_GetJpegParam, uint32_t, MI_VENC_JpegParam *)
IDLE(MI_VENC_SetJpegParam, uint32_t, const MI_VENC_JpegParam *)
IDLE(MI_VENC_GetChnDevid, uint32_t, uint32_t *)
IDLE(MI_VENC_StartRecvPic, uint32_t)
IDLE(MI_VENC_StopRecvPic, uint32_t)
IDLE(MI_VENC_GetStream, uint32_t, MI_VENC_Stream *, int32_t)
IDLE(MI_VENC_ReleaseStream, uint32_t, MI_VENC_Stream *)

int32_t MI_VDEC_GetChnStat(uint32_t, MI_VDEC_ChnStat *stat)
{
    *stat = {};
    return MI_SUCCESS;
}

int board_open(const char *, int)
{
    return -1;
}

int board_close(int)
{
    return 0;
}

int board_read(int, void *, size_t)
{
    return -1;
}

int board_ioctl(int, unsigned long, void *)
{
    return -1;
}

void *board_map(int, size_t)
{
    return nullptr;
}

int board_unmap(void *, size_t)
{
    return 0;
}

int board_run_command(const char *)
{
    return 0;
}

void board_sleep_us(uint32_t) {}

int64_t board_time_us(void)
{
    return 0;
}
