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
    return *this;
}

DecoderCounters DecoderCounters::operator-(const DecoderCounters &earlier) const
{
    return {decoded - earlier.decoded, shown - earlier.shown, dropped - earlier.dropped,
            damaged - earlier.damaged, resets - earlier.resets};
}

} // namespace nvrec::host
