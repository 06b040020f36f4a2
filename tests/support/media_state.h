/* media_state.h - what the recording platform's getters answer: the attributes set last. */
#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "mi_ao.h"
#include "mi_disp.h"
#include "mi_divp.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mi_venc.h"

namespace recording
{

struct MediaState {
    std::map<int32_t, MI_DISP_PubAttr> display_devices;
    std::map<uint32_t, MI_DISP_VideoLayerAttr> layers;
    std::map<std::pair<int32_t, uint32_t>, MI_DISP_InputPortAttr> input_ports;
    std::map<uint32_t, MI_VDEC_ChnAttr> decoders;
    std::map<uint32_t, MI_VDEC_OutputPortAttr> decoder_outputs;
    std::map<std::pair<uint32_t, uint32_t>, MI_DIVP_OutputPortAttr> scaler_outputs;
    std::map<uint32_t, MI_VENC_JpegParam> jpeg_params;
    MI_HDMI_InitParam hdmi_registration = {};
    MI_HDMI_Attr hdmi_attr = {};
};

} // namespace recording
