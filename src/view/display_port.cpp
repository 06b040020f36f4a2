/* display_port.cpp - see display_port.h. */
#include "view/display_port.h"

#include "core/checked_call.h"

namespace
{

constexpr char kSource[] = "vdec_venc.c";

} // namespace

int32_t nvrhal::move_port(int32_t dev, uint32_t port, const MI_Rect &window, PortSource source,
                          const PortTexts &texts)
{
    const int number = static_cast<int>(port);
    MI_DISP_InputPortAttr attr = {};
    if (failed_call(MI_DISP_GetInputPortAttr(dev, port, &attr),
                    nvrhal::log_text(texts.get, kSource, __LINE__, number, failed_code)))
        return -1;
    attr.window = window;
    if (source == PortSource::kAsWindow) {
        attr.source_width = window.width;
        attr.source_height = window.height;
    }
    if (failed_call(MI_DISP_SetInputPortAttr(dev, port, &attr),
                    nvrhal::log_text(texts.set, kSource, __LINE__, number, failed_code)))
        return -1;
    return 0;
}

int32_t nvrhal::show_port(int32_t dev, uint32_t port, const PortTexts &texts)
{
    if (failed_call(MI_DISP_ShowInputPort(dev, port),
                    nvrhal::log_text(texts.show, kSource, __LINE__, static_cast<int>(port), failed_code)))
        return -1;
    return 0;
}
