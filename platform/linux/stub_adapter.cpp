/*
 * stub_adapter.cpp - the media interface of a board without its chip: every call is refused with one
 * line that names it.
 *
 * On a real board the MI_* come from an adapter that its porter writes (docs/porting.md). With this
 * one in its place, what stands on the library can be linked, started and looked at before there is
 * another: nvrec's help, its command line, and how it ends when the board does not come up.
 */
#include <cstdint>
#include <cstdio>

#include "mi_ao.h"
#include "mi_disp.h"
#include "mi_divp.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mi_venc.h"

namespace
{

int32_t refuse(const char *call)
{
    std::fprintf(stderr, "stub adapter: %s: there is no chip under this library\n", call);
    return MI_ERROR(MI_MODULE_SYS, MI_REASON_NOT_READY);
}

} // namespace

#define NO_CHIP(call, parameters)                                                                            \
    int32_t call parameters                                                                                  \
    {                                                                                                        \
        return refuse(#call);                                                                                \
    }

extern "C" {

// clang-format off
NO_CHIP(MI_SYS_Init, ())
NO_CHIP(MI_SYS_GetVersion, (MI_SYS_Version *))
NO_CHIP(MI_SYS_GetCurPts, (uint64_t *))
NO_CHIP(MI_SYS_InitPtsBase, (uint64_t))
NO_CHIP(MI_SYS_SyncPts, (uint64_t))
NO_CHIP(MI_SYS_BindChnPort, (const MI_SYS_ChnPort *, const MI_SYS_ChnPort *, uint32_t, uint32_t))
NO_CHIP(MI_SYS_UnBindChnPort, (const MI_SYS_ChnPort *, const MI_SYS_ChnPort *))
NO_CHIP(MI_SYS_SetChnOutputPortDepth, (const MI_SYS_ChnPort *, uint32_t, uint32_t))

NO_CHIP(MI_VDEC_CreateChn, (uint32_t, const MI_VDEC_ChnAttr *))
NO_CHIP(MI_VDEC_DestroyChn, (uint32_t))
NO_CHIP(MI_VDEC_StartChn, (uint32_t))
NO_CHIP(MI_VDEC_StopChn, (uint32_t))
NO_CHIP(MI_VDEC_GetChnAttr, (uint32_t, MI_VDEC_ChnAttr *))
NO_CHIP(MI_VDEC_GetChnStat, (uint32_t, MI_VDEC_ChnStat *))
NO_CHIP(MI_VDEC_SendStream, (uint32_t, const MI_VDEC_Stream *, int32_t))
NO_CHIP(MI_VDEC_SetOutputPortAttr, (uint32_t, const MI_VDEC_OutputPortAttr *))
NO_CHIP(MI_VDEC_GetOutputPortAttr, (uint32_t, MI_VDEC_OutputPortAttr *))

NO_CHIP(MI_DISP_SetPubAttr, (int32_t, const MI_DISP_PubAttr *))
NO_CHIP(MI_DISP_GetPubAttr, (int32_t, MI_DISP_PubAttr *))
NO_CHIP(MI_DISP_Enable, (int32_t))
NO_CHIP(MI_DISP_Disable, (int32_t))
NO_CHIP(MI_DISP_BindVideoLayer, (uint32_t, int32_t))
NO_CHIP(MI_DISP_UnBindVideoLayer, (uint32_t, int32_t))
NO_CHIP(MI_DISP_SetVideoLayerAttr, (uint32_t, const MI_DISP_VideoLayerAttr *))
NO_CHIP(MI_DISP_GetVideoLayerAttr, (uint32_t, MI_DISP_VideoLayerAttr *))
NO_CHIP(MI_DISP_EnableVideoLayer, (uint32_t))
NO_CHIP(MI_DISP_DisableVideoLayer, (uint32_t))
NO_CHIP(MI_DISP_SetInputPortAttr, (int32_t, uint32_t, const MI_DISP_InputPortAttr *))
NO_CHIP(MI_DISP_GetInputPortAttr, (int32_t, uint32_t, MI_DISP_InputPortAttr *))
NO_CHIP(MI_DISP_EnableInputPort, (int32_t, uint32_t))
NO_CHIP(MI_DISP_DisableInputPort, (int32_t, uint32_t))
NO_CHIP(MI_DISP_SetInputPortSyncMode, (int32_t, uint32_t, uint32_t))
NO_CHIP(MI_DISP_ClearInputPortBuffer, (int32_t, uint32_t, int32_t))
NO_CHIP(MI_DISP_ShowInputPort, (int32_t, uint32_t))
NO_CHIP(MI_DISP_HideInputPort, (int32_t, uint32_t))
NO_CHIP(MI_DISP_SetZoomInWindow, (int32_t, uint32_t, const MI_Rect *))

NO_CHIP(MI_HDMI_Init, (const MI_HDMI_InitParam *))
NO_CHIP(MI_HDMI_DeInit, ())
NO_CHIP(MI_HDMI_Open, (uint32_t))
NO_CHIP(MI_HDMI_Close, (uint32_t))
NO_CHIP(MI_HDMI_SetAvMute, (uint32_t, int32_t))
NO_CHIP(MI_HDMI_SetAttr, (uint32_t, const MI_HDMI_Attr *))
NO_CHIP(MI_HDMI_GetAttr, (uint32_t, MI_HDMI_Attr *))
NO_CHIP(MI_HDMI_GetSinkInfo, (uint32_t, MI_HDMI_SinkInfo *))
NO_CHIP(MI_HDMI_Start, (uint32_t))
NO_CHIP(MI_HDMI_Stop, (uint32_t))

NO_CHIP(MI_AO_SetPubAttr, (uint32_t, const MI_AO_PubAttr *))
NO_CHIP(MI_AO_Enable, (uint32_t))
NO_CHIP(MI_AO_EnableChn, (uint32_t, uint32_t))
NO_CHIP(MI_AO_SetAdecAttr, (uint32_t, uint32_t, const MI_AO_AdecAttr *))
NO_CHIP(MI_AO_EnableAdec, (uint32_t, uint32_t))
NO_CHIP(MI_AO_EnableReSmp, (uint32_t, uint32_t, uint32_t))
NO_CHIP(MI_AO_SetMute, (uint32_t, int32_t))
NO_CHIP(MI_AO_SetVolume, (uint32_t, int32_t))
NO_CHIP(MI_AO_SendFrame, (uint32_t, uint32_t, const MI_AO_Frame *, int32_t))

NO_CHIP(MI_DIVP_CreateChn, (uint32_t, const MI_DIVP_ChnAttr *))
NO_CHIP(MI_DIVP_DestroyChn, (uint32_t))
NO_CHIP(MI_DIVP_GetOutputPortAttr, (uint32_t, uint32_t, MI_DIVP_OutputPortAttr *))
NO_CHIP(MI_DIVP_SetOutputPortAttr, (uint32_t, uint32_t, const MI_DIVP_OutputPortAttr *))
NO_CHIP(MI_DIVP_StartChn, (uint32_t))
NO_CHIP(MI_DIVP_StopChn, (uint32_t))

NO_CHIP(MI_VENC_CreateChn, (uint32_t, const MI_VENC_ChnAttr *))
NO_CHIP(MI_VENC_DestroyChn, (uint32_t))
NO_CHIP(MI_VENC_ResetChn, (uint32_t))
NO_CHIP(MI_VENC_GetJpegParam, (uint32_t, MI_VENC_JpegParam *))
NO_CHIP(MI_VENC_SetJpegParam, (uint32_t, const MI_VENC_JpegParam *))
NO_CHIP(MI_VENC_GetChnDevid, (uint32_t, uint32_t *))
NO_CHIP(MI_VENC_StartRecvPic, (uint32_t))
NO_CHIP(MI_VENC_StopRecvPic, (uint32_t))
NO_CHIP(MI_VENC_GetStream, (uint32_t, MI_VENC_Stream *, int32_t))
NO_CHIP(MI_VENC_ReleaseStream, (uint32_t, MI_VENC_Stream *))
// clang-format on

} // extern "C"
