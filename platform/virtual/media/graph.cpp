/* graph.cpp - the table of bindings, and the delivery of pictures along them. */
#include "media/graph.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <vector>

#include "media/call.h"
#include "media/display.h"
#include "media/modules.h"
#include "media/scaler_channel.h"
#include "media/vdec_channel.h"
#include "media/venc_channel.h"

namespace vboard
{
namespace
{

struct Edge {
    MI_SYS_ChnPort source;
    MI_SYS_ChnPort sink;
    uint32_t source_rate; // pictures per second; equal to the sink's, or either 0: every picture passes
    uint32_t sink_rate;
    uint32_t owed = 0; // sink pictures owed, in source_rate-ths

    // Spread the pictures that pass evenly over those that come.
    bool passes()
    {
        if (source_rate <= sink_rate || sink_rate == 0) return true;
        owed += sink_rate;
        if (owed < source_rate) return false;
        owed -= source_rate;
        return true;
    }
};

struct Graph {
    std::mutex mutex;
    std::vector<Edge> edges;
};

// What may be connected. The decoder is one device to the graph: the library names the display's
// number there.
struct Pair {
    uint32_t source, sink;
};
constexpr std::array<Pair, 4> kPairs = {{
    {MI_MODULE_VDEC, MI_MODULE_DISP},
    {MI_MODULE_VDEC, MI_MODULE_DIVP},
    {MI_MODULE_DIVP, MI_MODULE_VENC},
    {MI_MODULE_DIVP, MI_MODULE_DISP},
}};

Graph &graph()
{
    static Graph *all = new Graph;
    return *all;
}

bool same_source(const MI_SYS_ChnPort &a, const MI_SYS_ChnPort &b)
{
    return a.module == b.module && a.channel == b.channel && a.port == b.port;
}

bool same_sink(const MI_SYS_ChnPort &a, const MI_SYS_ChnPort &b)
{
    return same_source(a, b) && a.device == b.device;
}

// MI_MODULE_SYS, which has neither inputs nor outputs, for a number that is no module.
MI_ModuleId module_of(const MI_SYS_ChnPort &end)
{
    for (const MI_ModuleId module :
         {MI_MODULE_VENC, MI_MODULE_AO, MI_MODULE_VDEC, MI_MODULE_HDMI, MI_MODULE_DIVP, MI_MODULE_DISP})
        if (end.module == static_cast<uint32_t>(module)) return module;
    return MI_MODULE_SYS;
}

bool source_exists(const MI_SYS_ChnPort &end)
{
    if (end.port != 0) return false;
    switch (module_of(end)) {
    case MI_MODULE_VDEC: return vdec_exists(end.channel);
    case MI_MODULE_DIVP: return scaler_channel_exists(end.channel);
    case MI_MODULE_SYS:
    case MI_MODULE_VENC:
    case MI_MODULE_AO:
    case MI_MODULE_HDMI:
    case MI_MODULE_DISP: break; // no outputs
    }
    return false;
}

bool sink_exists(const MI_SYS_ChnPort &end)
{
    if (end.port != 0) return false;
    switch (module_of(end)) {
    case MI_MODULE_DISP: return display_port_exists(static_cast<int32_t>(end.device), end.channel);
    case MI_MODULE_DIVP: return end.device == 0 && scaler_channel_exists(end.channel);
    case MI_MODULE_VENC: return venc_channel_exists(end.device, end.channel);
    case MI_MODULE_SYS:
    case MI_MODULE_AO:
    case MI_MODULE_VDEC:
    case MI_MODULE_HDMI: break; // no inputs
    }
    return false;
}

// Tell the sink who feeds it, or that nobody does (null).
void tell_sink(const MI_SYS_ChnPort &sink, const MI_SYS_ChnPort *source)
{
    if (sink.module != MI_MODULE_DISP) return;
    const int32_t device = static_cast<int32_t>(sink.device);
    if (source != nullptr)
        display_port_bind(device, sink.channel, {static_cast<MI_ModuleId>(source->module), source->channel});
    else
        display_port_unbind(device, sink.channel);
}

struct SinkList {
    // All that one decoder could feed: every display port and every scaler.
    std::array<MI_SYS_ChnPort, kDevices * MI_DISP_INPUT_PORTS + kScalerChannels> sinks;
    size_t count = 0;
};

// The sinks of a source whose bindings let a picture pass. The graph is not held while one is handed
// over: a sink may wait, and checks its source itself.
template <typename Passes>
void list_sinks(MI_ModuleId module, uint32_t channel, SinkList &list, Passes passes)
{
    const MI_SYS_ChnPort source = {static_cast<uint32_t>(module), 0, channel, 0};
    Graph &all = graph();
    const std::lock_guard guard(all.mutex);
    for (Edge &edge : all.edges)
        if (same_source(edge.source, source) && list.count < list.sinks.size() && passes(edge))
            list.sinks[list.count++] = edge.sink;
}

void hand_to_sink(PictureSource source, const MI_SYS_ChnPort &sink, const PictureRefPtr &ref,
                  const std::atomic<bool> &abandoned)
{
    if (sink.module == MI_MODULE_DISP)
        display_take(static_cast<int32_t>(sink.device), sink.channel, source, ref, abandoned);
    else if (sink.module == MI_MODULE_DIVP)
        scaler_channel_take(sink.channel, ref, abandoned);
    else if (sink.module == MI_MODULE_VENC)
        venc_channel_take(sink.channel, ref, abandoned);
}

} // namespace

int32_t graph_bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                   uint32_t sink_rate)
{
    if (source == nullptr || sink == nullptr)
        return refuse(MI_MODULE_SYS, MI_REASON_NULL_POINTER, "a binding needs both ends");
    const bool pair_known = std::any_of(kPairs.begin(), kPairs.end(), [&](const Pair &pair) {
        return pair.source == source->module && pair.sink == sink->module;
    });
    if (!pair_known)
        return refuse(MI_MODULE_SYS, MI_REASON_UNSUPPORTED, "module %u cannot feed module %u", source->module,
                      sink->module);
    Graph &all = graph();
    const std::lock_guard guard(all.mutex);
    if (!source_exists(*source))
        return refuse(MI_MODULE_SYS, MI_REASON_ABSENT, "source {%u, %d, %u, %u} does not exist",
                      source->module, static_cast<int32_t>(source->device), source->channel, source->port);
    if (!sink_exists(*sink))
        return refuse(MI_MODULE_SYS, MI_REASON_ABSENT, "sink {%u, %d, %u, %u} does not exist", sink->module,
                      static_cast<int32_t>(sink->device), sink->channel, sink->port);
    for (const Edge &edge : all.edges)
        if (same_sink(edge.sink, *sink))
            return refuse(MI_MODULE_SYS, MI_REASON_EXISTS, "sink {%u, %d, %u, %u} is fed by channel %u",
                          sink->module, static_cast<int32_t>(sink->device), sink->channel, sink->port,
                          edge.source.channel);
    all.edges.push_back({*source, *sink, source_rate, sink_rate});
    tell_sink(*sink, source);
    return MI_SUCCESS;
}

