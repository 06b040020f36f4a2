/*
 * hdmi.cpp - the HDMI transmitter, device 0, and the monitor at its plug.
 *
 *     closed -> Init -> initialised -> Open -> open -> Start <-> Stop -> Close -> DeInit
 *
 * Plugging and pulling raises the callback on the board's event thread, one event at a time, in the
 * order in which they happened. The callback may call the transmitter.
 */
#include "mi_hdmi.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "media/call.h"
#include "media/clock.h"
#include "media/display.h"
#include "media/modules.h"
#include "media/output_timing.h"

namespace vboard
{
namespace
{

struct Hdmi {
    std::mutex mutex;
    bool initialised = false;
    bool open = false;
    bool has_attr = false;
    bool started = false;
    bool muted = false;
    MI_HDMI_InitParam param = {};
    MI_HDMI_Attr attr = {};

    bool plugged = true;
    std::deque<uint32_t> events; // raised, not yet through the callback
    bool in_callback = false;
    bool quits = false;
    std::condition_variable changed;
    std::thread events_thread;
};

Hdmi &state()
{
    static Hdmi *hdmi = new Hdmi; // the event thread may outlive static objects
    return *hdmi;
}

CallSite init_site{"MI_HDMI_Init"};
CallSite deinit_site{"MI_HDMI_DeInit"};
CallSite open_site{"MI_HDMI_Open"};
CallSite close_site{"MI_HDMI_Close"};
CallSite mute_site{"MI_HDMI_SetAvMute"};
CallSite set_attr_site{"MI_HDMI_SetAttr"};
CallSite get_attr_site{"MI_HDMI_GetAttr"};
CallSite sink_site{"MI_HDMI_GetSinkInfo"};
CallSite start_site{"MI_HDMI_Start"};
CallSite stop_site{"MI_HDMI_Stop"};

void run_events(Hdmi &hdmi)
{
    std::unique_lock lock(hdmi.mutex);
    for (;;) {
        hdmi.changed.wait(lock, [&] { return hdmi.quits || !hdmi.events.empty(); });
        if (hdmi.quits) return;
        const uint32_t event = hdmi.events.front();
        hdmi.events.pop_front();
        const MI_HDMI_InitParam param = hdmi.param;
        if (hdmi.initialised && param.callback != nullptr) {
            hdmi.in_callback = true;
            lock.unlock();
            uint32_t device = 0;
            param.callback(device, event, &device, param.user_param);
            lock.lock();
            hdmi.in_callback = false;
        }
        hdmi.changed.notify_all();
    }
}

int32_t init(const MI_HDMI_InitParam *param)
{
    if (param == nullptr) return refuse(MI_MODULE_HDMI, MI_REASON_NULL_POINTER, "no callback record");
    Hdmi &hdmi = state();
    const std::lock_guard guard(hdmi.mutex);
    if (hdmi.initialised) return refuse(MI_MODULE_HDMI, MI_REASON_EXISTS, "initialised already");
    hdmi.initialised = true;
    hdmi.param = *param;
    if (!hdmi.events_thread.joinable()) hdmi.events_thread = std::thread([&hdmi] { run_events(hdmi); });
    return MI_SUCCESS;
}

int32_t deinit()
{
    Hdmi &hdmi = state();
    const std::lock_guard guard(hdmi.mutex);
    if (!hdmi.initialised) return refuse(MI_MODULE_HDMI, MI_REASON_NOT_READY, "not initialised");
    if (hdmi.open) return refuse(MI_MODULE_HDMI, MI_REASON_NOT_PERMITTED, "the transmitter is open");
    hdmi.initialised = hdmi.has_attr = false;
    hdmi.events.clear();
    hdmi.changed.notify_all(); // whoever waits for the events to be through
    return MI_SUCCESS;
}

int32_t open_device(uint32_t device)
{
    if (device != 0) return refuse(MI_MODULE_HDMI, MI_REASON_BAD_DEVICE, "HDMI device %u", device);
    Hdmi &hdmi = state();
    const std::lock_guard guard(hdmi.mutex);
    if (!hdmi.initialised) return refuse(MI_MODULE_HDMI, MI_REASON_NOT_READY, "not initialised");
    if (hdmi.open) return refuse(MI_MODULE_HDMI, MI_REASON_EXISTS, "open already");
    hdmi.open = true;
    return MI_SUCCESS;
}

/* Run `step` on the open transmitter under its lock. */
template <typename Step> int32_t with_open(uint32_t device, Step step)
{
    if (device != 0) return refuse(MI_MODULE_HDMI, MI_REASON_BAD_DEVICE, "HDMI device %u", device);
    Hdmi &hdmi = state();
    const std::lock_guard guard(hdmi.mutex);
    if (!hdmi.open) return refuse(MI_MODULE_HDMI, MI_REASON_NOT_READY, "the transmitter is not open");
    return step(hdmi);
}

int32_t set_attr(uint32_t device, const MI_HDMI_Attr *attr)
{
    if (attr == nullptr) return refuse(MI_MODULE_HDMI, MI_REASON_NULL_POINTER, "no attributes");
    return with_open(device, [&](Hdmi &hdmi) -> int32_t {
        if (attr->video_enabled != 0 && !hdmi_timing_is_known(attr->video_timing))
            return refuse(MI_MODULE_HDMI, MI_REASON_UNSUPPORTED, "HDMI timing %u", attr->video_timing);
        hdmi.attr = *attr;
        hdmi.has_attr = true;
        return MI_SUCCESS;
    });
}

int32_t get_attr(uint32_t device, MI_HDMI_Attr *attr)
{
    if (attr == nullptr) return refuse(MI_MODULE_HDMI, MI_REASON_NULL_POINTER, "no record to fill");
    return with_open(device, [&](Hdmi &hdmi) -> int32_t {
        if (!hdmi.has_attr) return refuse(MI_MODULE_HDMI, MI_REASON_NOT_READY, "no attributes were set");
        *attr = hdmi.attr;
        return MI_SUCCESS;
    });
}

int32_t get_sink(uint32_t device, MI_HDMI_SinkInfo *info)
{
    if (info == nullptr) return refuse(MI_MODULE_HDMI, MI_REASON_NULL_POINTER, "no record to fill");
    return with_open(device, [&](Hdmi &hdmi) -> int32_t {
        if (!hdmi.plugged) return refuse(MI_MODULE_HDMI, MI_REASON_ABSENT, "no monitor is plugged in");
        *info = {1, 1, kUsualWidth_px, kUsualHeight_px};
        return MI_SUCCESS;
    });
}

int32_t start(uint32_t device)
{
    return with_open(device, [](Hdmi &hdmi) -> int32_t {
        if (!hdmi.has_attr) return refuse(MI_MODULE_HDMI, MI_REASON_NOT_READY, "no attributes were set");
        hdmi.started = true;
        return MI_SUCCESS;
    });
}

} // namespace

bool hdmi_is_live()
{
    Hdmi &hdmi = state();
    const std::lock_guard guard(hdmi.mutex);
    return hdmi.plugged && hdmi.open && hdmi.started && !hdmi.muted && hdmi.attr.video_enabled != 0;
}

void hdmi_plug(bool plugged)
{
    Hdmi &hdmi = state();
    const std::lock_guard guard(hdmi.mutex);
    if (hdmi.plugged == plugged) return;
    hdmi.plugged = plugged;
    trace_event("plug {plugged=%d}", plugged ? 1 : 0);
    // Before the transmitter is initialised nobody hears of it.
    if (hdmi.initialised) hdmi.events.push_back(plugged ? MI_HDMI_EVENT_PLUGGED : MI_HDMI_EVENT_UNPLUGGED);
    hdmi.changed.notify_all();
}

bool hdmi_is_plugged()
{
    Hdmi &hdmi = state();
    const std::lock_guard guard(hdmi.mutex);
    return hdmi.plugged;
}

int hdmi_wait_events(int timeout_ms)
{
    Hdmi &hdmi = state();
    std::unique_lock lock(hdmi.mutex);
    const bool done =
        wait_real(hdmi.changed, lock, timeout_ms, [&] { return hdmi.events.empty() && !hdmi.in_callback; });
    return done ? 0 : -1;
}

void hdmi_reset()
{
    Hdmi &hdmi = state();
    std::thread events_thread;
    {
        const std::lock_guard guard(hdmi.mutex);
        hdmi.quits = true;
        hdmi.changed.notify_all();
        events_thread = std::move(hdmi.events_thread);
    }
    if (events_thread.joinable()) events_thread.join();
    const std::lock_guard guard(hdmi.mutex);
    hdmi.quits = false;
    hdmi.events.clear();
    hdmi.initialised = hdmi.open = hdmi.has_attr = hdmi.started = hdmi.muted = false;
    hdmi.param = {};
    hdmi.attr = {};
    hdmi.plugged = true;
}

} // namespace vboard

