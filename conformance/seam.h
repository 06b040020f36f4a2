/*
 * seam.h - the two seams as the points call them: each call goes through a function of the same name that
 * records it, and keeps account of what is to be undone when the point ends.
 *
 * seam_media.c and seam_board.c define RECORDS_SEAM before they include this, and so see the calls of
 * the implementation.
 */
#ifndef CONFORMANCE_SEAM_H
#define CONFORMANCE_SEAM_H

#include "board_io.h"
#include "mi_ao.h"
#include "mi_disp.h"
#include "mi_divp.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mi_venc.h"
#include "suite.h"

/* Undo, as far as the seams let it be undone, what is set up: bindings, channels, ports, layers... */
void seam_undo_media(void);
void seam_undo_board(void);

int32_t rec_MI_SYS_Init(void);
int32_t rec_MI_SYS_GetVersion(MI_SYS_Version *version);
int32_t rec_MI_SYS_GetCurPts(uint64_t *pts);
int32_t rec_MI_SYS_InitPtsBase(uint64_t base);
int32_t rec_MI_SYS_SyncPts(uint64_t pts);
int32_t rec_MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                               uint32_t sink_rate);
int32_t rec_MI_SYS_UnBindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink);
int32_t rec_MI_SYS_SetChnOutputPortDepth(const MI_SYS_ChnPort *port, uint32_t user_depth,
                                         uint32_t queue_depth);

int32_t rec_MI_VDEC_CreateChn(uint32_t channel, const MI_VDEC_ChnAttr *attr);
int32_t rec_MI_VDEC_DestroyChn(uint32_t channel);
int32_t rec_MI_VDEC_StartChn(uint32_t channel);
int32_t rec_MI_VDEC_StopChn(uint32_t channel);
int32_t rec_MI_VDEC_GetChnAttr(uint32_t channel, MI_VDEC_ChnAttr *attr);
int32_t rec_MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat);
int32_t rec_MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms);
int32_t rec_MI_VDEC_SetOutputPortAttr(uint32_t channel, const MI_VDEC_OutputPortAttr *attr);
int32_t rec_MI_VDEC_GetOutputPortAttr(uint32_t channel, MI_VDEC_OutputPortAttr *attr);

int32_t rec_MI_DISP_SetPubAttr(int32_t device, const MI_DISP_PubAttr *attr);
int32_t rec_MI_DISP_GetPubAttr(int32_t device, MI_DISP_PubAttr *attr);
int32_t rec_MI_DISP_Enable(int32_t device);
int32_t rec_MI_DISP_Disable(int32_t device);
int32_t rec_MI_DISP_BindVideoLayer(uint32_t layer, int32_t device);
int32_t rec_MI_DISP_UnBindVideoLayer(uint32_t layer, int32_t device);
int32_t rec_MI_DISP_SetVideoLayerAttr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr);
int32_t rec_MI_DISP_GetVideoLayerAttr(uint32_t layer, MI_DISP_VideoLayerAttr *attr);
int32_t rec_MI_DISP_EnableVideoLayer(uint32_t layer);
int32_t rec_MI_DISP_DisableVideoLayer(uint32_t layer);
int32_t rec_MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr);
int32_t rec_MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr);
int32_t rec_MI_DISP_EnableInputPort(int32_t device, uint32_t port);
int32_t rec_MI_DISP_DisableInputPort(int32_t device, uint32_t port);
int32_t rec_MI_DISP_SetInputPortSyncMode(int32_t device, uint32_t port, uint32_t mode);
int32_t rec_MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all);
int32_t rec_MI_DISP_ShowInputPort(int32_t device, uint32_t port);
int32_t rec_MI_DISP_HideInputPort(int32_t device, uint32_t port);
int32_t rec_MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window);

int32_t rec_MI_HDMI_Init(const MI_HDMI_InitParam *param);
int32_t rec_MI_HDMI_DeInit(void);
int32_t rec_MI_HDMI_Open(uint32_t device);
int32_t rec_MI_HDMI_Close(uint32_t device);
int32_t rec_MI_HDMI_SetAvMute(uint32_t device, int32_t mute);
int32_t rec_MI_HDMI_SetAttr(uint32_t device, const MI_HDMI_Attr *attr);
int32_t rec_MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr);
int32_t rec_MI_HDMI_GetSinkInfo(uint32_t device, MI_HDMI_SinkInfo *info);
int32_t rec_MI_HDMI_Start(uint32_t device);
int32_t rec_MI_HDMI_Stop(uint32_t device);

