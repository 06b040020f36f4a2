/* The life of channels and bindings. A source is its module, channel and port: the library names the
 * display's device there, and a decoder has none. */
#include "media_state.h"

#include <algorithm>

namespace recording
{

namespace
{

bool same_source(const MI_SYS_ChnPort &a, const MI_SYS_ChnPort &b)
{
    return a.module == b.module && a.channel == b.channel && a.port == b.port;
}

bool same_sink(const MI_SYS_ChnPort &a, const MI_SYS_ChnPort &b)
{
    return same_source(a, b) && a.device == b.device;
}

int32_t bind_error(uint32_t reason)
{
    return MI_ERROR(MI_MODULE_SYS, reason);
}

bool can_feed(uint32_t source, uint32_t sink)
{
    switch (source) {
    case MI_MODULE_VDEC: return sink == MI_MODULE_DISP || sink == MI_MODULE_DIVP;
    case MI_MODULE_DIVP: return sink == MI_MODULE_DISP || sink == MI_MODULE_VENC;
    default: return false;
    }
}

bool end_exists(const MediaState &media, const MI_SYS_ChnPort &end)
{
    switch (end.module) {
    case MI_MODULE_VDEC: return media.decoders.exists(end.channel);
    case MI_MODULE_DIVP: return media.scalers.exists(end.channel);
    case MI_MODULE_VENC: return media.encoders.exists(end.channel);
    default: return end.channel < MI_DISP_INPUT_PORTS; // the display's ports are always there
    }
}

} // namespace

int32_t Channels::refuse_create(uint32_t channel) const
{
    return exists(channel) ? error(MI_REASON_EXISTS) : MI_SUCCESS;
}

int32_t Channels::refuse_use(uint32_t channel) const
{
    return exists(channel) ? MI_SUCCESS : error(MI_REASON_ABSENT);
}

int32_t Channels::refuse_destroy(uint32_t channel) const
{
    if (!exists(channel)) return error(MI_REASON_ABSENT);
    return channels_.at(channel) ? error(MI_REASON_NOT_PERMITTED) : MI_SUCCESS;
}

int32_t Channels::refuse_send(uint32_t channel) const
{
    if (!exists(channel)) return error(MI_REASON_ABSENT);
    return channels_.at(channel) ? MI_SUCCESS : error(MI_REASON_NOT_PERMITTED);
}

void Channels::start(uint32_t channel, bool started)
{
    if (exists(channel)) channels_[channel] = started;
}

int32_t MediaState::refuse_bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink) const
{
    if (source == nullptr || sink == nullptr) return bind_error(MI_REASON_NULL_POINTER);
    if (!can_feed(source->module, sink->module)) return bind_error(MI_REASON_UNSUPPORTED);
    if (!end_exists(*this, *source) || !end_exists(*this, *sink)) return bind_error(MI_REASON_ABSENT);
    bool taken = std::any_of(bindings.begin(), bindings.end(),
                             [&](const Binding &binding) { return same_sink(binding.sink, *sink); });
    return taken ? bind_error(MI_REASON_EXISTS) : MI_SUCCESS;
}

int32_t MediaState::refuse_unbind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink) const
{
    if (source == nullptr || sink == nullptr) return bind_error(MI_REASON_NULL_POINTER);
    bool bound = std::any_of(bindings.begin(), bindings.end(), [&](const Binding &binding) {
        return same_source(binding.source, *source) && same_sink(binding.sink, *sink);
    });
    return bound ? MI_SUCCESS : bind_error(MI_REASON_ABSENT);
}

void MediaState::bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    if (source && sink) bindings.push_back({*source, *sink});
}

void MediaState::unbind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    if (source == nullptr || sink == nullptr) return;
    std::erase_if(bindings, [&](const Binding &binding) {
        return same_source(binding.source, *source) && same_sink(binding.sink, *sink);
    });
}

} // namespace recording