using namespace vboard;

extern "C" {

int32_t MI_HDMI_Init(const MI_HDMI_InitParam *param)
{
    return platform_call(
        init_site, [&] { return init(param); }, param);
}

int32_t MI_HDMI_DeInit(void)
{
    return platform_call(deinit_site, [] { return deinit(); });
}

int32_t MI_HDMI_Open(uint32_t device)
{
    return platform_call(
        open_site, [&] { return open_device(device); }, device);
}

int32_t MI_HDMI_Close(uint32_t device)
{
    return platform_call(
        close_site,
        [&] {
            return with_open(device, [](Hdmi &hdmi) -> int32_t {
                if (hdmi.started)
                    return refuse(MI_MODULE_HDMI, MI_REASON_NOT_PERMITTED, "the transmitter is not stopped");
                hdmi.open = false;
                return MI_SUCCESS;
            });
        },
        device);
}

int32_t MI_HDMI_SetAvMute(uint32_t device, int32_t mute)
{
    return platform_call(
        mute_site,
        [&] {
            return with_open(device, [&](Hdmi &hdmi) -> int32_t {
                hdmi.muted = mute != 0;
                return MI_SUCCESS;
            });
        },
        device, mute);
}

int32_t MI_HDMI_SetAttr(uint32_t device, const MI_HDMI_Attr *attr)
{
    return platform_call(
        set_attr_site, [&] { return set_attr(device, attr); }, device, attr);
}

int32_t MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr)
{
    return platform_call(
        get_attr_site, [&] { return get_attr(device, attr); }, device, attr);
}

int32_t MI_HDMI_GetSinkInfo(uint32_t device, MI_HDMI_SinkInfo *info)
{
    return platform_call(
        sink_site, [&] { return get_sink(device, info); }, device, info);
}

int32_t MI_HDMI_Start(uint32_t device)
{
    return platform_call(
        start_site, [&] { return start(device); }, device);
}

int32_t MI_HDMI_Stop(uint32_t device)
{
    return platform_call(
        stop_site,
        [&] {
            return with_open(device, [](Hdmi &hdmi) -> int32_t {
                hdmi.started = false;
                return MI_SUCCESS;
            });
        },
        device);
}
}
