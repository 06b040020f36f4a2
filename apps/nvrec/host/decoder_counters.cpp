/* decoder_counters.cpp - arithmetic of the counters in host.h, whatever counts them. */
#include "host/host.h"

namespace nvrec::host
{

DecoderCounters &DecoderCounters::operator+=(const DecoderCounters &more)
{
    decoded += more.decoded;
    shown += more.shown;
    dropped += more.dropped;
    damaged += more.damaged;
    resets += more.resets;
    sent += more.sent;
    return *this;
}

DecoderCounters DecoderCounters::operator-(const DecoderCounters &earlier) const
{
    return {decoded - earlier.decoded, shown - earlier.shown,   dropped - earlier.dropped,
            damaged - earlier.damaged, resets - earlier.resets, sent - earlier.sent};
}

uint64_t DecoderCounters::discarded(const DecoderBacklog &backlog) const
{
    const uint64_t accounted = decoded + damaged + backlog.frames;
    return sent > accounted ? sent - accounted : 0;
}

} // namespace nvrec::host
