/*
 * Picture-in-picture: video layer 1 over the main picture on layer 0.
 *
 *   absent -> local_bind_pip -> shown -> local_unbind_pip -> absent
 *
 * UI thread.
 */
#include "core/checked_call.h"
#include "core/device_state.h"
#include "core/log.h"
#include "mi_disp.h"
#include "nvrhal.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "vdec_venc.c";

constexpr uint32_t kPipLayer = 1;
constexpr uint32_t kPipDevices = 2;
constexpr int32_t kPipDevice = 0;

bool device_is_bad(uint32_t dev)
{
    if (dev < kPipDevices) return false;
    log_error(kSource, "Pip video layer  dev %d ip overload 2!\n", static_cast<int>(dev));
    return true;
}

} // namespace

int32_t local_bind_pip(uint32_t dev, int32_t x, int32_t y, int32_t w, int32_t h)
{
    if (device_is_bad(dev)) return -1;
    // Device 0 whichever was asked for, on purpose.
    if (failed_call(MI_DISP_BindVideoLayer(kPipLayer, kPipDevice),
                    log_error(kSource, "Pip video layer bind to dev %d failed with errno %#x!\n",
                              static_cast<int>(dev), failed_code)))
        return -1;
    MI_DISP_VideoLayerAttr attr = {};
    if (failed_call(MI_DISP_GetVideoLayerAttr(kPipLayer, &attr),
                    log_code(kSource, "Get pip video layer attributes failed with errno %#x!\n")))
        return -1;

    log_text(" -----x = %d, y = %d, uw = %d, uh = %d,w = %d, h = %d\n", x, y, w, h, w, h);
    attr.window = {static_cast<uint16_t>(x), static_cast<uint16_t>(y), static_cast<uint16_t>(w),
                   static_cast<uint16_t>(h)};
    attr.width = static_cast<uint32_t>(w);
    attr.height = static_cast<uint32_t>(h);
    attr.pixel_format = load_word(global_format_e);
    if (failed_call(MI_DISP_SetVideoLayerAttr(kPipLayer, &attr),
                    log_code(kSource, "Set pip video layer attributes failed with errno %#x!\n")))
        return -1;
    if (failed_call(MI_DISP_EnableVideoLayer(kPipLayer),
                    log_code(kSource, "Enable pip video layer failed with errno %#x!\n")))
        return -1;
    return 0;
}

int32_t local_unbind_pip(uint32_t dev)
{
    if (device_is_bad(dev)) return -1;
    if (failed_call(MI_DISP_DisableVideoLayer(kPipLayer),
                    log_code(kSource, "Disable pip video layer failed with errno %#x!\n")))
        return -1;
    if (failed_call(MI_DISP_UnBindVideoLayer(kPipLayer, static_cast<int32_t>(dev)),
                    log_error(kSource, "Pip video layer unbind to dev %d failed with errno %#x!\n",
                              static_cast<int>(dev), failed_code)))
        return -1;
    return 0;
}
