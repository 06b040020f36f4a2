/*
 * Bindings between decoder channels and display input ports.
 *
 * A binding is a pair of records {module, device, channel, port}: the decoder channel's output port
 * 0 and the display's input port, which stands in the channel word. Thread: as the caller's.
 */
#include "core/checked_call.h"
#include "core/decoder.h"
#include "core/log.h"
#include "mi_sys.h"
#include "nvrhal.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "vdec_venc.c";
constexpr uint32_t kBindFrameRate = 15; // equal on both sides: every picture passes

MI_SYS_ChnPort decoder_port(int32_t dev, uint32_t channel, uint32_t port = 0)
{
    return {MI_MODULE_VDEC, static_cast<uint32_t>(dev), channel, port};
}

MI_SYS_ChnPort display_port(int32_t dev, uint32_t disp_port)
{
    return {MI_MODULE_DISP, static_cast<uint32_t>(dev), disp_port, 0};
}

int32_t unbind(const MI_SYS_ChnPort &source, const MI_SYS_ChnPort &sink)
{
    if (failed_call(MI_SYS_UnBindChnPort(&source, &sink),
                    log_code(kSource, "HI_MPI_SYS_UnBind failed with %#x!\n")))
        return -1;
    return 0;
}

} // namespace

int32_t vo_bind_vpss(int32_t dev, uint32_t disp_port, uint32_t channel, uint32_t)
{
    const MI_SYS_ChnPort source = decoder_port(dev, channel);
    const MI_SYS_ChnPort sink = display_port(dev, disp_port);
    if (failed_call(MI_SYS_BindChnPort(&source, &sink, kBindFrameRate, kBindFrameRate),
                    log_code(kSource, "failed with %#x!\n")))
        return -1;
    return 0;
}

int32_t vo_unbind_vpss(int32_t dev, uint32_t disp_port, uint32_t channel, uint32_t)
{
    const MI_SYS_ChnPort source = decoder_port(dev, channel);
    const MI_SYS_ChnPort sink = display_port(dev, disp_port);
    if (failed_call(MI_SYS_UnBindChnPort(&source, &sink), log_code(kSource, "failed with %#x!\n"))) return -1;
    log_line("unbind vpss success! ");
    return 0;
}

int32_t vo_unbind_vi(int32_t dev, uint32_t disp_port)
{
    const MI_SYS_ChnPort source = {}; // whatever feeds the port
    const MI_SYS_ChnPort sink = display_port(dev, disp_port);
    return MI_SYS_UnBindChnPort(&source, &sink);
}

int32_t nvrhal::bind_decoder(uint32_t channel)
{
    const MI_SYS_ChnPort source = decoder_port(0, channel);
    const MI_SYS_ChnPort sink = display_port(0, channel);
    if (failed_call(MI_SYS_BindChnPort(&source, &sink, kBindFrameRate, kBindFrameRate),
                    log_code(kSource, "HI_MPI_SYS_Bind failed with %#x!\n")))
        return -1;
    return 0;
}

int32_t vdec_bind_vpss(int32_t count)
{
    for (int32_t channel = 0; channel < count; ++channel)
        if (bind_decoder(static_cast<uint32_t>(channel)) != 0) return -1;
    return 0;
}

int32_t vdec_unbind_vpss(uint32_t channel, uint32_t port)
{
    return unbind(decoder_port(0, channel), display_port(0, port));
}

int32_t vdec_unbind_vo(uint32_t channel, uint32_t port, uint32_t dst_port)
{
    return unbind(decoder_port(0, channel, port), display_port(0, dst_port));
}
