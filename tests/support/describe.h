/* describe.h - platform records as one compact piece of text each. */
#pragma once

#include <string>

#include "mi_ao.h"
#include "mi_disp.h"
#include "mi_divp.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mi_venc.h"

namespace recording
{

std::string describe(const MI_Rect &rect);
std::string describe(const MI_SYS_ChnPort &port);
std::string describe(const MI_VDEC_ChnAttr &attr);
std::string describe(const MI_VDEC_Stream &stream);
std::string describe(const MI_VDEC_OutputPortAttr &attr);
std::string describe(const MI_DISP_PubAttr &attr);
std::string describe(const MI_DISP_VideoLayerAttr &attr);
std::string describe(const MI_DISP_InputPortAttr &attr);
std::string describe(const MI_HDMI_InitParam &param);
std::string describe(const MI_HDMI_Attr &attr);
std::string describe(const MI_AO_PubAttr &attr);
std::string describe(const MI_AO_AdecAttr &attr);
std::string describe(const MI_AO_Frame &frame);
std::string describe(const MI_DIVP_ChnAttr &attr);
std::string describe(const MI_DIVP_OutputPortAttr &attr);
std::string describe(const MI_VENC_ChnAttr &attr);
std::string describe(const MI_VENC_JpegParam &param);

} // namespace recording
