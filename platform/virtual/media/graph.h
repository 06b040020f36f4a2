/*
 * graph.h - which output port feeds which input port.
 *
 * Sources are decoder channels {VDEC, any, channel, 0} and scaler channels {DIVP, 0, channel, 0};
 * sinks are display ports {DISP, device, port, 0}, scaler channels and encoder channels. A binding
 * outlives the destruction of its source channel: a channel created again under the same number
 * feeds the same sink. Lock order: the graph, then a module's own lock.
 */
#ifndef VBOARD_GRAPH_H
#define VBOARD_GRAPH_H

#include <atomic>

#include "media/picture_ref.h"
#include "mi_sys.h"

namespace vboard
{

int32_t graph_bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                   uint32_t sink_rate);
int32_t graph_unbind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink);

/* Wait until no sink of a source would hold its next picture back, or until `abandoned`. */
void graph_wait_room(MI_ModuleId module, uint32_t channel, const std::atomic<bool> &abandoned);

/*
 * Hand a picture to every sink of a source. May wait for a sink that holds its source back, until
 * `abandoned` becomes true and the sink is woken.
 */
void graph_deliver(MI_ModuleId module, uint32_t channel, const PictureRefPtr &ref,
                   const std::atomic<bool> &abandoned);

} // namespace vboard

#endif