int32_t rec_MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr);
int32_t rec_MI_AO_Enable(uint32_t device);
int32_t rec_MI_AO_EnableChn(uint32_t device, uint32_t channel);
int32_t rec_MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr);
int32_t rec_MI_AO_EnableAdec(uint32_t device, uint32_t channel);
int32_t rec_MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate);
int32_t rec_MI_AO_SetMute(uint32_t device, int32_t mute);
int32_t rec_MI_AO_SetVolume(uint32_t device, int32_t volume_db);
int32_t rec_MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms);

int32_t rec_MI_DIVP_CreateChn(uint32_t channel, const MI_DIVP_ChnAttr *attr);
int32_t rec_MI_DIVP_DestroyChn(uint32_t channel);
int32_t rec_MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr);
int32_t rec_MI_DIVP_SetOutputPortAttr(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr);
int32_t rec_MI_DIVP_StartChn(uint32_t channel);
int32_t rec_MI_DIVP_StopChn(uint32_t channel);

int32_t rec_MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr);
int32_t rec_MI_VENC_DestroyChn(uint32_t channel);
int32_t rec_MI_VENC_ResetChn(uint32_t channel);
int32_t rec_MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param);
int32_t rec_MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param);
int32_t rec_MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device);
int32_t rec_MI_VENC_StartRecvPic(uint32_t channel);
int32_t rec_MI_VENC_StopRecvPic(uint32_t channel);
int32_t rec_MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms);
int32_t rec_MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream);

int rec_board_open(const char *path, int flags);
int rec_board_close(int descriptor);
int rec_board_read(int descriptor, void *buffer, size_t size);
int rec_board_ioctl(int descriptor, unsigned long request, void *argument);
void *rec_board_map(int descriptor, size_t size);
int rec_board_unmap(void *address, size_t size);
int rec_board_run_command(const char *command);
void rec_board_sleep_us(uint32_t microseconds);
int64_t rec_board_time_us(void);

