/*
 * media_state.h - what the recording platform's media modules remember.
 *
 * Attributes: what the getters answer, the ones set last. Life: which channels exist and run, and
 * which sink is bound to which source. The refusals are those that the headers of the media
 * interface state; they count only while the platform is strict.
 */
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "mi_ao.h"
#include "mi_disp.h"
#include "mi_divp.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mi_venc.h"

namespace recording
{

/** The channels of one module: which exist, and which of these are started. */
class Channels
{
public:
    explicit Channels(uint32_t module) : module_(module) {}

    bool exists(uint32_t channel) const { return channels_.count(channel) != 0; }

    /* MI_SUCCESS, or the code with which the call is refused. */
    int32_t refuse_create(uint32_t channel) const;
    int32_t refuse_use(uint32_t channel) const;
    int32_t refuse_destroy(uint32_t channel) const; // absent, or not stopped
    int32_t refuse_send(uint32_t channel) const;    // absent, or not started

    void create(uint32_t channel) { channels_[channel] = false; }
    void destroy(uint32_t channel) { channels_.erase(channel); }
    void start(uint32_t channel, bool started);

private:
    int32_t error(uint32_t reason) const { return MI_ERROR(module_, reason); }

    uint32_t module_;
    std::map<uint32_t, bool> channels_; // number, started
};

struct MediaState {
    std::map<int32_t, MI_DISP_PubAttr> display_devices;
    std::map<uint32_t, MI_DISP_VideoLayerAttr> layers;
    std::map<std::pair<int32_t, uint32_t>, MI_DISP_InputPortAttr> input_ports;
    std::map<uint32_t, MI_VDEC_ChnAttr> decoder_attrs;
    std::map<uint32_t, MI_VDEC_OutputPortAttr> decoder_outputs;
    std::map<std::pair<uint32_t, uint32_t>, MI_DIVP_OutputPortAttr> scaler_outputs;
    std::map<uint32_t, MI_VENC_JpegParam> jpeg_params;
    MI_HDMI_InitParam hdmi_registration = {};
    MI_HDMI_Attr hdmi_attr = {};

    Channels decoders{MI_MODULE_VDEC};
    Channels scalers{MI_MODULE_DIVP};
    Channels encoders{MI_MODULE_VENC};

    struct Binding {
        MI_SYS_ChnPort source, sink;
    };
    std::vector<Binding> bindings;

    int32_t refuse_bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink) const;
    int32_t refuse_unbind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink) const;
    void bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink);
    void unbind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink);
};

} // namespace recording
