/* sys.cpp - the media system: start, version, the media clock, and the entry points of the graph. */
#include "mi_sys.h"

#include <algorithm>
#include <cstdio>
#include <mutex>

#include "media/call.h"
#include "media/clock.h"
#include "media/graph.h"
#include "media/modules.h"
#include "media/scaler_channel.h"
#include "media/vdec_channel.h"

namespace vboard
{
namespace
{

struct SystemState {
    std::mutex mutex;
    bool up = false;
    uint64_t pts_offset = 0; // media clock - board clock, modulo 2^64
};

SystemState &state()
{
    static SystemState *system = new SystemState;
    return *system;
}

CallSite init_site{"MI_SYS_Init"};
CallSite version_site{"MI_SYS_GetVersion"};
CallSite get_pts_site{"MI_SYS_GetCurPts"};
CallSite pts_base_site{"MI_SYS_InitPtsBase"};
CallSite sync_pts_site{"MI_SYS_SyncPts"};
CallSite bind_site{"MI_SYS_BindChnPort"};
CallSite unbind_site{"MI_SYS_UnBindChnPort"};
CallSite depth_site{"MI_SYS_SetChnOutputPortDepth"};

int32_t init()
{
    SystemState &system = state();
    const std::lock_guard guard(system.mutex);
    system.up = true;
    return MI_SUCCESS;
}

// Run `step` once the system is up, under its lock.
template <typename Step> int32_t when_up(Step step)
{
    SystemState &system = state();
    const std::lock_guard guard(system.mutex);
    if (!system.up) return refuse(MI_MODULE_SYS, MI_REASON_NOT_READY, "the media system is not started");
    return step(system);
}

int32_t get_version(MI_SYS_Version *version)
{
    if (version == nullptr) return refuse(MI_MODULE_SYS, MI_REASON_NULL_POINTER, "no version record");
    return when_up([&](SystemState &) {
        snprintf(version->text, sizeof version->text, "vboard 1.0, a board in software");
        return MI_SUCCESS;
    });
}

uint64_t media_time(const SystemState &system)
{
    return static_cast<uint64_t>(clock_now_us()) + system.pts_offset;
}

int32_t get_pts(uint64_t *pts)
{
    if (pts == nullptr) return refuse(MI_MODULE_SYS, MI_REASON_NULL_POINTER, "no place for the time stamp");
    return when_up([&](SystemState &system) {
        *pts = media_time(system);
        return MI_SUCCESS;
    });
}

int32_t set_base(uint64_t base)
{
    return when_up([&](SystemState &system) {
        system.pts_offset = base - static_cast<uint64_t>(clock_now_us());
        return MI_SUCCESS;
    });
}

int32_t sync_pts(uint64_t pts)
{
    return when_up([&](SystemState &system) {
        // Never backwards: a time that lies behind the media clock changes nothing.
        const uint64_t target = std::max(pts, media_time(system));
        system.pts_offset = target - static_cast<uint64_t>(clock_now_us());
        return MI_SUCCESS;
    });
}

int32_t bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
             uint32_t sink_rate)
{
    if (!sys_is_up()) return refuse(MI_MODULE_SYS, MI_REASON_NOT_READY, "the media system is not started");
    return graph_bind(source, sink, source_rate, sink_rate);
}

int32_t set_depth(const MI_SYS_ChnPort *port, uint32_t queue_depth)
{
    if (port == nullptr) return refuse(MI_MODULE_SYS, MI_REASON_NULL_POINTER, "no port");
    if (port->module != MI_MODULE_VDEC && port->module != MI_MODULE_DIVP)
        return refuse(MI_MODULE_SYS, MI_REASON_UNSUPPORTED, "module %u has no output port", port->module);
    if (port->module == MI_MODULE_DIVP) return scaler_set_depth(port->channel, port->port, queue_depth);
    if (port->port != 0 || !vdec_exists(port->channel))
        return refuse(MI_MODULE_SYS, MI_REASON_ABSENT, "output port %u of decoder channel %u", port->port,
                      port->channel);
    return MI_SUCCESS; // a decoder's pictures are counted references: there is no pool to size
}

} // namespace

bool sys_is_up()
{
    SystemState &system = state();
    const std::lock_guard guard(system.mutex);
    return system.up;
}

void sys_reset()
{
    SystemState &system = state();
    const std::lock_guard guard(system.mutex);
    system.up = false;
    system.pts_offset = 0;
}

} // namespace vboard

using namespace vboard;

extern "C" {

int32_t MI_SYS_Init(void)
{
    return platform_call(init_site, init);
}

int32_t MI_SYS_GetVersion(MI_SYS_Version *version)
{
    return platform_call(
        version_site, [&] { return get_version(version); }, version);
}

int32_t MI_SYS_GetCurPts(uint64_t *pts)
{
    return platform_call(
        get_pts_site, [&] { return get_pts(pts); }, pts);
}

int32_t MI_SYS_InitPtsBase(uint64_t base)
{
    return platform_call(
        pts_base_site, [&] { return set_base(base); }, base);
}

int32_t MI_SYS_SyncPts(uint64_t pts)
{
    return platform_call(
        sync_pts_site, [&] { return sync_pts(pts); }, pts);
}

int32_t MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                           uint32_t sink_rate)
{
    return platform_call(
        bind_site, [&] { return bind(source, sink, source_rate, sink_rate); }, source, sink, source_rate,
        sink_rate);
}

int32_t MI_SYS_UnBindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    return platform_call(
        unbind_site, [&] { return graph_unbind(source, sink); }, source, sink);
}

int32_t MI_SYS_SetChnOutputPortDepth(const MI_SYS_ChnPort *port, uint32_t user_depth, uint32_t queue_depth)
{
    return platform_call(
        depth_site, [&] { return set_depth(port, queue_depth); }, port, user_depth, queue_depth);
}

} // extern "C"