#ifndef RECORDS_SEAM
/* clang-format off */
#define MI_SYS_Init                  rec_MI_SYS_Init
#define MI_SYS_GetVersion            rec_MI_SYS_GetVersion
#define MI_SYS_GetCurPts             rec_MI_SYS_GetCurPts
#define MI_SYS_InitPtsBase           rec_MI_SYS_InitPtsBase
#define MI_SYS_SyncPts               rec_MI_SYS_SyncPts
#define MI_SYS_BindChnPort           rec_MI_SYS_BindChnPort
#define MI_SYS_UnBindChnPort         rec_MI_SYS_UnBindChnPort
#define MI_SYS_SetChnOutputPortDepth rec_MI_SYS_SetChnOutputPortDepth
#define MI_VDEC_CreateChn            rec_MI_VDEC_CreateChn
#define MI_VDEC_DestroyChn           rec_MI_VDEC_DestroyChn
#define MI_VDEC_StartChn             rec_MI_VDEC_StartChn
#define MI_VDEC_StopChn              rec_MI_VDEC_StopChn
#define MI_VDEC_GetChnAttr           rec_MI_VDEC_GetChnAttr
#define MI_VDEC_GetChnStat           rec_MI_VDEC_GetChnStat
#define MI_VDEC_SendStream           rec_MI_VDEC_SendStream
#define MI_VDEC_SetOutputPortAttr    rec_MI_VDEC_SetOutputPortAttr
#define MI_VDEC_GetOutputPortAttr    rec_MI_VDEC_GetOutputPortAttr
#define MI_DISP_SetPubAttr           rec_MI_DISP_SetPubAttr
#define MI_DISP_GetPubAttr           rec_MI_DISP_GetPubAttr
#define MI_DISP_Enable               rec_MI_DISP_Enable
#define MI_DISP_Disable              rec_MI_DISP_Disable
#define MI_DISP_BindVideoLayer       rec_MI_DISP_BindVideoLayer
#define MI_DISP_UnBindVideoLayer     rec_MI_DISP_UnBindVideoLayer
#define MI_DISP_SetVideoLayerAttr    rec_MI_DISP_SetVideoLayerAttr
#define MI_DISP_GetVideoLayerAttr    rec_MI_DISP_GetVideoLayerAttr
#define MI_DISP_EnableVideoLayer     rec_MI_DISP_EnableVideoLayer
#define MI_DISP_DisableVideoLayer    rec_MI_DISP_DisableVideoLayer
#define MI_DISP_SetInputPortAttr     rec_MI_DISP_SetInputPortAttr
#define MI_DISP_GetInputPortAttr     rec_MI_DISP_GetInputPortAttr
#define MI_DISP_EnableInputPort      rec_MI_DISP_EnableInputPort
#define MI_DISP_DisableInputPort     rec_MI_DISP_DisableInputPort
#define MI_DISP_SetInputPortSyncMode rec_MI_DISP_SetInputPortSyncMode
#define MI_DISP_ClearInputPortBuffer rec_MI_DISP_ClearInputPortBuffer
#define MI_DISP_ShowInputPort        rec_MI_DISP_ShowInputPort
#define MI_DISP_HideInputPort        rec_MI_DISP_HideInputPort
#define MI_DISP_SetZoomInWindow      rec_MI_DISP_SetZoomInWindow
#define MI_HDMI_Init                 rec_MI_HDMI_Init
#define MI_HDMI_DeInit               rec_MI_HDMI_DeInit
#define MI_HDMI_Open                 rec_MI_HDMI_Open
#define MI_HDMI_Close                rec_MI_HDMI_Close
#define MI_HDMI_SetAvMute            rec_MI_HDMI_SetAvMute
#define MI_HDMI_SetAttr              rec_MI_HDMI_SetAttr
#define MI_HDMI_GetAttr              rec_MI_HDMI_GetAttr
#define MI_HDMI_GetSinkInfo          rec_MI_HDMI_GetSinkInfo
#define MI_HDMI_Start                rec_MI_HDMI_Start
#define MI_HDMI_Stop                 rec_MI_HDMI_Stop
#define MI_AO_SetPubAttr             rec_MI_AO_SetPubAttr
#define MI_AO_Enable                 rec_MI_AO_Enable
#define MI_AO_EnableChn              rec_MI_AO_EnableChn
#define MI_AO_SetAdecAttr            rec_MI_AO_SetAdecAttr
#define MI_AO_EnableAdec             rec_MI_AO_EnableAdec
#define MI_AO_EnableReSmp            rec_MI_AO_EnableReSmp
#define MI_AO_SetMute                rec_MI_AO_SetMute
#define MI_AO_SetVolume              rec_MI_AO_SetVolume
#define MI_AO_SendFrame              rec_MI_AO_SendFrame
#define MI_DIVP_CreateChn            rec_MI_DIVP_CreateChn
#define MI_DIVP_DestroyChn           rec_MI_DIVP_DestroyChn
#define MI_DIVP_GetOutputPortAttr    rec_MI_DIVP_GetOutputPortAttr
#define MI_DIVP_SetOutputPortAttr    rec_MI_DIVP_SetOutputPortAttr
#define MI_DIVP_StartChn             rec_MI_DIVP_StartChn
#define MI_DIVP_StopChn              rec_MI_DIVP_StopChn
#define MI_VENC_CreateChn            rec_MI_VENC_CreateChn
#define MI_VENC_DestroyChn           rec_MI_VENC_DestroyChn
#define MI_VENC_ResetChn             rec_MI_VENC_ResetChn
#define MI_VENC_GetJpegParam         rec_MI_VENC_GetJpegParam
#define MI_VENC_SetJpegParam         rec_MI_VENC_SetJpegParam
#define MI_VENC_GetChnDevid          rec_MI_VENC_GetChnDevid
#define MI_VENC_StartRecvPic         rec_MI_VENC_StartRecvPic
#define MI_VENC_StopRecvPic          rec_MI_VENC_StopRecvPic
#define MI_VENC_GetStream            rec_MI_VENC_GetStream
#define MI_VENC_ReleaseStream        rec_MI_VENC_ReleaseStream
#define board_open                   rec_board_open
#define board_close                  rec_board_close
#define board_read                   rec_board_read
#define board_ioctl                  rec_board_ioctl
#define board_map                    rec_board_map
#define board_unmap                  rec_board_unmap
#define board_run_command            rec_board_run_command
#define board_sleep_us               rec_board_sleep_us
#define board_time_us                rec_board_time_us
/* clang-format on */
#endif

#endif