int32_t graph_unbind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    if (source == nullptr || sink == nullptr)
        return refuse(MI_MODULE_SYS, MI_REASON_NULL_POINTER, "a binding has two ends");
    Graph &all = graph();
    const std::lock_guard guard(all.mutex);
    const auto found = std::find_if(all.edges.begin(), all.edges.end(), [&](const Edge &edge) {
        return same_source(edge.source, *source) && same_sink(edge.sink, *sink);
    });
    if (found == all.edges.end()) {
        // An application that unbinds before it binds anew does nothing wrong. Ends that this board
        // does not have are a mistake all the same.
        if (source_exists(*source) && sink_exists(*sink)) return decline(MI_MODULE_SYS, MI_REASON_ABSENT);
        return refuse(MI_MODULE_SYS, MI_REASON_ABSENT, "{%u, %d, %u, %u} does not feed {%u, %d, %u, %u}",
                      source->module, static_cast<int32_t>(source->device), source->channel, source->port,
                      sink->module, static_cast<int32_t>(sink->device), sink->channel, sink->port);
    }
    tell_sink(found->sink, nullptr);
    all.edges.erase(found);
    return MI_SUCCESS;
}

void graph_wait_room(MI_ModuleId module, uint32_t channel, const std::atomic<bool> &abandoned)
{
    SinkList list;
    list_sinks(module, channel, list, [](Edge &) { return true; });
    for (size_t i = 0; i < list.count; ++i)
        if (list.sinks[i].module == MI_MODULE_DISP)
            display_wait_room(static_cast<int32_t>(list.sinks[i].device), list.sinks[i].channel,
                              {module, channel}, abandoned);
}

void graph_deliver(MI_ModuleId module, uint32_t channel, const PictureRefPtr &ref,
                   const std::atomic<bool> &abandoned)
{
    SinkList list;
    list_sinks(module, channel, list, [](Edge &edge) { return edge.passes(); });
    for (size_t i = 0; i < list.count; ++i)
        hand_to_sink({module, channel}, list.sinks[i], ref, abandoned);
}

void graph_reset()
{
    Graph &all = graph();
    const std::lock_guard guard(all.mutex);
    for (const Edge &edge : all.edges)
        tell_sink(edge.sink, nullptr);
    all.edges.clear();
}

} // namespace vboard
